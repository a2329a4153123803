#pragma once

#include <base/cbMethod.h>
#include <base/evEvent.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piNodeEvent.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piWidget.h>
#include <ui/uiEventCallback.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiMenu.h>
#include <ui/uiValueEditor.h>

#include <array>
#include <memory>

class TsMgInterface;

// The controller of a keyer node's matte-generation panel. It finds the
// panel's widgets by name in the container it is given and
//  - "keyColor1Toggle", "keyColor2Toggle" (toggles, required): a press starts
//    a pick of that key colour in any viewer (TsMgKeyColorPick); the toggle
//    lights while the viewer's current tool is that key colour's pick tool;
//  - "sampleMenu" (menu, optional): entry e makes the tool
//    TsMgTool::getManipToolName(e + 2) current in the current viewer (a
//    current handler that holds no named tools is ExNullPtr), and follows the
//    current tool while it is one of its entries (the entries' texts must be
//    the tool names);
//  - "patchSelectMenu" (menu, required): one entry per patch, then
//    "New Patch"; choosing an entry makes that patch current, even the
//    current one again; choosing "New Patch" creates a patch;
//  - "patchModeMenu", "patchRange", "patchSoft" (required): bound, undoable,
//    to the current patch's mode, range and softness inputs, and bound again
//    whenever the current patch changes;
//  - "reset" (push button, optional): resets the keyer as one undo step
//    "Reset Tessera".
// A widget of the wrong kind is ExCastFailed naming it and both types.
//
// The panel follows the node's patch-names and current-patch inputs and the
// viewer's current tool, refreshing its widgets without notification. It
// owns its callback objects: destroying it disconnects it from everything.
class TsMgUi : public RCBase<LkCounter<int>> {
public:
    // Picks a key colour from whatever viewer the user clicks into next: it
    // holds the pointer and keyboard grabs from the toggle's press to the next
    // pointer press. A press over a viewer's drawing area makes the key
    // colour's pick tool current there and hands it that same press, so one
    // click picks; a press anywhere else ends the pick and changes nothing.
    // Either way the grabs are released and the pick cursor popped. A lost
    // grab pops the cursor only: the grabs are left as they are.
    class TsMgKeyColorPick : public UiGrabHandler, public RCBase<LkCounter<int>> {
    public:
        TsMgKeyColorPick();
        // Pops the cursors this pick still has pushed.
        ~TsMgKeyColorPick() override;

        void callback(EvEvent& event) override;

        // Takes both grabs, pushes the pick cursor and remembers the key
        // colour (0 or 1).
        void start(int keyColorIndex);
        int getKeyColorIndex() const { return _index; }
        bool isPicking() const;

    private:
        void popCursors();

        int _index = 0;
        // Pick cursors pushed and not yet popped.
        int _cursorsPushed = 0;
    };

    // `widget` is the panel's container (ExCastFailed when it is another
    // kind, ExNullPtr when null). The node must have the patch-names and
    // current-patch inputs (ExNullPtr).
    TsMgUi(TsMgInterface& mg, const RCShdPtr<PiWidget>& widget,
           const RCShdPtr<const PiTimePath>& timePath);
    ~TsMgUi() override;

    const TsMgKeyColorPick& getKeyColorPick() const { return *_keyColorPick; }

private:
    void keyColorToggled(EvEvent& event, const int& index);
    void sampleMenuChosen(EvEvent& event);
    void currentEventHandlerChanged();
    void toolChanged();
    void resetChosen(EvEvent& event);
    void patchChosen(EvEvent& event);
    void nodeValueChanged(const PiNodeEvent& event);

    void fillPatchMenu();
    void bindPatchWidgets();

    TsMgInterface& _mg;
    RCShdPtr<PiContainer> _container;
    RCShdPtr<const PiTimePath> _timePath;
    std::array<RCShdPtr<PiDualState>, 2> _keyColorToggles;
    std::array<UiEventDataCallback<TsMgUi, int>, 2> _keyColorCbs;
    RCShdPtr<PiMenu> _sampleMenu;
    UiEventCallback<TsMgUi> _sampleMenuCb;
    CbMethod<TsMgUi, CbEmptyType> _eventHandlerChangedCb;
    // Registered on the current viewer handler; replaced when that changes.
    std::unique_ptr<CbMethod<TsMgUi, CbEmptyType>> _toolChangedCb;
    RCShdPtr<PiWidget> _reset;
    UiEventCallback<TsMgUi> _resetCb;
    RCShdPtr<PiMenu> _patchSelectMenu;
    UiEventCallback<TsMgUi> _patchSelectCb;
    CbMethod<TsMgUi, const PiNodeEvent> _valueChangedCb;
    RCShdPtr<UiMenu> _patchModeMenu;
    RCShdPtr<UiValueEditor> _patchRange;
    RCShdPtr<UiValueEditor> _patchSoft;
    RCShdPtr<PiInput> _patchNames;
    RCShdPtr<PiInput> _currentPatch;
    RCStrongPtr<TsMgKeyColorPick> _keyColorPick;
};

// The panel factory registered with TsMgInterface: a new panel controller
// for the keyer node's interface and the panel's widgets.
RCShdPtr<RCBase<LkCounter<int>>> tsMgUiFactory(TsMgInterface& mg, const RCShdPtr<PiWidget>& widget,
                                               const RCShdPtr<const PiTimePath>& timePath);

// Start-up registers the factory with TsMgInterface; shut-down withdraws it.
void tsMgUiInitialise();
void tsMgUiFinalise();
