// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/lists/ListInbox.h"

namespace DataBinding::Testing {
namespace {

struct Reading {
  int place = 0;
  int value = 0;
  friend bool operator==(const Reading&, const Reading&) = default;
};
constexpr auto FieldsOf(const Reading* /*row*/) {
  return Fields(Key(L"Place", &Reading::place), Field(L"Value", &Reading::value));
}

class Inboxes : public ::testing::Test {
 protected:
  std::vector<Reading> Rows() const { return {list.begin(), list.end()}; }

  int wakes = 0;
  IdlePass idle{[this] { ++wakes; }};
  ListData<Reading> list;
  std::unique_ptr<ListInbox<Reading>> inbox = std::make_unique<ListInbox<Reading>>(list);
};

TEST_F(Inboxes, GiveTheNewestRowsOnTheNextPass) {
  inbox->Post({{1, 1}});
  inbox->Post({{1, 2}, {2, 2}});
  EXPECT_EQ(wakes, 1);
  EXPECT_TRUE(Rows().empty());

  idle.Run();
  EXPECT_EQ(Rows(), (std::vector<Reading>{{1, 2}, {2, 2}}));
  inbox->Post({});
  idle.Run();
  EXPECT_TRUE(Rows().empty());
}

TEST_F(Inboxes, TakeWhatIsPostedWhileTheListTells) {
  const Subscription again = list.Observe({.after = [&](const auto& /*change*/) {
    if (list.Size() == 1) inbox->Post({{1, 1}, {2, 2}});
    if (list.Size() == 2) inbox->Post({{1, 1}, {2, 2}, {3, 3}});
  }});
  inbox->Post({{1, 1}});
  for (int pass = 0; pass < 3; ++pass) idle.Run();
  EXPECT_EQ(list.Size(), 3U);
}

TEST_F(Inboxes, DropWhatIsQueuedWhenTheyEnd) {
  inbox->Post({{1, 1}});
  inbox.reset();
  EXPECT_FALSE(IAppEventBroadcaster::GetInstance().HasPendingEvents());
  idle.Run();
  EXPECT_TRUE(Rows().empty());
}

TEST_F(Inboxes, GoOnAfterTheirEventWasDropped) {
  inbox->Post({{1, 1}});
  IAppEventBroadcaster::ReleaseInstance(false);
  inbox->Post({{1, 2}});
  IAppEventBroadcaster::GetInstance().DispatchPendingEvents();
  EXPECT_EQ(Rows(), (std::vector<Reading>{{1, 2}}));
}

TEST_F(Inboxes, MayOutliveTheirList) {
  auto brief = std::make_unique<ListData<Reading>>();
  ListInbox<Reading> late(*brief);
  late.Post({{1, 1}});
  brief.reset();
  idle.Run();
  late.Post({{1, 1}});
}

TEST_F(Inboxes, TakeRowsFromManyThreads) {
  constexpr int last = 200;
  std::atomic<int> running{3};
  std::array<std::jthread, 3> writers;
  for (auto& writer : writers) {
    writer = std::jthread([&] {
      for (int value = 1; value <= last; ++value) inbox->Post({{1, value}});
      --running;
    });
  }
  while (running != 0) idle.Run();
  idle.Run();
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list[0].value, last);
}

}  // namespace
}  // namespace DataBinding::Testing
