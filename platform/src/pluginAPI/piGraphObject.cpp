#include <pluginAPI/piGraphObject.h>

#include <atomic>

namespace {

std::atomic<std::uint64_t> nextId{1};

} // namespace

PiGraphObject::PiGraphObject()
    : _id(nextId.fetch_add(1, std::memory_order_relaxed)) {}

PiGraphObject::~PiGraphObject() = default;
