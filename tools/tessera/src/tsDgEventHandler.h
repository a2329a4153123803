#pragma once

#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <pluginAPI/piImgPick.h>

class PiNode;
class PiPath;
class PiViewer;
class UiGrabHandler;

// The viewer event handler of a keyer node's degrain stage: a tool set of the
// two key-colour pick tools (transient: after one pick the previous tool is
// current again) and the degrain sample tool (TsDgSampleTool), under the
// names TsDgTool::getManipToolName(0..2); the first key-colour pick tool is
// current at first.
//
// The hotkey "Sample Degrain" of UiHotkeyRegistry::TesseraDomain, registered
// on the viewer widget's handler for as long as the handler lives, makes the
// sample tool current; every other event goes to the current tool.
//
// The viewer must be a UiWidget (ExCastFailed otherwise); the node's
// controller a TsDgInterface, a TsMgInterface and a PiImageModifier
// (ExNullPtr for no node, ExCastFailed otherwise).
class TsDgEventHandler : public MfCurrentToolEventHandler {
public:
    TsDgEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node, const RCShdPtr<PiPath>& path);
    ~TsDgEventHandler() override;

    using MfCurrentToolEventHandler::handleEvent;
    bool handleEvent(const PiEventContext& context) override;

private:
    // The viewer widget's handler, on which the hotkey is registered. The
    // handler may outlive the viewer (whoever holds it); the registry forgets
    // the widget's handler when the widget goes, so only the pointer is kept.
    UiGrabHandler* _viewer;
    RCStrongPtr<PiImgPick> _imgPick;
};

// The factory registered with TsDgInterface: a new handler for the viewer and
// the keyer node.
RCStrongPtr<PiEventHandler> tsDgEventHandlerFactory(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                                    const RCShdPtr<PiPath>& path);

// Start-up registers the factory with TsDgInterface; shut-down withdraws it.
void tsDgEventHandlerInitialise();
void tsDgEventHandlerFinalise();
