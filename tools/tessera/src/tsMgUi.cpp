#include "tsMgUi.h"
#include "tsPanelUtil.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piNode.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsMgTool.h>
#include <ui/uiApplication.h>
#include <ui/uiGrab.h>
#include <ui/uiInputMenu.h>
#include <ui/uiInputValueEditor.h>
#include <ui/uiMainWindow.h>
#include <ui/uiWidgetAdapter.h>
#include <ui/vpDrawArea.h>

#include <string>
#include <vector>

namespace {

const char* const keyColorToggleNames[2] = {"keyColor1Toggle", "keyColor2Toggle"};
const char* const newPatchText = "New Patch";
const char* const resetUndoText = "Reset Tessera";

using TsPanelUtil::currentToolHandler;
using TsPanelUtil::required;
using TsPanelUtil::requiredNamed;

// An input of the node by name; ExNullPtr naming it when the node lacks it.
RCShdPtr<PiInput> requiredInput(const PiNode& node, const std::string& name) {
    return requiredNamed(node.getInput(name), name);
}

} // namespace

// --- TsMgUi::TsMgKeyColorPick

TsMgUi::TsMgKeyColorPick::TsMgKeyColorPick()
    : UiGrabHandler("key colour pick") {}

TsMgUi::TsMgKeyColorPick::~TsMgKeyColorPick() {
    popCursors();
}

bool TsMgUi::TsMgKeyColorPick::isPicking() const {
    return UiGrab::pointer().getHolder() == this;
}

void TsMgUi::TsMgKeyColorPick::start(int keyColorIndex) {
    UiGrab::pointer().grab(this);
    UiGrab::keyboard().grab(this);
    UiApplication::getInstance().pushOverrideCursor(
        WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::Pick));
    ++_cursorsPushed;
    _index = keyColorIndex;
}

void TsMgUi::TsMgKeyColorPick::popCursors() {
    for (; _cursorsPushed > 0; --_cursorsPushed) {
        UiApplication::getInstance().popOverrideCursor();
    }
}

void TsMgUi::TsMgKeyColorPick::callback(EvEvent& event) {
    if (event.isA<EvGrabLostEvent>()) {
        // Another grab took over: it holds the pointer now, whatever ours
        // says; only the cursor is ours to take back.
        popCursors();
        return;
    }
    auto* press = dynamic_cast<EvPointerButtonDownEvent*>(&event);
    if (!press) {
        return;
    }
    event.setProcessed(true);
    // The press ends the pick wherever it lands, also when the viewer's
    // handler fails on it.
    struct End {
        TsMgKeyColorPick& pick;
        ~End() {
            UiGrab::pointer().release(&pick);
            UiGrab::keyboard().release(&pick);
            pick.popCursors();
        }
    } end{*this};

    const UiMainWindow* window = UiApplication::getInstance().getMainWindow();
    UiWidget* under = window ? window->getWidgetAt(press->getCoord()) : nullptr;
    auto* area = dynamic_cast<VpDrawArea*>(under);
    if (!area) {
        return;
    }
    const RCShdPtr<PiEventHandler> handler = area->getCurrentEventHandler();
    const RCShdPtr<PiCurrentToolEventHandler> tools =
        required(rcTestCast<PiCurrentToolEventHandler>(handler));
    tools->setCurrentTool(TsMgTool::getManipToolName(_index));
    const PiEventContext context(area->getViewer(), event);
    if (auto* mf = dynamic_cast<MfCurrentToolEventHandler*>(tools.get())) {
        mf->handleEvent(context);
    } else {
        static_cast<const PiEventHandler&>(*tools).handleEvent(context);
    }
}

// --- TsMgUi

TsMgUi::TsMgUi(TsMgInterface& mg, const RCShdPtr<PiWidget>& widget,
               const RCShdPtr<const PiTimePath>& timePath)
    : _mg(mg)
    , _container(rcCastRequired<PiContainer>(widget))
    , _timePath(timePath)
    , _sampleMenu(_container->findWidget<PiMenu>("sampleMenu"))
    , _sampleMenuCb(this, &TsMgUi::sampleMenuChosen)
    , _eventHandlerChangedCb(this, &TsMgUi::currentEventHandlerChanged)
    , _resetCb(this, &TsMgUi::resetChosen)
    , _patchSelectCb(this, &TsMgUi::patchChosen)
    , _valueChangedCb(this, &TsMgUi::nodeValueChanged) {
    const RCShdPtr<PiNode> node = required(_mg.getNode());
    _patchNames = requiredInput(*node, TsMgTool::getPatchNamesName());
    _currentPatch = requiredInput(*node, TsMgTool::getCurrentPatchName());
    _keyColorPick = RCStrongPtr<TsMgKeyColorPick>(new TsMgKeyColorPick);

    if (_sampleMenu) {
        _sampleMenu->addCallback(PiWidget::Activated, &_sampleMenuCb);
    }
    for (int i = 0; i < 2; ++i) {
        _keyColorCbs[i].set(this, &TsMgUi::keyColorToggled, i);
        _keyColorToggles[i] = requiredNamed(
            _container->findWidget<PiDualState>(keyColorToggleNames[i]), keyColorToggleNames[i]);
        _keyColorToggles[i]->addCallback(PiWidget::Activated, &_keyColorCbs[i]);
    }
    _reset = _container->findWidget("reset");
    if (_reset) {
        _reset->addCallback(PiWidget::Activated, &_resetCb);
    }
    _patchSelectMenu =
        requiredNamed(_container->findWidget<PiMenu>("patchSelectMenu"), "patchSelectMenu");
    _patchSelectMenu->addCallback(PiWidget::Activated, &_patchSelectCb);
    fillPatchMenu();

    const RCShdPtr<UiWidgetAdapter> mode =
        requiredNamed(_container->findWidget<UiWidgetAdapter>("patchModeMenu"), "patchModeMenu");
    _patchModeMenu = rcCast<UiMenu>(mode->getUiWidget());
    _patchRange =
        requiredNamed(UiInputValueEditor::getValueEditor(_container, "patchRange"), "patchRange");
    _patchSoft =
        requiredNamed(UiInputValueEditor::getValueEditor(_container, "patchSoft"), "patchSoft");
    bindPatchWidgets();

    _mg.addCallback<PiNodeEvent::ValueChanged>(&_valueChangedCb);
    PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(
        &_eventHandlerChangedCb);
    if (const RCShdPtr<PiCurrentToolEventHandler> handler = currentToolHandler()) {
        _toolChangedCb =
            std::make_unique<CbMethod<TsMgUi, CbEmptyType>>(this, &TsMgUi::toolChanged);
        handler->addToolChangedCb(_toolChangedCb.get());
    }
}

TsMgUi::~TsMgUi() = default;

void TsMgUi::fillPatchMenu() {
    _patchSelectMenu->removeAllItems();
    for (const std::string& name : _mg.getPatchNames()) {
        _patchSelectMenu->appendItem(name);
    }
    _patchSelectMenu->appendItem(newPatchText);
    _patchSelectMenu->setSelection(_mg.getCurrentPatch());
}

void TsMgUi::bindPatchWidgets() {
    const int patch = _mg.getCurrentPatch();
    UiInputMenu::setInput(_patchModeMenu, _mg.getPatchModeInput(patch), _timePath,
                          UiInputMenu::Undoable);
    UiInputValueEditor::setInput(_patchRange, _mg.getPatchRangeInput(patch), _timePath,
                                 UiInputValueEditor::Undoable);
    UiInputValueEditor::setInput(_patchSoft, _mg.getPatchSoftnessInput(patch), _timePath,
                                 UiInputValueEditor::Undoable);
}

void TsMgUi::keyColorToggled(EvEvent&, const int& index) {
    _keyColorPick->start(index);
}

void TsMgUi::sampleMenuChosen(EvEvent&) {
    const int entry = _sampleMenu->getSelection();
    required(currentToolHandler())->setCurrentTool(TsMgTool::getManipToolName(entry + 2));
}

void TsMgUi::currentEventHandlerChanged() {
    const RCShdPtr<PiCurrentToolEventHandler> handler = currentToolHandler();
    if (!handler) {
        return;
    }
    _toolChangedCb = std::make_unique<CbMethod<TsMgUi, CbEmptyType>>(this, &TsMgUi::toolChanged);
    handler->addToolChangedCb(_toolChangedCb.get());
    toolChanged();
}

void TsMgUi::toolChanged() {
    const RCShdPtr<PiCurrentToolEventHandler> handler = currentToolHandler();
    if (!handler) {
        return;
    }
    const std::string tool = handler->getCurrentTool();
    for (int i = 0; i < 2; ++i) {
        _keyColorToggles[i]->setState(tool == TsMgTool::getManipToolName(i));
    }
    if (!_sampleMenu) {
        return;
    }
    // The menu shows the tool only when it is one of its entries.
    const int remembered = _sampleMenu->getSelection();
    _sampleMenu->setSelection(0);
    if (_sampleMenu->getSelectedText() == tool) {
        return;
    }
    _sampleMenu->setSelection(1);
    if (_sampleMenu->getSelectedText() == tool) {
        return;
    }
    _sampleMenu->setSelection(remembered);
}

void TsMgUi::resetChosen(EvEvent&) {
    PiCommandStack& stack = required(_mg.getNode())->getGraph()->getCommandStack();
    const PiUndoGuard guard(stack, resetUndoText, PiExecParam());
    _mg.resetKeyer();
}

void TsMgUi::patchChosen(EvEvent&) {
    const int chosen = _patchSelectMenu->getSelection();
    // "New Patch" always stands at the index of the patch count.
    if (chosen != _mg.getPatchCount()) {
        _mg.makePatchCurrent(chosen);
    } else {
        _mg.createPatch();
    }
}

void TsMgUi::nodeValueChanged(const PiNodeEvent& event) {
    const RCShdPtr<PiInput>& value =
        static_cast<const PiNodeEvent::ValueChanged&>(event).getValue();
    if (PiGraphObject::areEqual(value, _patchNames)) {
        fillPatchMenu();
    } else if (PiGraphObject::areEqual(value, _currentPatch)) {
        _patchSelectMenu->setSelection(_mg.getCurrentPatch());
        bindPatchWidgets();
    }
}

RCShdPtr<RCBase<LkCounter<int>>> tsMgUiFactory(TsMgInterface& mg, const RCShdPtr<PiWidget>& widget,
                                               const RCShdPtr<const PiTimePath>& timePath) {
    return RCShdPtr<RCBase<LkCounter<int>>>(new TsMgUi(mg, widget, timePath));
}

void tsMgUiInitialise() {
    TsMgInterface::registerUiFactory(&tsMgUiFactory);
}

void tsMgUiFinalise() {
    TsMgInterface::unregisterUiFactory(&tsMgUiFactory);
}
