#pragma once

#include <base/baseExport.h>
#include <base/evKeyCode.h>

#include <bitset>

// The keyboard as a device event saw it: the modifiers held and the keys held.
//
// Modifiers are numbered Shift = 0, Alt = 1, Ctrl = 2, Meta = 3, and a modifier
// mask has bit (1 << id) set for each modifier held: mask 4 and identifier 2
// both denote Ctrl. A held modifier key also shows as held key (Shift is key
// 142), so a key test and a modifier test agree.
class TS_BASE_API EvKeyboardState {
public:
    enum KeyModifierID : int { Shift = 0, Alt = 1, Ctrl = 2, Meta = 3 };
    enum KeyModifierMask : unsigned {
        ShiftMask = 1u << Shift,
        AltMask = 1u << Alt,
        CtrlMask = 1u << Ctrl,
        MetaMask = 1u << Meta
    };

    EvKeyboardState() = default;
    // Sets the modifiers of the mask, and the matching modifier keys as held.
    explicit EvKeyboardState(unsigned modifierMask);

    bool isEnabled(KeyModifierID id) const { return (_modifiers >> id) & 1u; }
    unsigned getModifierMask() const { return _modifiers; }
    void setModifierMask(unsigned mask);
    void setModifier(KeyModifierID id, bool on);

    bool isKeyDown(EvKeyCode::KeyCode key) const;
    void setKeyDown(EvKeyCode::KeyCode key, bool down);

    bool operator==(const EvKeyboardState& other) const = default;

private:
    unsigned _modifiers = 0;
    std::bitset<EvKeyCode::KeyCount> _keys;
};
