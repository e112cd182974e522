// The identity JSON: the device part, then each operational module's own text spliced in.
#include <thread>

#include <nlohmann/json.hpp>

#include "IdentityTestSupport.hpp"
#include "vorn/identity/CoreIdentity.hpp"
#include "vorn/identity/IDENTITY.hpp"
#include "vorn/identity/ModuleIdentity.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn::identitytest {
namespace {

constexpr std::string_view kCdp = R"({"applicationId":"c1","profileId":"p"})";
constexpr std::string_view kPush = R"({ "applicationId" : "p1" })";

TEST_F(IdentityTest, WithoutModulesOnlyTheDeviceIsDescribed) {
  CoreIdentity core("iOS");
  attach(ModuleName::cdp, ModuleStatus::initializing);
  modules->set(ModuleName::cdp, ModuleStatus::initializing, std::string(kCdp));
  EXPECT_EQ(core.toJson(), R"({"platform":"iOS"})");
  core.setRegistrationId("R-1");
  EXPECT_EQ(core.registrationId(), "R-1");
  EXPECT_EQ(nlohmann::json::parse(core.toJson()),
            (nlohmann::json{{"platform", "iOS"}, {"registrationId", "R-1"}}));
  core.setRegistrationId(std::nullopt);
  EXPECT_EQ(core.toJson(), R"({"platform":"iOS"})");
  EXPECT_TRUE(sink->lines().empty());
}

TEST_F(IdentityTest, OneModuleIsSplicedInByHand) {
  attach(ModuleName::push, ModuleStatus::operational);
  modules->set(ModuleName::push, ModuleStatus::operational, std::string(kPush));
  EXPECT_EQ(CoreIdentity("iOS").toJson(),
            R"({"platform":"iOS", "moduleIdentities": {"push": { "applicationId" : "p1" }}})");
}

TEST_F(IdentityTest, TwoModulesAreSeparatedByCommaAndBlank) {
  attach(ModuleName::cdp, ModuleStatus::operational);
  modules->set(ModuleName::cdp, ModuleStatus::operational, std::string(kCdp));
  modules->set(ModuleName::push, ModuleStatus::operational, std::string(kPush));
  const std::string cdp = "\"cdp\": " + std::string(kCdp);
  const std::string push = "\"push\": " + std::string(kPush);
  const std::string text = CoreIdentity("iOS").toJson();
  // The order of the two modules is not promised.
  EXPECT_TRUE(text == R"({"platform":"iOS", "moduleIdentities": {)" + cdp + ", " + push + "}}" ||
              text == R"({"platform":"iOS", "moduleIdentities": {)" + push + ", " + cdp + "}}")
      << text;
}

TEST_F(IdentityTest, InvalidModuleTextIsLeftOut) {
  attach(ModuleName::cdp, ModuleStatus::operational);
  modules->set(ModuleName::cdp, ModuleStatus::operational, R"({"applicationId":)");
  EXPECT_EQ(CoreIdentity("iOS").toJson(), R"({"platform":"iOS"})");
  modules->set(ModuleName::push, ModuleStatus::operational, std::string(kPush));
  EXPECT_EQ(CoreIdentity("iOS").toJson(),
            R"({"platform":"iOS", "moduleIdentities": {"push": { "applicationId" : "p1" }}})");
  // A bare scalar is no document of its own, and malformed UTF-8 is no JSON at all.
  modules->set(ModuleName::cdp, ModuleStatus::operational, "42");
  modules->set(ModuleName::push, ModuleStatus::operational, "[\"\xff\"]");
  EXPECT_EQ(CoreIdentity("iOS").toJson(), R"({"platform":"iOS"})");
  EXPECT_EQ(identityLines(),
            (Lines{"Invalid Json Module cdp Identity", "Invalid Json Module cdp Identity",
                   "Invalid Json Module cdp Identity", "Invalid Json Module push Identity"}));
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

TEST_F(IdentityTest, RegistrationIdMayChangeWhileTheJsonIsRead) {
  CoreIdentity core("iOS");
  std::thread writer([&] {
    for (int i = 0; i < 200; ++i)
      core.setRegistrationId(i % 2 ? std::optional<std::string>("R") : std::nullopt);
  });
  for (int i = 0; i < 200; ++i) {
    const std::string text = core.toJson();
    EXPECT_TRUE(text == R"({"platform":"iOS"})" ||
                text == R"({"platform":"iOS","registrationId":"R"})");
  }
  writer.join();
}

TEST(ModuleIdentityTest, OptionalFieldsAppearOnlyWhenPresent) {
  ModuleIdentity identity;
  identity.applicationId = "app";
  EXPECT_EQ(toJsonText(identity), R"({"applicationId":"app"})");
  identity.profileId = "p";
  identity.installationId = "i";
  identity.customProperties = Dictionary{{"vip", true}};
  EXPECT_EQ(nlohmann::json::parse(*toJsonText(identity)),
            (nlohmann::json{{"applicationId", "app"},
                            {"profileId", "p"},
                            {"installationId", "i"},
                            {"customProperties", {{"vip", true}}}}));
  identity.profileId = "\xff";
  EXPECT_EQ(toJsonText(identity), std::nullopt);
}

}  // namespace
}  // namespace vorn::identitytest
