#include "studioHistory.h"

#include "host/sessionProbe.h"

#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piNode.h>
#include <tesseraCore/tsMgTool.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace {

// Names whose panel words a rule would not find.
const std::map<std::string, std::string> PanelWords = {{"keyColor1", "Key Colour 1"},
                                                       {"keyColor2", "Key Colour 2"},
                                                       {"patchNames", "Patches"},
                                                       {"degrain.on", "Screen Degrain"}};

// How many inputs a step names before "and N more".
constexpr std::size_t NamedInputs = 3;

} // namespace

StudioHistory::StudioHistory(SessionProbe& probe, QWidget* parent)
    : QListWidget(parent)
    , _probe(probe) {}

std::string StudioHistory::label(const std::string& inputName) {
    for (auto p = TsMgTypes::MatteParam(0); p < TsMgTypes::MatteParamCount;
         p = TsMgTypes::next(p)) {
        if (TsMgTool::getMatteParamInputName(p) == inputName) {
            return TsMgTool::getMatteParamName(p);
        }
    }
    if (const auto it = PanelWords.find(inputName); it != PanelWords.end()) {
        return it->second;
    }
    // The twelve elements of a colour box are one box to the artist.
    if (const std::size_t box = inputName.find(".box_"); box != std::string::npos) {
        return label(inputName.substr(0, box)) + " Box";
    }
    // Words at dots, at capitals and between letters and digits.
    std::string words;
    char previous = '.';
    for (const char c : inputName) {
        const bool digit = std::isdigit(static_cast<unsigned char>(c)) != 0;
        const bool upper = std::isupper(static_cast<unsigned char>(c)) != 0;
        if (c == '.' || c == '_') {
            previous = '.';
            continue;
        }
        const bool startsWord =
            previous == '.' || upper ||
            (digit != (std::isdigit(static_cast<unsigned char>(previous)) != 0));
        if (startsWord && !words.empty()) {
            words += ' ';
        }
        words += startsWord ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        previous = c;
    }
    return words;
}

std::string StudioHistory::format(const PiInputState& state) const {
    std::string text = state.keys.empty()
                           ? _probe.format(state.constant)
                           : "animated (" + std::to_string(state.keys.size()) + " keys)";
    return state.locked ? text + ", locked" : text;
}

std::string StudioHistory::describe(const PiCommandStack& stack, int index) const {
    const std::string name = stack.getStepNames().at(static_cast<std::size_t>(index));
    std::vector<std::string> labels;
    const std::vector<PiCommandStack::InputChange> changes = stack.getStepChanges(index);
    for (const PiCommandStack::InputChange& change : changes) {
        const std::string l = label(change.input->getName());
        if (std::find(labels.begin(), labels.end(), l) == labels.end()) {
            labels.push_back(l);
        }
    }
    // A step named after its one input says it already.
    if (labels.empty() || (changes.size() == 1 && name == changes.front().input->getName())) {
        return name;
    }
    std::string text = name + ": ";
    for (std::size_t i = 0; i < std::min(labels.size(), NamedInputs); ++i) {
        text += (i ? ", " : "") + labels[i];
    }
    if (labels.size() > NamedInputs) {
        text += " and " + std::to_string(labels.size() - NamedInputs) + " more";
    }
    return text;
}

std::string StudioHistory::explain(const PiCommandStack& stack, int index) const {
    std::string text;
    for (const PiCommandStack::InputChange& change : stack.getStepChanges(index)) {
        const PiNode* node = change.input->getNode();
        text += (text.empty() ? "" : "\n") + (node ? node->getName() + " " : std::string()) +
                label(change.input->getName()) + ": " + format(change.before) + " \u2192 " +
                format(change.after);
    }
    return text;
}

void StudioHistory::refresh(const PiCommandStack& stack) {
    clear();
    addItem("(start)");
    for (int i = 0; i < stack.getStepCount(); ++i) {
        auto* item = new QListWidgetItem(QString::fromStdString(describe(stack, i)), this);
        item->setToolTip(QString::fromStdString(explain(stack, i)));
        if (i >= stack.getUndoCount()) {
            item->setForeground(Qt::gray);
        }
    }
    setCurrentRow(stack.getUndoCount());
}
