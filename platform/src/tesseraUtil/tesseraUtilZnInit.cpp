#include <base/inInit.h>

static InLibraryPackage<ZnInit::tesseraUtil, ZnInit::base> tesseraUtilPackage("tesseraUtil");
