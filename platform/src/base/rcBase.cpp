#include <base/rcBase.h>

void RCWeakBlock::release() noexcept {
    if (_refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}

RCCounted::~RCCounted() {
    if (RCWeakBlock* block = _weak.load(std::memory_order_acquire)) {
        block->expire();
        block->release();
    }
}

RCWeakBlock* RCCounted::rcWeakBlock() const {
    RCWeakBlock* block = _weak.load(std::memory_order_acquire);
    if (block) {
        return block;
    }
    auto* fresh = new RCWeakBlock;
    if (_weak.compare_exchange_strong(block, fresh, std::memory_order_acq_rel)) {
        return fresh;
    }
    fresh->release();
    return block;
}
