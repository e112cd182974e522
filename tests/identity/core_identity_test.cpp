// The identity JSON: the device part, then each operational module's own text spliced in.
#include <nlohmann/json.hpp>

#include "IdentityTestSupport.hpp"
#include "vorn/identity/CoreIdentity.hpp"
#include "vorn/identity/IDENTITY.hpp"
#include "vorn/identity/ModuleIdentity.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn::identitytest {
namespace {

const std::string kCdp = R"({"applicationId":"c1","profileId":"p"})";
const std::string kPush = R"({ "applicationId" : "p1" })";
const std::string kDevice = R"({"platform":"iOS")";

TEST_F(IdentityTest, WithoutOperationalModulesOnlyTheDeviceIsDescribed) {
  CoreIdentity core("iOS");
  EXPECT_EQ(core.toJson(), kDevice + "}");
  attach(ModuleName::cdp, ModuleStatus::initializing, kCdp);
  core.setRegistrationId("R-1");
  EXPECT_EQ(nlohmann::json::parse(core.toJson()),
            (nlohmann::json{{"platform", "iOS"}, {"registrationId", "R-1"}}));
  core.setRegistrationId(std::nullopt);
  EXPECT_EQ(core.toJson(), kDevice + "}");
  EXPECT_TRUE(sink->lines().empty());
}

TEST_F(IdentityTest, ModulesAreSplicedInByHand) {
  attach(ModuleName::push, ModuleStatus::operational, kPush);
  EXPECT_EQ(CoreIdentity("iOS").toJson(),
            kDevice + R"(, "moduleIdentities": {"push": { "applicationId" : "p1" }}})");
  attach(ModuleName::cdp, ModuleStatus::operational, kCdp);
  const std::string cdp = "\"cdp\": " + kCdp, push = "\"push\": " + kPush;
  const std::string text = CoreIdentity("iOS").toJson();
  // The order of the two modules is not promised.
  EXPECT_TRUE(text == kDevice + R"(, "moduleIdentities": {)" + cdp + ", " + push + "}}" ||
              text == kDevice + R"(, "moduleIdentities": {)" + push + ", " + cdp + "}}")
      << text;
}

TEST_F(IdentityTest, InvalidModuleTextIsLeftOut) {
  attach(ModuleName::cdp, ModuleStatus::operational, R"({"applicationId":)");
  EXPECT_EQ(CoreIdentity("iOS").toJson(), kDevice + "}");
  modules->set(ModuleName::push, ModuleStatus::operational, kPush);
  EXPECT_EQ(CoreIdentity("iOS").toJson(),
            kDevice + R"(, "moduleIdentities": {"push": { "applicationId" : "p1" }}})");
  // A bare scalar is no document of its own, and malformed UTF-8 is no JSON at all.
  modules->set(ModuleName::cdp, ModuleStatus::operational, "42");
  modules->set(ModuleName::push, ModuleStatus::operational, "[\"\xff\"]");
  EXPECT_EQ(CoreIdentity("iOS").toJson(), kDevice + "}");
  EXPECT_EQ(identityLines(),
            (Lines{"Invalid Json Module cdp Identity", "Invalid Json Module cdp Identity",
                   "Invalid Json Module cdp Identity", "Invalid Json Module push Identity"}));
}

TEST_F(IdentityTest, ModuleTextWithAByteOrderMarkIsLeftOut) {
  // The JSON reader skips a leading mark, but spliced into the document it would break it.
  attach(ModuleName::cdp, ModuleStatus::operational, "\xEF\xBB\xBF" + kCdp);
  const std::string text = CoreIdentity("iOS").toJson();
  EXPECT_EQ(text, kDevice + "}");
  EXPECT_FALSE(nlohmann::json::parse(text, nullptr, false).is_discarded());
  EXPECT_EQ(identityLines(), (Lines{"Invalid Json Module cdp Identity"}));
}

TEST_F(IdentityTest, UnwritableDevicePartGivesAnEmptyObject) {
  EXPECT_EQ(CoreIdentity("\xc3").toJson(), "{}");
  const auto line = sink->find("Failed to parse Identity to Json");
  ASSERT_TRUE(line);
  EXPECT_EQ(line->category, LoggerCategory::sdk);
  EXPECT_EQ(line->level, LogLevel::warning);
}

TEST_F(IdentityTest, SharedIdentityNamesThePlatformsSystem) {
  Platform platform = Platform::ephemeral();
  platform.app.systemName = "TestOS";
  Platform::install(platform);
  CoreIdentity::shared().setRegistrationId("R");
  EXPECT_EQ(IDENTITY::shared()->toJson(), R"({"platform":"TestOS","registrationId":"R"})");
}

TEST(ModuleIdentityTest, OptionalFieldsAppearOnlyWhenPresent) {
  ModuleIdentity identity;
  identity.applicationId = "app";
  EXPECT_EQ(toJsonText(identity), R"({"applicationId":"app"})");
  identity.profileId = "p";
  identity.installationId = "i";
  identity.customProperties = Dictionary{{"vip", true}};
  EXPECT_EQ(
      toJsonText(identity),
      R"({"applicationId":"app","customProperties":{"vip":true},"installationId":"i","profileId":"p"})");
  identity.profileId = "\xff";
  EXPECT_EQ(toJsonText(identity), std::nullopt);
}

}  // namespace
}  // namespace vorn::identitytest
