// Message catalogues: any bytes read as a catalogue give the well-formed
// entries and one error per malformed line, naming the file and the line;
// what was read, written back, reads back the same.
#include "fuzzSupport.h"

#include <resmgt/msgCatalogue.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n') {
            out += "\\n";
        } else {
            out += c;
        }
    }
    return out;
}

bool isId(const std::string& id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    });
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::initProcess();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::filesystem::path file = fuzz::scratch() / "fuzz.msg";
    fuzz::writeFile(file, text);
    const MsgCatalogue catalogue = MsgCatalogue::load(file.string());
    FUZZ_CHECK(catalogue.isReadable(), "the catalogue was written just now");

    const int lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
    for (const MsgCatalogue::Error& e : catalogue.errors()) {
        FUZZ_CHECK(e.line >= 1 && e.line <= lines, "line " << e.line << " of " << lines);
        FUZZ_CHECK(!e.message.empty(), "an error says what is wrong");
        FUZZ_CHECK(e.text().rfind(file.string() + ":" + std::to_string(e.line) + ": ", 0) == 0,
                   e.text());
    }
    std::string written;
    for (const auto& [id, message] : catalogue.entries()) {
        FUZZ_CHECK(isId(id), "id \"" << id << "\"");
        FUZZ_CHECK(catalogue.find(id) == message, id);
        written += id + " \"" + escaped(message) + "\"\n";
    }
    const MsgCatalogue again = MsgCatalogue::parse(written, "written.msg");
    FUZZ_CHECK(again.errors().empty(), again.errors().front().text());
    FUZZ_CHECK(again.entries() == catalogue.entries(), "the entries read back differ");
    return 0;
}
