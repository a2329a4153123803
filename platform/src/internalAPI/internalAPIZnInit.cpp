#include <base/inInit.h>

static InLibraryPackage<ZnInit::internalAPI, ZnInit::ui> internalAPIPackage("internalAPI");
