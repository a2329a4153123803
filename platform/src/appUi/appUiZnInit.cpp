#include <base/inInit.h>

static InLibraryPackage<ZnInit::appUi, ZnInit::ui> appUiPackage("appUi");
