// The test program of the module's own classes. The module is loaded the way
// the host loads it (dlopen, packages started in dependency order); the tests
// themselves are a shared library loaded after it, whose references to module
// classes resolve against the loaded module: a build of its sources with every
// symbol visible, which the installed module is not.
#include "host/hostPackages.h"

#include <base/exReporter.h>
#include <base/inPackageManager.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <iostream>

int main(int argc, char** argv) {
    ExReporter::getInstance().setEcho(false);
    if (!HostPackages::loadAndStart(TESSERA_OPEN_MODULE)) {
        for (const auto& r : ExReporter::getInstance().getReports()) {
            std::cerr << r.text() << "\n";
        }
        return 1;
    }
    void* tests = dlopen(TESSERA_MODULE_TESTS, RTLD_NOW | RTLD_GLOBAL);
    if (!tests) {
        std::cerr << "cannot load the module tests: " << dlerror() << "\n";
        return 1;
    }
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    InPackageManager::getInstance().shutdownAll();
    return result;
}
