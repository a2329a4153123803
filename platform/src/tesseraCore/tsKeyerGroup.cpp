#include "tsUndoStep.h"

#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsTool3.h>

#include <base/exReporter.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>

namespace {

// The controller of a keyer group of either generation (I is TsInterface or
// TsInterface3), forwarding to the group.
template <class I>
class TsKeyerGroupController : public I {
public:
    RCShdPtr<PiNode> getSlotNode(int slot) const override { return group().getSlotNode(slot); }
    int getNodeSlot(const RCShdPtr<const PiNode>& node) const override {
        return group().getNodeSlot(node.get());
    }
    bool setSlotNode(int slot, const RCShdPtr<PiNode>& node) override {
        return group().setSlotNode(slot, node);
    }
    LiString getSlotName(int slot) const override { return group().getSlotName(slot); }
    RCShdPtr<PiInput> getSlotInput(int slot) const override { return group().getSlotInput(slot); }
    int getKeyerNodeCount() const override { return group().getKeyerNodeCount(); }
    RCShdPtr<TsKeyerNode> getKeyerNode(int index) const override {
        return group().getKeyerNode(index);
    }
    RCShdPtr<PiNode> getSelectedNode() const override { return group().getSelectedNode(); }
    bool setSelectedNode(const RCShdPtr<PiNode>& node) override {
        return group().setSelectedNode(node);
    }
    RCShdPtr<PiInput> getSelectedNodesInput() const override {
        return group().getSelectedNodesInput();
    }

protected:
    void inputChanged(PiInput& input) override {
        TsKeyerGroup& g = group();
        if (g.isSelectionInput(input) && g.rcCount() > 0) {
            this->fireEvent(TsNodeSelectChangedEvent(RCShdPtr<PiNode>(&g), g.getSelectedNode()));
        }
    }

private:
    TsKeyerGroup& group() const {
        auto* g = dynamic_cast<TsKeyerGroup*>(this->getNodePtr());
        if (!g) {
            RCExUtil::throwExNullPtr(typeNameOf<TsKeyerGroup>().c_str());
        }
        return *g;
    }
};

} // namespace

TsNodeSelectChangedEvent::TsNodeSelectChangedEvent(const RCShdPtr<PiNode>& group,
                                                   const RCShdPtr<PiNode>& selected)
    : PiNodeEvent(group)
    , _selected(selected) {}

RCShdPtr<TsKeyerGroup> TsKeyerGroup::create(const LiString& name, int generation, int keyerNodes) {
    RCShdPtr<TsKeyerGroup> group(new TsKeyerGroup(name, generation == 2 ? 2 : 1));
    if (group->_generation == 2) {
        group->setController(RCShdPtr<PiNodeController>(new TsKeyerGroupController<TsInterface3>));
    } else {
        group->setController(RCShdPtr<PiNodeController>(new TsKeyerGroupController<TsInterface>));
    }
    for (int i = 0; i < keyerNodes; ++i) {
        group->addKeyerNode("keyer" + std::to_string(i + 1));
    }
    return group;
}

TsKeyerGroup::TsKeyerGroup(const LiString& name, int generation)
    : PiGroupNode(name, true)
    , _generation(generation) {
    for (int i = 0; i < static_cast<int>(_slots.size()); ++i) {
        _slots[i] = rcMake<PiInput>("slot" + std::to_string(i + 1), PiValue(PiNodeRef{}));
        addInput(_slots[i]);
    }
    _selected = rcMake<PiInput>(TsTool3::getSelectedNodesName(), PiValue(PiNodeRef{}));
    addInput(_selected);
}

TsKeyerGroup::~TsKeyerGroup() = default;

int TsKeyerGroup::getKeyerNodeCount() const {
    int count = 0;
    for (const auto& child : getNodes()) {
        count += dynamic_cast<const TsKeyerNode*>(child.get()) ? 1 : 0;
    }
    return count;
}

RCShdPtr<TsKeyerNode> TsKeyerGroup::getKeyerNode(int index) const {
    for (const auto& child : getNodes()) {
        if (auto* keyer = dynamic_cast<TsKeyerNode*>(child.get())) {
            if (index-- == 0) {
                return RCShdPtr<TsKeyerNode>(keyer);
            }
        }
    }
    return RCShdPtr<TsKeyerNode>();
}

RCShdPtr<TsKeyerNode> TsKeyerGroup::findKeyerNode(const LiString& name) const {
    auto* keyer = dynamic_cast<TsKeyerNode*>(findNode(name).get());
    return keyer ? RCShdPtr<TsKeyerNode>(keyer) : RCShdPtr<TsKeyerNode>();
}

RCShdPtr<TsKeyerNode> TsKeyerGroup::addKeyerNode(const LiString& name) {
    RCShdPtr<TsKeyerNode> node = TsKeyerNode::create(name);
    addNode(node);
    return node;
}

RCShdPtr<PiNode> TsKeyerGroup::resolve(const PiNodeRef& ref) const {
    if (ref.isNone()) {
        return RCShdPtr<PiNode>();
    }
    if (ref.id == getId()) {
        return rcCount() > 0 ? RCShdPtr<PiNode>(const_cast<TsKeyerGroup*>(this))
                             : RCShdPtr<PiNode>();
    }
    return findNodeById(ref.id);
}

bool TsKeyerGroup::acceptsForSlot(const PiNode* node) const {
    return node == this || (node && node->getParent() == this);
}

RCShdPtr<PiInput> TsKeyerGroup::getSlotInput(int slot) const {
    return slot >= 0 && slot < static_cast<int>(_slots.size()) ? _slots[slot] : RCShdPtr<PiInput>();
}

RCShdPtr<PiNode> TsKeyerGroup::getSlotNode(int slot) const {
    const RCShdPtr<PiInput> input = getSlotInput(slot);
    return input ? resolve(input->getTypedValue<PiNodeRef>(0.0)) : RCShdPtr<PiNode>();
}

int TsKeyerGroup::getNodeSlot(const PiNode* node) const {
    if (!node) {
        return -1;
    }
    for (int i = 0; i < static_cast<int>(_slots.size()); ++i) {
        if (_slots[i]->getTypedValue<PiNodeRef>(0.0).id == node->getId()) {
            return i;
        }
    }
    return -1;
}

bool TsKeyerGroup::setSlotNode(int slot, const RCShdPtr<PiNode>& node) {
    const RCShdPtr<PiInput> input = getSlotInput(slot);
    if (!input) {
        ExReporter::getInstance().report(getName(), "there is no slot " + std::to_string(slot) +
                                                        " (slots are 0 to 5)");
        return false;
    }
    if (node && !acceptsForSlot(node.get())) {
        ExReporter::getInstance().report(getName(), "node \"" + node->getName() +
                                                        "\" is not in this keyer group");
        return false;
    }
    const TsUndoStep step(*this, "Assign Slot");
    if (node) {
        for (const auto& other : _slots) {
            if (other != input && other->getTypedValue<PiNodeRef>(0.0).id == node->getId()) {
                other->setValue(0.0, PiValue(PiNodeRef{}));
            }
        }
    }
    return input->setValue(0.0, PiValue(PiNodeRef{node ? node->getId() : 0}));
}

LiString TsKeyerGroup::getSlotName(int slot) const {
    const RCShdPtr<PiNode> node = getSlotNode(slot);
    return node ? node->getName() : LiString();
}

RCShdPtr<PiNode> TsKeyerGroup::getSelectedNode() const {
    return resolve(_selected->getTypedValue<PiNodeRef>(0.0));
}

bool TsKeyerGroup::setSelectedNode(const RCShdPtr<PiNode>& node) {
    if (node && !acceptsForSlot(node.get())) {
        ExReporter::getInstance().report(getName(), "node \"" + node->getName() +
                                                        "\" is not in this keyer group");
        return false;
    }
    const TsUndoStep step(*this, "Select Node");
    return _selected->setValue(0.0, PiValue(PiNodeRef{node ? node->getId() : 0}));
}

bool TsKeyerGroup::isSelectionInput(const PiInput& input) const {
    if (&input == _selected.get()) {
        return true;
    }
    for (const auto& slot : _slots) {
        if (&input == slot.get()) {
            return true;
        }
    }
    return false;
}
