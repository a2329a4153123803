// A module that cannot load: it calls a function that no library defines.
#include <base/inInit.h>

extern "C" void tesseraNoSuchFunction();

namespace {
struct Tag {};
InInit<Tag> package("unresolvedSymbol");
const bool registered = [] {
    package.registerPackage();
    tesseraNoSuchFunction();
    return true;
}();
} // namespace
