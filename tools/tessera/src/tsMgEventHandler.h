#pragma once

#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <base/rcWeakPtr.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <pluginAPI/piImgPick.h>
#include <tesseraCore/tsMgInterface.h>

class PiNode;
class PiPath;
class PiViewer;

// The viewer event handler of a keyer node's matte-generation stage: a tool
// set of the two key-colour pick tools (transient: after one pick the
// previous tool is current again), the sample-patch tool and the sample-matte
// tool, under the names TsMgTool::getManipToolName(0..3); the first key-colour
// pick tool is current at first.
//
// Hotkeys of UiHotkeyRegistry::TesseraDomain, registered on the viewer
// widget's handler, are looked at before any tool sees them: "Sample Matte"
// makes the sample-matte tool current; "Sample Patch 1" to "Sample Patch 9"
// make that patch current and then the sample-patch tool, when the node has
// the patch (otherwise the hotkey goes on to the current tool like any other
// event).
//
// The viewer must be a UiWidget (ExCastFailed otherwise), the node's
// controller a TsMgInterface and a PiImageModifier (ExCastFailed).
class TsMgEventHandler : public MfCurrentToolEventHandler {
public:
    TsMgEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node, const RCShdPtr<PiPath>& path);
    ~TsMgEventHandler() override;

    using MfCurrentToolEventHandler::handleEvent;
    bool handleEvent(const PiEventContext& context) override;

private:
    void toolChanged();

    PiViewer& _viewer;
    RCWeakPtr<TsMgInterface> _mg;
    RCStrongPtr<PiImgPick> _imgPick;
    CbMethod<TsMgEventHandler, CbEmptyType> _toolChangedCb;
};

// The factory registered with TsMgInterface: a new handler for the viewer and
// the keyer node.
RCStrongPtr<PiEventHandler> tsMgEventHandlerFactory(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                                    const RCShdPtr<PiPath>& path);

// Start-up registers the factory with TsMgInterface; shut-down withdraws it.
void tsMgEventHandlerInitialise();
void tsMgEventHandlerFinalise();
