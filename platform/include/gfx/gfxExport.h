#pragma once

// What libZNgfx exports: the classes, functions and variables marked with
// this macro. The library is built with its symbols hidden (docs/host.md).
#define TS_GFX_API __attribute__((visibility("default")))
