#include "viewerAidCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"
#include "viewerDriver.h"

#include <ui/uiViewer.h>

#include <QImage>
#include <QPixmap>

#include <cmath>

namespace {

// The window pixel of a plate point, which must lie in the viewer.
QPoint windowPixel(const UiViewer& viewer, const GePoint2<double>& plate) {
    const GePoint2<float> w = ViewerDriver::plateToWindow(viewer.getView(), plate);
    const QPoint p(static_cast<int>(std::floor(w.x)), static_cast<int>(std::floor(w.y)));
    if (!viewer.rect().contains(p)) {
        throw SessionArgs::Error("plate point " + SessionArgs::format(plate.x) + " " +
                                 SessionArgs::format(plate.y) + " is outside the viewer's window");
    }
    return p;
}

} // namespace

void ViewerAidCommands::add(SessionInterpreter& interpreter) {
    UiViewer& viewer = interpreter.getSession().getViewer();

    interpreter.addCommand("wipe", [&viewer](SessionArgs& a) {
        if (a.choice("wipe", {"on", "off"}) == "off") {
            a.end();
            viewer.setWipe(false, viewer.getWipe().getX(), viewer.getWipe().getView());
            return;
        }
        double x = viewer.getWipeStart();
        if (!a.atEnd() && a.peek() != "with") {
            x = a.number("plate x of the wipe's line");
        }
        std::string view = viewer.getWipe().getView();
        if (a.take("with")) {
            view = a.word("view to compare");
        }
        a.end();
        if (!viewer.setWipe(true, static_cast<float>(x), view)) {
            throw SessionArgs::Error("the viewer's node has no view \"" + view + "\" to compare");
        }
    });
    interpreter.addCommand("channel", [&viewer](SessionArgs& a) {
        UiViewerDisplay::Channel channel = UiViewerDisplay::Channel::Rgb;
        UiViewerDisplay::parseChannel(a.choice("channel", UiViewerDisplay::getChannelNames()),
                                      channel);
        a.end();
        viewer.setChannel(channel);
    });
    interpreter.addCommand("backdrop", [&viewer](SessionArgs& a) {
        const std::string kind = a.choice("backdrop", {"none", "checker", "colour"});
        if (kind != "colour") {
            a.end();
            viewer.setBackdrop(kind == "none" ? UiViewerDisplay::Backdrop::None
                                              : UiViewerDisplay::Backdrop::Checker);
            return;
        }
        float rgb[3];
        for (float& c : rgb) {
            const double v = a.number("backdrop colour (three numbers from 0 to 1)");
            if (v < 0.0 || v > 1.0) {
                throw SessionArgs::Error("a backdrop colour's components are 0 to 1");
            }
            c = static_cast<float>(v);
        }
        a.end();
        viewer.setBackdrop(UiViewerDisplay::Backdrop::Colour, {rgb[0], rgb[1], rgb[2], 1.0f});
    });

    SessionProbe& probe = interpreter.getProbe();
    probe.addQuery("wipe", [&viewer](SessionArgs&) {
        const UiViewerWipe& wipe = viewer.getWipe();
        return wipe.isOn() ? "on " + SessionArgs::format(wipe.getX()) + " with " + wipe.getView()
                           : std::string("off");
    });
    probe.addQuery("channel", [&viewer](SessionArgs&) {
        return UiViewerDisplay::getChannelName(viewer.getDisplay().getChannel());
    });
    probe.addQuery("backdrop",
                   [&viewer](SessionArgs&) { return viewer.getDisplay().describeBackdrop(); });
    probe.addQuery("readout", [&viewer](SessionArgs& a) {
        const GePoint2<double> p = a.point("plate point");
        const GePoint2<float> w = ViewerDriver::plateToWindow(viewer.getView(), p);
        return SessionProbe::orNone(viewer.readPixel(w).format());
    });
    probe.addQuery("screen", [&viewer](SessionArgs& a) {
        const QPoint p = windowPixel(viewer, a.point("plate point"));
        const QImage shot = viewer.grab(QRect(p, QSize(1, 1))).toImage();
        const QColor c = shot.pixelColor(0, 0);
        return std::to_string(c.red()) + " " + std::to_string(c.green()) + " " +
               std::to_string(c.blue());
    });
}
