#pragma once

#include <base/baseExport.h>

// Raising the counted-pointer failures. Both functions never return.
class TS_BASE_API RCExUtil {
public:
    [[noreturn]] static void throwExNullPtr(const char* typeName);
    [[noreturn]] static void throwExCastFailed(const char* from, const char* to);
};
