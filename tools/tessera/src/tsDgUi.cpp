#include "tsDgUi.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piNode.h>
#include <tesseraCore/tsDgTool.h>
#include <ui/uiApplication.h>

namespace {

const char* const toggleNames[2] = {"keyColor1Toggle", "keyColor2Toggle"};

RCShdPtr<PiEventHandler> currentHandler() {
    return PiEventHandlingInterface::getInstance().getCurrentEventHandler();
}

} // namespace

TsDgUi::TsDgUi(TsDgInterface& dg, const RCShdPtr<PiWidget>& widget,
               const RCShdPtr<const PiTimePath>& timePath)
    : _dg(dg)
    , _container(PiWidget::cast<PiContainer>(widget))
    , _timePath(timePath)
    , _handlerChangedCb(this, &TsDgUi::handlerChanged)
    , _resetCb(this, &TsDgUi::resetPressed) {
    _toggleCount = _dg.hasNoKeyColorToggles() ? 0 : 2;
    _toggles = std::make_unique<RCShdPtr<PiDualState>[]>(static_cast<std::size_t>(_toggleCount));
    _toggleCbs = std::make_unique<UiEventDataCallback<TsDgUi, int>[]>(
        static_cast<std::size_t>(_toggleCount));
    for (int i = 0; i < _toggleCount; ++i) {
        _toggleCbs[i].set(this, &TsDgUi::togglePressed, i);
        _toggles[i] = _container->findWidget<PiDualState>(toggleNames[i]);
        if (!_toggles[i]) {
            // A panel description without it: name the widget.
            RCExUtil::throwExNullPtr(
                (typeNameOf<PiDualState>() + " '" + toggleNames[i] + "'").c_str());
        }
        _toggles[i]->addCallback(PiWidget::Activated, &_toggleCbs[i]);
    }
    if (const RCShdPtr<PiWidget> reset = _container->findWidget("reset")) {
        reset->addCallback(PiWidget::Activated, &_resetCb);
    }
    PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(
        &_handlerChangedCb);
    handlerChanged();
}

TsDgUi::~TsDgUi() {
    popCursor();
}

void TsDgUi::popCursor() {
    if (_cursorPushed) {
        UiApplication::getInstance().popOverrideCursor();
        _cursorPushed = false;
    }
}

void TsDgUi::handlerChanged() {
    const RCShdPtr<PiEventHandler> handler = currentHandler();
    if (auto* toolHandler = dynamic_cast<PiCurrentToolEventHandler*>(handler.get())) {
        _toolChangedCb = std::make_unique<CbMethod<TsDgUi, CbEmptyType>>(this, &TsDgUi::refresh);
        toolHandler->addToolChangedCb(_toolChangedCb.get());
    }
    refresh();
}

void TsDgUi::refresh() {
    const RCShdPtr<PiEventHandler> handler = currentHandler();
    const auto* toolHandler = dynamic_cast<const PiCurrentToolEventHandler*>(handler.get());
    if (!toolHandler) {
        popCursor();
        return;
    }
    const std::string tool = toolHandler->getCurrentTool();
    for (int i = 0; i < _toggleCount; ++i) {
        _toggles[i]->setState(tool == TsDgTool::getManipToolName(i));
    }
    popCursor();
}

void TsDgUi::togglePressed(EvEvent&, const int& index) {
    const RCShdPtr<PiEventHandler> handler = currentHandler();
    auto* toolHandler = dynamic_cast<PiCurrentToolEventHandler*>(handler.get());
    if (!toolHandler) {
        return;
    }
    // A pick started from the panel is still pending.
    if (_cursorPushed) {
        return;
    }
    toolHandler->setCurrentTool(TsDgTool::getManipToolName(index));
    // The tool is current now, possibly in a handler the viewer installed
    // for it.
    const RCShdPtr<PiEventHandler> now = currentHandler();
    if (!now) {
        RCExUtil::throwExNullPtr(typeNameOf<MfCurrentToolEventHandler>().c_str());
    }
    const RCShdPtr<MfTool> tool = refCast<MfCurrentToolEventHandler>(*now).getCurrentMfTool();
    if (!tool) {
        RCExUtil::throwExNullPtr(typeNameOf<MfTool>().c_str());
    }
    UiApplication::getInstance().pushOverrideCursor(tool->getCursor());
    _cursorPushed = true;
}

void TsDgUi::resetPressed(EvEvent&) {
    const RCShdPtr<PiNode> node = _dg.getNode();
    if (!node) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNode>().c_str());
    }
    const PiUndoGuard guard(node->getGraph()->getCommandStack(), "Reset Screen Degrain",
                            PiExecParam());
    _dg.resetDegrain();
}

RCShdPtr<RCBase<LkCounter<int>>> tsDgUiFactory(TsDgInterface& dg, const RCShdPtr<PiWidget>& widget,
                                               const RCShdPtr<const PiTimePath>& timePath) {
    return RCShdPtr<RCBase<LkCounter<int>>>(new TsDgUi(dg, widget, timePath));
}

void tsDgUiInitialise() {
    TsDgInterface::registerUiFactory(&tsDgUiFactory);
}

void tsDgUiFinalise() {
    TsDgInterface::unregisterUiFactory(&tsDgUiFactory);
}
