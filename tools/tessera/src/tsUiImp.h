#pragma once

#include "tsPanelUtil.h"

#include <base/cbDataMethod.h>
#include <base/cbMethod.h>
#include <base/evEvent.h>
#include <base/oPtr.h>
#include <base/obObserver.h>
#include <base/rcBase.h>
#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/rcShdPtr.h>
#include <base/rcWeakPtr.h>
#include <base/typeName.h>
#include <gfx/wsFontUtils.h>
#include <internalAPI/snSelection.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piLabel.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piNodeEvent.h>
#include <pluginAPI/piNodePredicates.h>
#include <pluginAPI/piNodeWidget.h>
#include <pluginAPI/piSnItem.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piWidget.h>
#include <resmgt/liString.h>
#include <resmgt/liStringUtil.h>
#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsTool3.h>
#include <ui/uiApplication.h>
#include <ui/uiLabel.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiWidgetAdapter.h>
#include <ui/uiWidgetEvent.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The main panel of a keyer group, in the two variants that the two keyer
// generations get (TsInterface: TsUiImpGeneration1, here; TsInterface3:
// TsUiImpGeneration2, tsUiImpGeneration2.h). The panel description holds:
//  - "tsOtherUi", "tsSpillBlend", "tsDegrain", "tsMatteGen": node-widget
//    areas that show the stage panels of the node the panel is about;
//  - "nodeSelect0" .. "nodeSelect5" (toggles) and "nodeSelectLabel0" ..
//    "nodeSelectLabel5" (labels): the six slots of the keyer. A label shows
//    its slot's node name, cut at its end to the label's width and cut again
//    when the label is resized or the node renamed. Switching a toggle on
//    selects its slot's node; pressing it with Ctrl held puts the selected
//    node in its slot (an undo step of the keyer);
//  - "sampleMenu": five entries that make the viewer's current tool one of
//    the variant's tool names (in order; the entries' texts must be those
//    names, as the menu also follows tool changes made elsewhere).
// Areas and the menu may be missing (their features stay unbound); the slot
// widgets are required (ExNullPtr). A widget of the wrong kind is
// ExCastFailed naming it and both types.
//
// The panel is about the node that the application's current node selection
// holds first among the group and the nodes directly inside it; selections
// of anything else leave the panel as it is. Its widgets are refreshed by an
// UpdateUiEvent that runs once the event being handled is done. A change of
// the keyer's slots or selected node (undo, redo, a setup loaded) refreshes
// the labels and toggles; while the application's selection holds no node
// of the group, the panel then shows the keyer's selected node. A node that
// leaves the group leaves the areas that showed it empty.
//
// The panel owns its callback objects and observes the selection for as
// long as it lives; destroying it disconnects it from everything.

// The names a variant looks its widgets up by.
struct TsUiImpNames {
    LiString mainUiContainer;
    LiString otherUi;
    LiString spillBlend;
    LiString degrain;
    LiString matteGen;
    LiString sampleMenu;
    // Followed by the slot number 0 to 5.
    LiString nodeSelect;
    LiString nodeSelectLabel;
};

// The first variant: for TsInterface groups, following the keyer's
// TsNodeSelectChangedEvent. Its names and tool-name list are its own.
struct TsUiImpGeneration1 {
    using Interface = TsInterface;
    static constexpr bool FollowsSelectedNodesValue = false;
    static const TsUiImpNames& getNames();
    // Filled at start-up (tsUiImpInitialise).
    static std::vector<std::string>& getToolNames();
};

template <class Variant>
class TsUiImp : public RCBase<LkCounter<int>>, public ObObserver<Sn> {
public:
    using Interface = typename Variant::Interface;
    static constexpr int SlotCount = TsGroupInterface::SlotCount;

    // `widget` is the panel's container (ExNullPtr when null, ExCastFailed
    // when another kind); `group` the keyer group, whose interface must be
    // the variant's (ExCastFailed).
    TsUiImp(const RCShdPtr<PiWidget>& widget, const RCShdPtr<PiGroupNode>& group,
            const RCShdPtr<const PiTimePath>& timePath);
    ~TsUiImp() override;

    // The application's current node selection changed.
    void update(const Sn& selection) override;

    // The deferred refresh: the labels fitted again, the tool menu following
    // the current viewer's handler and showing its current tool.
    void updateUi();

private:
    // Posted to the application: runs updateUi once the current event has
    // been handled, if the panel still lives.
    class UpdateUiEvent : public EvRequestEvent {
    public:
        explicit UpdateUiEvent(TsUiImp* panel)
            : _panel(panel) {}
        void process() override {
            if (const RCStrongPtr<TsUiImp> panel = _panel.lock()) {
                panel->updateUi();
            }
        }

    private:
        RCWeakPtr<TsUiImp> _panel;
    };

    RCShdPtr<Interface> keyer() const;
    RCShdPtr<PiNode> shownNode() const;
    std::array<RCShdPtr<PiNodeWidget>, 4> areas() const;
    // The node of the first item of the selection filtered through the
    // first predicate; empty when there is none.
    RCShdPtr<PiNode> selectedNode() const;

    void setLabel(int slot);
    void attachNameHandler(int slot);
    void refreshSlots();
    void refreshFromSelection();
    void showNode(const RCShdPtr<PiNode>& node);

    void menuChanged(EvEvent& event);
    void toggleChanged(EvEvent& event, const int& slot);
    void togglePressed(EvEvent& event, const int& slot);
    void labelResized(EvEvent& event, const int& slot);
    void currentEventHandlerChanged();
    void toolChanged();
    void nodeSelectChanged(const PiNodeEvent& event);
    void keyerSelectionChanged();
    void nodeLeft(const PiNodeEvent& event);
    void nameChanged(const PiNodeEvent& event, const int& slot);

    RCShdPtr<PiContainer> _container;
    RCShdPtr<PiWidget> _mainUiContainer;
    RCShdPtr<PiNodeWidget> _otherUi;
    RCShdPtr<PiNodeWidget> _spillBlend;
    RCShdPtr<PiNodeWidget> _degrain;
    RCShdPtr<PiNodeWidget> _matteGen;
    RCShdPtr<PiMenu> _sampleMenu;
    CbMethod<TsUiImp, EvEvent> _menuHandler;
    std::array<CbDataMethod<TsUiImp, EvEvent, int>, SlotCount> _toggleChangedCbs;
    std::array<CbDataMethod<TsUiImp, EvEvent, int>, SlotCount> _togglePressedCbs;
    std::array<CbDataMethod<TsUiImp, EvEvent, int>, SlotCount> _labelResizedCbs;
    std::array<RCShdPtr<PiDualState>, SlotCount> _toggles;
    std::array<RCShdPtr<PiLabel>, SlotCount> _labels;
    RCWeakPtr<Interface> _keyer;
    RCWeakPtr<PiGraph> _graph;
    RCShdPtr<SnSelection> _selection;
    // The group or a node directly inside it; a node directly inside it (not
    // a boundary node, in the first variant).
    SnItemPredicate _groupOrChild;
    SnItemPredicate _child;
    CbMethod<TsUiImp, CbEmptyType> _eventHandlerChangedCb;
    // Registered on the current viewer handler; replaced when that changes.
    std::unique_ptr<CbMethod<TsUiImp, CbEmptyType>> _toolChangedCb;
    CbMethod<TsUiImp, const PiNodeEvent> _nodeSelectChangedCb;
    CbMethod<TsUiImp, const PiNodeEvent> _nodeMovedCb;
    CbMethod<TsUiImp, const PiNodeEvent> _nodeRemovedCb;
    std::array<CbDataMethod<TsUiImp, const PiNodeEvent, int>, SlotCount> _nameChangedCbs;
    int _slotOn = -1;
    // Generation 2: the group's selected-nodes value, and whether the panel
    // is changing the keyer itself (its own changes are not reacted to).
    RCShdPtr<PiInput> _selectedNodes;
    bool _changingKeyer = false;
};

// --- Implementation (shared by both variants)

namespace TsUiImpDetail {

using TsPanelUtil::currentToolHandler;
using TsPanelUtil::required;
using TsPanelUtil::requiredNamed;

} // namespace TsUiImpDetail

template <class Variant>
TsUiImp<Variant>::TsUiImp(const RCShdPtr<PiWidget>& widget, const RCShdPtr<PiGroupNode>& group,
                          const RCShdPtr<const PiTimePath>&)
    : _container(rcCastRequired<PiContainer>(widget)) {
    using TsUiImpDetail::required;
    using TsUiImpDetail::requiredNamed;
    const TsUiImpNames& names = Variant::getNames();
    _mainUiContainer = _container->findWidget(names.mainUiContainer);
    _otherUi = _container->findWidget<PiNodeWidget>(names.otherUi);
    _spillBlend = _container->findWidget<PiNodeWidget>(names.spillBlend);
    _degrain = _container->findWidget<PiNodeWidget>(names.degrain);
    _matteGen = _container->findWidget<PiNodeWidget>(names.matteGen);
    _sampleMenu = _container->findWidget<PiMenu>(names.sampleMenu);

    _menuHandler.set(this, &TsUiImp::menuChanged);
    for (int i = 0; i < SlotCount; ++i) {
        _toggleChangedCbs[i].set(this, &TsUiImp::toggleChanged, i);
        _togglePressedCbs[i].set(this, &TsUiImp::togglePressed, i);
        _labelResizedCbs[i].set(this, &TsUiImp::labelResized, i);
        _nameChangedCbs[i].set(this, &TsUiImp::nameChanged, i);
    }
    _eventHandlerChangedCb.set(this, &TsUiImp::currentEventHandlerChanged);
    _nodeSelectChangedCb.set(this, &TsUiImp::nodeSelectChanged);
    _nodeMovedCb.set(this, &TsUiImp::nodeLeft);
    _nodeRemovedCb.set(this, &TsUiImp::nodeLeft);
    if (_sampleMenu) {
        _sampleMenu->addCallback(PiWidget::Activated, &_menuHandler);
    }

    required(group);
    const RCShdPtr<Interface> keyer = rcCastRequired<Interface>(group->getInterface());
    _keyer = RCWeakPtr<Interface>(keyer);
    _graph = RCWeakPtr<PiGraph>(group->getGraph());

    const RCShdPtr<const PiNode> groupNode(group);
    const RCShdPtr<const PiGroupNode> constGroup(group);
    const PiNodePredicate inGroup = PiIsNodeInGroupNode::create(constGroup, false);
    _groupOrChild =
        PiGraphObjectPredicateSnItemAdapter<PiNode>::create(PiIsNode::create(groupNode) || inGroup);
    if constexpr (Variant::FollowsSelectedNodesValue) {
        _child = PiGraphObjectPredicateSnItemAdapter<PiNode>::create(inGroup);
        _selectedNodes = requiredNamed(group->getInput(TsTool3::getSelectedNodesName()),
                                       TsTool3::getSelectedNodesName());
        _changingKeyer = false;
    } else {
        _child = PiGraphObjectPredicateSnItemAdapter<PiNode>::create(
            inGroup && !PiIsBoundaryNode::getPredicate());
    }

    _selection = SnSelection::getCurrent();
    _selection->attachObserver(this);

    for (int i = 0; i < SlotCount; ++i) {
        const LiString number = LiStringUtil::convertNb(i);
        const LiString toggleName = names.nodeSelect + number;
        _toggles[i] = requiredNamed(_container->findWidget<PiDualState>(toggleName), toggleName);
        _toggles[i]->addCallback(PiWidget::StateChanged, &_toggleChangedCbs[i]);
        _toggles[i]->addCallback(PiWidget::Activated, &_togglePressedCbs[i]);
        const LiString labelName = names.nodeSelectLabel + number;
        _labels[i] = requiredNamed(_container->findWidget<PiLabel>(labelName), labelName);
        setLabel(i);
        _labels[i]->addCallback(PiWidget::Resized, &_labelResizedCbs[i]);
        attachNameHandler(i);
    }

    refreshFromSelection();

    PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(
        &_eventHandlerChangedCb);
    const RCShdPtr<PiNodeController>& controller = group->getController();
    if constexpr (Variant::FollowsSelectedNodesValue) {
        controller->addCallback<PiNodeEvent::ValueChanged>(&_nodeSelectChangedCb);
    } else {
        controller->addCallback<TsNodeSelectChangedEvent>(&_nodeSelectChangedCb);
    }
    controller->addCallback<PiNodeEvent::NodeMovedFromGroup>(&_nodeMovedCb);
    controller->addCallback<PiNodeEvent::NodeRemovedFromGroup>(&_nodeRemovedCb);
}

template <class Variant>
TsUiImp<Variant>::~TsUiImp() = default;

template <class Variant>
RCShdPtr<typename Variant::Interface> TsUiImp<Variant>::keyer() const {
    return TsUiImpDetail::required(RCShdPtr<Interface>(_keyer.lock()));
}

template <class Variant>
std::array<RCShdPtr<PiNodeWidget>, 4> TsUiImp<Variant>::areas() const {
    return {_otherUi, _spillBlend, _degrain, _matteGen};
}

template <class Variant>
RCShdPtr<PiNode> TsUiImp<Variant>::shownNode() const {
    for (const RCShdPtr<PiNodeWidget>& area : areas()) {
        if (area && area->hasContent()) {
            return area->getNode();
        }
    }
    return RCShdPtr<PiNode>();
}

template <class Variant>
RCShdPtr<PiNode> TsUiImp<Variant>::selectedNode() const {
    const RCShdPtr<SnSelection> filtered = _selection->filter(_groupOrChild);
    if (filtered->isEmpty()) {
        return RCShdPtr<PiNode>();
    }
    // The first predicate passes node items only.
    return static_cast<const PiSnItem<PiNode>&>(*filtered->first()).get();
}

template <class Variant>
void TsUiImp<Variant>::setLabel(int slot) {
    const LiString name = keyer()->getSlotName(slot);
    const RCShdPtr<UiLabel> label =
        rcCast<UiLabel>(rcCast<UiWidgetAdapter>(_labels[slot])->getUiWidget());
    const RCShdPtr<WsFont> font = label->getLabel().getFont();
    const int width = label->getCanvas().getWidth();
    _labels[slot]->setText(WsFontUtils::truncateAtTheEnd(font, name, width));
}

template <class Variant>
void TsUiImp<Variant>::attachNameHandler(int slot) {
    _nameChangedCbs[slot].reset();
    if (const RCShdPtr<PiNode> node = keyer()->getSlotNode(slot)) {
        node->getController()->template addCallback<PiNodeEvent::NameChanged>(
            &_nameChangedCbs[slot]);
    }
}

template <class Variant>
void TsUiImp<Variant>::refreshSlots() {
    for (int i = 0; i < SlotCount; ++i) {
        setLabel(i);
        attachNameHandler(i);
    }
}

template <class Variant>
void TsUiImp<Variant>::refreshFromSelection() {
    if (const RCShdPtr<PiNode> node = selectedNode()) {
        showNode(node);
    }
}

// The toggle of the node's slot on (or the one that was on off), and the
// node in the areas.
template <class Variant>
void TsUiImp<Variant>::showNode(const RCShdPtr<PiNode>& node) {
    const int slot = keyer()->getNodeSlot(node);
    if (slot != -1) {
        _toggles[slot]->setState(true);
        _slotOn = slot;
    } else if (_slotOn != -1) {
        _toggles[_slotOn]->setState(false);
        _slotOn = -1;
    }
    if (PiGraphObject::areEqual(node, shownNode())) {
        return;
    }
    for (const RCShdPtr<PiNodeWidget>& area : areas()) {
        if (area) {
            rcCast<UiNodeWidget>(area)->setContent(node);
        }
    }
    UiApplication::getInstance().postRequest(OPtr<EvRequestEvent>(new UpdateUiEvent(this)));
}

template <class Variant>
void TsUiImp<Variant>::update(const Sn&) {
    refreshFromSelection();
}

template <class Variant>
void TsUiImp<Variant>::updateUi() {
    for (int i = 0; i < SlotCount; ++i) {
        setLabel(i);
    }
    currentEventHandlerChanged();
    toolChanged();
}

template <class Variant>
void TsUiImp<Variant>::menuChanged(EvEvent&) {
    const int item = _sampleMenu->getSelection();
    const RCShdPtr<PiCurrentToolEventHandler> handler = TsUiImpDetail::currentToolHandler();
    if (!handler) {
        return;
    }
    // The menu holds the tools of the list, in its order.
    handler->setCurrentTool(Variant::getToolNames()[static_cast<std::size_t>(item)]);
}

template <class Variant>
void TsUiImp<Variant>::toggleChanged(EvEvent& event, const int& slot) {
    const bool on = refCast<UiStateChanged>(event).getState();
    if (on) {
        _slotOn = slot;
    } else if (_slotOn == slot) {
        _slotOn = -1;
    }
    if (!_container->isActive() || !on) {
        return;
    }
    const RCShdPtr<PiNode> node = keyer()->getSlotNode(slot);
    if (!node) {
        return;
    }
    _selection->assign(*SnSelection::create(PiSnItemUtil::create(node)));
}

template <class Variant>
void TsUiImp<Variant>::togglePressed(EvEvent& event, const int& slot) {
    if (!refCast<EvDeviceEvent>(event).getKeyboardState().isEnabled(EvKeyboardState::Ctrl)) {
        return;
    }
    const RCShdPtr<PiNode> node = selectedNode();
    if (!node) {
        return;
    }
    struct Changing {
        bool& flag;
        bool was;
        ~Changing() { flag = was; }
    } changing{_changingKeyer, _changingKeyer};
    _changingKeyer = true;
    keyer()->setSlotNode(slot, node);
    // The node may have left another slot.
    refreshSlots();
}

template <class Variant>
void TsUiImp<Variant>::labelResized(EvEvent&, const int& slot) {
    setLabel(slot);
}

template <class Variant>
void TsUiImp<Variant>::currentEventHandlerChanged() {
    const RCShdPtr<PiCurrentToolEventHandler> handler = TsUiImpDetail::currentToolHandler();
    if (!handler) {
        return;
    }
    _toolChangedCb = std::make_unique<CbMethod<TsUiImp, CbEmptyType>>(this, &TsUiImp::toolChanged);
    handler->addToolChangedCb(_toolChangedCb.get());
}

template <class Variant>
void TsUiImp<Variant>::toolChanged() {
    const RCShdPtr<PiCurrentToolEventHandler> handler = TsUiImpDetail::currentToolHandler();
    if (!handler || !_sampleMenu) {
        return;
    }
    const std::string tool = handler->getCurrentTool();
    const int remembered = _sampleMenu->getSelection();
    const std::vector<std::string>& tools = Variant::getToolNames();
    for (int k = 0; k < static_cast<int>(tools.size()); ++k) {
        _sampleMenu->setSelection(k);
        if (_sampleMenu->getSelectedText() == tool) {
            return;
        }
    }
    _sampleMenu->setSelection(remembered);
}

template <class Variant>
void TsUiImp<Variant>::nodeSelectChanged(const PiNodeEvent& event) {
    if constexpr (Variant::FollowsSelectedNodesValue) {
        const auto& changed = static_cast<const PiNodeEvent::ValueChanged&>(event);
        if (!PiGraphObject::areEqual(changed.getValue(), _selectedNodes) || _changingKeyer) {
            return;
        }
    }
    keyerSelectionChanged();
}

template <class Variant>
void TsUiImp<Variant>::keyerSelectionChanged() {
    refreshSlots();
    if (const RCShdPtr<PiNode> node = selectedNode()) {
        showNode(node);
        return;
    }
    const RCShdPtr<PiNode> selected = keyer()->getSelectedNode();
    if (selected && _child(PiSnItemUtil::create(selected))) {
        showNode(selected);
    }
}

template <class Variant>
void TsUiImp<Variant>::nodeLeft(const PiNodeEvent& event) {
    const RCShdPtr<PiNode>& node = event.getNode();
    for (const RCShdPtr<PiNodeWidget>& area : areas()) {
        if (area && area->hasContent() && node && area->getNode()->getId() == node->getId()) {
            rcCast<UiNodeWidget>(area)->setContent(RCShdPtr<PiNode>());
        }
    }
    refreshSlots();
}

template <class Variant>
void TsUiImp<Variant>::nameChanged(const PiNodeEvent&, const int& slot) {
    setLabel(slot);
}

// The instance-data factory of the first variant, registered with
// TsInterface.
RCShdPtr<RCBase<LkCounter<int>>> tsUiImpFactory(const RCShdPtr<PiWidget>& widget,
                                                const RCShdPtr<PiGroupNode>& group,
                                                const RCShdPtr<const PiTimePath>& timePath);

// Start-up sets the factory and fills the variant's tool-name list; shut-down
// leaves the factory in place.
void tsUiImpInitialise();
void tsUiImpFinalise();
