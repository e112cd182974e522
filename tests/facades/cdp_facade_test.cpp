#include "vorn/facades/CDP.hpp"

#include <gtest/gtest.h>

#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeCdpModule.hpp"

namespace vorn {
namespace {

using testing::FakeCdpModule;

std::string readinessLine(std::string_view status) {
  return "Module cdp is not initialized. Current status: " + std::string(status);
}

class CdpFacade : public ::testing::Test {
 protected:
  // Each operation that is not ready writes the readiness line and its own, both debug
  // lines of category `interface`, and the module hears nothing.
  void expectNotReady(std::string_view status) {
    sink->clear();
    EXPECT_EQ(cdp->getConsent(), Consent::none);
    cdp->setConsent(Consent::optOut);
    cdp->setLocation(Coordinates{1, 2}, 60);
    EXPECT_EQ(cdp->getIdentity(), std::nullopt);
    const std::string readiness = readinessLine(status);
    EXPECT_EQ(sink->messages(),
              (std::vector<std::string>{readiness, "The `Consent` not fetched.", readiness,
                                        "The `Consent` not set.", readiness,
                                        "The `Location` not set.", readiness}));
    for (const auto& line : sink->lines()) {
      EXPECT_EQ(line.level, LogLevel::debug);
      EXPECT_EQ(line.category, LoggerCategory::interface);
    }
    EXPECT_TRUE(module->calls().empty());
  }

  void makeOperational() {
    cdp->attachModule(module);
    cdp->setStatus(ModuleStatus::operational);
  }

  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  std::shared_ptr<CDP> cdp = CDP::shared();
  std::shared_ptr<FakeCdpModule> module = FakeCdpModule::create();
};

TEST_F(CdpFacade, IsTheCdpFacadeForVersionsFrom202To299) {
  EXPECT_EQ(cdp->name(), ModuleName::cdp);
  EXPECT_EQ(cdp->compatibility()->min(), "2.0.2");
  EXPECT_EQ(cdp->compatibility()->max(), "2.9.9");
  EXPECT_EQ(CDP::shared(), cdp);
  EXPECT_TRUE(cdp->initializationLock().try_lock());
  cdp->initializationLock().unlock();
}

TEST_F(CdpFacade, BeforeStartUpAnswersDefaults) {
  EXPECT_EQ(cdp->getStatus(), ModuleStatus::inactive);
  expectNotReady("inactive");
}

TEST_F(CdpFacade, AttachedButNotOperationalNeverCallsTheModule) {
  cdp->attachModule(module);
  for (const auto status : {ModuleStatus::initializing, ModuleStatus::failed,
                            ModuleStatus::cancelled, ModuleStatus::disabled}) {
    cdp->setStatus(status);
    EXPECT_EQ(cdp->getStatus(), status);
    expectNotReady(rawValue(status));
  }
}

TEST_F(CdpFacade, OperationalWithoutACdpModuleIsNotReady) {
  cdp->setStatus(ModuleStatus::operational);
  cdp->attachModule(std::make_shared<testing::FakeModule>(
      ModuleName::cdp, testing::FakeModuleSettings{}, nullptr, nullptr));
  expectNotReady("operational");
}

TEST_F(CdpFacade, OperationalForwardsAndAnswersUnchanged) {
  makeOperational();
  EXPECT_EQ(cdp->getIdentity(), FakeCdpModule::identity());
  cdp->setConsent(Consent::optOut);
  EXPECT_EQ(cdp->getConsent(), Consent::optOut);
  cdp->setLocation(Coordinates{1.5, -2.5}, 3600);
  cdp->setLocation(std::nullopt, 0);
  module->setAnswersAbsent(true);
  EXPECT_EQ(cdp->getIdentity(), std::nullopt);
  const std::vector<testing::FakeCall> expected{{"getIdentity", {}},
                                                {"setConsent", {"opt_out"}},
                                                {"getConsent", {}},
                                                {"setLocation", {Array{1.5, -2.5}, 3600}},
                                                {"setLocation", {Value(), 0}},
                                                {"getIdentity", {}}};
  EXPECT_EQ(module->calls(), expected);
  EXPECT_TRUE(sink->lines().empty());
}

TEST_F(CdpFacade, TearDownStopsAndDetachesTheModuleOnly) {
  cdp->tearDown();  // nothing attached: nothing to do
  makeOperational();
  cdp->tearDown();
  EXPECT_EQ(module->tearDownCount(), 1);
  EXPECT_EQ(cdp->module(), nullptr);
  EXPECT_EQ(cdp->getStatus(), ModuleStatus::operational);
  cdp->tearDown();
  EXPECT_EQ(module->tearDownCount(), 1);
}

}  // namespace
}  // namespace vorn
