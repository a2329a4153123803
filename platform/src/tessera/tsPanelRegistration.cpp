// The keyer's panels, registered with the host's node widgets: the main
// panel of each keyer-group generation, and the four stage panels that fill
// the main panel's areas. The panels' controllers come from the factories
// that the user-interface module registers with the keyer's interfaces; the
// remaining-settings panel has none: its fields are bound to the node's
// inputs by their "input" properties.
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

#include <base/rcCast.h>
#include <pluginAPI/piWidget.h>
#include <ui/uiNodeWidgetFactory.h>

namespace {

using Controller = RCShdPtr<RCBase<LkCounter<int>>>;

template <class Interface>
bool hasInterface(const PiNode& node) {
    return dynamic_cast<const Interface*>(node.getController().get()) != nullptr;
}

Controller mainPanel(const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
                     const RCShdPtr<const PiTimePath>& timePath) {
    return TsInterface::createInstanceData(widget, rcCast<PiGroupNode>(node), timePath);
}

Controller mainPanelGeneration2(const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
                                const RCShdPtr<const PiTimePath>& timePath) {
    return TsInterface3::createInstanceData(widget, rcCast<PiGroupNode>(node), timePath);
}

Controller matteGenPanel(const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
                         const RCShdPtr<const PiTimePath>& timePath) {
    return rcCast<TsMgInterface>(node->getController())->createUi(widget, timePath);
}

Controller degrainPanel(const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
                        const RCShdPtr<const PiTimePath>& timePath) {
    return rcCast<TsDgInterface>(node->getController())->createUi(widget, timePath);
}

Controller spillBlendPanel(const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
                           const RCShdPtr<const PiTimePath>& timePath) {
    return rcCast<TsSpillBlendInterface>(node->getController())->createUi(widget, timePath);
}

struct Registration {
    Registration() {
        UiNodeWidgetFactory::registerPanel("tsMain", "tsMainPanel.ui", &hasInterface<TsInterface>,
                                           &mainPanel);
        UiNodeWidgetFactory::registerPanel("tsMainGeneration2", "tsMainPanelGeneration2.ui",
                                           &hasInterface<TsInterface3>, &mainPanelGeneration2);
        UiNodeWidgetFactory::registerStage("tsMatteGen", "tsMatteGenPanel.ui",
                                           &hasInterface<TsMgInterface>, &matteGenPanel);
        UiNodeWidgetFactory::registerStage("tsDegrain", "tsDegrainPanel.ui",
                                           &hasInterface<TsDgInterface>, &degrainPanel);
        UiNodeWidgetFactory::registerStage("tsSpillBlend", "tsSpillBlendPanel.ui",
                                           &hasInterface<TsSpillBlendInterface>, &spillBlendPanel);
        UiNodeWidgetFactory::registerStage("tsOtherUi", "tsOtherPanel.ui",
                                           &hasInterface<TsMgInterface>, nullptr);
    }
    ~Registration() {
        for (const char* name : {"tsOtherUi", "tsSpillBlend", "tsDegrain", "tsMatteGen",
                                 "tsMainGeneration2", "tsMain"}) {
            UiNodeWidgetFactory::unregister(name);
        }
    }
};

const Registration registration;

} // namespace
