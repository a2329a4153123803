#pragma once

#include <base/prdPredicate.h>
#include <base/rcShdPtr.h>
#include <base/unaryFunctor.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piSnItem.h>
#include <pluginAPI/pluginAPIExport.h>
#include <pluginAPI/snItem.h>

#include <cstdint>

// Predicates on nodes, and their adapter to selection items: panels filter
// the node selection with them. The tests refer to nodes by identity and keep
// nothing alive.
using PiNodePredicate = PrdPredicate<RCShdPtr<const PiNode>>;
using SnItemPredicate = PrdPredicate<RCShdPtr<const SnItem>>;

// True for the given node itself.
class TS_PLUGIN_API PiIsNode : public UnaryFunctor<RCShdPtr<const PiNode>, bool> {
public:
    explicit PiIsNode(const RCShdPtr<const PiNode>& node);
    bool operator()(const RCShdPtr<const PiNode>& node) const override;
    static PiNodePredicate create(const RCShdPtr<const PiNode>& node);

private:
    std::uint64_t _id;
};

// True for a node inside the group: directly inside it, or (recursive) at any
// depth. The group itself is not inside itself.
class TS_PLUGIN_API PiIsNodeInGroupNode : public UnaryFunctor<RCShdPtr<const PiNode>, bool> {
public:
    explicit PiIsNodeInGroupNode(const RCShdPtr<const PiGroupNode>& group, bool recursive = false);
    bool operator()(const RCShdPtr<const PiNode>& node) const override;
    static PiNodePredicate create(const RCShdPtr<const PiGroupNode>& group, bool recursive = false);

private:
    std::uint64_t _id;
    bool _recursive;
};

// True for the input and output nodes of groups (PiBoundaryNode).
class TS_PLUGIN_API PiIsBoundaryNode : public UnaryFunctor<RCShdPtr<const PiNode>, bool> {
public:
    bool operator()(const RCShdPtr<const PiNode>& node) const override;
    static PiNodePredicate getPredicate();
};

// A predicate on graph objects of type T applied to selection items: true
// for a PiSnItem<T> whose object satisfies it, false for any other item.
template <class T>
class PiGraphObjectPredicateSnItemAdapter : public UnaryFunctor<RCShdPtr<const SnItem>, bool> {
public:
    explicit PiGraphObjectPredicateSnItemAdapter(const PrdPredicate<RCShdPtr<const T>>& predicate)
        : _predicate(predicate) {}

    bool operator()(const RCShdPtr<const SnItem>& item) const override {
        const auto* typed = dynamic_cast<const PiSnItem<T>*>(item.get());
        return typed && _predicate(RCShdPtr<const T>(typed->get()));
    }

    static SnItemPredicate create(const PrdPredicate<RCShdPtr<const T>>& predicate) {
        return SnItemPredicate(RCShdPtr<UnaryFunctor<RCShdPtr<const SnItem>, bool>>(
            new PiGraphObjectPredicateSnItemAdapter(predicate)));
    }

private:
    PrdPredicate<RCShdPtr<const T>> _predicate;
};
