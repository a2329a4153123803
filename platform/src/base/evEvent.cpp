#include <base/evEvent.h>

#include <cstring>
#include <string>
#include <strings.h>
#include <typeinfo>

EvEvent::~EvEvent() = default;

bool EvEvent::isSameType(const EvEvent& prototype) const {
    return typeid(*this) == typeid(prototype);
}

EvKeyDownEvent::EvKeyDownEvent(const GePoint2<float>& coord, const EvKeyboardState& keys,
                               EvKeyCode::KeyCode key)
    : EvEventImpl(coord, keys, key) {
    getKeyboardState().setKeyDown(key, true);
}

namespace {

// Modifier identifiers and the keys that hold them.
constexpr EvKeyCode::KeyCode modifierKeys[] = {EvKeyCode::KeyShift, EvKeyCode::KeyAlt,
                                               EvKeyCode::KeyControl, EvKeyCode::KeyMeta};

struct NamedKey {
    const char* name;
    EvKeyCode::KeyCode code;
};

constexpr NamedKey namedKeys[] = {
    {"Backspace", EvKeyCode::KeyBackspace},
    {"Tab", EvKeyCode::KeyTab},
    {"Return", EvKeyCode::KeyReturn},
    {"Enter", EvKeyCode::KeyReturn},
    {"Escape", EvKeyCode::KeyEscape},
    {"Space", EvKeyCode::KeySpace},
    {"Delete", EvKeyCode::KeyDelete},
    {"Left", EvKeyCode::KeyLeft},
    {"Up", EvKeyCode::KeyUp},
    {"Right", EvKeyCode::KeyRight},
    {"Down", EvKeyCode::KeyDown},
    {"PageUp", EvKeyCode::KeyPageUp},
    {"PageDown", EvKeyCode::KeyPageDown},
    {"Home", EvKeyCode::KeyHome},
    {"End", EvKeyCode::KeyEnd},
    {"Insert", EvKeyCode::KeyInsert},
    {"Shift", EvKeyCode::KeyShift},
    {"Ctrl", EvKeyCode::KeyControl},
    {"Control", EvKeyCode::KeyControl},
    {"Alt", EvKeyCode::KeyAlt},
    {"Meta", EvKeyCode::KeyMeta},
};

} // namespace

EvKeyboardState::EvKeyboardState(unsigned modifierMask) {
    setModifierMask(modifierMask);
}

void EvKeyboardState::setModifierMask(unsigned mask) {
    for (int id = Shift; id <= Meta; ++id) {
        setModifier(static_cast<KeyModifierID>(id), (mask >> id) & 1u);
    }
}

void EvKeyboardState::setModifier(KeyModifierID id, bool on) {
    if (on) {
        _modifiers |= 1u << id;
    } else {
        _modifiers &= ~(1u << id);
    }
    _keys.set(modifierKeys[id], on);
}

bool EvKeyboardState::isKeyDown(EvKeyCode::KeyCode key) const {
    return key > 0 && key < EvKeyCode::KeyCount && _keys.test(key);
}

void EvKeyboardState::setKeyDown(EvKeyCode::KeyCode key, bool down) {
    if (key <= 0 || key >= EvKeyCode::KeyCount) {
        return;
    }
    _keys.set(key, down);
    for (int id = Shift; id <= Meta; ++id) {
        if (modifierKeys[id] == key) {
            if (down) {
                _modifiers |= 1u << id;
            } else {
                _modifiers &= ~(1u << id);
            }
        }
    }
}

EvKeyCode::KeyCode EvKeyCode::fromName(const char* name) {
    if (!name || !*name) {
        return KeyNone;
    }
    const std::string n(name);
    if (n.size() == 1) {
        const char c = n[0];
        if (c >= '0' && c <= '9') {
            return static_cast<KeyCode>(Key0 + (c - '0'));
        }
        if (c >= 'A' && c <= 'Z') {
            return static_cast<KeyCode>(KeyA + (c - 'A'));
        }
        if (c >= 'a' && c <= 'z') {
            return static_cast<KeyCode>(KeyA + (c - 'a'));
        }
    }
    if (n.size() >= 2 && (n[0] == 'F' || n[0] == 'f')) {
        try {
            const int f = std::stoi(n.substr(1));
            if (f >= 1 && f <= 12 && std::to_string(f) == n.substr(1)) {
                return static_cast<KeyCode>(KeyF1 + f - 1);
            }
        } catch (const std::exception&) {
        }
    }
    for (const NamedKey& k : namedKeys) {
        if (strcasecmp(k.name, name) == 0) {
            return k.code;
        }
    }
    return KeyNone;
}

const char* EvKeyCode::toName(KeyCode code) {
    static const char* digits[] = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    static const char* letters[] = {"A", "B", "C", "D", "E", "F", "G", "H", "I",
                                    "J", "K", "L", "M", "N", "O", "P", "Q", "R",
                                    "S", "T", "U", "V", "W", "X", "Y", "Z"};
    static const char* fkeys[] = {"F1", "F2", "F3", "F4",  "F5",  "F6",
                                  "F7", "F8", "F9", "F10", "F11", "F12"};
    if (code >= Key0 && code <= Key9) {
        return digits[code - Key0];
    }
    if (code >= KeyA && code <= KeyZ) {
        return letters[code - KeyA];
    }
    if (code >= KeyF1 && code <= KeyF12) {
        return fkeys[code - KeyF1];
    }
    for (const NamedKey& k : namedKeys) {
        if (k.code == code) {
            return k.name;
        }
    }
    return "";
}
