// The factory registries of the three stage interfaces and of the two group
// generations, and the calls through them.
#include "tsFactoryRegistry.h"

#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

namespace {

// What each stage's factories are for, in reports.
template <class Stage>
const char* stageName();
template <>
const char* stageName<TsMgInterface>() {
    return "the matte-generation";
}
template <>
const char* stageName<TsDgInterface>() {
    return "the degrain";
}
template <>
const char* stageName<TsSpillBlendInterface>() {
    return "the spill-and-blend";
}

// Function-local registries: the module registers from its start-up hook, but
// nothing forbids an earlier static initialiser. The stages' viewer-handler
// factories share a type, so each stage has registries of its own.
template <class Stage>
TsFactoryRegistry<typename TsStageFactories<Stage>::EhFactory>& handlers() {
    static TsFactoryRegistry<typename TsStageFactories<Stage>::EhFactory> r(
        std::string(stageName<Stage>()) + " viewer handler");
    return r;
}

template <class Stage>
TsFactoryRegistry<typename TsStageFactories<Stage>::UiFactory>& panels() {
    static TsFactoryRegistry<typename TsStageFactories<Stage>::UiFactory> r(
        std::string(stageName<Stage>()) + " panel");
    return r;
}

TsGroupInterface::InstanceDataFactory instanceDataGeneration1 = nullptr;
TsGroupInterface::InstanceDataFactory instanceDataGeneration2 = nullptr;

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

// --- The stages

template <class Stage>
void TsStageFactories<Stage>::registerEhFactory(EhFactory f) {
    handlers<Stage>().add(f);
}
template <class Stage>
void TsStageFactories<Stage>::unregisterEhFactory(EhFactory f) {
    handlers<Stage>().remove(f);
}
template <class Stage>
void TsStageFactories<Stage>::registerUiFactory(UiFactory f) {
    panels<Stage>().add(f);
}
template <class Stage>
void TsStageFactories<Stage>::unregisterUiFactory(UiFactory f) {
    panels<Stage>().remove(f);
}
template <class Stage>
typename TsStageFactories<Stage>::EhFactory TsStageFactories<Stage>::getEhFactory() {
    return handlers<Stage>().get();
}
template <class Stage>
typename TsStageFactories<Stage>::UiFactory TsStageFactories<Stage>::getUiFactory() {
    return panels<Stage>().get();
}
template <class Stage>
typename TsStageFactories<Stage>::EhFactory TsStageFactories<Stage>::requireEhFactory() {
    return handlers<Stage>().require();
}
template <class Stage>
typename TsStageFactories<Stage>::UiFactory TsStageFactories<Stage>::requireUiFactory() {
    return panels<Stage>().require();
}

template <class Stage>
RCShdPtr<RCBase<LkCounter<int>>>
TsStageFactories<Stage>::createUi(const RCShdPtr<PiWidget>& widget,
                                  const RCShdPtr<const PiTimePath>& timePath) {
    if (UiFactory f = requireUiFactory()) {
        return f(static_cast<Stage&>(*this), widget, timePath);
    }
    return RCShdPtr<RCBase<LkCounter<int>>>();
}

TsMgInterface::~TsMgInterface() = default;
TsDgInterface::~TsDgInterface() = default;
TsSpillBlendInterface::~TsSpillBlendInterface() = default;

template class TsStageFactories<TsMgInterface>;
template class TsStageFactories<TsDgInterface>;
template class TsStageFactories<TsSpillBlendInterface>;

// --- The two group generations

TsGroupInterface::InstanceDataFactory TsInterface::requireInstanceDataFactory() {
    return require(instanceDataGeneration1, "a keyer group");
}
void TsInterface::setInstanceDataFactory(InstanceDataFactory f) {
    instanceDataGeneration1 = f;
}
TsGroupInterface::InstanceDataFactory TsInterface::getInstanceDataFactory() {
    return instanceDataGeneration1;
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
    return require(instanceDataGeneration2, "a generation 2 keyer group");
}
void TsInterface3::setInstanceDataFactory(InstanceDataFactory f) {
    instanceDataGeneration2 = f;
}
TsGroupInterface::InstanceDataFactory TsInterface3::getInstanceDataFactory() {
    return instanceDataGeneration2;
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
