#pragma once

// What libZNpluginAPI exports: the classes, functions and variables marked with
// this macro. The library is built with its symbols hidden (docs/host.md).
#define TS_PLUGIN_API __attribute__((visibility("default")))
