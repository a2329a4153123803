#include <ui/uiHotkeyRegistry.h>
#include <ui/uiViewerKeys.h>

const LiString UiViewerKeys::Domain = "Viewer";

const std::vector<UiViewerKeys::Entry>& UiViewerKeys::getEntries() {
    static const std::vector<Entry> entries = {
        {Action::Fit, "Fit"},     {Action::ActualPixels, "Actual Pixels"},
        {Action::Wipe, "Wipe"},   {Action::Red, "Red"},
        {Action::Green, "Green"}, {Action::Blue, "Blue"},
        {Action::Alpha, "Alpha"}};
    return entries;
}

LiString UiViewerKeys::getEntryName(Action action) {
    for (const Entry& e : getEntries()) {
        if (e.action == action) {
            return e.name;
        }
    }
    return LiString();
}

UiViewerKeys::Action UiViewerKeys::find(EvKeyCode::KeyCode key, unsigned modifiers) {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const UiHotkeyRegistry::Binding pressed{key, modifiers};
    for (const Entry& e : getEntries()) {
        if (registry.getBinding(registry.getEntry(Domain, e.name)) == pressed) {
            return e.action;
        }
    }
    return Action::None;
}
