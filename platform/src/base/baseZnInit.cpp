#include <base/inInit.h>

// The base library's package: the root that every other package depends on.
static InLibraryPackage<ZnInit::base> basePackage("base");
