#pragma once

#include <base/cbDataMethod.h>
#include <base/cbMethod.h>
#include <base/evEvent.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piTrackball.h>
#include <pluginAPI/piWidget.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <ui/uiEventCallback.h>

#include <memory>

// The controller of a keyer node's spill-and-blend panel. It binds, by name,
// in the container the host built from the panel description:
//
//   "keyColor1Toggle", "keyColor2Toggle" (toggles) make the key-colour pick
//       tool of key colour 1 or 2 current in the current viewer and show its
//       cursor over the whole application (an override cursor) until the
//       current tool changes again. There are no toggles when the node says
//       so (TsSpillBlendInterface::hasNoKeyColorToggles).
//   "sampleMenu" (a menu) makes entry 0 the spill tool and entry 1 the
//       blend tool current.
//   "reset" (a push button) resets the stage as one undo step, "Reset Spill
//       & Blend".
//   "spillEdgeBalance" (a trackball) drags the spill edge balance: each
//       axis moves by 0.001 per pixel of the drag, from the values the drag
//       began at; the whole drag is one undo step, "Set Spill Edge Balance".
//       When x refuses a value (locked), y is left alone for that move.
//
// The toggles and the menu follow the current viewer's current tool, set
// without notification: a toggle is on while its tool is current; the menu
// shows the spill or blend tool when one of them is current and keeps its
// entry otherwise.
//
// A widget that is missing leaves its feature unbound; a widget of the wrong
// kind is ExCastFailed naming the widget and both types. An action that needs
// the current viewer's handler throws ExNullPtr when there is none and
// ExCastFailed when it holds no tools.
class TsSpillBlendUi : public RCBase<LkCounter<int>> {
public:
    // The two inputs of the spill edge balance, kept current at a time path.
    class InputPoint2Float : public RCBase<int> {
    public:
        // ExNullPtr for a missing input, ExCastFailed for one that does not
        // hold a double.
        InputPoint2Float(const RCShdPtr<PiInput>& x, const RCShdPtr<PiInput>& y,
                         const RCShdPtr<const PiTimePath>& timePath);
        ~InputPoint2Float() override;

        // Axis 0 x, 1 y.
        PiInputValue<double>& getValue(int axis) const { return *_values[axis]; }

    private:
        void valueChanged(const int& axis);
        void update(const int& axis);

        RCShdPtr<PiInputValue<double>> _values[2];
        CbDataMethod<InputPoint2Float, CbEmptyType, int> _valueCbs[2];
        CbDataMethod<InputPoint2Float, CbEmptyType, int> _updateCbs[2];
    };

    TsSpillBlendUi(TsSpillBlendInterface& spillBlend, const RCShdPtr<PiWidget>& widget,
                   const RCShdPtr<const PiTimePath>& timePath);
    // Pops the override cursor this panel pushed, if it still shows.
    ~TsSpillBlendUi() override;

    int getToggleCount() const { return _toggleCount; }
    bool isCursorPushed() const { return _cursorPushed; }
    const InputPoint2Float& getEdgeBalance() const { return *_edgeBalance; }

private:
    void connect();
    void sync();
    void toolChanged();
    void togglePressed(EvEvent& event, const int& index);
    void sampleMenuChosen(EvEvent& event);
    void resetPressed(EvEvent& event);
    void balanceBegin(EvEvent& event);
    void balanceDrag(EvEvent& event);
    void balanceEnd(EvEvent& event);
    PiCommandStack& commandStack() const;

    TsSpillBlendInterface& _spillBlend;
    RCShdPtr<PiContainer> _container;
    RCShdPtr<PiTrackball> _trackball;
    bool _noToggles = false;
    int _toggleCount = 0;
    std::unique_ptr<RCShdPtr<PiDualState>[]> _toggles;
    std::unique_ptr<UiEventDataCallback<TsSpillBlendUi, int>[]> _toggleCbs;
    RCShdPtr<PiMenu> _sampleMenu;
    UiEventCallback<TsSpillBlendUi> _menuCb;
    CbMethod<TsSpillBlendUi, CbEmptyType> _handlerChangedCb;
    std::unique_ptr<CbHandler<CbEmptyType>> _toolChangedCb;
    CbMethod<TsSpillBlendUi, EvEvent> _resetCb;
    UiEventCallback<TsSpillBlendUi> _balanceBeginCb;
    UiEventCallback<TsSpillBlendUi> _balanceDragCb;
    UiEventCallback<TsSpillBlendUi> _balanceEndCb;
    float _balanceStartX = 0.0f;
    float _balanceStartY = 0.0f;
    RCShdPtr<InputPoint2Float> _edgeBalance;
    bool _cursorPushed = false;
};

// The factory registered with TsSpillBlendInterface: a new panel controller
// bound to the widgets of `widget`.
RCShdPtr<RCBase<LkCounter<int>>> tsSpillBlendUiFactory(TsSpillBlendInterface& spillBlend,
                                                       const RCShdPtr<PiWidget>& widget,
                                                       const RCShdPtr<const PiTimePath>& timePath);

// Start-up registers the factory with TsSpillBlendInterface; shut-down
// withdraws it.
void tsSpillBlendUiInitialise();
void tsSpillBlendUiFinalise();
