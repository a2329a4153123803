#include "colourCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <tesseraCore/colour/tsColour.h>

#include <tuple>

void ColourCommands::add(SessionInterpreter& interpreter) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();
    TsDisplayTransform& display = s.getDisplayTransform();

    in.addCommand("display", [&s, &display](SessionArgs& a) {
        const std::string name = a.word("display name");
        const std::string view = a.take("view") ? a.word("view name") : std::string();
        a.end();
        std::string error;
        if (!display.setDisplay(name, view, error)) {
            throw SessionArgs::Error(error);
        }
        s.displayChanged();
    });
    // One number for the transform; refused ones change nothing.
    using Setter = bool (TsDisplayTransform::*)(double, std::string&);
    for (const auto& [command, what, set] :
         {std::tuple<const char*, const char*, Setter>{"exposure", "exposure in stops",
                                                       &TsDisplayTransform::setExposure},
          {"gamma", "gamma", &TsDisplayTransform::setGamma}}) {
        in.addCommand(command, [&s, &display, what = what, set = set](SessionArgs& a) {
            const double value = a.number(what);
            a.end();
            std::string error;
            if (!(display.*set)(value, error)) {
                throw SessionArgs::Error(error);
            }
            s.displayChanged();
        });
    }
    in.addCommand("ocio", [&in, &s](SessionArgs& a) {
        const std::string file = a.word("colour configuration file");
        a.end();
        std::string error;
        if (!s.loadColourConfig(in.inputPath(file), error)) {
            throw SessionArgs::Error(error);
        }
    });

    SessionProbe& probe = interpreter.getProbe();
    probe.addQuery("colorspace", [&s](SessionArgs& a) {
        const std::string what = a.choice("colour space", {"plate", "background", "working"});
        if (what == "working") {
            return TsColour::getWorkingSpace();
        }
        const auto source =
            what == "plate" ? TsKeyerScene::Source::Plate : TsKeyerScene::Source::Background;
        const std::string& used = s.getScene().getFileColourSpace(source);
        return used.empty() ? std::string("none") : used;
    });
    probe.addQuery("display", [&display](SessionArgs&) {
        return display.getDisplay() + " view " + display.getView();
    });
    probe.addQuery("exposure",
                   [&display](SessionArgs&) { return SessionArgs::format(display.getExposure()); });
    probe.addQuery("gamma",
                   [&display](SessionArgs&) { return SessionArgs::format(display.getGamma()); });
}
