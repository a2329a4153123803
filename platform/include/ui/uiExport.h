#pragma once

// What libZNui exports: the classes, functions and variables marked with
// this macro. The library is built with its symbols hidden (docs/host.md).
#define TS_UI_API __attribute__((visibility("default")))
