#pragma once

#include <base/rcBase.h>
#include <base/rcBasePtr.h>
#include <pluginAPI/pluginAPIExport.h>

#include <cstdint>

// The root of everything that lives in the processing graph: nodes, groups and
// the inputs (a node's values). Each object gets an identity when it is made;
// the identity never changes and is never reused in the process, so it tells
// two objects apart even after one of them is gone.
class TS_PLUGIN_API PiGraphObject : public virtual RCBase<LkCounter<int>> {
public:
    PiGraphObject();
    PiGraphObject(const PiGraphObject&) = delete;
    PiGraphObject& operator=(const PiGraphObject&) = delete;
    ~PiGraphObject() override;

    std::uint64_t getId() const { return _id; }

    // Identity, not equality of contents: true when both are the same graph
    // object. Two null objects are equal; a null and an object are not.
    bool areEqual(const PiGraphObject& other) const { return _id == other._id; }
    static bool areEqual(const PiGraphObject* a, const PiGraphObject* b) {
        if (!a || !b) {
            return a == b;
        }
        return a->_id == b->_id;
    }
    template <class A, class B>
    static bool areEqual(const RCBasePtr<A>& a, const RCBasePtr<B>& b) {
        return areEqual(static_cast<const PiGraphObject*>(a.get()),
                        static_cast<const PiGraphObject*>(b.get()));
    }

private:
    std::uint64_t _id;
};
