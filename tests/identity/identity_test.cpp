// Publishing profile ids and attributes, to all modules or to named ones.
#include "vorn/identity/IDENTITY.hpp"
#include "IdentityTestSupport.hpp"

namespace vorn::identitytest {
namespace {

const IDENTITY& identity() {
  static const auto instance = IDENTITY::shared();
  return *instance;
}

TEST_F(IdentityTest, ProfileIdForAllReachesEverySubscriberFromTheSdk) {
  subscribe(ModuleName::cdp);
  subscribe(ModuleName::push);
  identity().setProfileId("u1");
  EXPECT_EQ(identityLines(),
            Lines{"Setting `u1` as profileId for all subscribed modules triggered."});
  for (const ModuleName module : kAllModuleNames)
    EXPECT_EQ(received(module), Lines{"id u1"});
  EXPECT_EQ(sink->find("Message `IdentityEvent` received on the event bus.")->category,
            LoggerCategory::eventBus);
}

TEST_F(IdentityTest, OneModuleBeforeAnythingIsAttachedReadsInactive) {
  identity().setProfileId("u1", {ModuleName::push});
  EXPECT_EQ(identityLines(), (Lines{"Module push is not operational (inactive).",
                                    "Setting `u1` as profileId for push failed."}));
  const auto lines = sink->lines();
  EXPECT_EQ(lines[0].level, LogLevel::warning);
  EXPECT_EQ(lines[1].level, LogLevel::debug);
}

TEST_F(IdentityTest, InitializingModuleIsNotSentAnything) {
  attach(ModuleName::push, ModuleStatus::initializing);
  identity().setProfileAttribute("k", "v", {ModuleName::push});
  EXPECT_EQ(identityLines(),
            (Lines{"Module push is not operational (initializing).",
                   "Setting `[\"k\": \"v\"]` as profile attributes for push failed."}));
  // The bus would have buffered an event for the initializing module.
  EXPECT_TRUE(EventBus::buffers().empty());
}

TEST_F(IdentityTest, OperationalModuleMustAlsoBeSubscribed) {
  attach(ModuleName::cdp, ModuleStatus::operational);
  identity().setProfileId(IDENTITY::ProfileIds{{ModuleName::cdp, "c"}});
  EXPECT_EQ(identityLines(), (Lines{"Module `cdp` is not subscribed to receive events.",
                                    "Setting `c` as profileId for cdp failed."}));
  EXPECT_EQ(sink->lines()[0].level, LogLevel::warning);
}

TEST_F(IdentityTest, NamedModulesAreServedInOrderAndAlone) {
  subscribe(ModuleName::cdp);
  subscribe(ModuleName::push);
  modules->set(ModuleName::push, ModuleStatus::failed);
  identity().setProfileId("u2", {ModuleName::push, ModuleName::cdp});
  EXPECT_EQ(identityLines(), (Lines{"Module push is not operational (failed).",
                                    "Setting `u2` as profileId for push failed.",
                                    "Setting `u2` as profileId for cdp triggered."}));
  EXPECT_TRUE(received(ModuleName::push).empty());
  EXPECT_EQ(received(ModuleName::cdp), Lines{"id u2"});
}

TEST_F(IdentityTest, EachModuleGetsItsOwnValues) {
  subscribe(ModuleName::cdp);
  subscribe(ModuleName::push);
  identity().setProfileId(IDENTITY::ProfileIds{{ModuleName::cdp, "c"}, {ModuleName::push, "p"}});
  identity().setProfileAttributes(
      IDENTITY::ModuleAttributes{{ModuleName::push, {{"tier", "gold"}}}});
  EXPECT_EQ(received(ModuleName::cdp), Lines{"id c"});
  EXPECT_EQ(received(ModuleName::push), (Lines{"attrs tier=gold;", "id p"}));
  EXPECT_TRUE(
      sink->contains("Setting `[\"tier\": \"gold\"]` as profile attributes for push triggered."));
}

TEST_F(IdentityTest, AttributesForAllAreDescribedWithEscapes) {
  auto cdp = subscribe(ModuleName::cdp);
  identity().setProfileAttributes(StringDictionary{{"b", "say \"hi\"\n"}, {"a", ""}});
  identity().setProfileAttributes(StringDictionary{});
  EXPECT_EQ(identityLines(),
            (Lines{"Setting `[\"a\": \"\", \"b\": \"say \\\"hi\\\"\\n\"]` as attributes for all "
                   "modules triggered.",
                   "Setting `[:]` as attributes for all modules triggered."}));
  EXPECT_EQ(received(ModuleName::cdp), (Lines{"attrs ", "attrs a=;b=say \"hi\"\n;"}));
}

TEST_F(IdentityTest, ClearingSetsEveryKeyToEmptyForAll) {
  subscribe(ModuleName::push);
  identity().clearProfileAttributes({"a", "b"});
  identity().clearProfileAttribute("c");
  EXPECT_EQ(identityLines(),
            (Lines{"Clearing following profile attributes: [\"a\", \"b\"]",
                   "Setting `[\"a\": \"\", \"b\": \"\"]` as attributes for all modules triggered.",
                   "Clearing following profile attributes: [\"c\"]",
                   "Setting `[\"c\": \"\"]` as attributes for all modules triggered."}));
  EXPECT_EQ(received(ModuleName::push), (Lines{"attrs a=;b=;", "attrs c=;"}));
}

}  // namespace
}  // namespace vorn::identitytest
