#include <base/inInit.h>

static InLibraryPackage<ZnInit::primitives, ZnInit::base> primitivesPackage("primitives");
