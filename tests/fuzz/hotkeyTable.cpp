// Hotkey tables: any bytes read as a table leave the host running with every
// line either read or reported with the file and its line; within a domain no
// two entries share a key; every binding reads back from its own text.
#include "fuzzSupport.h"

#include <ui/uiHotkeyRegistry.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>

namespace {

// Lines the table reader must either read or report: those with something
// other than blanks before any '#'.
int statementLines(const std::string& text) {
    std::istringstream in(text);
    std::string line;
    int count = 0;
    while (std::getline(in, line)) {
        std::size_t i = 0;
        while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i]))) {
            ++i;
        }
        if (i < line.size() && line[i] != '#') {
            ++count;
        }
    }
    return count;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::initProcess();
    UiHotkeyRegistry::getInstance(); // the default table, once
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::filesystem::path file = fuzz::scratch() / "fuzz.hotkeys";
    fuzz::writeFile(file, text);
    ExReporter::getInstance().clear();

    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const int read = registry.loadTable(file.string());
    FUZZ_CHECK(read >= 0, "the table was written just now");

    int skipped = 0;
    for (const ExReporter::Report& r : ExReporter::getInstance().getReports()) {
        FUZZ_CHECK(r.source.rfind(file.string() + ":", 0) == 0, r.text());
        if (r.message.find("line skipped") != std::string::npos) {
            ++skipped;
        }
    }
    FUZZ_CHECK(read + skipped == statementLines(text), read << " bindings read and " << skipped
                                                            << " lines skipped of "
                                                            << statementLines(text));

    std::map<std::pair<std::string, std::string>, unsigned> taken;
    for (unsigned e = 1; e <= static_cast<unsigned>(registry.getEntryCount()); ++e) {
        const UiHotkeyRegistry::Binding binding = registry.getBinding(e);
        if (!binding.isBound()) {
            continue;
        }
        std::string error;
        FUZZ_CHECK(UiHotkeyRegistry::Binding::parse(binding.toString(), error) == binding,
                   binding.toString() << " " << error);
        const auto [at, alone] =
            taken.emplace(std::make_pair(registry.getEntryDomain(e), binding.toString()), e);
        FUZZ_CHECK(alone, "\"" << registry.getEntryName(at->second) << "\" and \""
                               << registry.getEntryName(e) << "\" both take "
                               << binding.toString());
    }
    return 0;
}
