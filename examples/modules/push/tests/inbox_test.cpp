// The inbox: the fetch, the local marks and what reaches the server, the background refresh
// results, and the refresh a foreground behaviour triggers.
#include <future>

#include "PushTestSupport.hpp"
#include "vorn/behavior/ApplicationNotifications.hpp"
#include "vorn/behavior/NotificationCenter.hpp"

namespace push::test {
namespace {

using vorn::BackgroundFetchResult;

class Inbox : public PushModuleTest {
 protected:
  void SetUp() override {
    PushModuleTest::SetUp();
    backend.setInbox({{{"id", "m1"}, {"subject", "Hello"}, {"read", false}},
                      {{"id", "m 2"}, {"subject", "Again"}, {"read", true}},
                      {{"subject", "no id"}}});
  }

  BackgroundFetchResult refreshed(vorn::PushInterface& push) {
    std::promise<BackgroundFetchResult> result;
    EXPECT_TRUE(push.refresh([&](BackgroundFetchResult r) { result.set_value(r); }));
    auto future = result.get_future();
    EXPECT_EQ(future.wait_for(vorn::testing::kDeadline), std::future_status::ready);
    return future.get();
  }
};

TEST_F(Inbox, FetchedMessagesAreMarkedLocallyAndOnTheServer) {
  Started s = start();
  ASSERT_TRUE(s.push->refreshMessages());
  ASSERT_TRUE(waitForProperty(s, "inboxMessages", 2));
  EXPECT_EQ(s.push->getUnreadMessages(),
            (vorn::PushInterface::Messages{
                {{"id", "m1"}, {"subject", "Hello"}, {"read", false}, {"deleted", false}}}));
  EXPECT_EQ(s.push->getReadMessagesCount(), 1u);

  EXPECT_TRUE(s.push->markMessageWithIdRead("m1"));
  EXPECT_EQ(s.push->getUnreadMessagesCount(), 0u);
  EXPECT_EQ(s.push->getReadMessagesCount(), 2u);
  EXPECT_TRUE(s.push->markMessageDeleted({{"id", "m 2"}}));
  EXPECT_EQ(s.push->getAllMessagesCount(), 1u);
  EXPECT_EQ(s.push->getDeletedMessagesCount(), 1u);

  ASSERT_TRUE(backend.waitForCount("/v1/inbox/m 2", 1));
  const auto reads = backend.received("/v1/inbox/m1/read");
  ASSERT_EQ(reads.size(), 1u);
  EXPECT_EQ(reads[0].method, "POST");
  EXPECT_EQ(reads[0].authorization, "Bearer secret-token-1");
  EXPECT_EQ(backend.received("/v1/inbox/m 2")[0].method, "DELETE");
}

TEST_F(Inbox, MarkingTwiceOrAllSendsOnlyWhatChanged) {
  Started s = start();
  ASSERT_EQ(refreshed(*s.push), BackgroundFetchResult::newData);
  EXPECT_TRUE(s.push->markMessageWithIdRead("m 2"));
  EXPECT_TRUE(s.push->markAllMessagesRead());
  EXPECT_TRUE(s.push->markAllMessagesDeleted());
  EXPECT_EQ(s.push->getAllMessages(), vorn::PushInterface::Messages{});
  ASSERT_TRUE(backend.waitForCount("/v1/inbox/m 2", 1));
  ASSERT_TRUE(backend.waitForCount("/v1/inbox/m1", 1));
  EXPECT_EQ(backend.count("/v1/inbox/m1/read"), 1u);
  EXPECT_EQ(backend.count("/v1/inbox/m 2/read"), 0u);
}

TEST_F(Inbox, AnUnknownMessageIsNotMarked) {
  Started s = start();
  EXPECT_FALSE(s.push->markMessageWithIdRead("nope"));
  EXPECT_FALSE(s.push->markMessageRead({{"subject", "no id"}}));
  EXPECT_EQ(sink->count("Message `nope` is not in the inbox."), 1u);
  EXPECT_EQ(sink->count("Message `` is not in the inbox."), 1u);
}

TEST_F(Inbox, RefreshTellsNewDataThenNoDataThenFailed) {
  Started s = start();
  EXPECT_EQ(refreshed(*s.push), BackgroundFetchResult::newData);
  EXPECT_EQ(refreshed(*s.push), BackgroundFetchResult::noData);
  backend.failInboxWith(503);
  EXPECT_EQ(refreshed(*s.push), BackgroundFetchResult::failed);
  EXPECT_TRUE(sink->contains("Inbox refresh failed: HTTP 503."));
  EXPECT_EQ(s.push->getAllMessagesCount(), 2u);
}

TEST_F(Inbox, ADisabledInboxIsNotFetched) {
  Started s = start();
  s.push->setInboxEnabled(false);
  EXPECT_FALSE(s.push->isInboxEnabled());
  EXPECT_FALSE(s.push->refreshMessages());
  EXPECT_TRUE(sink->contains("The inbox is disabled; nothing is fetched."));
  EXPECT_EQ(backend.count("/v1/inbox"), 0u);
}

TEST_F(Inbox, AForegroundRefreshesIt) {
  Started s = start();
  vorn::NotificationCenter::defaultCenter()->post(
      vorn::kApplicationWillEnterForegroundNotification);
  ASSERT_TRUE(waitForProperty(s, "inboxMessages", 2));
  EXPECT_EQ(backend.count("/v1/inbox"), 1u);
}

}  // namespace
}  // namespace push::test
