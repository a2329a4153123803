// Panel descriptions: any bytes put in place of one of the keyer's panel
// descriptions leave the host running. The keyer's panels are built from it
// in both generations, each widget of the panels is used once as a user
// would, and afterwards the keyer still takes an edit and its undo with no
// step left open.
//
// An input is the description's file name on its first line (one of the six
// the keyer has), then the file's contents; an input that does not start with
// one of the names replaces the main panel's description.
#include "fuzzSupport.h"

#include "host/hostSession.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"

#include <pluginAPI/piWidget.h>
#include <resmgt/liResourcePath.h>
#include <tesseraCore/setup/tsValueText.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

const std::array<std::string, 6> Descriptions = {
    "tsMainPanel.ui",    "tsMainPanelGeneration2.ui", "tsMatteGenPanel.ui",
    "tsDegrainPanel.ui", "tsSpillBlendPanel.ui",      "tsOtherPanel.ui"};

std::filesystem::path resources() {
    return fuzz::scratch() / "resources";
}

// The keyer's own resources, copied where the input's description replaces
// one of them; the host finds them there first.
void copyResources() {
    const std::string main = LiResourcePath::find("tsMainPanel.ui");
    if (main.empty()) {
        fuzz::fail("the keyer's panel descriptions are not found", __FILE__, __LINE__);
    }
    const std::filesystem::path from = std::filesystem::path(main).parent_path();
    std::filesystem::create_directories(resources());
    for (const char* name : {"tessera.msg", "tessera.hotkeys"}) {
        std::filesystem::copy_file(from / name, resources() / name,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    for (const std::string& name : Descriptions) {
        std::filesystem::copy_file(from / name, resources() / (name + ".original"),
                                   std::filesystem::copy_options::overwrite_existing);
    }
    ::setenv("TESSERA_RESOURCE_PATH", resources().c_str(), 1);
}

// The one action a user would try on a widget of this kind.
std::string actionFor(const std::string& kind) {
    if (kind == "toggle") {
        return "toggle";
    }
    if (kind == "button") {
        return "press";
    }
    if (kind == "menu") {
        return "select 0";
    }
    if (kind == "number field") {
        return "set 0.5";
    }
    if (kind == "trackball") {
        return "drag 3 -2 steps 2";
    }
    if (kind == "label") {
        return "resize 40";
    }
    return "";
}

// Uses every named widget of every panel of the session once.
void useWidgets(SessionInterpreter& interpreter) {
    for (const std::string& panel : HostSession::getPanelNames()) {
        for (const RCShdPtr<PiWidget>& widget :
             WidgetCommands::widgetsOf(interpreter.getSession(), panel)) {
            const std::string action = actionFor(WidgetCommands::kindOf(*widget));
            if (action.empty()) {
                continue;
            }
            const std::string line =
                "widget " + panel + " " + TsValueText::quoteWord(widget->getName()) + " " + action;
            if (fuzz::tracing()) {
                std::cerr << line << "\n";
            }
            try {
                interpreter.execute(line, "panel");
            } catch (const SessionError& e) {
                if (fuzz::tracing()) {
                    std::cerr << "  refused: " << e.getMessage() << "\n";
                }
            }
        }
    }
}

// The keyer still edits and undoes, and nothing is left open.
void checkKeyerWorks(HostSession& session, SessionInterpreter& interpreter) {
    PiCommandStack& stack = session.getCommandStack();
    FUZZ_CHECK(!stack.isStepOpen(), "step \"" << stack.getOpenStepName() << "\" left open");
    const int done = stack.getUndoCount();
    interpreter.execute("set overall 0.125", "check");
    FUZZ_CHECK(stack.getUndoCount() == done + 1, "the edit is a step");
    interpreter.execute("undo", "check");
    FUZZ_CHECK(stack.getUndoCount() == done, "the edit is undone");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::startHost();
    copyResources();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string name = Descriptions[0];
    std::string contents = input;
    const std::size_t eol = input.find('\n');
    for (const std::string& candidate : Descriptions) {
        if (eol != std::string::npos && input.compare(0, eol, candidate) == 0) {
            name = candidate;
            contents = input.substr(eol + 1);
        }
    }
    for (const std::string& description : Descriptions) {
        const std::filesystem::path original = resources() / (description + ".original");
        fuzz::writeFile(resources() / description,
                        description == name ? contents : fuzz::readFile(original));
    }

    ExReporter::getInstance().clear();
    {
        HostSession session(nullptr, 160, 90, nullptr);
        std::ostringstream printed;
        SessionInterpreter::Options options;
        options.out = &printed;
        SessionInterpreter interpreter(session, options);
        WidgetCommands::add(interpreter);
        for (const int generation : {1, 2}) {
            if (generation == 2) {
                interpreter.execute("keyer variant 2 nodes 2", "panel");
            }
            useWidgets(interpreter);
            checkKeyerWorks(session, interpreter);
        }
    }
    HostSession::settle();
    return 0;
}
