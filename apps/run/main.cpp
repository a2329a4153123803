#include "common/hostPackages.h"

#include <cstring>
#include <iostream>
#include <string>

namespace {

void usage(std::ostream& os) {
    os << "usage: tessera-run [--list-packages]\n"
          "  --list-packages  load the keyer's user-interface module, start every package\n"
          "                   and list them: name, state, dependencies, build information\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--list-packages") == 0) {
        const bool ok = HostPackages::loadAndStart(HostPackages::defaultModulePath());
        HostPackages::printPackages(std::cout);
        HostPackages::shutdownAndUnload();
        return ok ? 0 : 1;
    }
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        usage(std::cout);
        return 0;
    }
    usage(std::cerr);
    return 2;
}
