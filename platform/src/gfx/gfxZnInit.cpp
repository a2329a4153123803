#include <base/inInit.h>

static InLibraryPackage<ZnInit::gfx, ZnInit::pluginAPI> gfxPackage("gfx");
