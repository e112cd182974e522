#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <set>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include "vorn/base/Decimal.hpp"
#include "vorn/base/Timestamp.hpp"
#include "vorn/base/Uuid.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {
namespace {

using namespace std::chrono;

TEST(DecimalTest, ParsesAndPrintsTextExactly) {
  for (const char* text : {"19.90", "-0.05", "0", "0.00", "1500", "123456789012345678",
                           "-9223372036854775808", "0.000000000000000001"}) {
    const auto decimal = Decimal::parse(text);
    ASSERT_TRUE(decimal) << text;
    EXPECT_EQ(decimal->toString(), text);
  }
}

TEST(DecimalTest, ExponentsAndLooseFormsNormaliseToPlainNotation) {
  EXPECT_EQ(Decimal::parse("1e3")->toString(), "1000");
  EXPECT_EQ(Decimal::parse("2.5E-2")->toString(), "0.025");
  EXPECT_EQ(Decimal::parse(".5")->toString(), "0.5");
  EXPECT_EQ(Decimal::parse("+7.")->toString(), "7");
  EXPECT_EQ(Decimal(12, -2).toString(), "1200");
}

TEST(DecimalTest, RejectsWhatIsNotADecimalOrDoesNotFit) {
  for (const char* text : {"", "-", ".", "1.2.3", "1e", "1e+", " 1", "1 ", "abc", "0x10",
                           "9223372036854775808", "99999999999999999999", "1e999", "NaN"}) {
    EXPECT_FALSE(Decimal::parse(text)) << text;
  }
}

TEST(DecimalTest, ComparesNumericallyAcrossScales) {
  EXPECT_EQ(*Decimal::parse("1.5"), *Decimal::parse("1.50"));
  EXPECT_EQ(*Decimal::parse("1e2"), *Decimal::parse("100.0"));
  EXPECT_LT(*Decimal::parse("0.1"), *Decimal::parse("0.11"));
  EXPECT_LT(*Decimal::parse("-2"), *Decimal::parse("-1.99"));
  EXPECT_GT(*Decimal::parse("0.01"), *Decimal::parse("-100"));
  EXPECT_EQ(*Decimal::parse("0"), *Decimal::parse("-0.000"));
}

TEST(ValueTest, PicksTheAlternativeFromTheCppType) {
  EXPECT_EQ(Value().type(), Value::Type::null);
  EXPECT_EQ(Value(true).type(), Value::Type::boolean);
  EXPECT_EQ(Value(7).type(), Value::Type::integer);
  EXPECT_EQ(Value(7u).type(), Value::Type::integer);
  EXPECT_EQ(Value(1.5).type(), Value::Type::real);
  EXPECT_EQ(Value("text").type(), Value::Type::string);
  EXPECT_EQ(Value(Decimal(1, 0)).type(), Value::Type::decimal);
  EXPECT_EQ(Value(system_clock::now()).type(), Value::Type::date);
  EXPECT_EQ(Value(Bytes{1, 2}).type(), Value::Type::bytes);
  EXPECT_EQ(Value(Array{1, "a"}).type(), Value::Type::array);
  EXPECT_EQ(Value(Dictionary{{"k", 1}}).type(), Value::Type::dictionary);
  ASSERT_NE(Value("x").get<std::string>(), nullptr);
  EXPECT_EQ(Value(1).get<std::string>(), nullptr);
  EXPECT_NE(Value(1), Value(1.0));
  EXPECT_EQ(Value(Array{1, "a"}), Value(Array{1, "a"}));
}

TEST(ValueTest, ConvertsToJson) {
  const Date date = sys_days{2026y / 11 / 23} + 44min + 14s + 999ms;
  const Dictionary dictionary{
      {"null", nullptr},
      {"flag", true},
      {"count", -3},
      {"ratio", 0.5},
      {"price", *Decimal::parse("19.90")},
      {"whole", *Decimal::parse("2e2")},
      {"name", "Ünïcode"},
      {"when", date},
      {"blob", Bytes{'f', 'o', 'o', 'b'}},
      {"list", Array{1, Array{}, Dictionary{}}},
      {"nested", Dictionary{{"inf", std::numeric_limits<double>::infinity()}}},
  };
  const nlohmann::json expected = nlohmann::json::parse(R"({
    "null": null, "flag": true, "count": -3, "ratio": 0.5, "price": 19.9, "whole": 200,
    "name": "Ünïcode", "when": "2026-11-23T00:44:14Z", "blob": "Zm9vYg==",
    "list": [1, [], {}], "nested": {"inf": null}})");
  EXPECT_EQ(toJson(dictionary), expected);
  EXPECT_TRUE(toJson(dictionary)["whole"].is_number_integer());
}

TEST(TimestampTest, FormatsUtcSecondsEndingInZ) {
  EXPECT_EQ(formatTimestamp(Date{}), "1970-01-01T00:00:00Z");
  EXPECT_EQ(formatTimestamp(sys_days{2024y / 2 / 29} + 23h + 59min + 59s + 999ms),
            "2024-02-29T23:59:59Z");
  // Before 1970 the fraction rounds down to the earlier second.
  EXPECT_EQ(formatTimestamp(Date{} - 1ms), "1969-12-31T23:59:59Z");
  EXPECT_EQ(formatTimestamp(sys_days{1900y / 1 / 9} + 7h + 5min + 3s), "1900-01-09T07:05:03Z");
}

TEST(TimestampTest, CachedSecondNeverLeaksIntoAnotherSecond) {
  const Date base = sys_days{2026y / 1 / 1};
  EXPECT_EQ(formatTimestamp(base), "2026-01-01T00:00:00Z");
  EXPECT_EQ(formatTimestamp(base + 500ms), "2026-01-01T00:00:00Z");
  EXPECT_EQ(formatTimestamp(base + 1s), "2026-01-01T00:00:01Z");
  EXPECT_EQ(formatTimestamp(base), "2026-01-01T00:00:00Z");
  EXPECT_TRUE(
      std::regex_match(currentTimestamp(), std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)")));
}

TEST(UuidTest, IsUpperCaseVersionFourText) {
  const std::regex shape("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  for (int i = 0; i < 1000; ++i) {
    const std::string uuid = makeUuidString();
    ASSERT_TRUE(std::regex_match(uuid, shape)) << uuid;
  }
}

TEST(UuidTest, IsUniqueAcrossThreadsAndPoolRefills) {
  // 4 threads x 1000 ids each walk through several 4 KiB pools per thread.
  constexpr int kThreads = 4;
  constexpr int kPerThread = 1000;
  std::vector<std::vector<std::string>> made(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&made, t] {
      for (int i = 0; i < kPerThread; ++i)
        made[t].push_back(makeUuidString());
    });
  }
  for (auto& thread : threads)
    thread.join();
  std::set<std::string> all;
  for (const auto& ids : made)
    all.insert(ids.begin(), ids.end());
  EXPECT_EQ(all.size(), static_cast<std::size_t>(kThreads * kPerThread));
}

TEST(UuidTest, ForkedChildDoesNotReuseTheParentsPool) {
  makeUuidString();  // fills this thread's pool
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const std::string uuid = makeUuidString();
    const ssize_t written = write(fds[1], uuid.data(), uuid.size());
    _exit(written == static_cast<ssize_t>(uuid.size()) ? 0 : 1);
  }
  const std::string parentUuid = makeUuidString();
  std::string childUuid(36, '\0');
  ASSERT_EQ(read(fds[0], childUuid.data(), childUuid.size()), 36);
  int status = 0;
  waitpid(child, &status, 0);
  close(fds[0]);
  close(fds[1]);
  EXPECT_NE(childUuid, parentUuid);
}

}  // namespace
}  // namespace vorn
