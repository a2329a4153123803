#include "viewerCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"
#include "viewerDriver.h"

#include <gfx/mfCurrentToolEventHandler.h>
#include <ui/uiViewer.h>

#include <algorithm>

void ViewerCommands::add(SessionInterpreter& interpreter) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();

    in.addCommand("keyer", [&s](SessionArgs& a) {
        int generation = 1;
        int nodes = 1;
        while (!a.atEnd()) {
            const std::string w = a.choice("keyer option", {"variant", "nodes"});
            if (w == "variant") {
                generation = std::stoi(a.choice("keyer variant", {"1", "2"}));
            } else {
                nodes = a.integer("number of keyer nodes");
                if (nodes < 1 || nodes > 64) {
                    throw SessionArgs::Error("a keyer holds 1 to 64 keyer nodes, not " +
                                             std::to_string(nodes));
                }
            }
        }
        s.makeKeyer(generation, nodes);
    });
    in.addCommand("viewer", [&s](SessionArgs& a) {
        const std::vector<std::string> stages = s.getViewer().getStages();
        const std::string stage = a.word("viewer stage");
        a.end();
        if (std::find(stages.begin(), stages.end(), stage) == stages.end()) {
            std::string list;
            for (const std::string& st : stages) {
                list += (list.empty() ? "" : ", ") + st;
            }
            throw SessionArgs::Error("the viewer's node has no stage \"" + stage +
                                     "\" (its stages: " + (list.empty() ? "none" : list) + ")");
        }
        if (!s.getViewer().setStage(stage)) {
            throw SessionArgs::Error("the viewer could not show stage \"" + stage +
                                     "\" (see the report before)");
        }
    });
    in.addCommand("window", [&s](SessionArgs& a) {
        const int width = a.integer("window width");
        const int height = a.integer("window height");
        a.end();
        if (width < 64 || height < 64 || width > 16384 || height > 16384) {
            throw SessionArgs::Error("a viewer window is 64 to 16384 pixels each way");
        }
        s.getViewer().resize(width, height);
        s.getViewer().fitImage();
    });
    in.addCommand("zoom", [&s](SessionArgs& a) {
        const double zoom = a.number("zoom");
        a.end();
        if (!(zoom >= 1.0 / 1024 && zoom <= 1024)) {
            throw SessionArgs::Error("a zoom is 1/1024 to 1024");
        }
        UiViewer& viewer = s.getViewer();
        VwView& view = viewer.getMutableView();
        view.setViewportSize(viewer.width(), viewer.height());
        const GePoint2<double> centre =
            ViewerDriver::centreOf(view, viewer.width(), viewer.height());
        view.setZoom(static_cast<float>(zoom));
        view.setPan(ViewerDriver::panFor(view, viewer.width(), viewer.height(), centre));
        viewer.redraw();
    });
    in.addCommand("pan", [&s](SessionArgs& a) {
        const GePoint2<double> p = a.point("plate point");
        a.end();
        UiViewer& viewer = s.getViewer();
        VwView& view = viewer.getMutableView();
        view.setViewportSize(viewer.width(), viewer.height());
        view.setPan(ViewerDriver::panFor(view, viewer.width(), viewer.height(), p));
        viewer.redraw();
    });
    in.addCommand("fit", [&s](SessionArgs& a) {
        a.end();
        s.getViewer().fitImage();
    });
    in.addCommand("tool", [&s](SessionArgs& a) {
        const std::string name = a.word("tool name");
        a.end();
        if (!s.setTool(name)) {
            throw SessionArgs::Error("no stage of the viewer's node has a tool \"" + name + "\"");
        }
    });
    in.addCommand("frame", [&s](SessionArgs& a) {
        const double frame = a.number("frame");
        a.end();
        s.setFrame(frame);
    });

    SessionProbe& probe = interpreter.getProbe();
    UiViewer& viewer = s.getViewer();
    probe.addQuery("tool", [&s](SessionArgs&) { return SessionProbe::orNone(s.getTool()); });
    probe.addQuery("tools", [&viewer](SessionArgs&) {
        auto* handler =
            dynamic_cast<MfCurrentToolEventHandler*>(viewer.getCurrentEventHandler().get());
        return SessionProbe::list(handler ? handler->getToolset()->getToolNames()
                                          : std::vector<std::string>());
    });
    probe.addQuery("stage",
                   [&viewer](SessionArgs&) { return SessionProbe::orNone(viewer.getStage()); });
    probe.addQuery("stages",
                   [&viewer](SessionArgs&) { return SessionProbe::list(viewer.getStages()); });
    probe.addQuery("zoom", [&viewer](SessionArgs&) {
        return SessionArgs::format(viewer.getView().getZoom());
    });
    probe.addQuery("centre", [&viewer](SessionArgs&) {
        const GePoint2<double> centre =
            ViewerDriver::centreOf(viewer.getView(), viewer.width(), viewer.height());
        return SessionArgs::format(centre.x) + " " + SessionArgs::format(centre.y);
    });
    probe.addQuery("window", [&viewer](SessionArgs&) {
        return std::to_string(viewer.width()) + " " + std::to_string(viewer.height());
    });
    probe.addQuery("frame", [&s](SessionArgs&) { return SessionArgs::format(s.getFrame()); });
}
