// Publishing profile ids and attributes, to all modules or to named ones.
#include "vorn/identity/IDENTITY.hpp"
#include "IdentityTestSupport.hpp"

namespace vorn::identitytest {
namespace {

TEST_F(IdentityTest, ProfileIdForAllReachesEverySubscriber) {
  subscribe(ModuleName::cdp);
  subscribe(ModuleName::push);
  IDENTITY::shared()->setProfileId("u1");
  EXPECT_EQ(identityLines(),
            Lines{"Setting `u1` as profileId for all subscribed modules triggered."});
  EXPECT_EQ(received(ModuleName::cdp), Lines{"id u1"});
  EXPECT_EQ(received(ModuleName::push), Lines{"id u1"});
}

TEST_F(IdentityTest, OneModuleIsServedOnlyOnceOperationalAndSubscribed) {
  const auto& identity = *IDENTITY::shared();
  identity.setProfileId("u1", {ModuleName::push});
  attach(ModuleName::push, ModuleStatus::initializing);
  identity.setProfileAttribute("k", "v", {ModuleName::push});
  attach(ModuleName::push, ModuleStatus::operational);
  identity.setProfileId(IDENTITY::ProfileIds{{ModuleName::push, "p"}});
  // An event for the initializing module would have been buffered by the bus.
  EXPECT_TRUE(EventBus::buffers().empty());
  subscribe(ModuleName::push);
  identity.setProfileAttributes(StringDictionary{{"k", "v"}}, {ModuleName::push});
  EXPECT_EQ(identityLines(),
            (Lines{"Module push is not operational (inactive).",
                   "Setting `u1` as profileId for push failed.",
                   "Module push is not operational (initializing).",
                   "Setting `[\"k\": \"v\"]` as profile attributes for push failed.",
                   "Module `push` is not subscribed to receive events.",
                   "Setting `p` as profileId for push failed.",
                   "Setting `[\"k\": \"v\"]` as profile attributes for push triggered."}));
  const auto lines = sink->lines();
  EXPECT_EQ(lines[0].level, LogLevel::warning);
  EXPECT_EQ(lines[1].level, LogLevel::debug);
  EXPECT_EQ(lines[4].level, LogLevel::warning);
  EXPECT_EQ(received(ModuleName::push), Lines{"attrs k=v;"});
}

TEST_F(IdentityTest, NamedModulesAreServedInOrderEachWithItsOwnValue) {
  subscribe(ModuleName::cdp);
  subscribe(ModuleName::push);
  modules->set(ModuleName::push, ModuleStatus::failed);
  IDENTITY::shared()->setProfileId("u2", {ModuleName::push, ModuleName::cdp});
  modules->set(ModuleName::push, ModuleStatus::operational);
  IDENTITY::shared()->setProfileAttributes(
      IDENTITY::ModuleAttributes{{ModuleName::cdp, {{"a", "1"}}}, {ModuleName::push, {}}});
  EXPECT_EQ(identityLines(),
            (Lines{"Module push is not operational (failed).",
                   "Setting `u2` as profileId for push failed.",
                   "Setting `u2` as profileId for cdp triggered.",
                   "Setting `[\"a\": \"1\"]` as profile attributes for cdp triggered.",
                   "Setting `[:]` as profile attributes for push triggered."}));
  EXPECT_EQ(received(ModuleName::cdp), (Lines{"attrs a=1;", "id u2"}));
  EXPECT_EQ(received(ModuleName::push), Lines{"attrs "});
}

TEST_F(IdentityTest, AttributesAreDescribedWithEscapesAndClearedToEmpty) {
  subscribe(ModuleName::push);
  IDENTITY::shared()->setProfileAttributes(StringDictionary{{"b", "say \"hi\"\n"}, {"a", "'"}});
  IDENTITY::shared()->clearProfileAttributes({"a", "b"});
  IDENTITY::shared()->clearProfileAttribute("c");
  EXPECT_EQ(identityLines(),
            (Lines{"Setting `[\"a\": \"\\'\", \"b\": \"say \\\"hi\\\"\\n\"]` as attributes for all "
                   "modules triggered.",
                   "Clearing following profile attributes: [\"a\", \"b\"]",
                   "Setting `[\"a\": \"\", \"b\": \"\"]` as attributes for all modules triggered.",
                   "Clearing following profile attributes: [\"c\"]",
                   "Setting `[\"c\": \"\"]` as attributes for all modules triggered."}));
  EXPECT_EQ(received(ModuleName::push),
            (Lines{"attrs a=';b=say \"hi\"\n;", "attrs a=;b=;", "attrs c=;"}));
}

}  // namespace
}  // namespace vorn::identitytest
