#pragma once

#include <ostream>
#include <string>
#include <vector>

// Loading and starting the keyer's user-interface module in a host program.
class HostPackages {
public:
    // The module file: $TESSERA_MODULE when set, else the module next to the
    // host's libraries (lib/ beside the program's bin/).
    static std::string defaultModulePath();

    // The modules of the module search path, in the order they load: every
    // *.so file, by name, of each directory of $TESSERA_MODULE_PATH (separated
    // by ':'; tessera-run's --module-path adds to it). A directory that cannot
    // be read is reported and skipped.
    static std::vector<std::string> searchPathModules();

    // Loads the keyer's module, then the modules of the search path (see
    // searchPathModules), and starts every package (dependencies first).
    // Failures are reported and the host carries on without what failed;
    // answers false when a module did not load or a package did not start.
    static bool loadAndStart(const std::string& modulePath);

    // Shuts every package down (the last started first) and unloads the
    // module. With `report`, what the module still holds after the shut-down
    // is listed there (printRegistrations) before the module goes.
    static void shutdownAndUnload(std::ostream* report = nullptr);

    // One block per package: name, state, dependencies in declared order and
    // build information.
    static void printPackages(std::ostream& os);

    // What the module holds in the keyer library and the message server,
    // `when` ("after start-up", "after shut-down"): the keyer's factories of
    // each stage's viewer handler and panel and of the main panel of both
    // keyer generations that are registered, then the ids of the registered
    // message subscriptions in registration order.
    static void printRegistrations(std::ostream& os, const char* when);
};
