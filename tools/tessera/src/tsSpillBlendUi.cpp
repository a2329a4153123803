#include "tsSpillBlendUi.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piNode.h>
#include <resmgt/liString.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiApplication.h>

namespace {

// The names of the panel's widgets.
const LiString keyColorToggleNames[2] = {"keyColor1Toggle", "keyColor2Toggle"};
const LiString resetName = "reset";
const LiString sampleMenuName = "sampleMenu";
const LiString spillEdgeBalanceName = "spillEdgeBalance";

// Edge-balance units per pixel of a trackball drag.
constexpr float BalancePerPixel = 0.001f;

RCShdPtr<PiEventHandler> currentHandler() {
    return PiEventHandlingInterface::getInstance().getCurrentEventHandler();
}

// The current viewer's handler as a tool handler: ExNullPtr when there is
// none, ExCastFailed when it holds no tools.
RCShdPtr<PiCurrentToolEventHandler> requireToolHandler() {
    return rcCastRequired<PiCurrentToolEventHandler>(currentHandler());
}

} // namespace

TsSpillBlendUi::InputPoint2Float::InputPoint2Float(const RCShdPtr<PiInput>& x,
                                                   const RCShdPtr<PiInput>& y,
                                                   const RCShdPtr<const PiTimePath>& timePath) {
    const RCShdPtr<PiInput> inputs[2] = {x, y};
    for (int k = 0; k < 2; ++k) {
        _values[k] = PiInputValue<double>::createTyped(inputs[k], timePath);
        _valueCbs[k].set(this, &InputPoint2Float::valueChanged, k);
        _updateCbs[k].set(this, &InputPoint2Float::update, k);
        _values[k]->addValueChangedCb(&_valueCbs[k]);
        _values[k]->addUpdateCb(&_updateCbs[k]);
        _values[k]->update();
    }
}

TsSpillBlendUi::InputPoint2Float::~InputPoint2Float() = default;

void TsSpillBlendUi::InputPoint2Float::valueChanged(const int& axis) {
    if (_values[axis]->needsUpdate()) {
        _values[axis]->update();
    }
}

void TsSpillBlendUi::InputPoint2Float::update(const int& axis) {
    _values[axis]->update();
}

TsSpillBlendUi::TsSpillBlendUi(TsSpillBlendInterface& spillBlend, const RCShdPtr<PiWidget>& widget,
                               const RCShdPtr<const PiTimePath>& timePath)
    : _spillBlend(spillBlend)
    , _container(PiWidget::cast<PiContainer>(widget)) {
    if (!_container) {
        RCExUtil::throwExNullPtr(typeNameOf<PiContainer>().c_str());
    }
    _trackball = _container->findWidget<PiTrackball>(spillEdgeBalanceName);
    _noToggles = _spillBlend.hasNoKeyColorToggles();
    _toggleCount = _noToggles ? 0 : 2;
    _toggles = std::make_unique<RCShdPtr<PiDualState>[]>(static_cast<std::size_t>(_toggleCount));
    _toggleCbs = std::make_unique<UiEventDataCallback<TsSpillBlendUi, int>[]>(
        static_cast<std::size_t>(_toggleCount));
    _sampleMenu = _container->findWidget<PiMenu>(sampleMenuName);

    _menuCb.set(this, &TsSpillBlendUi::sampleMenuChosen);
    _handlerChangedCb.set(this, &TsSpillBlendUi::connect);
    _resetCb.set(this, &TsSpillBlendUi::resetPressed);
    _balanceBeginCb.set(this, &TsSpillBlendUi::balanceBegin);
    _balanceDragCb.set(this, &TsSpillBlendUi::balanceDrag);
    _balanceEndCb.set(this, &TsSpillBlendUi::balanceEnd);

    _edgeBalance = RCShdPtr<InputPoint2Float>(new InputPoint2Float(
        _spillBlend.getEdgeBalanceInput(0), _spillBlend.getEdgeBalanceInput(1), timePath));

    if (_sampleMenu) {
        _sampleMenu->addCallback(PiWidget::Activated, &_menuCb);
    }
    for (int i = 0; i < _toggleCount; ++i) {
        _toggleCbs[i].set(this, &TsSpillBlendUi::togglePressed, i);
        _toggles[i] = _container->findWidget<PiDualState>(keyColorToggleNames[i]);
        if (_toggles[i]) {
            _toggles[i]->addCallback(PiWidget::Activated, &_toggleCbs[i]);
        }
    }
    if (const RCShdPtr<PiWidget> reset = _container->findWidget(resetName)) {
        reset->addCallback(PiWidget::Activated, &_resetCb);
    }
    if (_trackball) {
        _trackball->addCallback(PiWidget::DragBegin, &_balanceBeginCb);
        _trackball->addCallback(PiWidget::DragMove, &_balanceDragCb);
        _trackball->addCallback(PiWidget::DragEnd, &_balanceEndCb);
    }
    PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(
        &_handlerChangedCb);
    connect();
}

TsSpillBlendUi::~TsSpillBlendUi() {
    // A drag of the edge balance under way ends with the panel: its undo
    // step closes with what was done.
    if (_trackball && _trackball->isDragging()) {
        const RCShdPtr<PiNode> node = _spillBlend.getNode();
        if (PiCommandStack* stack = node ? node->getCommandStack() : nullptr) {
            const PiUndoGuard end(*stack, "", PiExecParam(3));
        }
    }
    if (_cursorPushed) {
        UiApplication::getInstance().popOverrideCursor();
        _cursorPushed = false;
    }
}

PiCommandStack& TsSpillBlendUi::commandStack() const {
    const RCShdPtr<PiNode> node = _spillBlend.getNode();
    if (!node) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNode>().c_str());
    }
    return node->getGraph()->getCommandStack();
}

void TsSpillBlendUi::connect() {
    const RCShdPtr<PiEventHandler> handler = currentHandler();
    auto* toolHandler = dynamic_cast<PiCurrentToolEventHandler*>(handler.get());
    if (!toolHandler) {
        return;
    }
    _toolChangedCb =
        std::make_unique<CbMethod<TsSpillBlendUi, CbEmptyType>>(this, &TsSpillBlendUi::toolChanged);
    toolHandler->addToolChangedCb(_toolChangedCb.get());
    sync();
}

void TsSpillBlendUi::sync() {
    const RCShdPtr<PiEventHandler> handler = currentHandler();
    const auto* toolHandler = dynamic_cast<const PiCurrentToolEventHandler*>(handler.get());
    if (!toolHandler) {
        return;
    }
    const std::string tool = toolHandler->getCurrentTool();
    for (int i = 0; i < _toggleCount; ++i) {
        if (_toggles[i]) {
            _toggles[i]->setState(tool == TsSpillBlendTool::getManipToolName(i));
        }
    }
    if (_sampleMenu) {
        const int kept = _sampleMenu->getSelection();
        _sampleMenu->setSelection(0);
        if (_sampleMenu->getSelectedText() != tool) {
            _sampleMenu->setSelection(1);
            if (_sampleMenu->getSelectedText() != tool) {
                _sampleMenu->setSelection(kept);
            }
        }
    }
}

void TsSpillBlendUi::toolChanged() {
    sync();
    if (_cursorPushed) {
        UiApplication::getInstance().popOverrideCursor();
        _cursorPushed = false;
    }
}

void TsSpillBlendUi::togglePressed(EvEvent&, const int& index) {
    requireToolHandler()->setCurrentTool(TsSpillBlendTool::getManipToolName(index));
    // The tool is current now, possibly in a handler the viewer installed
    // for it.
    const RCShdPtr<MfTool> tool =
        rcCastRequired<MfCurrentToolEventHandler>(currentHandler())->getCurrentMfTool();
    if (!tool) {
        RCExUtil::throwExNullPtr(typeNameOf<MfTool>().c_str());
    }
    UiApplication::getInstance().pushOverrideCursor(tool->getCursor());
    _cursorPushed = true;
}

void TsSpillBlendUi::sampleMenuChosen(EvEvent&) {
    requireToolHandler()->setCurrentTool(
        TsSpillBlendTool::getManipToolName(_sampleMenu->getSelection() + 2));
}

void TsSpillBlendUi::resetPressed(EvEvent&) {
    const PiUndoGuard guard(commandStack(), "Reset Spill & Blend", PiExecParam());
    _spillBlend.resetSpillBlend();
}

void TsSpillBlendUi::balanceBegin(EvEvent&) {
    const PiUndoGuard guard(commandStack(), "Set Spill Edge Balance", PiExecParam(1));
    _balanceStartX = static_cast<float>(_edgeBalance->getValue(0).getValue());
    _balanceStartY = static_cast<float>(_edgeBalance->getValue(1).getValue());
}

void TsSpillBlendUi::balanceDrag(EvEvent&) {
    const PiUndoGuard guard(commandStack(), "", PiExecParam(2));
    float dx = 0.0f;
    float dy = 0.0f;
    _trackball->getDelta(dx, dy);
    // Always from where the drag began, with the whole delta.
    const float x = _balanceStartX + dx * BalancePerPixel;
    const float y = _balanceStartY + dy * BalancePerPixel;
    if (_edgeBalance->getValue(0).setValue(static_cast<double>(x))) {
        _edgeBalance->getValue(1).setValue(static_cast<double>(y));
    }
}

void TsSpillBlendUi::balanceEnd(EvEvent&) {
    const PiUndoGuard guard(commandStack(), "", PiExecParam(3));
}

RCShdPtr<RCBase<LkCounter<int>>> tsSpillBlendUiFactory(TsSpillBlendInterface& spillBlend,
                                                       const RCShdPtr<PiWidget>& widget,
                                                       const RCShdPtr<const PiTimePath>& timePath) {
    return RCShdPtr<RCBase<LkCounter<int>>>(new TsSpillBlendUi(spillBlend, widget, timePath));
}

void tsSpillBlendUiInitialise() {
    TsSpillBlendInterface::registerUiFactory(&tsSpillBlendUiFactory);
}

void tsSpillBlendUiFinalise() {
    TsSpillBlendInterface::unregisterUiFactory(&tsSpillBlendUiFactory);
}
