#include <base/iteratorEx.h>

#include <utility>

IteratorEx::ExOutOfRange::ExOutOfRange(std::string path, int line)
    : ExBase("iterator out of range (" + path + ", line " + std::to_string(line) + ")")
    , _path(std::move(path))
    , _line(line) {}

IteratorEx::ExOutOfRange::~ExOutOfRange() = default;
