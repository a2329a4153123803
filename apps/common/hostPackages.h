#pragma once

#include <ostream>
#include <string>

// Loading and starting the keyer's user-interface module in a host program.
class HostPackages {
public:
    // The module file: $TESSERA_MODULE when set, else the module next to the
    // host's libraries (lib/ beside the program's bin/).
    static std::string defaultModulePath();

    // Loads the module and starts every package (dependencies first). Failures
    // are reported and the host carries on; answers false when the module did
    // not load or a package did not start.
    static bool loadAndStart(const std::string& modulePath);

    // Shuts every package down (the last started first) and unloads the
    // module.
    static void shutdownAndUnload();

    // One block per package: name, state, dependencies in declared order and
    // build information.
    static void printPackages(std::ostream& os);
};
