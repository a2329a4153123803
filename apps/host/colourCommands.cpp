#include "colourCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <tesseraCore/colour/tsColour.h>

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
    in.addCommand("exposure", [&s, &display](SessionArgs& a) {
        const double stops = a.number("exposure in stops");
        a.end();
        std::string error;
        if (!display.setExposure(stops, error)) {
            throw SessionArgs::Error(error);
        }
        s.displayChanged();
    });
    in.addCommand("gamma", [&s, &display](SessionArgs& a) {
        const double gamma = a.number("gamma");
        a.end();
        std::string error;
        if (!display.setGamma(gamma, error)) {
            throw SessionArgs::Error(error);
        }
        s.displayChanged();
    });
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
