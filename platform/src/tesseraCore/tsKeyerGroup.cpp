#include "tsUndoStep.h"

#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsTool3.h>

#include <base/exReporter.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>

#include <algorithm>

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
    if (_generation == 2) {
        _selected = rcMake<PiInput>(TsTool3::getSelectedNodesName(),
                                    PiValue(PiNodeRefList(std::tuple_size_v<Refs>)));
        addInput(_selected);
    } else {
        for (int i = 0; i < static_cast<int>(_slots.size()); ++i) {
            _slots[i] = rcMake<PiInput>("slot" + std::to_string(i + 1), PiValue(PiNodeRef{}));
            addInput(_slots[i]);
        }
        _selected = rcMake<PiInput>(TsTool3::getSelectedNodesName(), PiValue(PiNodeRef{}));
        addInput(_selected);
    }
    _plateSpace = rcMake<PiInput>("plateColorSpace", PiValue(PiStringList{}));
    _backgroundSpace = rcMake<PiInput>("backgroundColorSpace", PiValue(PiStringList{}));
    for (const RCShdPtr<PiInput>& space : {_plateSpace, _backgroundSpace}) {
        space->setStatic();
        addInput(space);
    }
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

bool TsKeyerGroup::removeKeyerNode(const RCShdPtr<PiNode>& node) {
    if (!node || node->getParent() != this || dynamic_cast<const PiBoundaryNode*>(node.get())) {
        return false;
    }
    const TsUndoStep step(*this, "Remove Node");
    Refs refs = getRefs();
    const PiNodeRef gone{node->getId()};
    for (std::size_t i = 1; i < refs.size(); ++i) {
        if (refs[i] == gone) {
            refs[i] = PiNodeRef{};
        }
    }
    if (refs[0] == gone) {
        refs[0] = PiNodeRef{};
        for (int i = 0; i < getKeyerNodeCount() && refs[0].isNone(); ++i) {
            if (getKeyerNode(i) != node) {
                refs[0] = PiNodeRef{getKeyerNode(i)->getId()};
            }
        }
    }
    setRefs(refs);
    return removeNode(node);
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

TsKeyerGroup::Refs TsKeyerGroup::getRefs() const {
    Refs refs{};
    if (_generation == 2) {
        const auto list = _selected->getTypedValue<PiNodeRefList>(0.0);
        std::copy_n(list.begin(), std::min(list.size(), refs.size()), refs.begin());
        return refs;
    }
    refs[0] = _selected->getTypedValue<PiNodeRef>(0.0);
    for (std::size_t i = 0; i < _slots.size(); ++i) {
        refs[i + 1] = _slots[i]->getTypedValue<PiNodeRef>(0.0);
    }
    return refs;
}

bool TsKeyerGroup::setRefs(const Refs& refs) {
    if (_generation == 2) {
        return _selected->setValue(0.0, PiValue(PiNodeRefList(refs.begin(), refs.end())));
    }
    bool written = true;
    for (std::size_t i = 0; i < _slots.size(); ++i) {
        written = _slots[i]->setValue(0.0, PiValue(refs[i + 1])) && written;
    }
    return _selected->setValue(0.0, PiValue(refs[0])) && written;
}

RCShdPtr<PiInput> TsKeyerGroup::getSlotInput(int slot) const {
    if (slot < 0 || slot >= static_cast<int>(_slots.size())) {
        return RCShdPtr<PiInput>();
    }
    return _generation == 2 ? _selected : _slots[slot];
}

RCShdPtr<PiNode> TsKeyerGroup::getSlotNode(int slot) const {
    if (slot < 0 || slot >= static_cast<int>(_slots.size())) {
        return RCShdPtr<PiNode>();
    }
    return resolve(getRefs()[static_cast<std::size_t>(slot) + 1]);
}

int TsKeyerGroup::getNodeSlot(const PiNode* node) const {
    if (!node) {
        return -1;
    }
    const Refs refs = getRefs();
    for (std::size_t i = 1; i < refs.size(); ++i) {
        if (refs[i].id == node->getId()) {
            return static_cast<int>(i) - 1;
        }
    }
    return -1;
}

bool TsKeyerGroup::setSlotNode(int slot, const RCShdPtr<PiNode>& node) {
    if (slot < 0 || slot >= static_cast<int>(_slots.size())) {
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
    Refs refs = getRefs();
    const PiNodeRef ref{node ? node->getId() : 0};
    for (std::size_t i = 1; i < refs.size(); ++i) {
        if (node && refs[i] == ref) {
            refs[i] = PiNodeRef{};
        }
    }
    refs[static_cast<std::size_t>(slot) + 1] = ref;
    return setRefs(refs);
}

LiString TsKeyerGroup::getSlotName(int slot) const {
    const RCShdPtr<PiNode> node = getSlotNode(slot);
    return node ? node->getName() : LiString();
}

RCShdPtr<PiNode> TsKeyerGroup::getSelectedNode() const {
    return resolve(getRefs()[0]);
}

bool TsKeyerGroup::setSelectedNode(const RCShdPtr<PiNode>& node) {
    if (node && !acceptsForSlot(node.get())) {
        ExReporter::getInstance().report(getName(), "node \"" + node->getName() +
                                                        "\" is not in this keyer group");
        return false;
    }
    const TsUndoStep step(*this, "Select Node");
    Refs refs = getRefs();
    refs[0] = PiNodeRef{node ? node->getId() : 0};
    return setRefs(refs);
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
