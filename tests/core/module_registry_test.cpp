#include "vorn/core/ModuleRegistry.hpp"

#include <gtest/gtest.h>

#include "vorn/core/ModuleRegistrar.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

class NullModule : public VORNModule {
 public:
  void tearDown() override {}
  Dictionary stateProperties() const override { return {{"kind", "null"}}; }

  static std::shared_ptr<VORNModule> initModule(const std::shared_ptr<const ModuleConfig>&,
                                                const std::shared_ptr<VORNSdkComponents>&) {
    return std::make_shared<NullModule>();
  }
};

}  // namespace
}  // namespace vorn

// As a module library would: registered while the program loads, before any test runs.
VORN_REGISTER_MODULE(Null, {"Null.NullModule", "3.1.4", &vorn::NullModule::initModule})

namespace vorn {
namespace {

TEST(ModuleRegistry, ARegistrarRegistersItsClassAtLoad) {
  const auto found = ModuleRegistry::lookup("Null.NullModule");
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->description, "Null.NullModule");
  EXPECT_EQ(found->moduleVersion, "3.1.4");
  const auto module = found->initModule(nullptr, nullptr);
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->stateProperties(), (Dictionary{{"kind", "null"}}));
  EXPECT_EQ(module->asSubscriber(), nullptr);
}

TEST(ModuleRegistry, LookupIsByExactDescription) {
  EXPECT_FALSE(ModuleRegistry::lookup("VORNSdkPushModule").has_value());
  EXPECT_FALSE(ModuleRegistry::lookup("null.nullmodule").has_value());
}

TEST(ModuleRegistry, ALaterRegistrationReplacesAndUnregisterForgets) {
  ModuleRegistry::registerModule({"Cdp.CdpModule", "2.0.2", &NullModule::initModule});
  ModuleRegistry::registerModule({"Cdp.CdpModule", "2.5.0", &NullModule::initModule});
  EXPECT_EQ(ModuleRegistry::lookup("Cdp.CdpModule")->moduleVersion, "2.5.0");
  ModuleRegistry::unregisterModule("Cdp.CdpModule");
  EXPECT_FALSE(ModuleRegistry::lookup("Cdp.CdpModule").has_value());
  ModuleRegistry::unregisterModule("Cdp.CdpModule");  // nothing left: nothing happens
}

TEST(ModuleRegistry, AClassWithoutFactoryIsRefused) {
  auto sink = testing::CaptureLogSink::install();
  ModuleRegistry::registerModule({"VORNSdkPushModule", "8.1.0", nullptr});
  EXPECT_FALSE(ModuleRegistry::lookup("VORNSdkPushModule").has_value());
  ASSERT_EQ(sink->lines().size(), 1u);
  EXPECT_EQ(sink->lines()[0].message,
            "Module class `VORNSdkPushModule` has no initializer. It was not registered.");
  EXPECT_EQ(sink->lines()[0].level, LogLevel::error);
}

TEST(ModuleRegistry, LoadingAMissingLibraryFailsWithTheLoadersReason) {
  auto sink = testing::CaptureLogSink::install();
  const std::string path = "/nonexistent/libvorn_missing_module.so";
  EXPECT_FALSE(ModuleRegistry::loadLibrary(path));
  ASSERT_EQ(sink->lines().size(), 1u);
  EXPECT_EQ(sink->lines()[0].message,
            "Failed to load the module library `" + path + "`: " + path +
                ": cannot open shared object file: No such file or directory");
  EXPECT_EQ(sink->lines()[0].level, LogLevel::error);
  EXPECT_EQ(sink->lines()[0].category, LoggerCategory::sdk);
}

TEST(ModuleRegistry, LoadingAnExistingLibrarySucceedsQuietly) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_TRUE(ModuleRegistry::loadLibrary("libz.so.1"));
  EXPECT_TRUE(sink->lines().empty());
}

}  // namespace
}  // namespace vorn
