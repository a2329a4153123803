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

// What the start-up hook does after registering the build information: runs
// the first `count` initialisers of `table`, in order, with the message
// catalogue held open. The catalogue is let go also when an initialiser
// throws; the exception goes on to the host, and the initialisers that ran
// before stay registered.
void tsModuleStartUp(const TsModuleInitialiser* table, int count);
