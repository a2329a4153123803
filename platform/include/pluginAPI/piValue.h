#pragma once

#include <base/coRgbColorTyped.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

// A reference from one node's input to another node, by the node's identity
// (PiGraphObject::getId). Identity 0 refers to no node.
struct TS_PLUGIN_API PiNodeRef {
    std::uint64_t id = 0;

    bool isNone() const { return id == 0; }
    bool operator==(const PiNodeRef&) const = default;
};

using PiStringList = std::vector<std::string>;
// References to several nodes, in an order their input gives a meaning.
using PiNodeRefList = std::vector<PiNodeRef>;

// The kinds of value an input holds.
enum class PiValueType : int {
    Double = 0,
    Int = 1,
    Bool = 2,
    RgbColor = 3, // CoRgbColorTyped<float>: the value of structured colour inputs
    StringList = 4,
    Image = 5, // PiClipPtr: an image input (a still or a sequence), not animated
    NodeRef = 6,
    NodeRefList = 7,
};

// One value of an input. The alternatives are in PiValueType order.
using PiValue = std::variant<double, int, bool, CoRgbColorTyped<float>, PiStringList, PiClipPtr,
                             PiNodeRef, PiNodeRefList>;

// The PiValueType of a C++ value type (only the types of PiValue have one).
template <class T>
struct PiValueTypeOf;
template <>
struct PiValueTypeOf<double> {
    static constexpr PiValueType value = PiValueType::Double;
};
template <>
struct PiValueTypeOf<int> {
    static constexpr PiValueType value = PiValueType::Int;
};
template <>
struct PiValueTypeOf<bool> {
    static constexpr PiValueType value = PiValueType::Bool;
};
template <>
struct PiValueTypeOf<CoRgbColorTyped<float>> {
    static constexpr PiValueType value = PiValueType::RgbColor;
};
template <>
struct PiValueTypeOf<PiStringList> {
    static constexpr PiValueType value = PiValueType::StringList;
};
template <>
struct PiValueTypeOf<PiClipPtr> {
    static constexpr PiValueType value = PiValueType::Image;
};
template <>
struct PiValueTypeOf<PiNodeRef> {
    static constexpr PiValueType value = PiValueType::NodeRef;
};
template <>
struct PiValueTypeOf<PiNodeRefList> {
    static constexpr PiValueType value = PiValueType::NodeRefList;
};

// Operations on values shared by inputs, the command stack and setups.
class TS_PLUGIN_API PiValueUtil {
public:
    static PiValueType getType(const PiValue& v) { return static_cast<PiValueType>(v.index()); }
    // "double", "int", "bool", "rgb", "strings", "image", "node", "nodes".
    static const char* getTypeName(PiValueType type);

    // Exact equality (clips compare by identity).
    static bool equal(const PiValue& a, const PiValue& b);

    // False for a double or colour component that is infinite or NaN.
    static bool isFinite(const PiValue& v);

    // Whether keys of this type may be set: numbers, flags and colours.
    static bool isAnimatable(PiValueType type);

    // The value between two keys at fraction t in [0, 1] of the way from a to
    // b: doubles and colours interpolate linearly; integers, flags and the
    // other kinds hold a's value until b's key is reached (t == 1 answers b).
    static PiValue interpolate(const PiValue& a, const PiValue& b, double t);

    // An estimate of the bytes the value holds beyond sizeof(PiValue).
    static std::size_t extraBytes(const PiValue& v);

    // A short readable text of the value, for listings and messages.
    static LiString toText(const PiValue& v);
};
