#include <base/inInit.h>

static InLibraryPackage<ZnInit::ui, ZnInit::gfx> uiPackage("ui");
