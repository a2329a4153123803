#pragma once

#include <base/inBuildInfo.h>

// The module's package: "tesseraUiZnmodule". Its static package object is
// defined in tesseraUiZnmoduleInit.cpp; the host starts it after its ten
// dependencies.

// One source file's start-up and shut-down work, run by the package hooks in
// the order of the module's table.
struct TsModuleInitialiser {
    const char* source;
    void (*init)();
    void (*fini)();
};

// The table, in start-up order (shut-down runs it backwards).
const TsModuleInitialiser* tsModuleInitialisers(int& count);
