#pragma once

#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <pluginAPI/piImgPick.h>

class PiNode;
class PiPath;
class PiViewer;
class UiGrabHandler;

// The viewer event handler of a keyer node's spill-and-blend stage: a tool
// set of the two key-colour pick tools (transient: after one pick the
// previous tool is current again), the blend tool and the spill tool (the
// slider-bar tools of Zn::TsSpillBlendMfTool), under the names
// TsSpillBlendTool::getManipToolName(0, 1, 3, 2), appended in that order;
// the first key-colour pick tool is current at first.
//
// The spill tool edits the node's two spill inputs, the blend tool its two
// blend inputs; their drags are undo steps named by the texts of
// "MSG_TS_SET_SPILL" and "MSG_TS_SET_BLEND". A bar tool that becomes current
// starts hidden and shows at the next click.
//
// Hotkeys of UiHotkeyRegistry::TesseraDomain, registered on the viewer
// widget's handler, are looked at before any tool sees them: "Adjust Spill"
// makes the spill tool current, "Adjust Blend" the blend tool.
//
// The viewer must be a UiWidget (ExCastFailed otherwise); the node's
// controller a TsSpillBlendInterface, a TsMgInterface, a PiToolInterface and
// a PiImageModifier (ExNullPtr for no node, ExCastFailed otherwise).
class TsSpillBlendEventHandler : public MfCurrentToolEventHandler {
public:
    TsSpillBlendEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                             const RCShdPtr<PiPath>& path);
    ~TsSpillBlendEventHandler() override;

    using MfCurrentToolEventHandler::handleEvent;
    bool handleEvent(const PiEventContext& context) override;

private:
    void toolChanged();

    PiViewer& _viewer;
    // The viewer widget's handler, on which the hotkeys are registered. The
    // handler may outlive the viewer (whoever holds it); the registry forgets
    // the widget's handler when the widget goes, so only the pointer is kept.
    UiGrabHandler* _hotkeyHandler;
    RCStrongPtr<PiImgPick> _imgPick;
    CbMethod<TsSpillBlendEventHandler, CbEmptyType> _toolChangedCb;
};

// The factory registered with TsSpillBlendInterface: a new handler for the
// viewer and the keyer node.
RCStrongPtr<PiEventHandler> tsSpillBlendEventHandlerFactory(PiViewer& viewer,
                                                            const RCShdPtr<PiNode>& node,
                                                            const RCShdPtr<PiPath>& path);

// Start-up registers the factory with TsSpillBlendInterface, then the
// subscriptions "MSG_TS_SET_SPILL" and "MSG_TS_SET_BLEND", in that order.
// Shut-down withdraws the factory.
void tsSpillBlendEventHandlerInitialise();
void tsSpillBlendEventHandlerFinalise();
