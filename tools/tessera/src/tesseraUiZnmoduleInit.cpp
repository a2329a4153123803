#include "tesseraUiZnmoduleInit.h"
#include "tsAddSampleTool.h"
#include "tsDgEventHandler.h"
#include "tsDgSampleTool.h"
#include "tsDgUi.h"
#include "tsExport.h"
#include "tsImgPickKeyColorsTool.h"
#include "tsMgEventHandler.h"
#include "tsMgSampleMatteTool.h"
#include "tsMgSamplePatchTool.h"
#include "tsMgUi.h"
#include "tsSpillBlendEventHandler.h"
#include "tsSpillBlendMfTool.h"
#include "tsSpillBlendUi.h"
#include "tsUiImp.h"
#include "tsUiImpGeneration2.h"

#include <base/inBuildInfoUtil.h>
#include <base/inInit.h>
#include <resmgt/msgFileGuard.h>

#include <new>

namespace {

// Build information of this library, answered slot by slot.
class LibraryBuildInfo : public InBuildInfo {
public:
    const char* getDescription() const override {
        return "Tessera keyer user interface: viewer tools and panels of the chroma keyer";
    }
    const char* getLibraryName() const override { return "libZntesseraUiZnmodule"; }
    const char* getReleaseYear() const override { return "2013"; }
    const char* getVersion() const override { return "8.0"; }
    // The kind label is tied to the build code; a code of 3 marks a
    // development build.
    const char* getBuildKind() const override { return getBuildCode() == 3 ? "dev" : ""; }
    int getMajorVersion() const override { return 8; }
    int getMinorVersion() const override { return 0; }
    int getBuildCode() const override { return 42; }
    const char* getBuildNumber() const override { return "2600"; }
    const char* getBuildDate() const override { return "Jun 12 2012"; }
    const char* getBuildFlavour() const override { return "opt.x86_64.intel"; }
};

// Set through the package's flag operation; nothing reads it.
bool moduleFlag = false;

const TsModuleInitialiser initialisers[] = {
    {"tsAddSampleTool", tsAddSampleToolInitialise, tsAddSampleToolFinalise},
    {"tsMgSampleMatteTool", tsMgSampleMatteToolInitialise, tsMgSampleMatteToolFinalise},
    {"tsMgSamplePatchTool", tsMgSamplePatchToolInitialise, tsMgSamplePatchToolFinalise},
    {"tsMgEventHandler", tsMgEventHandlerInitialise, tsMgEventHandlerFinalise},
    {"tsMgUi", tsMgUiInitialise, tsMgUiFinalise},
    {"tsDgSampleTool", tsDgSampleToolInitialise, tsDgSampleToolFinalise},
    {"tsDgEventHandler", tsDgEventHandlerInitialise, tsDgEventHandlerFinalise},
    {"tsDgUi", tsDgUiInitialise, tsDgUiFinalise},
    {"tsSpillBlendMfTool", tsSpillBlendMfToolInitialise, tsSpillBlendMfToolFinalise},
    {"tsSpillBlendEventHandler", tsSpillBlendEventHandlerInitialise,
     tsSpillBlendEventHandlerFinalise},
    {"tsSpillBlendUi", tsSpillBlendUiInitialise, tsSpillBlendUiFinalise},
    {"tsImgPickKeyColorsTool", tsImgPickKeyColorsToolInitialise, tsImgPickKeyColorsToolFinalise},
    {"tsUiImp", tsUiImpInitialise, tsUiImpFinalise},
    {"tsUiImpGeneration2", tsUiImpGeneration2Initialise, tsUiImpGeneration2Finalise},
    {nullptr, nullptr, nullptr},
};

} // namespace

const TsModuleInitialiser* tsModuleInitialisers(int& count) {
    count = 0;
    for (const TsModuleInitialiser& i : initialisers) {
        if (i.source) {
            ++count;
        }
    }
    return initialisers;
}

void tsModuleStartUp(const TsModuleInitialiser* table, int count) {
    const MsgFileGuard guard("tessera.msg");
    for (int i = 0; i < count; ++i) {
        table[i].init();
    }
}

template <>
void InInit<ZnInit::tesseraUiZnmodule>::startup() {
    InBuildInfoUtil::registerInfo(OPtr<InBuildInfo>(new (std::nothrow) LibraryBuildInfo));
    int count = 0;
    const TsModuleInitialiser* table = tsModuleInitialisers(count);
    tsModuleStartUp(table, count);
}

template <>
void InInit<ZnInit::tesseraUiZnmodule>::shutdown() {
    int count = 0;
    const TsModuleInitialiser* table = tsModuleInitialisers(count);
    for (int i = count; i-- > 0;) {
        table[i].fini();
    }
}

template <>
void InInit<ZnInit::tesseraUiZnmodule>::setFlag(bool value) {
    moduleFlag = value;
}

// Other packages name this one as their dependency through it.
template TS_UI_EXPORT const std::type_info* InInit<ZnInit::tesseraUiZnmodule>::getType();

namespace {

InInit<ZnInit::tesseraUiZnmodule> modulePackage("tesseraUiZnmodule");

const bool modulePackageRegistered = [] {
    modulePackage.registerPackage();
    modulePackage.addDependency(InInit<ZnInit::tesseraUtil>::getType());
    modulePackage.addDependency(InInit<ZnInit::tesseraZntool>::getType());
    modulePackage.addDependency(InInit<ZnInit::appUi>::getType());
    modulePackage.addDependency(InInit<ZnInit::ui>::getType());
    modulePackage.addDependency(InInit<ZnInit::gfx>::getType());
    modulePackage.addDependency(InInit<ZnInit::internalAPI>::getType());
    modulePackage.addDependency(InInit<ZnInit::primitives>::getType());
    modulePackage.addDependency(InInit<ZnInit::resmgt>::getType());
    modulePackage.addDependency(InInit<ZnInit::pluginAPI>::getType());
    modulePackage.addDependency(InInit<ZnInit::base>::getType());
    return true;
}();

} // namespace
