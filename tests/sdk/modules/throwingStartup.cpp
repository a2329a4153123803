// A module whose start-up hook throws.
#include <base/inInit.h>

#include <stdexcept>

namespace ThrowingInit {
struct throwingStartup {};
} // namespace ThrowingInit

template <>
void InInit<ThrowingInit::throwingStartup>::startup() {
    throw std::runtime_error("no licence for this module");
}

namespace {
InInit<ThrowingInit::throwingStartup> package("throwingStartup");
const bool registered = [] {
    package.registerPackage();
    package.addDependency(InInit<ZnInit::base>::getType());
    return true;
}();
} // namespace
