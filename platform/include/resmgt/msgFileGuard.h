#pragma once

#include <resmgt/resmgtExport.h>

// Holds a message catalogue open for as long as it lives: subscriptions
// registered meanwhile resolve their texts from it. The file is found through
// LiResourcePath; a missing or malformed file is reported (once per file) and
// does not throw.
class TS_RESMGT_API MsgFileGuard {
public:
    explicit MsgFileGuard(const char* file);
    ~MsgFileGuard();
    MsgFileGuard(const MsgFileGuard&) = delete;
    MsgFileGuard& operator=(const MsgFileGuard&) = delete;
};
