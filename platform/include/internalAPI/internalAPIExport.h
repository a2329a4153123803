#pragma once

// What libZNinternalAPI exports: the classes, functions and variables marked with
// this macro. The library is built with its symbols hidden (docs/host.md).
#define TS_INTERNAL_API __attribute__((visibility("default")))
