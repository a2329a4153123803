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

void Assertions::fail(const char* expression, SourcePlace where) {
    throwAssertionFailed(projectPath(where.file_name()).c_str(), static_cast<int>(where.line()),
                         expression);
}

std::string Assertions::projectPath(const char* file) {
    std::string path = file ? file : "";
    // The project's top folders; the last one named in an absolute path is
    // where the project's part begins.
    std::size_t from = std::string::npos;
    for (const char* root : {"/platform/", "/tools/", "/apps/", "/tests/", "/bench/"}) {
        const std::size_t at = path.rfind(root);
        if (at != std::string::npos && (from == std::string::npos || at > from)) {
            from = at + 1;
        }
    }
    if (from != std::string::npos) {
        return path.substr(from);
    }
    while (path.rfind("../", 0) == 0 || path.rfind("./", 0) == 0) {
        path.erase(0, path[1] == '/' ? 2 : 3);
    }
    return path;
}
