#pragma once

#include <base/rcShdPtr.h>
#include <base/unaryFunctor.h>

#include <vector>

template <class E>
class PrdPredicate;

// An implementation node of a predicate tree.
template <class E>
class PrdPredicateImp : public RCBase<LkCounter<int>> {
public:
    virtual bool evaluate(const E& event) const = 0;
};

// True for every event.
template <class E>
class PrdAllPredicateImp : public PrdPredicateImp<E> {
public:
    bool evaluate(const E&) const override { return true; }
};

// The negation of its operand.
template <class E>
class PrdNotPredicateImp : public PrdPredicateImp<E> {
public:
    explicit PrdNotPredicateImp(const PrdPredicate<E>& operand);
    bool evaluate(const E& event) const override;
    const PrdPredicate<E>& getOperand() const;

private:
    std::vector<PrdPredicate<E>> _operand; // exactly one; a vector breaks the type cycle
};

// The common base of the and/or nodes: an ordered list of operands.
template <class E>
class PrdCompositePredicateImp : public PrdPredicateImp<E> {
public:
    void addOperand(const PrdPredicate<E>& operand) { _operands.push_back(operand); }
    const std::vector<PrdPredicate<E>>& getOperands() const { return _operands; }

protected:
    std::vector<PrdPredicate<E>> _operands;
};

// True when every operand is (evaluated in order, stopping at the first false).
template <class E>
class PrdAndPredicateImp : public PrdCompositePredicateImp<E> {
public:
    bool evaluate(const E& event) const override;
};

// True when any operand is (evaluated in order, stopping at the first true).
template <class E>
class PrdOrPredicateImp : public PrdCompositePredicateImp<E> {
public:
    bool evaluate(const E& event) const override;
};

// A leaf: a host test on the event.
template <class E>
class PrdFunctorPredicateImp : public PrdPredicateImp<E> {
public:
    explicit PrdFunctorPredicateImp(const RCShdPtr<UnaryFunctor<E, bool>>& test)
        : _test(test) {}
    bool evaluate(const E& event) const override { return (*_test)(event); }

private:
    RCShdPtr<UnaryFunctor<E, bool>> _test;
};

// A predicate on events: a value holding a shared implementation node. Copies
// share the node. A default predicate holds for every event.
template <class E>
class PrdPredicate {
public:
    PrdPredicate()
        : _imp(new PrdAllPredicateImp<E>) {}
    explicit PrdPredicate(const RCShdPtr<PrdPredicateImp<E>>& imp)
        : _imp(imp) {}
    explicit PrdPredicate(const RCShdPtr<UnaryFunctor<E, bool>>& test)
        : _imp(new PrdFunctorPredicateImp<E>(test)) {}

    static PrdPredicate all() {
        return PrdPredicate(RCShdPtr<PrdPredicateImp<E>>(new PrdAllPredicateImp<E>));
    }

    bool operator()(const E& event) const { return _imp->evaluate(event); }
    bool evaluate(const E& event) const { return _imp->evaluate(event); }

    PrdPredicate operator!() const {
        return PrdPredicate(RCShdPtr<PrdPredicateImp<E>>(new PrdNotPredicateImp<E>(*this)));
    }
    // An and-node of (this, other), in that order.
    PrdPredicate operator&&(const PrdPredicate& other) const {
        auto* node = new PrdAndPredicateImp<E>;
        RCShdPtr<PrdPredicateImp<E>> held(node);
        node->addOperand(*this);
        node->addOperand(other);
        return PrdPredicate(held);
    }
    // An or-node of (this, other), in that order.
    PrdPredicate operator||(const PrdPredicate& other) const {
        auto* node = new PrdOrPredicateImp<E>;
        RCShdPtr<PrdPredicateImp<E>> held(node);
        node->addOperand(*this);
        node->addOperand(other);
        return PrdPredicate(held);
    }

    const RCShdPtr<PrdPredicateImp<E>>& getImp() const { return _imp; }

private:
    RCShdPtr<PrdPredicateImp<E>> _imp;
};

template <class E>
PrdNotPredicateImp<E>::PrdNotPredicateImp(const PrdPredicate<E>& operand)
    : _operand{operand} {}

template <class E>
bool PrdNotPredicateImp<E>::evaluate(const E& event) const {
    return !_operand.front()(event);
}

template <class E>
const PrdPredicate<E>& PrdNotPredicateImp<E>::getOperand() const {
    return _operand.front();
}

template <class E>
bool PrdAndPredicateImp<E>::evaluate(const E& event) const {
    for (const auto& operand : this->_operands) {
        if (!operand(event)) {
            return false;
        }
    }
    return true;
}

template <class E>
bool PrdOrPredicateImp<E>::evaluate(const E& event) const {
    for (const auto& operand : this->_operands) {
        if (operand(event)) {
            return true;
        }
    }
    return false;
}
