#pragma once

#include <base/evKeyCode.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

#include <vector>

// The viewer's own keys: what a viewer does with a key press its handler left
// unused. Their bindings are the entries of the hotkey table's "Viewer"
// domain (UiHotkeyRegistry), so that the application's menus show the very
// keys the viewer takes.
class TS_UI_API UiViewerKeys {
public:
    static const LiString Domain; // "Viewer"

    enum class Action { None, Fit, ActualPixels, Wipe, Red, Green, Blue, Alpha };
    struct Entry {
        Action action;
        LiString name; // the entry's name in the hotkey table
    };
    // Every action with its entry: "Fit", "Actual Pixels", "Wipe", "Red",
    // "Green", "Blue", "Alpha".
    static const std::vector<Entry>& getEntries();
    static LiString getEntryName(Action action);
    // The action bound to the key with exactly these modifiers; None when
    // none is.
    static Action find(EvKeyCode::KeyCode key, unsigned modifiers);
};
