#pragma once

// What libZNbase exports: the classes, functions and variables marked with
// this macro. The library is built with its symbols hidden (docs/host.md).
#define TS_BASE_API __attribute__((visibility("default")))
