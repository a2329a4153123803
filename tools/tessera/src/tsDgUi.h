#pragma once

#include <base/cbMethod.h>
#include <base/evEvent.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piWidget.h>
#include <tesseraCore/tsDgInterface.h>
#include <ui/uiEventCallback.h>

#include <memory>

// The controller of a keyer node's degrain panel. It binds, by name, in the
// container the host built from the panel description:
//
//   "keyColor1Toggle", "keyColor2Toggle" (toggles) make the key-colour pick
//       tool of key colour 1 or 2 current in the current viewer. The pick
//       tool's cursor then shows over the whole application (an override
//       cursor) until the current tool changes again, so that the user sees
//       the pick pending while moving from the panel to the viewer. Pressed
//       again while that cursor shows, a toggle does nothing. There are no
//       toggles when the node says so (TsDgInterface::hasNoKeyColorToggles).
//   "reset" (a push button, optional) resets the degrain stage as one undo
//       step, "Reset Screen Degrain".
//
// The toggles follow the current viewer's current tool, set without
// notification, whichever handler the viewer installs.
//
// A missing toggle is ExNullPtr, a widget of the wrong kind ExCastFailed.
class TsDgUi : public RCBase<LkCounter<int>> {
public:
    TsDgUi(TsDgInterface& dg, const RCShdPtr<PiWidget>& widget,
           const RCShdPtr<const PiTimePath>& timePath);
    // Pops the override cursor this panel pushed, if it still shows.
    ~TsDgUi() override;

    int getToggleCount() const { return _toggleCount; }
    bool isCursorPushed() const { return _cursorPushed; }

private:
    void handlerChanged();
    void refresh();
    void togglePressed(EvEvent& event, const int& index);
    void resetPressed(EvEvent& event);
    void popCursor();

    TsDgInterface& _dg;
    RCShdPtr<PiContainer> _container;
    RCShdPtr<const PiTimePath> _timePath;
    int _toggleCount = 0;
    std::unique_ptr<RCShdPtr<PiDualState>[]> _toggles;
    CbMethod<TsDgUi, CbEmptyType> _handlerChangedCb;
    UiEventCallback<TsDgUi> _resetCb;
    std::unique_ptr<CbMethod<TsDgUi, CbEmptyType>> _toolChangedCb;
    bool _cursorPushed = false;
    std::unique_ptr<UiEventDataCallback<TsDgUi, int>[]> _toggleCbs;
};

// The factory registered with TsDgInterface: a new panel controller bound to
// the widgets of `widget`.
RCShdPtr<RCBase<LkCounter<int>>> tsDgUiFactory(TsDgInterface& dg, const RCShdPtr<PiWidget>& widget,
                                               const RCShdPtr<const PiTimePath>& timePath);

// Start-up registers the factory with TsDgInterface; shut-down withdraws it.
void tsDgUiInitialise();
void tsDgUiFinalise();
