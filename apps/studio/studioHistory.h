#pragma once

#include <pluginAPI/piInput.h>

#include <QListWidget>

#include <string>

class SessionProbe;
class PiCommandStack;

// The undo history as the studio lists it: "(start)", then every step,
// the ones undone in grey, the current one selected. Each step keeps its
// own name (a tool's, a panel's) and adds the inputs it changed in the words
// the panels use ("Set Matte Parameter: Shadows"); its tooltip gives each
// input's value before and after the step.
class StudioHistory : public QListWidget {
public:
    StudioHistory(SessionProbe& probe, QWidget* parent);

    void refresh(const PiCommandStack& stack);

    // An input's name in the words of the panels: "shadows" is "Shadows",
    // "spill.amount" "Spill Amount", "patch2.box_0_3" "Patch 2 Box".
    static std::string label(const std::string& inputName);
    // What the list shows for step `index` of the stack, and its tooltip.
    std::string describe(const PiCommandStack& stack, int index) const;
    std::string explain(const PiCommandStack& stack, int index) const;

private:
    std::string format(const PiInputState& state) const;

    SessionProbe& _probe;
};
