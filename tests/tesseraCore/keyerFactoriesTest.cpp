#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

#include <base/exReporter.h>

#include <gtest/gtest.h>

#include <string>

namespace {

// Factories as the user-interface module registers them. Panel widgets and
// viewer handlers are types of the toolkit layer, incomplete here, so these
// are registered and looked up but never called.
RCShdPtr<RCBase<LkCounter<int>>> makeMgUi(TsMgInterface&, const RCShdPtr<PiWidget>&,
                                          const RCShdPtr<const PiTimePath>&);
RCShdPtr<RCBase<LkCounter<int>>> makeOtherMgUi(TsMgInterface&, const RCShdPtr<PiWidget>&,
                                               const RCShdPtr<const PiTimePath>&);
RCShdPtr<RCBase<LkCounter<int>>> makeDgUi(TsDgInterface&, const RCShdPtr<PiWidget>&,
                                          const RCShdPtr<const PiTimePath>&);
RCShdPtr<RCBase<LkCounter<int>>> makeMainPanel(const RCShdPtr<PiWidget>&,
                                               const RCShdPtr<PiGroupNode>&,
                                               const RCShdPtr<const PiTimePath>&);

// The registries start empty in this program and are emptied after each test.
class KeyerFactories : public ::testing::Test {
protected:
    void SetUp() override { ExReporter::getInstance().clear(); }
    void TearDown() override {
        TsMgInterface::unregisterUiFactory(&makeMgUi);
        TsMgInterface::unregisterUiFactory(&makeOtherMgUi);
        TsDgInterface::unregisterUiFactory(&makeDgUi);
        TsInterface::setInstanceDataFactory(nullptr);
    }
    static std::string lastReport() {
        const auto reports = ExReporter::getInstance().getReports();
        return reports.empty() ? std::string() : reports.back().message;
    }
};

TEST_F(KeyerFactories, AskingBeforeAFactoryIsRegisteredAnswersNothingAndReports) {
    EXPECT_EQ(TsMgInterface::requireUiFactory(), nullptr);
    EXPECT_NE(lastReport().find("the matte-generation panel"), std::string::npos);
    EXPECT_EQ(TsSpillBlendInterface::requireEhFactory(), nullptr);
    EXPECT_NE(lastReport().find("the spill-and-blend viewer handler"), std::string::npos);
    EXPECT_EQ(TsInterface3::requireInstanceDataFactory(), nullptr);
    EXPECT_NE(lastReport().find("main panel of a generation 2 keyer group"), std::string::npos);
    EXPECT_EQ(ExReporter::getInstance().getReportCount(), 3u);
}

TEST_F(KeyerFactories, EachStageKeepsItsOwnFactories) {
    TsMgInterface::registerUiFactory(&makeMgUi);
    TsDgInterface::registerUiFactory(&makeDgUi);
    EXPECT_EQ(TsMgInterface::requireUiFactory(), &makeMgUi);
    EXPECT_EQ(TsDgInterface::requireUiFactory(), &makeDgUi);
    EXPECT_EQ(TsSpillBlendInterface::getUiFactory(), nullptr);
    EXPECT_EQ(TsDgInterface::getEhFactory(), nullptr);
    EXPECT_EQ(ExReporter::getInstance().getReportCount(), 0u);
}

TEST_F(KeyerFactories, TheLastRegisteredFactoryIsUsedUntilWithdrawn) {
    TsMgInterface::registerUiFactory(&makeMgUi);
    TsMgInterface::registerUiFactory(&makeOtherMgUi);
    EXPECT_EQ(TsMgInterface::getUiFactory(), &makeOtherMgUi);
    TsMgInterface::registerUiFactory(&makeMgUi); // again: it moves last
    EXPECT_EQ(TsMgInterface::getUiFactory(), &makeMgUi);
    TsMgInterface::unregisterUiFactory(&makeMgUi);
    EXPECT_EQ(TsMgInterface::getUiFactory(), &makeOtherMgUi);
    TsMgInterface::unregisterUiFactory(&makeOtherMgUi);
    TsMgInterface::unregisterUiFactory(&makeOtherMgUi); // harmless
    EXPECT_EQ(TsMgInterface::getUiFactory(), nullptr);
}

TEST_F(KeyerFactories, InstanceDataFactoriesAreOnePerGeneration) {
    TsInterface::setInstanceDataFactory(&makeMainPanel);
    EXPECT_EQ(TsInterface::requireInstanceDataFactory(), &makeMainPanel);
    EXPECT_EQ(TsInterface3::getInstanceDataFactory(), nullptr);
    TsInterface::setInstanceDataFactory(nullptr);
    EXPECT_EQ(TsInterface::getInstanceDataFactory(), nullptr);
}

} // namespace

namespace {

RCShdPtr<RCBase<LkCounter<int>>> makeMgUi(TsMgInterface&, const RCShdPtr<PiWidget>&,
                                          const RCShdPtr<const PiTimePath>&) {
    return RCShdPtr<RCBase<LkCounter<int>>>();
}
RCShdPtr<RCBase<LkCounter<int>>> makeOtherMgUi(TsMgInterface&, const RCShdPtr<PiWidget>&,
                                               const RCShdPtr<const PiTimePath>&) {
    return RCShdPtr<RCBase<LkCounter<int>>>();
}
RCShdPtr<RCBase<LkCounter<int>>> makeDgUi(TsDgInterface&, const RCShdPtr<PiWidget>&,
                                          const RCShdPtr<const PiTimePath>&) {
    return RCShdPtr<RCBase<LkCounter<int>>>();
}
RCShdPtr<RCBase<LkCounter<int>>> makeMainPanel(const RCShdPtr<PiWidget>&,
                                               const RCShdPtr<PiGroupNode>&,
                                               const RCShdPtr<const PiTimePath>&) {
    return RCShdPtr<RCBase<LkCounter<int>>>();
}

} // namespace
