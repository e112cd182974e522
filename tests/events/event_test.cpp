#include <gtest/gtest.h>

#include <regex>

#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/EngagementEvent.hpp"
#include "vorn/events/EventCategory.hpp"
#include "vorn/events/FakeEvent.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

const std::string kDroppedKeyPrefix =
    "    The parameter key must not be empty, contain only whitespace characters, any dots or "
    "leading $.\n    The `";

std::string droppedKeyLine(const std::string& key) {
  return kDroppedKeyPrefix + key + "` attribute was dropped.";
}

std::string refusedNameLine(const std::string& name) {
  return "The event name must not be empty, contain only whitespace characters or leading $. "
         "The `" +
         name + "` event was not created.";
}

TEST(EventCategoryTest, RawValuesAndTags) {
  EXPECT_EQ(rawValue(EventCategory::engagement), "engagement");
  EXPECT_EQ(rawValue(EventCategory::identity), "identity");
  EXPECT_EQ(rawValue(EventCategory::system), "system");
  EXPECT_EQ(static_cast<int>(EventCategory::engagement), 0);
  EXPECT_EQ(static_cast<int>(EventCategory::identity), 1);
  EXPECT_EQ(static_cast<int>(EventCategory::system), 2);
}

TEST(EventCategoryTest, UnknownTextDefaultsToEngagementWithOneLine) {
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(eventCategoryFrom("system"), EventCategory::system);
  EXPECT_EQ(eventCategoryFrom("identity"), EventCategory::identity);
  EXPECT_TRUE(sink->lines().empty());
  EXPECT_EQ(eventCategoryFrom("SYSTEM"), EventCategory::engagement);
  EXPECT_EQ(eventCategoryFrom(""), EventCategory::engagement);
  EXPECT_EQ(eventCategoryFrom("Engagement"), EventCategory::engagement);
  ASSERT_EQ(sink->count("Invalid event category parameter. Defaulting to engagement."), 3u);
  const auto line = sink->find("Invalid event category parameter. Defaulting to engagement.");
  EXPECT_EQ(line->level, LogLevel::debug);
  EXPECT_EQ(line->category, LoggerCategory::event);
}

TEST(CustomEventTest, TrimsTheNameAndKeepsAbsentAttributesAbsent) {
  const auto event = CustomEvent::create("  Purchase \n");
  ASSERT_TRUE(event);
  EXPECT_EQ(event->name(), "Purchase");
  EXPECT_EQ(event->category(), EventCategory::engagement);
  EXPECT_FALSE(event->attributes().has_value());
  EXPECT_TRUE(std::regex_match(event->id(), std::regex("[0-9A-F-]{36}")));
}

TEST(CustomEventTest, TrimsUnicodeWhiteSpaceButNotOtherCharacters) {
  // NBSP, ideographic space, line separator, NEL and vertical tab are trimmed; a zero-width
  // space is a format character, not white space.
  const auto event = CustomEvent::create("\u00A0\u3000\u2028\u0085\vNamé\u00A0\u200B");
  ASSERT_TRUE(event);
  EXPECT_EQ(event->name(), "Namé\u00A0\u200B");
}

TEST(CustomEventTest, RefusesEmptyBlankAndDollarNamesWithTheTrimmedName) {
  auto sink = CaptureLogSink::install();
  EXPECT_FALSE(CustomEvent::create("   "));
  EXPECT_FALSE(CustomEvent::create(""));
  EXPECT_FALSE(CustomEvent::create("$login"));
  EXPECT_FALSE(CustomEvent::create(" $login", Dictionary{{"a.b", 1}}));
  EXPECT_EQ(sink->count(refusedNameLine("")), 2u);
  EXPECT_EQ(sink->count(refusedNameLine("$login")), 2u);
  // A refused event checks no attribute.
  EXPECT_EQ(sink->lines().size(), 4u);
  const auto line = sink->find(refusedNameLine("$login"));
  EXPECT_EQ(line->level, LogLevel::debug);
  EXPECT_EQ(line->category, LoggerCategory::event);
}

TEST(CustomEventTest, AcceptsDollarAndDotsAfterTheFirstCharacter) {
  const auto event = CustomEvent::create("a.b$");
  ASSERT_TRUE(event);
  EXPECT_EQ(event->name(), "a.b$");
}

TEST(CustomEventTest, DropsBadAttributeKeysAndKeepsTheRestUnderTrimmedKeys) {
  auto sink = CaptureLogSink::install();
  const auto event = CustomEvent::create(
      "Checkout", Dictionary{{"a.b", 1}, {" $x", 2}, {"  ", 3}, {" ok ", Array{"v"}}});
  ASSERT_TRUE(event);
  ASSERT_TRUE(event->attributes().has_value());
  EXPECT_EQ(*event->attributes(), (Dictionary{{"ok", Array{"v"}}}));
  EXPECT_EQ(sink->lines().size(), 3u);
  EXPECT_TRUE(sink->contains(droppedKeyLine("a.b")));
  EXPECT_TRUE(sink->contains(droppedKeyLine("$x")));
  EXPECT_TRUE(sink->contains(droppedKeyLine("")));
  EXPECT_EQ(sink->find(droppedKeyLine("a.b"))->category, LoggerCategory::event);
}

TEST(CustomEventTest, EmptyOrFullyDroppedAttributesStayPresent) {
  const auto empty = CustomEvent::create("e", Dictionary{});
  ASSERT_TRUE(empty && empty->attributes());
  EXPECT_TRUE(empty->attributes()->empty());
  const auto dropped = CustomEvent::create("e", Dictionary{{"$a", 1}});
  ASSERT_TRUE(dropped && dropped->attributes());
  EXPECT_TRUE(dropped->attributes()->empty());
}

TEST(CustomEventTest, KeysTrimmingToTheSameTextKeepTheLaterOne) {
  // Map order: " k" < "k" < "k ", so "k " is visited last.
  const auto event = CustomEvent::create("e", Dictionary{{" k", 1}, {"k", 2}, {"k ", 3}});
  ASSERT_TRUE(event);
  EXPECT_EQ(*event->attributes(), (Dictionary{{"k", 3}}));
}

TEST(CustomEventTest, DroppedKeyLineIsRedacted) {
  auto sink = CaptureLogSink::install();
  VORNSdkLogger::shared().setRedactedValues({"secret"});
  CustomEvent::create("e", Dictionary{{"my.secret", 1}});
  EXPECT_TRUE(sink->contains(droppedKeyLine("my.[REDACTED]")));
}

TEST(SystemEventTest, TrimsTheNameOnlyAndKeepsAttributesAsGiven) {
  auto sink = CaptureLogSink::install();
  const SystemEvent event("", Dictionary{{"a.b", 1}, {"$c", 2}});
  EXPECT_EQ(event.name(), "");
  EXPECT_EQ(event.category(), EventCategory::system);
  EXPECT_EQ(*event.attributes(), (Dictionary{{"a.b", 1}, {"$c", 2}}));
  EXPECT_EQ(SystemEvent(" \tApp Open\n").name(), "App Open");
  EXPECT_FALSE(SystemEvent("x").attributes().has_value());
  EXPECT_TRUE(sink->lines().empty());
}

TEST(FakeEventTest, KeepsTheNameUntrimmedAndHasEmptyAttributes) {
  const auto event = FakeEvent::create(" x ");
  ASSERT_TRUE(event);
  EXPECT_EQ(event->name(), " x ");
  EXPECT_EQ(event->category(), EventCategory::engagement);
  ASSERT_TRUE(event->attributes().has_value());
  EXPECT_TRUE(event->attributes()->empty());
}

class PlainEngagement : public EngagementEvent {
 public:
  PlainEngagement(std::string name, std::optional<Dictionary> attributes)
      : EngagementEvent(std::move(name), std::move(attributes)) {}
};

TEST(EngagementEventTest, StoresNameAndAttributesUnchecked) {
  const PlainEngagement event(" $a.b ", Dictionary{{" $k", 1}});
  EXPECT_EQ(event.name(), " $a.b ");
  EXPECT_EQ(event.category(), EventCategory::engagement);
  EXPECT_EQ(*event.attributes(), (Dictionary{{" $k", 1}}));
}

TEST(EventTest, EveryEventGetsItsOwnId) {
  const auto a = CustomEvent::create("same");
  const auto b = CustomEvent::create("same");
  EXPECT_NE(a->id(), b->id());
  EXPECT_NE(SystemEvent("s").id(), SystemEvent("s").id());
}

}  // namespace
}  // namespace vorn
