#include <base/inInit.h>

static InLibraryPackage<ZnInit::tesseraZntool, ZnInit::tesseraUtil, ZnInit::appUi,
                        ZnInit::internalAPI, ZnInit::primitives>
    tesseraPackage("tesseraZntool");
