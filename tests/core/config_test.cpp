#include "vorn/core/Config.hpp"

#include <gtest/gtest.h>

#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"

namespace vorn {
namespace {

using testing::FakeModuleConfig;
using Properties = std::vector<ModuleConfig::Property>;

std::shared_ptr<const ModuleConfig> module(ModuleName name, Properties properties = {{"id", "A"}}) {
  return std::make_shared<FakeModuleConfig>(name, "APP1", std::move(properties));
}

Config config(std::vector<std::shared_ptr<const ModuleConfig>> modules) {
  CompletionCallbacks callbacks;
  for (const auto& m : modules)
    callbacks[m->name()];
  return Config(std::move(modules), std::move(callbacks));
}

TEST(Config, EmptyConfigurationsAreEqual) {
  EXPECT_EQ(Config(), ConfigBuilder().build());
}

TEST(Config, AppCallbacksAreNeverCompared) {
  int calls = 0;
  const Config withCallback =
      ConfigBuilder().setPush(module(ModuleName::push), [&](OperationResult) { ++calls; }).build();
  const Config withOther =
      ConfigBuilder().setPush(module(ModuleName::push), [&](OperationResult) { --calls; }).build();
  const Config withNone = ConfigBuilder().setPush(module(ModuleName::push)).build();
  EXPECT_EQ(withCallback, withOther);
  EXPECT_EQ(withCallback, withNone);
  EXPECT_EQ(calls, 0);
}

TEST(Config, ModulesNeedASameNamedPartner) {
  EXPECT_NE(config({module(ModuleName::push)}), config({module(ModuleName::cdp)}));
  EXPECT_NE(config({module(ModuleName::push)}),
            config({module(ModuleName::push), module(ModuleName::cdp)}));
}

TEST(Config, CallbackMapsMustHaveTheSameSize) {
  const auto push = module(ModuleName::push);
  EXPECT_NE(Config({push}, {{ModuleName::push, {}}}),
            Config({push}, {{ModuleName::push, {}}, {ModuleName::cdp, {}}}));
}

TEST(Config, OnlyTheFirstSameNamedPartnerCounts) {
  const auto a = module(ModuleName::push, {{"id", "A"}});
  const auto b = module(ModuleName::push, {{"id", "B"}});
  // `a` has an equal partner on the right, but only the first push configuration is compared.
  EXPECT_NE(config({a, module(ModuleName::cdp)}), config({b, a}));
  // The search runs from left to right only, so this pair is equal one way round.
  EXPECT_EQ(Config({a, a}, {}), Config({a, module(ModuleName::cdp)}, {}));
}

TEST(Config, StoredPropertiesDecideModuleEquality) {
  const auto equalTo = [](Properties left, Properties right) {
    return moduleConfigsEqual(*module(ModuleName::cdp, std::move(left)),
                              *module(ModuleName::cdp, std::move(right)));
  };
  EXPECT_TRUE(equalTo({{"id", "A"}, {"n", 2}}, {{"id", "A"}, {"n", 2}}));
  EXPECT_FALSE(equalTo({{"id", "A"}}, {{"id", "B"}}));
  EXPECT_FALSE(equalTo({{"id", "A"}}, {{"key", "A"}}));
  EXPECT_FALSE(equalTo({{"id", "A"}}, {{"id", "A"}, {"n", 2}}));
  EXPECT_FALSE(equalTo({{"id", "A"}, {"n", 2}}, {{"n", 2}, {"id", "A"}}));
  EXPECT_FALSE(equalTo({{"id", nullptr}}, {{"id", ""}}));
  EXPECT_FALSE(moduleConfigsEqual(*module(ModuleName::cdp), *module(ModuleName::push)));
}

TEST(Config, NumbersCompareByValueWhateverTheirKind) {
  const auto equal = [](Value left, Value right) {
    return moduleConfigsEqual(*module(ModuleName::cdp, {{"v", std::move(left)}}),
                              *module(ModuleName::cdp, {{"v", std::move(right)}}));
  };
  EXPECT_TRUE(equal(1, 1.0));
  EXPECT_TRUE(equal(true, 1));
  EXPECT_TRUE(equal(Array{1, false}, Array{1.0, 0}));
  EXPECT_TRUE(equal(Dictionary{{"k", 2}}, Dictionary{{"k", 2.0}}));
  EXPECT_FALSE(equal(1, 1.5));
  EXPECT_FALSE(equal(1, "1"));
  EXPECT_FALSE(equal(INT64_MAX, 9223372036854775807.0));
}

TEST(Config, NullModuleConfigurationsAreLeftOut) {
  EXPECT_TRUE(Config({nullptr}, {}).moduleConfigs().empty());
}

TEST(ConfigBuilder, SettingAModuleAgainReplacesConfigurationAndCallback) {
  std::vector<std::string> heard;
  const auto second = module(ModuleName::push, {{"id", "2"}});
  const Config built = ConfigBuilder()
                           .setPush(module(ModuleName::push, {{"id", "1"}}),
                                    [&](OperationResult) { heard.push_back("first"); })
                           .setPush(second, [&](OperationResult) { heard.push_back("second"); })
                           .build();
  ASSERT_EQ(built.moduleConfigs().size(), 1u);
  EXPECT_EQ(built.moduleConfigs()[0], second);
  const auto callbacks = built.completions(ModuleName::push);
  ASSERT_EQ(callbacks.size(), 2u);  // the core's own, then the app's
  callbacks[1](OperationResult::success);
  EXPECT_EQ(heard, std::vector<std::string>{"second"});
}

TEST(ConfigBuilder, WithoutAnAppCallbackTheCoreStillListens) {
  const Config built = ConfigBuilder().setCdp(module(ModuleName::cdp)).build();
  ASSERT_EQ(built.onCompletion().size(), 1u);
  EXPECT_EQ(built.completions(ModuleName::cdp).size(), 1u);
  EXPECT_TRUE(built.completions(ModuleName::push).empty());
}

TEST(ConfigBuilder, StaysUsableAfterBuild) {
  ConfigBuilder builder;
  builder.setCdp(module(ModuleName::cdp));
  const Config first = builder.build();
  const Config second = builder.setPush(module(ModuleName::push)).build();
  EXPECT_EQ(first.moduleConfigs().size(), 1u);
  EXPECT_EQ(second.moduleConfigs().size(), 2u);
  EXPECT_NE(first, second);
}

TEST(ConfigBuilder, NullConfigurationIsIgnored) {
  auto sink = testing::CaptureLogSink::install();
  const Config built = ConfigBuilder().setPush(nullptr, [](OperationResult) {}).build();
  EXPECT_TRUE(built.moduleConfigs().empty());
  EXPECT_TRUE(built.onCompletion().empty());
  EXPECT_EQ(sink->messages(),
            std::vector<std::string>{"Ignoring a null configuration for the `push` module."});
}

}  // namespace
}  // namespace vorn
