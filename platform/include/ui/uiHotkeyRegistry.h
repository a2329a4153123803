#pragma once

#include <base/cbDispatcher.h>
#include <base/evEvent.h>
#include <base/evKeyCode.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

#include <memory>
#include <string>
#include <vector>

// Named hotkeys, in domains (one per module or tool library). An entry is a
// (domain, name) pair with an id that stays the same for the life of the
// application, and a key binding.
//
// Bindings come from hotkey tables: the default table "tessera.hotkeys" is
// read (through LiResourcePath) when the registry is first used. A table has
// one binding a line:
//
//     # comment
//     Tessera  "Sample Matte"  M
//     Tessera  "Undo Pick"     Ctrl+Shift+Z
//
// the domain (one word), the entry's name in double quotes, and a key name
// (EvKeyCode::fromName: "A", "7", "F1", "Escape", ...) after any modifiers
// (Shift, Ctrl, Alt, Meta) joined by '+'. A bad line is reported with its
// file and line and skipped; the rest of the table is read.
//
// A key press matches a binding when the key is the same and exactly the
// binding's modifiers are held. Handlers register for an entry; a key
// press in a widget whose handler is registered for a matching entry is
// delivered to that handler as an EvHotkeyEvent (UiWidget).
class TS_UI_API UiHotkeyRegistry {
public:
    static const LiString TesseraDomain; // "Tessera"
    static const LiString DefaultTable;  // "tessera.hotkeys"

    struct Binding {
        EvKeyCode::KeyCode key = EvKeyCode::KeyNone;
        unsigned modifiers = 0; // EvKeyboardState mask

        bool isBound() const { return key != EvKeyCode::KeyNone; }
        bool operator==(const Binding&) const = default;
        // "Ctrl+Shift+Z"; "" when unbound.
        std::string toString() const;
        // Parses "Ctrl+Shift+Z"; an unbound binding and an explanation in
        // `error` when the text is not a key.
        static Binding parse(const std::string& text, std::string& error);
    };

    static UiHotkeyRegistry& getInstance();

    // The entry's id, made (unbound) on first request; ids start at 1.
    unsigned getEntry(const LiString& domain, const LiString& name);
    // 0 when there is no such entry.
    unsigned findEntry(const LiString& domain, const LiString& name) const;
    LiString getEntryName(unsigned entry) const;
    LiString getEntryDomain(unsigned entry) const;
    int getEntryCount() const { return static_cast<int>(_entries.size()); }

    // An unknown entry is reported and ignored. Handlers are not owned; a
    // handler that is destroyed leaves by itself.
    void addHotkeyHandler(unsigned entry, CbHandler<EvEvent>* handler);
    void removeHotkeyHandler(unsigned entry, CbHandler<EvEvent>* handler);
    bool isRegistered(unsigned entry, const CbHandler<EvEvent>* handler) const;

    void setBinding(unsigned entry, const Binding& binding);
    Binding getBinding(unsigned entry) const;

    // The first entry (in id order) bound to the key with these modifiers for
    // which the handler is registered; 0 when none.
    unsigned findEntryFor(EvKeyCode::KeyCode key, unsigned modifiers,
                          const CbHandler<EvEvent>* handler) const;
    // Hands a key press to the handler as an EvHotkeyEvent when it matches an
    // entry the handler is registered for (exceptions contained and
    // reported). Answers whether the handler marked the hotkey processed.
    bool deliverHotkey(const EvKeyEvent& keyEvent, CbHandler<EvEvent>& handler);

    // Reads a hotkey table (see above); answers the number of bindings read,
    // or -1 (reported) when the file cannot be read. Its bindings replace
    // those of the same entries.
    int loadTable(const LiString& path);

private:
    UiHotkeyRegistry();

    struct Entry {
        LiString domain;
        LiString name;
        Binding binding;
        std::unique_ptr<CbDispatcher<EvEvent>> handlers;
    };
    const Entry* find(unsigned entry) const;

    std::vector<Entry> _entries; // entry id - 1
};
