#include "tsDgEventHandler.h"
#include "tsDgSampleTool.h"
#include "tsImgPickKeyColorsTool.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>
#include <gfx/mfToolset.h>
#include <gfx/mfTransientToolToolset.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piImageModifier.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piStreamViewerUtil.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piViewer.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgInterface.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiWidget.h>

namespace {

// The entry id of "Sample Degrain", shared by every handler; each handler
// made writes it again (an entry's id never changes).
unsigned sampleDegrainHotkey = 0;

RCShdPtr<MfToolset> makeToolset(PiViewer& viewer) {
    const RCShdPtr<MfToolset> plain(new MfToolset(viewer));
    return RCShdPtr<MfToolset>(new MfTransientToolToolset(
        viewer, plain, TsDgTool::getManipToolName(0), TsDgTool::getManipToolName(1)));
}

const RCShdPtr<PiNodeController>& controllerOf(const RCShdPtr<PiNode>& node) {
    if (!node) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNode>().c_str());
    }
    return node->getController();
}

} // namespace

TsDgEventHandler::TsDgEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                   const RCShdPtr<PiPath>& path)
    : MfCurrentToolEventHandler(makeToolset(viewer))
    , _viewer(refCast<UiWidget>(viewer).getEventHandler()) {
    const RCShdPtr<PiTimePath> timePath(
        new PiTimePath(viewer.getTimeClient(), RCShdPtr<const PiPath>(path)));
    const RCShdPtr<PiNodeController>& controller = controllerOf(node);
    const RCShdPtr<PiImageModifier> modifier = rcCastRequired<PiImageModifier>(controller);
    _imgPick = PiImgPick::create(modifier->getInput(), timePath,
                                 PiStreamViewerUtil::getInteractionStream(viewer));

    PiImgPick& imgPick = *_imgPick;
    TsMgInterface& mg = *rcCastRequired<TsMgInterface>(controller);
    TsDgInterface& dg = *rcCastRequired<TsDgInterface>(controller);
    appendTool(TsDgTool::getManipToolName(0), RCShdPtr<MfTool>(new TsImgPickKeyColorsTool(
                                                  imgPick, viewer, mg, path, TsTypes::KeyColor1)));
    appendTool(TsDgTool::getManipToolName(1), RCShdPtr<MfTool>(new TsImgPickKeyColorsTool(
                                                  imgPick, viewer, mg, path, TsTypes::KeyColor2)));
    appendTool(TsDgTool::getManipToolName(2),
               RCShdPtr<MfTool>(new TsDgSampleTool(imgPick, dg, timePath)));

    // Last: a handler that could not be made (a node that is no keyer) has no
    // destructor to withdraw it.
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    sampleDegrainHotkey = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Degrain");
    registry.addHotkeyHandler(sampleDegrainHotkey, _viewer);
}

TsDgEventHandler::~TsDgEventHandler() {
    UiHotkeyRegistry::getInstance().removeHotkeyHandler(sampleDegrainHotkey, _viewer);
    _imgPick = RCStrongPtr<PiImgPick>();
}

bool TsDgEventHandler::handleEvent(const PiEventContext& context) {
    EvEvent& event = context.getEvent();
    const auto* hotkey = dynamic_cast<const EvHotkeyEvent*>(&event);
    if (hotkey && hotkey->getEntry() == sampleDegrainHotkey) {
        setCurrentTool(TsDgTool::getManipToolName(2));
        event.setProcessed(true);
        return true;
    }
    return MfCurrentToolEventHandler::handleEvent(context);
}

RCStrongPtr<PiEventHandler> tsDgEventHandlerFactory(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                                    const RCShdPtr<PiPath>& path) {
    return RCStrongPtr<PiEventHandler>(new TsDgEventHandler(viewer, node, path));
}

void tsDgEventHandlerInitialise() {
    TsDgInterface::registerEhFactory(&tsDgEventHandlerFactory);
}

void tsDgEventHandlerFinalise() {
    TsDgInterface::unregisterEhFactory(&tsDgEventHandlerFactory);
}
