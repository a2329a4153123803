#pragma once

#include <tesseraCore/tesseraCoreExport.h>

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <pluginAPI/piNodeController.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>

// Viewer and panel classes of the host: the factories hand them through.
class PiViewer;
class PiEventHandler;
class PiWidget;
class PiNode;

// The factories the user-interface module registers for one stage of the
// keyer (TsMgInterface, TsDgInterface, TsSpillBlendInterface each derive from
// it with themselves as `Stage`): the maker of the stage's viewer handler and
// the maker of the stage panel's controller.
//
// Registering a factory again is harmless; the factory registered last is
// used. Withdrawing a factory that is not registered does nothing. Calling
// through a registry without a factory answers empty and reports that the
// module is not loaded or started.
template <class Stage>
class TsStageFactories {
public:
    using EhFactory = RCStrongPtr<PiEventHandler> (*)(PiViewer&, const RCShdPtr<PiNode>&,
                                                      const RCShdPtr<PiPath>&);
    using UiFactory = RCShdPtr<RCBase<LkCounter<int>>> (*)(Stage&, const RCShdPtr<PiWidget>&,
                                                           const RCShdPtr<const PiTimePath>&);

    TS_CORE_API static void registerEhFactory(EhFactory factory);
    TS_CORE_API static void unregisterEhFactory(EhFactory factory);
    TS_CORE_API static void registerUiFactory(UiFactory factory);
    TS_CORE_API static void unregisterUiFactory(UiFactory factory);
    TS_CORE_API static EhFactory getEhFactory();
    TS_CORE_API static UiFactory getUiFactory();
    // The registered factory, or null with a report.
    TS_CORE_API static EhFactory requireEhFactory();
    TS_CORE_API static UiFactory requireUiFactory();

    // The viewer handler of the stage for a keyer node: what the registered
    // factory makes; without a factory, empty and a report. The handler is
    // made where PiEventHandler is a complete type (the template defers the
    // body to the caller).
    template <class Handler = PiEventHandler>
    static RCStrongPtr<Handler> createEventHandler(PiViewer& viewer, const RCShdPtr<PiNode>& node,
                                                   const RCShdPtr<PiPath>& path) {
        if (EhFactory f = requireEhFactory()) {
            return f(viewer, node, path);
        }
        return RCStrongPtr<Handler>();
    }
    // The stage panel's controller bound to `widget`; without a factory,
    // empty and a report.
    TS_CORE_API RCShdPtr<RCBase<LkCounter<int>>>
    createUi(const RCShdPtr<PiWidget>& widget, const RCShdPtr<const PiTimePath>& timePath);

protected:
    TsStageFactories() = default;
};
