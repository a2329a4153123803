#include "sessionProbe.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionScript.h"
#include "viewerDriver.h"

#include <base/exReporter.h>
#include <base/typeName.h>
#include <base/vwUtils.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/wsCursorRegistry.h>
#include <internalAPI/snSelection.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piPath.h>
#include <ui/uiApplication.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiViewer.h>

#include <algorithm>

namespace {

std::string join(const std::vector<std::string>& items, const char* none = "none") {
    if (items.empty()) {
        return none;
    }
    std::string out;
    for (const std::string& item : items) {
        out += (out.empty() ? "" : ", ") + item;
    }
    return out;
}

std::string orNone(const std::string& text) {
    return text.empty() ? "none" : text;
}

MfCurrentToolEventHandler* toolHandler(const UiViewer& viewer) {
    return dynamic_cast<MfCurrentToolEventHandler*>(viewer.getCurrentEventHandler().get());
}

} // namespace

SessionProbe::SessionProbe(HostSession& session)
    : _session(session) {
    UiViewer& viewer = _session.getViewer();
    addQuery("tool", [this](SessionArgs&) { return orNone(_session.getTool()); });
    addQuery("tools", [&viewer](SessionArgs&) {
        MfCurrentToolEventHandler* handler = toolHandler(viewer);
        return join(handler ? handler->getToolset()->getToolNames() : std::vector<std::string>());
    });
    addQuery("stage", [&viewer](SessionArgs&) { return orNone(viewer.getStage()); });
    addQuery("stages", [&viewer](SessionArgs&) { return join(viewer.getStages()); });
    addQuery("node", [this](SessionArgs&) {
        return _session.getShownNode() ? _session.getShownNode()->getName() : "none";
    });
    addQuery("nodes", [this](SessionArgs&) {
        std::vector<std::string> names;
        for (const auto& node : _session.getKeyer()->getNodes()) {
            if (!dynamic_cast<const PiBoundaryNode*>(node.get())) {
                names.push_back(node->getName());
            }
        }
        return join(names);
    });
    addQuery("selection", [](SessionArgs&) {
        std::vector<std::string> names;
        for (const auto& item : SnSelection::getCurrent()->getItems()) {
            names.push_back(item->describe());
        }
        return join(names);
    });
    addQuery("selected", [this](SessionArgs&) {
        const RCShdPtr<PiNode> node = _session.getKeyer()->getSelectedNode();
        return node ? node->getName() : "none";
    });
    addQuery("slot", [this](SessionArgs& args) {
        const int slot = args.integer("slot number (1 to 6)");
        if (slot < 1 || slot > TsGroupInterface::SlotCount) {
            throw SessionArgs::Error("there is no slot " + std::to_string(slot) +
                                     " (slots are 1 to 6)");
        }
        return orNone(_session.getKeyer()->getSlotName(slot - 1));
    });
    addQuery("input", [this](SessionArgs& args) {
        const RCShdPtr<PiInput> input = inputArg(args);
        return format(input->getValue(frameArg(args)));
    });
    addQuery("keys", [this](SessionArgs& args) {
        std::vector<std::string> times;
        for (const PiAnimKey& key : inputArg(args)->getKeys()) {
            times.push_back(SessionArgs::format(key.time));
        }
        return join(times);
    });
    addQuery("locked", [this](SessionArgs& args) {
        return std::string(inputArg(args)->isLocked() ? "true" : "false");
    });
    addQuery(
        "inputs", [this](SessionArgs& args) { return std::to_string(inputs(args).size()); },
        [this](SessionArgs& args) { return inputs(args); }, true);
    addQuery("frame", [this](SessionArgs&) { return SessionArgs::format(_session.getFrame()); });
    addQuery(
        "undo",
        [this](SessionArgs& args) {
            const PiCommandStack& stack = _session.getCommandStack();
            if (args.take("count")) {
                return std::to_string(stack.getUndoCount());
            }
            if (args.take("name")) {
                return orNone(stack.getUndoName());
            }
            const std::vector<LiString> names = stack.getStepNames();
            return join(
                std::vector<std::string>(names.begin(), names.begin() + stack.getUndoCount()));
        },
        [this](SessionArgs&) { return undoListing(); });
    addQuery("redo", [this](SessionArgs& args) {
        const PiCommandStack& stack = _session.getCommandStack();
        if (args.take("count")) {
            return std::to_string(stack.getRedoCount());
        }
        if (args.take("name")) {
            return orNone(stack.getRedoName());
        }
        const std::vector<LiString> names = stack.getStepNames();
        std::vector<std::string> undone(names.begin() + stack.getUndoCount(), names.end());
        return join(undone);
    });
    addQuery("cursor", [&viewer](SessionArgs&) {
        // An override cursor (a pick from a panel) shows over every window.
        RCShdPtr<WsCursor> cursor = UiApplication::getInstance().getOverrideCursor();
        if (const RCShdPtr<PiEventHandler> handler = viewer.getCurrentEventHandler();
            handler && !cursor) {
            exContain("probe: cursor", [&] { cursor = MfEventHandlerUtil::getCursor(*handler); });
        }
        return cursor ? cursor->getName() : WsCursorRegistry::Default;
    });
    addQuery(
        "manipulators", [this](SessionArgs&) { return std::to_string(manipulators().size()); },
        [this](SessionArgs&) { return manipulators(); });
    addQuery("bars", [this](SessionArgs&) { return bars(); });
    addQuery(
        "draw",
        [this](SessionArgs& args) {
            if (args.take("texts")) {
                std::vector<std::string> texts;
                for (const auto& item : _session.getViewer().getDisplayList().getItems()) {
                    if (item.kind == WsRecordingPainter::Item::Text) {
                        texts.push_back(item.text);
                    }
                }
                return join(texts);
            }
            return std::to_string(_session.getViewer().getDisplayList().getItems().size());
        },
        [this](SessionArgs&) { return drawing(); });
    addQuery(
        "reports", [this](SessionArgs&) { return std::to_string(_session.getReports().size()); },
        [this](SessionArgs&) { return reports(); });
    addQuery("report", [this](SessionArgs&) {
        const auto& all = _session.getReports();
        return all.empty() ? std::string("none") : all.back().text();
    });
    addQuery("zoom",
             [&viewer](SessionArgs&) { return SessionArgs::format(viewer.getView().getZoom()); });
    addQuery("centre", [&viewer](SessionArgs&) {
        const GePoint2<double> centre =
            ViewerDriver::centreOf(viewer.getView(), viewer.width(), viewer.height());
        return SessionArgs::format(centre.x) + " " + SessionArgs::format(centre.y);
    });
    addQuery("window", [&viewer](SessionArgs&) {
        return std::to_string(viewer.width()) + " " + std::to_string(viewer.height());
    });
    addQuery("hotkey", [](SessionArgs& args) {
        const std::string name = args.word("hotkey entry name");
        UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
        const unsigned entry = registry.findEntry(UiHotkeyRegistry::TesseraDomain, name);
        if (!entry) {
            throw SessionArgs::Error("no hotkey entry \"" + name + "\"");
        }
        const std::string binding = registry.getBinding(entry).toString();
        return binding.empty() ? std::string("unbound") : binding;
    });
    addQuery("plate", [this](SessionArgs&) {
        const PiImagePtr& plate = _session.getPlate();
        return plate ? _session.getPlateName() + " " + format(PiValue(plate)) : "none";
    });
    addQuery("background", [this](SessionArgs&) {
        const PiImagePtr& background = _session.getBackground();
        return background ? _session.getBackgroundName() + " " + format(PiValue(background))
                          : "none";
    });
}

void SessionProbe::addQuery(const std::string& word, Query query, Listing listing,
                            bool listingTakesArguments) {
    _queries[word] = Entry{std::move(query), std::move(listing), listingTakesArguments};
}

std::string SessionProbe::value(SessionArgs& args) {
    const std::string what = args.word("what to read");
    const auto it = _queries.find(what);
    if (it == _queries.end()) {
        throw SessionArgs::Error("unknown state \"" + what + "\"");
    }
    return it->second.value(args);
}

std::vector<std::string> SessionProbe::listing(SessionArgs& args) {
    const std::string what = args.peek();
    const auto it = _queries.find(what);
    if (it != _queries.end() && it->second.listing &&
        (it->second.listingTakesArguments || args.remaining() == 1)) {
        args.word("what to read");
        return it->second.listing(args);
    }
    const std::size_t from = args.position();
    const std::string answer = value(args);
    return {args.wordsFrom(from) + " = " + answer};
}

// --- arguments

double SessionProbe::frameArg(SessionArgs& args) const {
    if (args.take("at")) {
        return args.number("frame");
    }
    return _session.getFrame();
}

RCShdPtr<PiNode> SessionProbe::nodeArg(SessionArgs& args) const {
    const std::string name = args.word("node name");
    RCShdPtr<PiNode> node = _session.findNode(name);
    if (!node) {
        throw SessionArgs::Error("no node \"" + name + "\" in the keyer");
    }
    return node;
}

RCShdPtr<PiInput> SessionProbe::findInput(const std::string& reference) const {
    const std::size_t slash = reference.find('/');
    RCShdPtr<PiNode> node;
    std::string name = reference;
    if (slash != std::string::npos) {
        const std::string nodeName = reference.substr(0, slash);
        node = _session.findNode(nodeName);
        if (!node) {
            throw SessionArgs::Error("no node \"" + nodeName + "\" in the keyer");
        }
        name = reference.substr(slash + 1);
    } else {
        node = _session.getShownNode();
        if (!node) {
            throw SessionArgs::Error("the viewer shows no keyer node");
        }
    }
    RCShdPtr<PiInput> input = node->getInput(name);
    if (!input) {
        throw SessionArgs::Error("node \"" + node->getName() + "\" has no input \"" + name + "\"");
    }
    return input;
}

RCShdPtr<PiInput> SessionProbe::inputArg(SessionArgs& args) const {
    return findInput(args.word("input name"));
}

// --- values

std::string SessionProbe::format(const PiValue& value) const {
    switch (PiValueUtil::getType(value)) {
    case PiValueType::Double:
        return SessionArgs::format(std::get<double>(value));
    case PiValueType::Int:
        return std::to_string(std::get<int>(value));
    case PiValueType::Bool:
        return std::get<bool>(value) ? "true" : "false";
    case PiValueType::RgbColor: {
        const auto& c = std::get<CoRgbColorTyped<float>>(value);
        return SessionArgs::format(c.r) + " " + SessionArgs::format(c.g) + " " +
               SessionArgs::format(c.b);
    }
    case PiValueType::StringList: {
        std::string out;
        for (const std::string& s : std::get<PiStringList>(value)) {
            out += (out.empty() ? "" : " ") + SessionScript::quote(s);
        }
        return out.empty() ? "none" : out;
    }
    case PiValueType::Image: {
        const PiImagePtr& image = std::get<PiImagePtr>(value);
        return image ? std::to_string(image->getWidth()) + "x" + std::to_string(image->getHeight())
                     : "none";
    }
    case PiValueType::NodeRef: {
        const RCShdPtr<PiNode> node = _session.getKeyer()->resolve(std::get<PiNodeRef>(value));
        return node ? node->getName() : "none";
    }
    }
    return "";
}

bool SessionProbe::parseValue(PiValueType type, const std::vector<std::string>& words, PiValue& out,
                              std::string& error) {
    auto numbers = [&](std::size_t count, std::vector<double>& values) {
        if (words.size() != count) {
            error = "expected " + std::to_string(count) + (count == 1 ? " number" : " numbers");
            return false;
        }
        for (const std::string& w : words) {
            double v = 0.0;
            if (!SessionArgs::parseNumber(w, v)) {
                error = "bad number \"" + w + "\"";
                return false;
            }
            values.push_back(v);
        }
        return true;
    };
    std::vector<double> v;
    switch (type) {
    case PiValueType::Double:
        if (!numbers(1, v)) {
            return false;
        }
        out = PiValue(v[0]);
        return true;
    case PiValueType::Int:
        if (!numbers(1, v)) {
            return false;
        }
        if (v[0] != static_cast<double>(static_cast<int>(v[0]))) {
            error = "bad whole number \"" + words[0] + "\"";
            return false;
        }
        out = PiValue(static_cast<int>(v[0]));
        return true;
    case PiValueType::Bool:
        if (words.size() != 1 || (words[0] != "true" && words[0] != "false")) {
            error = "expected true or false";
            return false;
        }
        out = PiValue(words[0] == "true");
        return true;
    case PiValueType::RgbColor:
        if (!numbers(3, v)) {
            return false;
        }
        out = PiValue(CoRgbColorTyped<float>{static_cast<float>(v[0]), static_cast<float>(v[1]),
                                             static_cast<float>(v[2])});
        return true;
    case PiValueType::StringList:
        out = PiValue(PiStringList(words.begin(), words.end()));
        return true;
    case PiValueType::Image:
    case PiValueType::NodeRef:
        break;
    }
    error = std::string("a value of type ") + PiValueUtil::getTypeName(type) +
            " cannot be written from a script";
    return false;
}

// --- listings

std::vector<std::string> SessionProbe::inputs(SessionArgs& args) {
    RCShdPtr<PiNode> node = _session.getShownNode();
    if (!args.atEnd() && args.peek() != "at") {
        node = nodeArg(args);
    }
    if (!node) {
        throw SessionArgs::Error("the viewer shows no keyer node");
    }
    const double frame = frameArg(args);
    std::vector<std::string> lines;
    for (int i = 0; i < node->getInputCount(); ++i) {
        const RCShdPtr<PiInput>& input = node->getInput(i);
        std::string line =
            node->getName() + "/" + input->getName() + " = " + format(input->getValue(frame));
        if (input->hasKeys()) {
            line += " (" + std::to_string(input->getKeyCount()) + " keys)";
        }
        if (input->isLocked()) {
            line += " (locked)";
        }
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> SessionProbe::undoListing() const {
    const PiCommandStack& stack = _session.getCommandStack();
    const std::vector<LiString> names = stack.getStepNames();
    std::vector<std::string> lines;
    lines.push_back("undo: " + std::to_string(stack.getUndoCount()) + " done, " +
                    std::to_string(stack.getRedoCount()) + " undone");
    for (std::size_t i = 0; i < names.size(); ++i) {
        lines.push_back("  " + std::to_string(i + 1) + ". " + names[i] +
                        (static_cast<int>(i) < stack.getUndoCount() ? "" : " (undone)"));
    }
    return lines;
}

namespace {

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
    lines.push_back(std::string(2 * depth, ' ') + SessionScript::quote(name) + " state " +
                    std::to_string(m.getState()) + " at " + SessionArgs::format(plate.x) + " " +
                    SessionArgs::format(plate.y) + (drawing.isDrawn(m) ? "" : " (not shown)"));
    for (int i = 0; i < m.getChildCount(); ++i) {
        listManipulators(*m.getChild(i), drawing, depth + 1, lines);
    }
}

void collectBars(const MfManipulator& m, ToolDrawing& drawing,
                 std::vector<std::pair<float, std::string>>& bars) {
    if (!m.isShown()) {
        return;
    }
    if (const auto* bar = dynamic_cast<const MfRangeManipulator*>(&m)) {
        if (drawing.isDrawn(m)) {
            bars.emplace_back(centreOf(m, drawing.getView()).y, bar->getName());
        }
    }
    for (int i = 0; i < m.getChildCount(); ++i) {
        collectBars(*m.getChild(i), drawing, bars);
    }
}

} // namespace

std::vector<std::string> SessionProbe::manipulators() const {
    std::vector<std::string> lines;
    const UiViewer& viewer = _session.getViewer();
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

std::string SessionProbe::bars() const {
    std::vector<std::pair<float, std::string>> found;
    const UiViewer& viewer = _session.getViewer();
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
    // Top of the window first.
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> names;
    for (const auto& [y, name] : found) {
        names.push_back(name);
    }
    return join(names);
}

std::vector<std::string> SessionProbe::drawing() const {
    std::vector<std::string> lines;
    const VwView& view = _session.getViewer().getView();
    auto plate = [&view](float x, float y) {
        const GePoint2<double> p = ViewerDriver::windowToPlate(view, {x, y});
        return SessionArgs::format(p.x) + " " + SessionArgs::format(p.y);
    };
    for (const auto& item : _session.getViewer().getDisplayList().getItems()) {
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
            lines.push_back("text " + SessionScript::quote(item.text) + " at " +
                            plate(item.x0, item.y0));
            break;
        }
    }
    return lines;
}

std::vector<std::string> SessionProbe::reports() const {
    std::vector<std::string> lines;
    for (const auto& r : _session.getReports()) {
        lines.push_back(r.text());
    }
    return lines;
}
