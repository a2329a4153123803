#include "tsSpillBlendEventHandler.h"
#include "tsImgPickKeyColorsTool.h"
#include "tsSpillBlendMfTool.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/rcWeakPtr.h>
#include <base/typeName.h>
#include <gfx/mfToolset.h>
#include <gfx/mfTransientToolToolset.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piImageModifier.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piStreamViewerUtil.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piToolInterface.h>
#include <pluginAPI/piViewer.h>
#include <resmgt/msgServer.h>
#include <resmgt/msgSubscription.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiWidget.h>

#include <vector>

namespace {

// The undo names of the two bar tools' drags.
MsgSubscription setSpillMsg("MSG_TS_SET_SPILL");
MsgSubscription setBlendMsg("MSG_TS_SET_BLEND");

// The entry ids of the hotkeys, shared by every handler; each handler made
// writes them again (an entry's id never changes).
unsigned adjustSpillHotkey = 0;
unsigned adjustBlendHotkey = 0;

RCShdPtr<MfToolset> makeToolset(PiViewer& viewer) {
    const RCShdPtr<MfToolset> plain(new MfToolset(viewer));
    return RCShdPtr<MfToolset>(new MfTransientToolToolset(viewer, plain,
                                                          TsSpillBlendTool::getManipToolName(0),
                                                          TsSpillBlendTool::getManipToolName(1)));
}

const RCShdPtr<PiNodeController>& controllerOf(const RCShdPtr<PiNode>& node) {
    if (!node) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNode>().c_str());
    }
    return node->getController();
}

} // namespace

TsSpillBlendEventHandler::TsSpillBlendEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                                   const RCShdPtr<PiPath>& path)
    : MfCurrentToolEventHandler(makeToolset(viewer))
    , _viewer(viewer)
    , _hotkeyHandler(refCast<UiWidget>(viewer).getEventHandler())
    , _toolChangedCb(this, &TsSpillBlendEventHandler::toolChanged) {
    const RCShdPtr<PiNodeController>& controller = controllerOf(node);
    const RCWeakPtr<TsSpillBlendInterface> weakSpillBlend(
        rcCastRequired<TsSpillBlendInterface>(controller));
    const RCStrongPtr<TsSpillBlendInterface> spillBlend = weakSpillBlend.lock();
    if (!spillBlend) {
        RCExUtil::throwExNullPtr(typeNameOf<TsSpillBlendInterface>().c_str());
    }
    const RCShdPtr<PiTimePath> timePath(
        new PiTimePath(viewer.getTimeClient(), RCShdPtr<const PiPath>(path)));
    const RCShdPtr<PiImageModifier> modifier = rcCastRequired<PiImageModifier>(controller);
    _imgPick = PiImgPick::create(modifier->getInput(), timePath,
                                 PiStreamViewerUtil::getInteractionStream(viewer));

    PiImgPick& imgPick = *_imgPick;
    TsMgInterface& mg = *rcCastRequired<TsMgInterface>(controller);
    appendTool(TsSpillBlendTool::getManipToolName(0),
               RCShdPtr<MfTool>(
                   new TsImgPickKeyColorsTool(imgPick, viewer, mg, path, TsTypes::KeyColor1)));
    appendTool(TsSpillBlendTool::getManipToolName(1),
               RCShdPtr<MfTool>(
                   new TsImgPickKeyColorsTool(imgPick, viewer, mg, path, TsTypes::KeyColor2)));

    const PiToolInterface& tools = *rcCastRequired<PiToolInterface>(controller);
    const std::vector<RCShdPtr<PiInput>> blend{spillBlend->getBlendInput(0),
                                               spillBlend->getBlendInput(1)};
    appendTool(TsSpillBlendTool::getManipToolName(3),
               Zn::TsSpillBlendMfTool::create(viewer, path, blend, timePath, tools,
                                              setBlendMsg.getText()));
    const std::vector<RCShdPtr<PiInput>> spill{spillBlend->getSpillInput(0),
                                               spillBlend->getSpillInput(1)};
    appendTool(TsSpillBlendTool::getManipToolName(2),
               Zn::TsSpillBlendMfTool::create(viewer, path, spill, timePath, tools,
                                              setSpillMsg.getText()));

    // Last: a handler that could not be made (a node that is no keyer) has no
    // destructor to withdraw them.
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    adjustSpillHotkey = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Adjust Spill");
    adjustBlendHotkey = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Adjust Blend");
    registry.addHotkeyHandler(adjustSpillHotkey, _hotkeyHandler);
    registry.addHotkeyHandler(adjustBlendHotkey, _hotkeyHandler);

    addToolChangedCb(&_toolChangedCb);
}

TsSpillBlendEventHandler::~TsSpillBlendEventHandler() {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    registry.removeHotkeyHandler(adjustSpillHotkey, _hotkeyHandler);
    registry.removeHotkeyHandler(adjustBlendHotkey, _hotkeyHandler);
}

bool TsSpillBlendEventHandler::handleEvent(const PiEventContext& context) {
    EvEvent& event = context.getEvent();
    if (const auto* hotkey = dynamic_cast<const EvHotkeyEvent*>(&event)) {
        if (hotkey->getEntry() == adjustSpillHotkey) {
            setCurrentTool(TsSpillBlendTool::getManipToolName(2));
            event.setProcessed(true);
            return true;
        }
        if (hotkey->getEntry() == adjustBlendHotkey) {
            setCurrentTool(TsSpillBlendTool::getManipToolName(3));
            event.setProcessed(true);
            return true;
        }
    }
    return MfCurrentToolEventHandler::handleEvent(context);
}

void TsSpillBlendEventHandler::toolChanged() {
    if (auto* tool = dynamic_cast<Zn::TsSpillBlendMfTool*>(getToolset()->getCurrentTool().get())) {
        tool->hideManipulator();
    }
}

RCStrongPtr<PiEventHandler> tsSpillBlendEventHandlerFactory(PiViewer& viewer,
                                                            const RCShdPtr<PiNode>& node,
                                                            const RCShdPtr<PiPath>& path) {
    return RCStrongPtr<PiEventHandler>(new TsSpillBlendEventHandler(viewer, node, path));
}

void tsSpillBlendEventHandlerInitialise() {
    TsSpillBlendInterface::registerEhFactory(&tsSpillBlendEventHandlerFactory);
    MsgServer& server = MsgServer::getInstance();
    server.registerSubscription(&setSpillMsg);
    server.registerSubscription(&setBlendMsg);
}

void tsSpillBlendEventHandlerFinalise() {
    TsSpillBlendInterface::unregisterEhFactory(&tsSpillBlendEventHandlerFactory);
}
