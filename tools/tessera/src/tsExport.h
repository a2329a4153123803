#pragma once

// The module is built with its symbols hidden: the host reaches it through
// its package object alone. What sibling modules link against is marked with
// this macro, and nothing else (tsExportedTemplates.cpp, and the package's
// getType in tesseraUiZnmoduleInit.cpp).
#define TS_UI_EXPORT __attribute__((visibility("default")))
