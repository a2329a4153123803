// Session scripts: any bytes read as a script and replayed line by line
// against a fresh host session, as tessera-run does, end every line either
// done or refused with a SessionError naming the script and that line; no
// other exception leaves the interpreter, and the host keeps running (a
// refused line does not stop the replay here, so that the lines after it are
// tried too).
//
// The harness keeps a replay small and inside its own directory: file names
// become plain names in the session's scratch directory, and plates, windows
// and step counts are capped.
#include "fuzzSupport.h"

#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

const char* const Source = "fuzz.tss";
constexpr std::size_t MaxLines = 64;

// A file name confined to the scratch directory: letters, digits, '.', '-'
// and '_', no leading dot, at most 32 characters.
std::string confined(const std::string& path) {
    std::string name = "f-";
    for (const char c : path) {
        if (name.size() >= 34) {
            break;
        }
        if (std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_') {
            name += c;
        }
    }
    return name;
}

// A number word above `limit` becomes `limit`.
void cap(std::string& word, double limit) {
    double value = 0.0;
    if (SessionArgs::parseNumber(word, value) && value > limit) {
        word = SessionArgs::format(limit);
    }
}

// Keeps one line inside the harness's bounds (see above).
void confine(SessionScript::Line& line) {
    std::vector<std::string>& w = line.words;
    const std::string command = w.front();
    const bool fileOfPlate = (command == "plate" || command == "background") && w.size() >= 2 &&
                             w[1] != "demo" && w[1] != "none";
    if (fileOfPlate || command == "save" || command == "load") {
        if (w.size() >= 2) {
            w[1] = confined(w[1]);
        }
    } else if (command == "write" && w.size() >= 3) {
        w[2] = confined(w[2]);
    }
    if (command == "plate" && w.size() >= 2 && w[1] == "demo") {
        if (w.size() == 2 || w[2] == "seed") {
            w.insert(w.begin() + 2, {"96", "64"});
            line.quoted.insert(line.quoted.begin() + 2, {false, false});
        }
        for (std::size_t i = 2; i < w.size() && i < 4; ++i) {
            cap(w[i], 256);
        }
    }
    if (command == "window") {
        for (std::size_t i = 1; i < w.size(); ++i) {
            cap(w[i], 512);
        }
    }
    for (std::size_t i = 1; i + 1 < w.size(); ++i) {
        if (w[i] == "steps") {
            cap(w[i + 1], 100);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::startHost();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    SessionScript script;
    try {
        script = SessionScript::parse(text, Source);
    } catch (const SessionError& e) {
        FUZZ_CHECK(e.getSource() == Source && e.getLine() >= 1 && !e.getMessage().empty(),
                   e.what());
        return 0;
    }

    const std::filesystem::path dir = fuzz::scratch() / "session";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    ExReporter::getInstance().clear();
    {
        HostSession session(nullptr, 160, 90, nullptr);
        OutputWriter writer(session);
        SessionInterpreter::Options options;
        options.inputDir = dir.string();
        options.outputDir = dir.string();
        std::ostringstream printed;
        options.out = &printed;
        SessionInterpreter interpreter(session, options);
        ImageCommands::add(interpreter, writer);
        WidgetCommands::add(interpreter);

        std::size_t done = 0;
        for (SessionScript::Line line : script.getLines()) {
            if (done++ == MaxLines) {
                break;
            }
            confine(line);
            if (fuzz::tracing()) {
                std::cerr << line.number << ": " << line.text << "\n";
            }
            try {
                interpreter.execute(line, Source);
            } catch (const SessionError& e) {
                if (fuzz::tracing()) {
                    std::cerr << "  refused: " << e.getMessage() << "\n";
                }
                FUZZ_CHECK(e.getSource() == Source && e.getLine() == line.number &&
                               !e.getMessage().empty(),
                           "line " << line.number << ": " << e.what());
            }
        }
    }
    HostSession::settle();
    return 0;
}
