#pragma once

#include <base/baseExport.h>
#include <exception>
#include <string>

// Root of the host's exception hierarchy. Every failure the host raises for a
// plugin carries a readable text; the host reports that text where it catches.
class TS_BASE_API ExBase : public std::exception {
public:
    explicit ExBase(std::string message);
    const char* what() const noexcept override;
    const std::string& getMessage() const { return _message; }

private:
    std::string _message;
};

// A null object where one is required.
class ExNullPtr : public ExBase {
public:
    TS_BASE_API explicit ExNullPtr(const std::string& typeName);
    const std::string& getTypeName() const { return _typeName; }

private:
    std::string _typeName;
};

// An object of the wrong dynamic type met by a checked cast.
class ExCastFailed : public ExBase {
public:
    TS_BASE_API ExCastFailed(const std::string& from, const std::string& to);
    const std::string& getFrom() const { return _from; }
    const std::string& getTo() const { return _to; }

private:
    std::string _from;
    std::string _to;
};

// A broken internal invariant (see Assertions).
class ExAssertionFailed : public ExBase {
public:
    TS_BASE_API ExAssertionFailed(std::string path, int line, std::string expression);
    const std::string& getPath() const { return _path; }
    int getLine() const { return _line; }
    const std::string& getExpression() const { return _expression; }

private:
    std::string _path;
    int _line;
    std::string _expression;
};
