#pragma once

// The host's key codes. The numbering is the host's own and is kept stable:
// plugins and hotkey tables use the numbers. Escape is 15 and Shift is 142.
struct EvKeyCode {
    enum KeyCode : int {
        KeyNone = 0,
        KeyBackspace = 8,
        KeyTab = 9,
        KeyReturn = 13,
        KeyEscape = 15,
        KeySpace = 32,
        Key0 = 48, Key1, Key2, Key3, Key4, Key5, Key6, Key7, Key8, Key9,
        KeyA = 65, KeyB, KeyC, KeyD, KeyE, KeyF, KeyG, KeyH, KeyI, KeyJ, KeyK, KeyL, KeyM,
        KeyN, KeyO, KeyP, KeyQ, KeyR, KeyS, KeyT, KeyU, KeyV, KeyW, KeyX, KeyY, KeyZ,
        KeyDelete = 127,
        KeyLeft = 130, KeyUp, KeyRight, KeyDown, KeyPageUp, KeyPageDown, KeyHome, KeyEnd,
        KeyInsert = 138,
        KeyShift = 142,
        KeyControl = 143,
        KeyAlt = 144,
        KeyMeta = 145,
        KeyF1 = 150, KeyF2, KeyF3, KeyF4, KeyF5, KeyF6, KeyF7, KeyF8, KeyF9, KeyF10, KeyF11,
        KeyF12,
        KeyCount = 256
    };

    // The key's name as hotkey tables and session scripts spell it ("Escape",
    // "Shift", "A", "7", "F1"); KeyNone for an unknown name.
    static KeyCode fromName(const char* name);
    static const char* toName(KeyCode code);
};
