#include <base/inInit.h>

static InLibraryPackage<ZnInit::resmgt, ZnInit::base> resmgtPackage("resmgt");
