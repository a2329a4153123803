#include <base/assertions.h>
#include <base/exBase.h>
#include <base/rcExUtil.h>

#include <utility>

ExBase::ExBase(std::string message)
    : _message(std::move(message)) {}

const char* ExBase::what() const noexcept {
    return _message.c_str();
}

ExNullPtr::ExNullPtr(const std::string& typeName)
    : ExBase("null pointer where an object of type " + typeName + " is required")
    , _typeName(typeName) {}

ExCastFailed::ExCastFailed(const std::string& from, const std::string& to)
    : ExBase("cast failed: an object of type " + from + " is not a " + to)
    , _from(from)
    , _to(to) {}

ExAssertionFailed::ExAssertionFailed(std::string path, int line, std::string expression)
    : ExBase("assertion failed: " + expression + " (" + path + ", line " + std::to_string(line) +
             ")")
    , _path(std::move(path))
    , _line(line)
    , _expression(std::move(expression)) {}

void RCExUtil::throwExNullPtr(const char* typeName) {
    throw ExNullPtr(typeName ? typeName : "(unnamed type)");
}

void RCExUtil::throwExCastFailed(const char* from, const char* to) {
    throw ExCastFailed(from ? from : "(unnamed type)", to ? to : "(unnamed type)");
}

void Assertions::throwAssertionFailed(const char* path, int line, const char* expression) {
    throw ExAssertionFailed(path ? path : "", line, expression ? expression : "");
}
