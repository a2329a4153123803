#pragma once

#include <base/rcExUtil.h>
#include <base/rcShdPtr.h>
#include <base/typeName.h>
#include <pluginAPI/piGraphObject.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/pluginAPIExport.h>
#include <pluginAPI/snItem.h>

// A selection item that refers to a graph object (a node, usually). The item
// holds its object; two items are the same when their objects are
// (PiGraphObject::areEqual).
template <class T>
class PiSnItem : public SnItem {
public:
    // ExNullPtr for a null object.
    explicit PiSnItem(const RCShdPtr<T>& object)
        : _object(object) {
        if (!_object) {
            RCExUtil::throwExNullPtr(typeNameOf<T>().c_str());
        }
    }

    const RCShdPtr<T>& get() const { return _object; }

    bool isSame(const SnItem& other) const override {
        const auto* o = dynamic_cast<const PiSnItem<T>*>(&other);
        return o && PiGraphObject::areEqual(_object, o->_object);
    }
    LiString describe() const override {
        if constexpr (requires(const T& t) { t.getName(); }) {
            return _object->getName();
        } else {
            return "#" + std::to_string(_object->getId());
        }
    }

private:
    RCShdPtr<T> _object;
};

class TS_PLUGIN_API PiSnItemUtil {
public:
    // The selection item of a node (ExNullPtr for a null node).
    static RCShdPtr<const SnItem> create(const RCShdPtr<PiNode>& node);
};
