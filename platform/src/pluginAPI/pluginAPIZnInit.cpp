#include <base/inInit.h>

static InLibraryPackage<ZnInit::pluginAPI, ZnInit::resmgt, ZnInit::base>
    pluginAPIPackage("pluginAPI");
