// A module whose package names a package that no library or module registers.
#include <base/inInit.h>

namespace Elsewhere {
struct absentPackage {};
} // namespace Elsewhere

namespace {
struct Tag {};
InInit<Tag> package("missingDependency");
const bool registered = [] {
    package.registerPackage();
    package.addDependency(InInit<Elsewhere::absentPackage>::getType());
    return true;
}();
} // namespace
