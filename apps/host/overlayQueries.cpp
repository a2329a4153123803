#include "overlayQueries.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"
#include "sessionScript.h"
#include "viewerDriver.h"

#include <base/exReporter.h>
#include <base/typeName.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piEventHandler.h>
#include <tesseraCore/setup/tsValueText.h>
#include <ui/uiApplication.h>
#include <ui/uiViewer.h>

#include <algorithm>

namespace {

MfCurrentToolEventHandler* toolHandler(const UiViewer& viewer) {
    return dynamic_cast<MfCurrentToolEventHandler*>(viewer.getCurrentEventHandler().get());
}

bool sameItem(const WsRecordingPainter::Item& a, const WsRecordingPainter::Item& b) {
    return a.kind == b.kind && a.x0 == b.x0 && a.y0 == b.y0 && a.x1 == b.x1 && a.y1 == b.y1 &&
           a.text == b.text;
}

// What a tool shows: a manipulator whose state shows it is drawn only when
// the tool draws it (a tool may keep its manipulators and not draw them).
class ToolDrawing {
public:
    ToolDrawing(const MfTool& tool, const VwView& view)
        : _view(view) {
        _view.setPainter(&_drawn);
        tool.draw(_view);
        _view.setPainter(nullptr);
    }

    // Drawn: what the manipulator draws (alone, without its children when
    // it has any) is in the tool's drawing. A manipulator that draws nothing
    // counts as drawn when the tool draws anything.
    bool isDrawn(const MfManipulator& m) {
        if (!m.isShown()) {
            return false;
        }
        WsRecordingPainter own;
        _view.setPainter(&own);
        m.draw(_view);
        _view.setPainter(nullptr);
        if (own.isEmpty()) {
            return !_drawn.isEmpty();
        }
        const auto& mine = own.getItems();
        const auto& all = _drawn.getItems();
        return std::search(all.begin(), all.end(), mine.begin(), mine.end(), sameItem) != all.end();
    }

    const VwView& getView() const { return _view; }

private:
    VwView _view;
    WsRecordingPainter _drawn;
};

GePoint2<float> centreOf(const MfManipulator& m, const VwView& view) {
    GePoint2<float> origin{0.0f, 0.0f};
    if (const auto* bar = dynamic_cast<const MfRangeManipulator*>(&m)) {
        const GeRectangle<float>& r = bar->getRectangle();
        origin = {(r.getXMin() + r.getXMax()) / 2, (r.getYMin() + r.getYMax()) / 2};
    }
    return m.getLocalToWindow(view).transformPoint(origin);
}

void listManipulators(const MfManipulator& m, ToolDrawing& drawing, int depth,
                      std::vector<std::string>& lines) {
    const auto* bar = dynamic_cast<const MfRangeManipulator*>(&m);
    const std::string name = bar ? bar->getName() : dynamicTypeNameOf(m);
    const GePoint2<double> plate =
        ViewerDriver::windowToPlate(drawing.getView(), centreOf(m, drawing.getView()));
    lines.push_back(std::string(2 * depth, ' ') + TsValueText::quoteWord(name) + " state " +
                    std::to_string(m.getState()) + " at " + SessionArgs::format(plate.x) + " " +
                    SessionArgs::format(plate.y) + (drawing.isDrawn(m) ? "" : " (not shown)"));
    for (int i = 0; i < m.getChildCount(); ++i) {
        listManipulators(*m.getChild(i), drawing, depth + 1, lines);
    }
}

// The bars a tool shows, with their window heights.
using ShownBars = std::vector<std::pair<float, const MfRangeManipulator*>>;

void collectBars(const MfManipulator& m, ToolDrawing& drawing, ShownBars& bars) {
    if (!m.isShown()) {
        return;
    }
    if (const auto* bar = dynamic_cast<const MfRangeManipulator*>(&m)) {
        if (drawing.isDrawn(m)) {
            bars.emplace_back(centreOf(m, drawing.getView()).y, bar);
        }
    }
    for (int i = 0; i < m.getChildCount(); ++i) {
        collectBars(*m.getChild(i), drawing, bars);
    }
}

std::vector<std::string> manipulators(const UiViewer& viewer) {
    std::vector<std::string> lines;
    MfCurrentToolEventHandler* handler = toolHandler(viewer);
    const RCShdPtr<MfTool> tool = handler ? handler->getCurrentMfTool() : RCShdPtr<MfTool>();
    if (!tool) {
        return lines;
    }
    exContain("probe: manipulators", [&] {
        ToolDrawing drawing(*tool, viewer.getView());
        for (const auto& m : *tool) {
            listManipulators(*m, drawing, 0, lines);
        }
    });
    return lines;
}

// The bars shown, from the top of the window down: each name, and where its
// handle stands along it (0 at its left end, 1 at its right end).
std::vector<std::pair<std::string, float>> shownBars(const UiViewer& viewer) {
    ShownBars found;
    MfCurrentToolEventHandler* handler = toolHandler(viewer);
    const RCShdPtr<MfTool> tool = handler ? handler->getCurrentMfTool() : RCShdPtr<MfTool>();
    if (tool) {
        exContain("probe: bars", [&] {
            ToolDrawing drawing(*tool, viewer.getView());
            for (const auto& m : *tool) {
                collectBars(*m, drawing, found);
            }
        });
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::pair<std::string, float>> bars;
    for (const auto& [y, bar] : found) {
        const GeRectangle<float>& r = bar->getRectangle();
        bars.emplace_back(bar->getName(),
                          (bar->getValue() - r.getXMin()) / (r.getXMax() - r.getXMin()));
    }
    return bars;
}

std::string bars(const UiViewer& viewer) {
    std::vector<std::string> names;
    for (const auto& [name, handle] : shownBars(viewer)) {
        names.push_back(name);
    }
    return SessionProbe::list(names);
}

std::vector<std::string> drawing(UiViewer& viewer) {
    std::vector<std::string> lines;
    const VwView& view = viewer.getView();
    auto plate = [&view](float x, float y) {
        const GePoint2<double> p = ViewerDriver::windowToPlate(view, {x, y});
        return SessionArgs::format(p.x) + " " + SessionArgs::format(p.y);
    };
    for (const auto& item : viewer.getDisplayList().getItems()) {
        switch (item.kind) {
        case WsRecordingPainter::Item::Line:
            lines.push_back("line " + plate(item.x0, item.y0) + " to " + plate(item.x1, item.y1));
            break;
        case WsRecordingPainter::Item::Rect:
            lines.push_back("rect " + plate(item.x0, item.y1) + " to " + plate(item.x1, item.y0));
            break;
        case WsRecordingPainter::Item::FilledRect:
            lines.push_back("fill " + plate(item.x0, item.y1) + " to " + plate(item.x1, item.y0));
            break;
        case WsRecordingPainter::Item::Text:
            lines.push_back("text " + TsValueText::quoteWord(item.text) + " at " +
                            plate(item.x0, item.y0));
            break;
        }
    }
    return lines;
}

} // namespace

void OverlayQueries::add(SessionInterpreter& interpreter) {
    SessionProbe& probe = interpreter.getProbe();
    UiViewer& viewer = interpreter.getSession().getViewer();
    probe.addQuery("cursor", [&viewer](SessionArgs&) {
        // An override cursor (a pick from a panel) shows over every window.
        RCShdPtr<WsCursor> cursor = UiApplication::getInstance().getOverrideCursor();
        if (const RCShdPtr<PiEventHandler> handler = viewer.getCurrentEventHandler();
            handler && !cursor) {
            exContain("probe: cursor", [&] { cursor = MfEventHandlerUtil::getCursor(*handler); });
        }
        return cursor ? cursor->getName() : WsCursorRegistry::Default;
    });
    probe.addQuery(
        "manipulators",
        [&viewer](SessionArgs&) { return std::to_string(manipulators(viewer).size()); },
        [&viewer](SessionArgs&) { return manipulators(viewer); });
    probe.addQuery("bars", [&viewer](SessionArgs&) { return bars(viewer); });
    probe.addQuery("bar", [&viewer](SessionArgs& args) {
        const std::string name = args.word("bar name");
        for (const auto& [bar, handle] : shownBars(viewer)) {
            if (bar == name) {
                return SessionArgs::format(handle);
            }
        }
        throw SessionArgs::Error("no bar " + TsValueText::quoteWord(name) + " is shown");
    });
    probe.addQuery(
        "draw",
        [&viewer](SessionArgs& args) {
            if (args.take("texts")) {
                std::vector<std::string> texts;
                for (const auto& item : viewer.getDisplayList().getItems()) {
                    if (item.kind == WsRecordingPainter::Item::Text) {
                        texts.push_back(item.text);
                    }
                }
                return SessionProbe::list(texts);
            }
            return std::to_string(viewer.getDisplayList().getItems().size());
        },
        [&viewer](SessionArgs&) { return drawing(viewer); });
}
