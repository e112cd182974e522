// The identity forms that name modules by integer: 0 is cdp, 1 is push.
#include "IdentityTestSupport.hpp"
#include "vorn/identity/IDENTITY.hpp"

namespace vorn::identitytest {
namespace {

const std::string kNoModules = "Setting the `profile id` failed due to invalid modules.";

TEST_F(IdentityTest, OnlyInvalidIntegersPublishNothing) {
  subscribe(ModuleName::push);
  sink->clear();
  IDENTITY::shared()->setProfileId("x", std::vector<int>{7});
  IDENTITY::shared()->setProfileAttributesNamed(StringDictionary{{"k", "v"}}, std::vector<int>{});
  IDENTITY::shared()->setProfileId(IDENTITY::RawProfileIds{{-1, "y"}});
  IDENTITY::shared()->setProfileAttributesNamed(IDENTITY::RawModuleAttributes{{2, {}}});
  EXPECT_EQ(sink->messages(), (Lines{"Invalid module rawValue: `7`.", kNoModules, kNoModules,
                                     "Invalid module rawValue: `-1`.", kNoModules,
                                     "Invalid module rawValue: `2`.", kNoModules}));
  for (const auto& line : sink->lines())
    EXPECT_EQ(line.level, LogLevel::warning) << line.message;
  EXPECT_TRUE(received(ModuleName::push).empty());
}

TEST_F(IdentityTest, InvalidIntegersAreDroppedAndTheRestServed) {
  subscribe(ModuleName::cdp);
  subscribe(ModuleName::push);
  IDENTITY::shared()->setProfileId("x", std::vector<int>{9, 1});
  IDENTITY::shared()->setProfileId(IDENTITY::RawProfileIds{{0, "c"}, {4, "lost"}});
  IDENTITY::shared()->setProfileAttributesNamed(StringDictionary{{"k", "v"}}, std::vector<int>{0});
  IDENTITY::shared()->setProfileAttributesNamed(
      IDENTITY::RawModuleAttributes{{1, {{"p", "q"}}}, {3, {}}});
  EXPECT_EQ(identityLines(),
            (Lines{"Invalid module rawValue: `9`.", "Setting `x` as profileId for push triggered.",
                   "Invalid module rawValue: `4`.", "Setting `c` as profileId for cdp triggered.",
                   "Setting `[\"k\": \"v\"]` as profile attributes for cdp triggered.",
                   "Invalid module rawValue: `3`.",
                   "Setting `[\"p\": \"q\"]` as profile attributes for push triggered."}));
  EXPECT_EQ(received(ModuleName::cdp), (Lines{"attrs k=v;", "id c"}));
  EXPECT_EQ(received(ModuleName::push), (Lines{"attrs p=q;", "id x"}));
}

}  // namespace
}  // namespace vorn::identitytest
