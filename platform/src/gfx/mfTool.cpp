#include <gfx/mfTool.h>

#include <optional>

#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piViewer.h>

namespace {

// A step that has no name of its own is named after the tool's kind of work.
const LiString fallbackUndoName = "Viewer Tool";

} // namespace

MfTool::MfTool() = default;

MfTool::~MfTool() = default;

void MfTool::addManipulator(const RCShdPtr<MfManipulator>& manipulator) {
    *manipulator; // a null manipulator throws ExNullPtr
    _manipulators.push_back(manipulator);
}

bool MfTool::handleEvent(const PiEventContext& context) {
    EvEvent& event = context.getEvent();
    if (_grasped) {
        if (event.isA<EvPointerMoveEvent>()) {
            monitor(context);
            event.setProcessed(true);
        } else if (event.isA<EvPointerButtonUpEvent>()) {
            auto* last = dynamic_cast<const EvDeviceEvent*>(_lastEvent.get());
            if (!last || !(last->getCoord() == context.getDeviceEvent().getCoord())) {
                monitor(context);
            }
            // The last move may have ended the drag already: a value change
            // that closes a viewer interrupts it.
            if (_grasped) {
                release(context);
            }
            event.setProcessed(true);
        } else if (event.isA<EvFocusOutEvent>() || event.isA<EvGrabLostEvent>()) {
            interruptManipulation();
            event.setProcessed(true);
        }
        return event.isProcessed();
    }
    if (context.hasDeviceEvent()) {
        const VwView& view = context.getViewer().getView();
        const EvDeviceEvent& device = context.getDeviceEvent();
        for (const auto& manipulator : _manipulators) {
            if (MfManipulator* found = manipulator->findGraspable(view, device)) {
                grasp(context, *found);
                return true;
            }
        }
    }
    handleFeedback(context);
    return event.isProcessed();
}

void MfTool::grasp(const PiEventContext& context, MfManipulator& manipulator) {
    if (_feedback) {
        _feedback->setFeedbackHighlight(false);
        _feedback = nullptr;
    }
    _viewer = &context.getViewer();
    _stack = _viewer->getCommandStack();
    remember(context);
    _grasped = &manipulator;
    try {
        std::optional<PiUndoGuard> step;
        if (_stack) {
            step.emplace(*_stack, undoName(), PiExecParam(PiExecParam::Begin));
        }
        prepareManipulation(context);
        manipulator.beginManipulation(context);
        initiateManipulation(context);
    } catch (...) {
        abandon();
        throw;
    }
    context.getEvent().setProcessed(true);
    _viewer->redraw();
}

void MfTool::monitor(const PiEventContext& context) {
    remember(context);
    try {
        std::optional<PiUndoGuard> step;
        if (_stack) {
            step.emplace(*_stack, undoName(), PiExecParam(PiExecParam::Continue));
        }
        _grasped->continueManipulation(context);
        monitorManipulation(context);
    } catch (...) {
        abandon();
        throw;
    }
    context.getViewer().redraw();
}

void MfTool::release(const PiEventContext& context) {
    MfManipulator* manipulator = _grasped;
    try {
        std::optional<PiUndoGuard> step;
        if (_stack) {
            step.emplace(*_stack, undoName(), PiExecParam(PiExecParam::End));
        }
        finalizeManipulation(context);
    } catch (...) {
        abandon();
        throw;
    }
    if (_grasped != manipulator) {
        return; // finalising interrupted the drag, which ended it
    }
    manipulator->endManipulation(context);
    _grasped = nullptr;
    _stack = nullptr;
    _lastEvent.reset();
    context.getViewer().redraw();
}

void MfTool::abandon() {
    if (_grasped) {
        _grasped->abortManipulation();
    }
    if (_stack) {
        // Ends the step with what was done.
        const PiUndoGuard end(*_stack, LiString(), PiExecParam(PiExecParam::End));
    }
    _grasped = nullptr;
    _stack = nullptr;
    _lastEvent.reset();
}

const LiString& MfTool::undoName() const {
    return _undoString.empty() ? fallbackUndoName : _undoString;
}

void MfTool::remember(const PiEventContext& context) {
    if (context.hasDeviceEvent()) {
        _lastEvent = context.getEvent().clone();
    }
}

void MfTool::interruptManipulation() {
    if (!_grasped) {
        return;
    }
    // While the history replays (an undo that replaces the viewer's handler)
    // the inputs take no writes, and a node that left the graph (removed
    // while dragged) has no history to take them: the drag is dropped as it
    // stands, its step closed with what was done.
    if (!_viewer || !_lastEvent || (_stack && _stack->isReplaying()) ||
        _viewer->getCommandStack() != _stack) {
        abandon();
        return;
    }
    const std::unique_ptr<EvEvent> last = _lastEvent->clone();
    const PiEventContext context(*_viewer, *last);
    release(context);
}

void MfTool::draw(const VwView& view) const {
    for (const auto& manipulator : _manipulators) {
        manipulator->draw(view);
    }
}

void MfTool::drawDecorations(const VwView&) const {}

void MfTool::selectionUpdate(PiViewer&) {}

RCShdPtr<WsCursor> MfTool::getCursor() const {
    return RCShdPtr<WsCursor>();
}

void MfTool::prepareManipulation(const PiEventContext&) {}

void MfTool::initiateManipulation(const PiEventContext&) {}

void MfTool::monitorManipulation(const PiEventContext&) {}

void MfTool::finalizeManipulation(const PiEventContext&) {}

void MfTool::handleFeedback(const PiEventContext& context) {
    MfManipulator* found = nullptr;
    if (context.hasDeviceEvent()) {
        const VwView& view = context.getViewer().getView();
        const EvDeviceEvent& device = context.getDeviceEvent();
        for (const auto& manipulator : _manipulators) {
            if ((found = manipulator->findFeedback(view, device))) {
                break;
            }
        }
    }
    if (found) {
        giveFeedback(context, *found);
    } else if (_feedback) {
        endFeedback(context);
    }
}

void MfTool::giveFeedback(const PiEventContext& context, MfManipulator& manipulator) {
    if (_feedback != &manipulator) {
        if (_feedback) {
            _feedback->setFeedbackHighlight(false);
        }
        manipulator.setFeedbackHighlight(true);
        _feedback = &manipulator;
        context.getViewer().redraw();
    }
    usedForFeedback(context.getEvent());
}

void MfTool::endFeedback(const PiEventContext& context) {
    if (_feedback) {
        _feedback->setFeedbackHighlight(false);
        _feedback = nullptr;
        context.getViewer().redraw();
    }
    usedForFeedback(context.getEvent());
}

void MfTool::usedForFeedback(EvEvent& event) {
    if (event.isA<EvPointerEvent>()) {
        event.setProcessed(true);
    }
}

RCShdPtr<WsCursor> MfTool::getActiveCursor() const {
    if (_grasped && _grasped->getCursor()) {
        return _grasped->getCursor();
    }
    if (!_grasped && _feedback && _feedback->getCursor()) {
        return _feedback->getCursor();
    }
    return getCursor();
}
