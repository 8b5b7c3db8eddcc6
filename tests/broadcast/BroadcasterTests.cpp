// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "Notifier.h"

namespace DataBinding {
namespace {

TEST(Broadcaster, AnnouncementRunsListenersOfExactlyOneName) {
  Notifier notifier;
  const auto upper = notifier.Log('A');
  const auto lower = notifier.Log('a', L"a");

  EXPECT_EQ(notifier.Announce(L"A"), "A");
  EXPECT_EQ(notifier.Announce(L"a"), "a");
  EXPECT_EQ(notifier.Announce(L"B"), "");
  EXPECT_EQ(notifier.GetNumRegistered(L"A"), 1u);
}

TEST(Broadcaster, NullCallbackIsCountedThoughItIsSkipped) {
  Notifier notifier;
  const auto before = notifier.Log('1');
  const auto null = notifier.Listen(nullptr);
  const auto after = notifier.Log('2');

  EXPECT_EQ(notifier.GetNumRegistered(L"A"), 3u);
  EXPECT_EQ(notifier.Announce(), "12");
}

TEST(RegisterAny, HearsEachNameAfterTheListenersOfTheName) {
  Notifier notifier;
  auto any = notifier.LogAny('*');
  const auto own = notifier.Log('1');

  EXPECT_EQ(notifier.Announce(L"A"), "1*A");
  EXPECT_EQ(notifier.Announce(L"B"), "*B");
  EXPECT_TRUE(notifier.AreListenersAvailable(L"B"));
  EXPECT_EQ(notifier.GetNumRegistered(L"A"), 1u);
  EXPECT_EQ(notifier.GetRegisteredProperties(), std::vector<VtrString>{L"A"});

  any.Cancel();
  EXPECT_EQ(notifier.Announce(L"A"), "1");
  EXPECT_FALSE(notifier.AreListenersAvailable(L"B"));
}

TEST(RegisterAny, ChangesWithinAnAnnouncementActAsThoseOfAName) {
  Notifier notifier;
  std::vector<Subscription> any;
  Subscription awaited;
  const auto own = notifier.Listen([&] {
    any.erase(any.begin());
    awaited.CancelAndWait();
    for (const char mark : {'x', 'y', 'z'}) any.push_back(notifier.LogAny(mark));
  });
  any.push_back(notifier.LogAny('1'));
  awaited = notifier.LogAny('2');
  any.push_back(notifier.RegisterAny([](const VtrString&) { throw 3; }));
  any.push_back(notifier.RegisterAny(nullptr));
  any.push_back(notifier.LogAny('4'));

  EXPECT_EQ(notifier.Announce(), "1A4A");
  any.erase(any.begin(), any.begin() + 2);
  EXPECT_EQ(notifier.Announce(), "4AxAyAzA");
}

TEST(RegisterAny, NameOutlivesTheAnnouncedTextAndTheBroadcaster) {
  auto notifier = std::make_unique<Notifier>();
  auto text = std::make_unique<VtrString>(L"Volume");
  std::string heard;
  const auto any = notifier->RegisterAny([&](const VtrString& name) { heard = name.ToUtf8(); });
  const auto own = notifier->Register([&] { text.reset(), notifier.reset(); }, *text);

  notifier->UpdateListeners(*text);

  EXPECT_EQ(heard, "Volume");
}

TEST(Broadcaster, CopiesShareTheirListenersUntilTheLastOneGoes) {
  std::optional<Notifier> original(std::in_place);
  const Notifier early(*original);  // there is nothing to share yet
  const auto held = std::make_shared<int>();
  const auto subscription = original->Register([held] {}, L"A");
  Notifier copy(*original);
  Notifier assigned;
  const auto other = assigned.Log('x');

  assigned = copy;
  original.reset();
  copy = Notifier();

  EXPECT_EQ(assigned.GetNumRegistered(L"A"), 1u);
  EXPECT_FALSE(early.AreListenersAvailable(L"A"));

  assigned = copy;
  EXPECT_EQ(held.use_count(), 1);
}

TEST(Broadcaster, AllOfManyListenersCancelledWithinOneBroadcastAreReleased) {
  Notifier notifier;
  const auto held = std::make_shared<int>();
  std::vector<Subscription> many;
  const auto canceller = notifier.Listen([&] { many.clear(); });

  for (int i = 0; i < 40; ++i) many.push_back(notifier.Listen([held] {}));
  notifier.UpdateListeners(L"A");

  EXPECT_EQ(held.use_count(), 1);
}

TEST(Broadcaster, NestedAnnouncementsSeeWhatIsRegisteredAtEachLevel) {
  Notifier notifier;
  Subscription cancelledAtTheBottom = notifier.Log('c');
  int depth = 0;
  const auto nest = notifier.Listen([&] {
    if (depth == 12) cancelledAtTheBottom.Cancel();
    if (++depth <= 13) notifier.UpdateListeners(L"A");
  });
  const auto last = notifier.Log('l');

  EXPECT_EQ(notifier.Announce(), std::string(13, 'c') + std::string(14, 'l'));
  EXPECT_EQ(notifier.Announce(), "l");
}

TEST(Broadcaster, ListenerThatEndsTheBroadcasterLeavesTheRestOfTheListToRun) {
  auto notifier = std::make_unique<Notifier>();
  const auto held = std::make_shared<int>();
  std::string log;
  const auto first = notifier->Listen([&] { notifier.reset(); });
  auto second = notifier->Listen([&log, held] { log += '2'; });
  const auto third = notifier->Listen([&] { second.Cancel(), log += '3'; });

  notifier->UpdateListeners(L"A");

  EXPECT_EQ(log, "23");
  EXPECT_EQ(held.use_count(), 1);
}

TEST(Broadcaster, StateMayUseTheBroadcasterWhenItIsReleased) {
  Notifier notifier;
  Subscription inner;
  const auto registers = [&](const int* released) {
    delete released;
    inner = notifier.Log('r');
  };
  std::shared_ptr<int> state(new int(0), registers);
  auto outer = notifier.Listen([state] {});

  state.reset();
  outer.Cancel();

  EXPECT_EQ(notifier.Announce(), "r");
}

TEST(Broadcaster, NamesAlikeInAllSampledCharactersAreKeptApart) {
  Notifier notifier;
  std::vector<std::pair<VtrString, Subscription>> listeners;
  int runs = 0;
  for (int i = 0; i < 2000; ++i) {  // step 3: places 0, 3, 6, ... are sampled
    VtrString name;
    name.Format(L"n%02dn%02dn00n00n00n00n00n", i / 100, i % 100);
    listeners.emplace_back(name, notifier.Register([&runs] { ++runs; }, name));
  }
  std::shuffle(listeners.begin(), listeners.end(), std::minstd_rand(1));

  for (std::size_t left = listeners.size(); left > 0; --left) {
    notifier.UpdateListeners(listeners.back().first);
    EXPECT_EQ(notifier.GetNumRegistered(listeners.front().first), 1u);
    listeners.pop_back();
  }

  EXPECT_EQ(runs, 2000);
  EXPECT_TRUE(notifier.GetRegisteredProperties().empty());
}

}  // namespace
}  // namespace DataBinding
