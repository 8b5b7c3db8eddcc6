#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

TEST_F(Events, UpdateCallbackIsOneForAllBroadcastersAndMayBeMissing) {
  AEB::UpdatePolicy policy;
  EXPECT_TRUE(policy.PostUpdate());
  OwnBroadcaster other;
  AEB::UpdatePolicy::SetUpdateUICallback([this] { log += 'a'; });
  EXPECT_TRUE(policy.PostUpdate());
  AEB::UpdatePolicy::SetUpdateUICallback([this] {
    AEB::UpdatePolicy::SetUpdateUICallback({});  // in the middle of its own run
    log += 'b';
  });
  other.QueueEvent(L"A", std::make_shared<NotedEvent>(log, "A"));
  events().QueueEvent(L"A", std::make_shared<NotedEvent>(log, "A"));
  EXPECT_EQ(log, "ab");
}

TEST_F(Events, ReplacementTakesTheNewestOfItsNameAndAsksForNoOtherPass) {
  CountWakes();
  const auto replace = [&](const wchar_t* name, const std::string& mark) {
    events().QueueEvent(name, std::make_shared<NotedEvent>(log, mark), true);
  };
  Queue(L"A", "A");
  Queue(L"B", "B");
  replace(L"A", "A'");
  events().QueueEvent(L"A", nullptr, true);
  events().QueueEvent(L"B", nullptr);
  events().DropOwner(nullptr);
  EXPECT_EQ(wakes, 2);
  EXPECT_EQ(Dispatched(), "BA'");
  for (const char* mark : {"1", "2"}) Queue(L"A", mark);
  const auto replaced = std::make_shared<NotedEvent>(log, "3");
  events().QueueEvent(L"A", replaced);
  Queue(L"a", "other");
  replace(L"A", "4");
  EXPECT_EQ(replaced.use_count(), 1);
  replace(L"new", "5");
  EXPECT_EQ(wakes, 7);
  EXPECT_EQ(Dispatched(), "12other45");
}

/// Plays one random script on the queue and on a list of what should be in it.
class QueueScript : public Events, public ::testing::WithParamInterface<unsigned> {
 protected:
  struct Wanted {
    std::size_t name;
    const void* owner;
    int id;
  };

  void Append(bool replaceLast) {
    const auto name = random() % typed.size();
    const bool foreign = random() % 2 == 0;
    if (foreign) {
      const auto mark = std::to_string(++lastId) + " ";
      events().QueueEvent(typed[name].Name(),
                          std::make_shared<NotedEvent>(log, mark, nullptr, this), replaceLast);
    } else if (replaceLast) {
      typed[name].RaiseLatest(++lastId);
    } else {
      typed[name].Raise(++lastId);
    }
    const auto last = std::find_if(model.rbegin(), model.rend(),
                                   [name](const auto& wanted) { return wanted.name == name; });
    if (!replaceLast || last == model.rend()) {
      ++wantedWakes;
    } else {
      model.erase(std::prev(last.base()));
    }
    model.push_back({name, foreign ? this : ThisModule(), lastId});
  }
  void DropName() {
    const auto name = random() % typed.size();
    events().DropEvents(typed[name].Name());
    std::erase_if(model, [name](const auto& wanted) { return wanted.name == name; });
  }
  void DropOwner() {
    const void* owner = random() % 2 == 0 ? this : ThisModule();
    events().DropOwner(owner);
    std::erase_if(model, [owner](const auto& wanted) { return wanted.owner == owner; });
  }
  void Dispatch() {
    std::string wanted;
    for (const auto& each : model) wanted += std::to_string(each.id) + " ";
    model.clear();
    ASSERT_EQ(Dispatched(), wanted);
  }

  std::mt19937 random{GetParam()};
  std::vector<AppEvent<int>> typed;
  std::vector<Wanted> model;
  int lastId = 0;
  int wantedWakes = 0;
};

TEST_P(QueueScript, LeavesWhatAPlainListWouldHold) {
  CountWakes();
  for (unsigned name = 0; name < 3 + GetParam() * 20; ++name) {
    typed.emplace_back(VtrString(L"Script") + VtrString(std::to_wstring(name).c_str()));
    subscriptions.push_back(
        typed.back().Subscribe([this](const int& id) { log += std::to_string(id) + " "; }));
  }
  for (int step = 0; step < 20000; ++step) {
    const auto choice = random() % 1000;
    if (choice < 995) {
      Append(choice >= 200);
    } else if (choice < 997) {
      Dispatch();
    } else if (choice < 999) {
      DropName();
    } else {
      DropOwner();
    }
    ASSERT_EQ(events().HasPendingEvents(), !model.empty());
  }
  Dispatch();
  EXPECT_EQ(wakes, wantedWakes);
}

INSTANTIATE_TEST_SUITE_P(Seeds, QueueScript, ::testing::Values(0u, 1u, 7u));

TEST_F(Events, RaisedInADeliveryWaitForTheNextCallOrForANestedOne) {
  Queue(L"A", "a", [this](auto& broadcaster) {
    EXPECT_FALSE(broadcaster.HasPendingEvents());
    Queue(L"A", "b");
    Queue(L"A", "c");
    EXPECT_TRUE(broadcaster.HasPendingEvents());
    broadcaster.DispatchPendingEvents();
    Queue(L"A", "e");
  });
  Queue(L"A", "d");
  EXPECT_EQ(Dispatched(), "abcd");
  EXPECT_EQ(Dispatched(), "e");
}

TEST_F(Events, DroppedInADeliveryAreNotReachedAnyMore) {
  const int owner = 0;
  const auto queueOwned = [&](const wchar_t* name, const char* mark) {
    events().QueueEvent(name, std::make_shared<NotedEvent>(log, mark, nullptr, &owner));
  };
  Queue(L"A", "a", [&](PolicyEventBroadcaster& broadcaster) {
    broadcaster.DropEvents(L"A");
    broadcaster.DropEvents(L"B");
    broadcaster.DropOwner(&owner);
  });
  Queue(L"B", "b");
  queueOwned(L"C", "c");
  Queue(L"C", "d");
  events().DisableEvent(L"A");
  EXPECT_EQ(Dispatched(), "ad");
}

TEST_F(Events, WhatAForeignEventThrowsAbandonsTheRestOfTheBatch) {
  const auto rest = std::make_shared<NotedEvent>(log, "rest");
  Queue(L"A", "a", [this](auto&) {
    Queue(L"A", "raised");
    throw std::runtime_error("foreign");
  });
  events().QueueEvent(L"A", rest);
  EXPECT_THROW(events().DispatchPendingEvents(), std::runtime_error);
  EXPECT_EQ(rest.use_count(), 1);
  EXPECT_EQ(Notes(), "a");
  EXPECT_EQ(Dispatched(), "raised");
}

TEST_F(Events, ThatAreLeftAtTheEndAreReleasedUndelivered) {
  std::optional<OwnBroadcaster> broadcaster(std::in_place);
  const auto queued = std::make_shared<NotedEvent>(log, "queued");
  const auto held = std::make_shared<NotedEvent>(log, "held");
  broadcaster->QueueEvent(L"A", queued);
  broadcaster->DisableEvent(L"B");
  EXPECT_TRUE(NotedEvent::HoldIfDisabled(*broadcaster, L"B", held));
  broadcaster.reset();
  EXPECT_EQ(queued.use_count() + held.use_count(), 2);
  EXPECT_EQ(log, "");
}

TEST_F(Events, BroadcasterReleasedByAnEventDropsTheRestOfTheBatch) {
  const auto rest = std::make_shared<NotedEvent>(log, "rest");
  const auto release = [](auto&) { IAppEventBroadcaster::ReleaseInstance(false); };
  Queue(L"A", "nest", [&](auto& broadcaster) {
    Queue(L"A", "release", release);
    broadcaster.DispatchPendingEvents();
  });
  events().QueueEvent(L"A", rest);
  events().DispatchPendingEvents();
  EXPECT_EQ(log, "nestrelease");
  EXPECT_EQ(rest.use_count(), 1);
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

TEST(ThreadingPolicies, ExcludeOtherThreadsAndLetTheirOwnInAgain) {
  AEB::ThreadingPolicy policy;
  std::array<int, 2> counts{};
  int torn = 0;
  const auto work = [&] {
    for (int round = 0; round < 5000; ++round) {
      policy.EnterCriticalSection();
      policy.EnterCriticalSection();
      ++counts[0];
      policy.LeaveCriticalSection();
      torn += counts[0] == counts[1] + 1 ? 0 : 1;
      ++counts[1];
      policy.LeaveCriticalSection();
    }
  };
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) threads.emplace_back(work);
  }
  EXPECT_EQ(counts, (std::array<int, 2>{20000, 20000}));
  EXPECT_EQ(torn, 0);
}

}  // namespace
}  // namespace DataBinding::Testing
