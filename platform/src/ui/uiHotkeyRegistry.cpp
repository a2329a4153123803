#include <ui/uiHotkeyRegistry.h>

#include <base/exReporter.h>
#include <base/fsInputFile.h>
#include <base/znLimits.h>
#include <resmgt/liResourcePath.h>

#include <cctype>
#include <sstream>

const LiString UiHotkeyRegistry::TesseraDomain = "Tessera";
const LiString UiHotkeyRegistry::DefaultTable = "tessera.hotkeys";

namespace {

struct ModifierName {
    const char* name;
    unsigned mask;
};

constexpr ModifierName modifierNames[] = {
    {"Shift", EvKeyboardState::ShiftMask},  {"Ctrl", EvKeyboardState::CtrlMask},
    {"Control", EvKeyboardState::CtrlMask}, {"Alt", EvKeyboardState::AltMask},
    {"Meta", EvKeyboardState::MetaMask},
};

bool sameWord(const std::string& a, const char* b) {
    std::size_t i = 0;
    for (; i < a.size() && b[i]; ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return i == a.size() && !b[i];
}

} // namespace

std::string UiHotkeyRegistry::Binding::toString() const {
    if (!isBound()) {
        return {};
    }
    std::string out;
    for (const char* name : {"Ctrl", "Alt", "Meta", "Shift"}) {
        for (const ModifierName& m : modifierNames) {
            if (std::string(m.name) == name && (modifiers & m.mask)) {
                out += std::string(name) + "+";
            }
        }
    }
    return out + EvKeyCode::toName(key);
}

UiHotkeyRegistry::Binding UiHotkeyRegistry::Binding::parse(const std::string& text,
                                                           std::string& error) {
    Binding binding;
    error.clear();
    std::vector<std::string> parts;
    std::size_t start = 0;
    // "+" alone is not a key name the host has, so '+' always separates.
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '+') {
            parts.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        bool known = false;
        for (const ModifierName& m : modifierNames) {
            if (sameWord(parts[i], m.name)) {
                binding.modifiers |= m.mask;
                known = true;
            }
        }
        if (!known) {
            error = "\"" + parts[i] + "\" is not a modifier (Shift, Ctrl, Alt, Meta)";
            return Binding();
        }
    }
    const std::string& keyName = parts.back();
    binding.key = EvKeyCode::fromName(keyName.c_str());
    if (!binding.isBound()) {
        error = keyName.empty() ? "no key given" : "\"" + keyName + "\" is not a key name";
        binding.modifiers = 0;
    }
    return binding;
}

UiHotkeyRegistry& UiHotkeyRegistry::getInstance() {
    static UiHotkeyRegistry instance;
    return instance;
}

UiHotkeyRegistry::UiHotkeyRegistry() {
    const LiString path = LiResourcePath::find(DefaultTable);
    if (path.empty()) {
        ExReporter::getInstance().report(DefaultTable,
                                         "hotkey table not found; hotkeys have no keys");
        return;
    }
    loadTable(path);
}

const UiHotkeyRegistry::Entry* UiHotkeyRegistry::find(unsigned entry) const {
    return entry >= 1 && entry <= _entries.size() ? &_entries[entry - 1] : nullptr;
}

unsigned UiHotkeyRegistry::getEntry(const LiString& domain, const LiString& name) {
    if (const unsigned id = findEntry(domain, name)) {
        return id;
    }
    _entries.push_back({domain, name, Binding(), std::make_unique<CbDispatcher<EvEvent>>()});
    return static_cast<unsigned>(_entries.size());
}

unsigned UiHotkeyRegistry::findEntry(const LiString& domain, const LiString& name) const {
    for (std::size_t i = 0; i < _entries.size(); ++i) {
        if (_entries[i].domain == domain && _entries[i].name == name) {
            return static_cast<unsigned>(i + 1);
        }
    }
    return 0;
}

LiString UiHotkeyRegistry::getEntryName(unsigned entry) const {
    const Entry* e = find(entry);
    return e ? e->name : LiString();
}

LiString UiHotkeyRegistry::getEntryDomain(unsigned entry) const {
    const Entry* e = find(entry);
    return e ? e->domain : LiString();
}

void UiHotkeyRegistry::addHotkeyHandler(unsigned entry, CbHandler<EvEvent>* handler) {
    const Entry* e = find(entry);
    if (!e) {
        ExReporter::getInstance().report("hotkeys", "no hotkey entry " + std::to_string(entry) +
                                                        "; handler not added");
        return;
    }
    e->handlers->addHandler(handler);
}

void UiHotkeyRegistry::removeHotkeyHandler(unsigned entry, CbHandler<EvEvent>* handler) {
    if (const Entry* e = find(entry)) {
        e->handlers->removeHandler(handler);
    }
}

bool UiHotkeyRegistry::isRegistered(unsigned entry, const CbHandler<EvEvent>* handler) const {
    const Entry* e = find(entry);
    return e && e->handlers->holds(handler);
}

void UiHotkeyRegistry::setBinding(unsigned entry, const Binding& binding) {
    if (find(entry)) {
        _entries[entry - 1].binding = binding;
    }
}

UiHotkeyRegistry::Binding UiHotkeyRegistry::getBinding(unsigned entry) const {
    const Entry* e = find(entry);
    return e ? e->binding : Binding();
}

unsigned UiHotkeyRegistry::findEntryFor(EvKeyCode::KeyCode key, unsigned modifiers,
                                        const CbHandler<EvEvent>* handler) const {
    const Binding pressed{key, modifiers};
    for (std::size_t i = 0; i < _entries.size(); ++i) {
        const Entry& e = _entries[i];
        if (e.binding.isBound() && e.binding == pressed && e.handlers->holds(handler)) {
            return static_cast<unsigned>(i + 1);
        }
    }
    return 0;
}

bool UiHotkeyRegistry::deliverHotkey(const EvKeyEvent& keyEvent, CbHandler<EvEvent>& handler) {
    const unsigned entry = findEntryFor(keyEvent.getKeyCode(),
                                        keyEvent.getKeyboardState().getModifierMask(), &handler);
    if (!entry) {
        return false;
    }
    EvHotkeyEvent hotkey(keyEvent.getCoord(), keyEvent.getKeyboardState(), entry);
    if (keyEvent.hasGlobalCoord()) {
        hotkey.setGlobalCoord(keyEvent.getGlobalCoord());
    }
    exContain("hotkey \"" + getEntryName(entry) + "\"", [&] { handler.callback(hotkey); });
    return hotkey.isProcessed();
}

int UiHotkeyRegistry::loadTable(const LiString& path) {
    std::string text;
    std::string reason;
    if (!FsInputFile::read(path, ZnLimits::ResourceBytes, "a hotkey table", text, reason)) {
        ExReporter::getInstance().report(path, "cannot read the hotkey table: " + reason);
        return -1;
    }
    std::istringstream in(text);
    ExReporter& reporter = ExReporter::getInstance();
    int count = 0;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string where = path + ":" + std::to_string(number);
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        std::size_t i = 0;
        auto skipBlanks = [&] {
            while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i]))) {
                ++i;
            }
        };
        skipBlanks();
        if (i == line.size() || line[i] == '#') {
            continue;
        }
        const std::size_t domainStart = i;
        while (i < line.size() && !std::isspace(static_cast<unsigned char>(line[i])) &&
               line[i] != '"') {
            ++i;
        }
        const std::string domain = line.substr(domainStart, i - domainStart);
        skipBlanks();
        if (domain.empty() || i == line.size() || line[i] != '"') {
            reporter.report(where, "expected a domain and a quoted entry name; line skipped");
            continue;
        }
        const std::size_t close = line.find('"', i + 1);
        if (close == std::string::npos) {
            reporter.report(where, "the entry name has no closing quote; line skipped");
            continue;
        }
        const std::string name = line.substr(i + 1, close - i - 1);
        if (name.empty()) {
            reporter.report(where, "empty entry name; line skipped");
            continue;
        }
        i = close + 1;
        skipBlanks();
        const std::size_t keyStart = i;
        while (i < line.size() && !std::isspace(static_cast<unsigned char>(line[i]))) {
            ++i;
        }
        const std::string keyText = line.substr(keyStart, i - keyStart);
        skipBlanks();
        if (i < line.size() && line[i] != '#') {
            reporter.report(where, "unexpected text after the key: \"" + line.substr(i) +
                                       "\"; line skipped");
            continue;
        }
        std::string error;
        const Binding binding = Binding::parse(keyText, error);
        if (!binding.isBound()) {
            reporter.report(where, error + "; line skipped");
            continue;
        }
        for (std::size_t e = 0; e < _entries.size(); ++e) {
            const Entry& other = _entries[e];
            if (other.binding == binding && other.domain == domain && other.name != name) {
                reporter.report(where, "\"" + name + "\" takes " + binding.toString() +
                                           ", which \"" + other.name + "\" had");
                _entries[e].binding = Binding();
            }
        }
        setBinding(getEntry(domain, name), binding);
        ++count;
    }
    return count;
}
