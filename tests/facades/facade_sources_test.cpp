#include "vorn/facades/FacadeSources.hpp"

#include <gtest/gtest.h>

#include "vorn/events/FakeEvent.hpp"
#include "vorn/facades/CDP.hpp"
#include "vorn/facades/PUSH.hpp"
#include "vorn/identity/IdentityModuleAccess.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/testing/FakeCdpModule.hpp"
#include "vorn/testing/FakePushModule.hpp"

namespace vorn {
namespace {

std::size_t buffered(ModuleName module) {
  const auto buffers = EventBus::buffers();
  const auto found = buffers.find(module);
  return found == buffers.end() ? 0 : found->second.size();
}

TEST(FacadeSources, FacadeSelectsTheFacadeOfAModule) {
  EXPECT_EQ(&facade(ModuleName::push), PUSH::shared().get());
  EXPECT_EQ(&facade(ModuleName::cdp), CDP::shared().get());
}

// The bus buffers events only for a module it sees initializing, so what it buffers shows
// which status it read.
TEST(FacadeSources, TheBusReadsStatusesFromTheFacades) {
  CDP::shared()->setStatus(ModuleStatus::initializing);
  EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, FakeEvent::create("before"));
  EXPECT_EQ(buffered(ModuleName::cdp), 0u);

  installFacadeSources();
  installFacadeSources();
  EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, FakeEvent::create("after"));
  EXPECT_EQ(buffered(ModuleName::cdp), 1u);
  EventBus::publishTo(ModuleName::push, MessageProducer::sdk, FakeEvent::create("push"));
  EXPECT_EQ(buffered(ModuleName::push), 0u);

  PUSH::shared()->setStatus(ModuleStatus::initializing);
  EventBus::publishTo(ModuleName::push, MessageProducer::sdk, FakeEvent::create("push"));
  EXPECT_EQ(buffered(ModuleName::push), 1u);
}

TEST(FacadeSources, TheIdentityReadsStatusesAndModuleIdentities) {
  installFacadeSources();
  const auto access = IdentityModuleAccess::installed();
  auto push = PUSH::shared();
  auto module = testing::FakePushModule::create();
  push->attachModule(module);
  for (const auto status : {ModuleStatus::initializing, ModuleStatus::failed}) {
    push->setStatus(status);
    EXPECT_EQ(access->status(ModuleName::push), status);
    EXPECT_EQ(access->identity(ModuleName::push), std::nullopt);
  }
  push->setStatus(ModuleStatus::operational);
  EXPECT_EQ(access->identity(ModuleName::push), toJsonText(testing::FakePushModule::identity()));
  EXPECT_EQ(access->status(ModuleName::cdp), ModuleStatus::inactive);
  module->setAnswersAbsent(true);
  EXPECT_EQ(access->identity(ModuleName::push), std::nullopt);
  EXPECT_EQ(module->operations(), (std::vector<std::string>{"getIdentity", "getIdentity"}));
}

TEST(FacadeSources, TheCdpIdentityComesFromTheCdpModule) {
  installFacadeSources();
  CDP::shared()->attachModule(testing::FakeCdpModule::create());
  CDP::shared()->setStatus(ModuleStatus::operational);
  EXPECT_EQ(IdentityModuleAccess::installed()->identity(ModuleName::cdp),
            toJsonText(testing::FakeCdpModule::identity()));
  EXPECT_EQ(IdentityModuleAccess::installed()->identity(ModuleName::push), std::nullopt);
}

}  // namespace
}  // namespace vorn
