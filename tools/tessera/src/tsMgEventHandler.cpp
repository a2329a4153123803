#include "tsMgEventHandler.h"
#include "tsImgPickKeyColorsTool.h"
#include "tsMgInputValues.h"
#include "tsMgSampleMatteTool.h"
#include "tsMgSamplePatchTool.h"

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
#include <resmgt/liStringUtil.h>
#include <tesseraCore/tsMgTool.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiWidget.h>

namespace {

constexpr int PatchHotkeyCount = 9;

// The entry ids of the hotkeys, shared by every handler: "Sample Patch N" at
// index N - 1, and "Sample Matte". Each handler made writes them again.
unsigned patchHotkeys[PatchHotkeyCount] = {};
unsigned sampleMatteHotkey = 0;

RCShdPtr<MfToolset> makeToolset(PiViewer& viewer) {
    const RCShdPtr<MfToolset> plain(new MfToolset(viewer));
    return RCShdPtr<MfToolset>(new MfTransientToolToolset(
        viewer, plain, TsMgTool::getManipToolName(0), TsMgTool::getManipToolName(1)));
}

RCShdPtr<TsMgInterface> matteGenerator(const RCShdPtr<PiNode>& node) {
    if (!node) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNode>().c_str());
    }
    return rcCastRequired<TsMgInterface>(node->getController());
}

} // namespace

TsMgEventHandler::TsMgEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                   const RCShdPtr<PiPath>& path)
    : MfCurrentToolEventHandler(makeToolset(viewer))
    , _viewer(viewer)
    , _mg(matteGenerator(node))
    , _toolChangedCb(this, &TsMgEventHandler::toolChanged) {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    UiWidget& widget = refCast<UiWidget>(viewer);
    for (int n = 1; n <= PatchHotkeyCount; ++n) {
        const LiString name = LiString("Sample Patch ") + LiStringUtil::convertNb(n);
        patchHotkeys[n - 1] = registry.getEntry(UiHotkeyRegistry::TesseraDomain, name);
        registry.addHotkeyHandler(patchHotkeys[n - 1], widget.getEventHandler());
    }
    sampleMatteHotkey = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Matte");
    registry.addHotkeyHandler(sampleMatteHotkey, widget.getEventHandler());

    const RCShdPtr<PiTimePath> timePath(
        new PiTimePath(viewer.getTimeClient(), RCShdPtr<const PiPath>(path)));

    const RCShdPtr<PiImageModifier> modifier =
        rcCastRequired<PiImageModifier>(node->getController());
    _imgPick = PiImgPick::create(modifier->getInput(), timePath,
                                 PiStreamViewerUtil::getInteractionStream(viewer));

    const RCShdPtr<TsMgInputValues> values(new TsMgInputValues(_mg, timePath));

    PiImgPick& imgPick = *_imgPick;
    const RCStrongPtr<TsMgInterface> mg = _mg.lock();
    TsMgInterface& held = *mg;
    appendTool(TsMgTool::getManipToolName(0),
               RCShdPtr<MfTool>(
                   new TsImgPickKeyColorsTool(imgPick, viewer, held, path, TsTypes::KeyColor1)));
    appendTool(TsMgTool::getManipToolName(1),
               RCShdPtr<MfTool>(
                   new TsImgPickKeyColorsTool(imgPick, viewer, held, path, TsTypes::KeyColor2)));
    appendTool(TsMgTool::getManipToolName(3),
               RCShdPtr<MfTool>(new TsMgSamplePatchTool(imgPick, values, timePath, &held)));
    appendTool(TsMgTool::getManipToolName(2), TsMgSampleMatteTool::create(imgPick, values, viewer));

    addToolChangedCb(&_toolChangedCb);
}

TsMgEventHandler::~TsMgEventHandler() {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    if (auto* widget = dynamic_cast<UiWidget*>(&_viewer)) {
        for (unsigned entry : patchHotkeys) {
            registry.removeHotkeyHandler(entry, widget->getEventHandler());
        }
        registry.removeHotkeyHandler(sampleMatteHotkey, widget->getEventHandler());
    }
}

bool TsMgEventHandler::handleEvent(const PiEventContext& context) {
    EvEvent& event = context.getEvent();
    const auto* hotkey = dynamic_cast<const EvHotkeyEvent*>(&event);
    if (!hotkey) {
        return MfCurrentToolEventHandler::handleEvent(context);
    }
    if (hotkey->getEntry() == sampleMatteHotkey) {
        setCurrentTool(TsMgTool::getManipToolName(2));
        event.setProcessed(true);
        return true;
    }
    for (int i = 0; i < PatchHotkeyCount; ++i) {
        if (hotkey->getEntry() != patchHotkeys[i]) {
            continue;
        }
        const RCStrongPtr<TsMgInterface> mg = _mg.lock();
        if (!mg) {
            RCExUtil::throwExNullPtr(typeNameOf<TsMgInterface>().c_str());
        }
        // A patch the node does not have: the hotkey is not ours.
        if (i < mg->getPatchCount()) {
            mg->makePatchCurrent(i);
            setCurrentTool(TsMgTool::getManipToolName(3));
            event.setProcessed(true);
            return true;
        }
    }
    return MfCurrentToolEventHandler::handleEvent(context);
}

void TsMgEventHandler::toolChanged() {
    if (auto* tool = dynamic_cast<TsMgSampleMatteTool*>(getToolset()->getCurrentTool().get())) {
        tool->toolChanged();
    }
}

RCStrongPtr<PiEventHandler> tsMgEventHandlerFactory(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                                    const RCShdPtr<PiPath>& path) {
    return RCStrongPtr<PiEventHandler>(new TsMgEventHandler(viewer, node, path));
}

void tsMgEventHandlerInitialise() {
    TsMgInterface::registerEhFactory(&tsMgEventHandlerFactory);
}

void tsMgEventHandlerFinalise() {
    TsMgInterface::unregisterEhFactory(&tsMgEventHandlerFactory);
}
