// The factory registries of the three stage interfaces and of the two group
// generations, and the calls through them.
#include "tsFactoryRegistry.h"

#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

namespace {

// Function-local registries: the module registers from its start-up hook, but
// nothing forbids an earlier static initialiser. The stages' viewer-handler
// factories share a type, so each registry is its own object.
#define TS_REGISTRY(function, type, purpose)                                                       \
    TsFactoryRegistry<type>& function() {                                                          \
        static TsFactoryRegistry<type> r(purpose);                                                 \
        return r;                                                                                  \
    }

TS_REGISTRY(mgEh, TsMgInterface::EhFactory, "the matte-generation viewer handler")
TS_REGISTRY(mgUi, TsMgInterface::UiFactory, "the matte-generation panel")
TS_REGISTRY(dgEh, TsDgInterface::EhFactory, "the degrain viewer handler")
TS_REGISTRY(dgUi, TsDgInterface::UiFactory, "the degrain panel")
TS_REGISTRY(sbEh, TsSpillBlendInterface::EhFactory, "the spill-and-blend viewer handler")
TS_REGISTRY(sbUi, TsSpillBlendInterface::UiFactory, "the spill-and-blend panel")

#undef TS_REGISTRY

TsGroupInterface::InstanceDataFactory instanceData1 = nullptr;
TsGroupInterface::InstanceDataFactory instanceData3 = nullptr;

TsGroupInterface::InstanceDataFactory require(TsGroupInterface::InstanceDataFactory f,
                                              const char* which) {
    if (!f) {
        ExReporter::getInstance().report(
            "keyer", std::string("no factory registered for the main panel of ") + which +
                         ": is the keyer's user-interface module loaded and started?");
    }
    return f;
}

} // namespace

// --- Matte generation

void TsMgInterface::registerEhFactory(EhFactory f) {
    mgEh().add(f);
}
void TsMgInterface::unregisterEhFactory(EhFactory f) {
    mgEh().remove(f);
}
void TsMgInterface::registerUiFactory(UiFactory f) {
    mgUi().add(f);
}
void TsMgInterface::unregisterUiFactory(UiFactory f) {
    mgUi().remove(f);
}
TsMgInterface::EhFactory TsMgInterface::getEhFactory() {
    return mgEh().get();
}
TsMgInterface::UiFactory TsMgInterface::getUiFactory() {
    return mgUi().get();
}

TsMgInterface::UiFactory TsMgInterface::requireUiFactory() {
    return mgUi().require();
}

TsMgInterface::EhFactory TsMgInterface::requireEhFactory() {
    return mgEh().require();
}

RCShdPtr<RCBase<LkCounter<int>>>
TsMgInterface::createUi(const RCShdPtr<PiWidget>& widget,
                        const RCShdPtr<const PiTimePath>& timePath) {
    if (UiFactory f = requireUiFactory()) {
        return f(*this, widget, timePath);
    }
    return RCShdPtr<RCBase<LkCounter<int>>>();
}

// --- Degrain

void TsDgInterface::registerEhFactory(EhFactory f) {
    dgEh().add(f);
}
void TsDgInterface::unregisterEhFactory(EhFactory f) {
    dgEh().remove(f);
}
void TsDgInterface::registerUiFactory(UiFactory f) {
    dgUi().add(f);
}
void TsDgInterface::unregisterUiFactory(UiFactory f) {
    dgUi().remove(f);
}
TsDgInterface::EhFactory TsDgInterface::getEhFactory() {
    return dgEh().get();
}
TsDgInterface::UiFactory TsDgInterface::getUiFactory() {
    return dgUi().get();
}

TsDgInterface::UiFactory TsDgInterface::requireUiFactory() {
    return dgUi().require();
}

TsDgInterface::EhFactory TsDgInterface::requireEhFactory() {
    return dgEh().require();
}

RCShdPtr<RCBase<LkCounter<int>>>
TsDgInterface::createUi(const RCShdPtr<PiWidget>& widget,
                        const RCShdPtr<const PiTimePath>& timePath) {
    if (UiFactory f = requireUiFactory()) {
        return f(*this, widget, timePath);
    }
    return RCShdPtr<RCBase<LkCounter<int>>>();
}

// --- Spill and blend

void TsSpillBlendInterface::registerEhFactory(EhFactory f) {
    sbEh().add(f);
}
void TsSpillBlendInterface::unregisterEhFactory(EhFactory f) {
    sbEh().remove(f);
}
void TsSpillBlendInterface::registerUiFactory(UiFactory f) {
    sbUi().add(f);
}
void TsSpillBlendInterface::unregisterUiFactory(UiFactory f) {
    sbUi().remove(f);
}
TsSpillBlendInterface::EhFactory TsSpillBlendInterface::getEhFactory() {
    return sbEh().get();
}
TsSpillBlendInterface::UiFactory TsSpillBlendInterface::getUiFactory() {
    return sbUi().get();
}

TsSpillBlendInterface::UiFactory TsSpillBlendInterface::requireUiFactory() {
    return sbUi().require();
}

TsSpillBlendInterface::EhFactory TsSpillBlendInterface::requireEhFactory() {
    return sbEh().require();
}

RCShdPtr<RCBase<LkCounter<int>>>
TsSpillBlendInterface::createUi(const RCShdPtr<PiWidget>& widget,
                                const RCShdPtr<const PiTimePath>& timePath) {
    if (UiFactory f = requireUiFactory()) {
        return f(*this, widget, timePath);
    }
    return RCShdPtr<RCBase<LkCounter<int>>>();
}

// --- The two group generations

TsGroupInterface::InstanceDataFactory TsInterface::requireInstanceDataFactory() {
    return require(instanceData1, "a keyer group");
}
void TsInterface::setInstanceDataFactory(InstanceDataFactory f) {
    instanceData1 = f;
}
TsGroupInterface::InstanceDataFactory TsInterface::getInstanceDataFactory() {
    return instanceData1;
}
RCShdPtr<RCBase<LkCounter<int>>>
TsInterface::createInstanceData(const RCShdPtr<PiWidget>& widget,
                                const RCShdPtr<PiGroupNode>& group,
                                const RCShdPtr<const PiTimePath>& timePath) {
    if (InstanceDataFactory f = requireInstanceDataFactory()) {
        return f(widget, group, timePath);
    }
    return RCShdPtr<RCBase<LkCounter<int>>>();
}

TsGroupInterface::InstanceDataFactory TsInterface3::requireInstanceDataFactory() {
    return require(instanceData3, "a second-generation keyer group");
}
void TsInterface3::setInstanceDataFactory(InstanceDataFactory f) {
    instanceData3 = f;
}
TsGroupInterface::InstanceDataFactory TsInterface3::getInstanceDataFactory() {
    return instanceData3;
}
RCShdPtr<RCBase<LkCounter<int>>>
TsInterface3::createInstanceData(const RCShdPtr<PiWidget>& widget,
                                 const RCShdPtr<PiGroupNode>& group,
                                 const RCShdPtr<const PiTimePath>& timePath) {
    if (InstanceDataFactory f = requireInstanceDataFactory()) {
        return f(widget, group, timePath);
    }
    return RCShdPtr<RCBase<LkCounter<int>>>();
}
