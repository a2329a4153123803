#pragma once

#include <pluginAPI/piInput.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

// A setup as its text says it, checked for form but not yet against a keyer:
// the group section (group setups), the node sections and their input lines.
// Parsing throws TsSetupSyntax::SetupError naming the line.
namespace TsSetupDocument {

extern const char* const Magic; // the first word: "tessera-setup"

// A node reference as written: a name, none, or the group itself.
struct RefName {
    enum Kind { None, Self, Named } kind = None;
    std::string name;
};

struct InputLine {
    int line = 0;
    std::string name;
    PiValueType type = PiValueType::Double;
    PiInputState state;
    std::vector<RefName> refs; // node references: the constant's, then the keys'
};

struct Section {
    int line = 0;
    std::string name;
    int generation = 1;
    int patches = 1;
    std::vector<InputLine> inputs;
    std::unordered_map<std::string, std::size_t> inputIndex; // name -> index in inputs
};

struct SetupDocument {
    int version = 0;
    std::optional<Section> group;
    std::vector<Section> nodes;
};

// The whole text; `maxVersion` is the newest version this keyer reads.
SetupDocument parse(const std::string& text, int maxVersion);

// Version 1 kept a generation 2 group's slots in inputs of their own
// ("slot1" .. "slot6") beside its selected node; they go, in that order
// after the selected node, into its selected-nodes value.
void upgradeGeneration2Slots(Section& group);

// The input line of a section by its name; null when the section has none.
const InputLine* find(const Section& section, const std::string& name);

} // namespace TsSetupDocument
