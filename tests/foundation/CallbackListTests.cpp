#include "DataBinding/foundation/CallbackList.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace DataBinding {
namespace {

class CallbackLists : public ::testing::Test {
 protected:
  /// Adds a callback that notes its mark, and then acts in the outermost walk.
  void Add(
      char mark, const std::function<void()>& act = [] {}) {
    subscriptions.push_back(list->Add([this, mark, act, token = alive](const int& depth) {
      log += mark;
      if (depth == 0) act();
      EXPECT_NE(token, nullptr);
    }));
  }
  void AddAll(const std::string& marks, char acting, const std::function<void()>& act) {
    for (const char mark : marks)
      Add(
          mark, mark == acting ? act : [] {});
  }
  std::string Walked(int depth = 0) {
    list->Call(depth);
    return std::exchange(log, {});
  }
  /// How many callbacks are not released yet.
  long Alive() const { return alive.use_count() - 1; }

  std::shared_ptr<int> alive = std::make_shared<int>();
  std::unique_ptr<CallbackList<int>> list = std::make_unique<CallbackList<int>>();
  std::vector<Subscription> subscriptions;
  std::string log;
};

TEST_F(CallbackLists, CancellingAtAnyPlaceSparesTheOthersAndReleasesAfterTheWalk) {
  for (std::size_t acting = 0; acting < 4; ++acting) {
    for (std::size_t cancelled = 0; cancelled < 4; ++cancelled) {
      subscriptions.clear();
      EXPECT_EQ(Alive(), 0);
      const std::string all = "0123";
      AddAll(all, all[acting], [&] {
        subscriptions[cancelled].Cancel();
        EXPECT_EQ(Alive(), 4);
      });
      std::string rest = all;
      rest.erase(cancelled, 1);
      EXPECT_EQ(Walked(), cancelled > acting ? rest : all);
      EXPECT_EQ(Alive(), 3);
      EXPECT_EQ(Walked(1), rest);
    }
  }
}

TEST_F(CallbackLists, EndOfTheListAtAnyPlaceEndsTheWalkAndReleasesAfterIt) {
  for (std::size_t acting = 0; acting < 3; ++acting) {
    const std::string all = "012";
    AddAll(all, all[acting], [&] {
      list.reset();
      EXPECT_EQ(Alive(), 3);
    });
    list->Call(0);
    EXPECT_EQ(std::exchange(log, {}), all.substr(0, acting + 1));
    EXPECT_EQ(Alive(), 0);
    subscriptions.clear();
    list = std::make_unique<CallbackList<int>>();
  }
}

TEST_F(CallbackLists, NestedWalkHearsNewCallbacksAndTheOuterOneWaitsForItToRelease) {
  AddAll("01", '0', [&] {
    Add('n');
    subscriptions[1].Cancel();
    list->Call(1);
    EXPECT_EQ(Alive(), 3);
    list.reset();
    subscriptions.clear();
    EXPECT_EQ(Alive(), 3);
  });
  list->Call(0);
  EXPECT_EQ(log, "00n");
  EXPECT_EQ(Alive(), 0);
}

TEST_F(CallbackLists, CancelledOutsideAWalkIsReleasedAtOnce) {
  AddAll("012", '-', [] {});
  subscriptions[1].Cancel();
  EXPECT_EQ(Alive(), 2);
  subscriptions[1].Cancel();
  EXPECT_FALSE(list->Add(nullptr));
  EXPECT_EQ(Walked(), "02");
}

TEST_F(CallbackLists, ExceptionEndsTheWalkAndLeavesTheListAsItShouldBe) {
  AddAll("012", '1', [&] {
    subscriptions[1].Cancel();
    subscriptions[2].Cancel();
    throw std::runtime_error("callback");
  });
  EXPECT_THROW(list->Call(0), std::runtime_error);
  EXPECT_EQ(Alive(), 1);
  EXPECT_EQ(Walked(1), "010");
}

/// Runs a function when it ends.
struct AtEnd {
  explicit AtEnd(std::function<void()> function) : run(std::move(function)) {}
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;
  ~AtEnd() { run(); }
  std::function<void()> run;
};

TEST_F(CallbackLists, ReleasedCallbackMayUseAndEndTheListInItsDestructor) {
  for (const bool ends : {false, true}) {
    for (const bool inWalk : {false, true}) {
      auto atEnd = std::make_shared<AtEnd>([&, ends] {
        Add('n');
        subscriptions[1].Cancel();
        list->Call(1);
        if (ends) list.reset();
      });
      subscriptions.push_back(list->Add([kept = std::exchange(atEnd, nullptr)](const int&) {}));
      AddAll("01", '1', [&] { subscriptions[0].Cancel(); });
      if (inWalk) list->Call(0);
      subscriptions[0].Cancel();
      EXPECT_EQ(std::exchange(log, {}), inWalk ? "011n" : "1n");
      subscriptions.clear();
      EXPECT_EQ(Alive(), 0);
      list = std::make_unique<CallbackList<int>>();
    }
  }
}

TEST_F(CallbackLists, MoveWithTheirSubscriptions) {
  AddAll("01", '0', [&] { *list = CallbackList<int>(); });
  CallbackList<int> target;
  auto former = target.Add([this](const int&) { log += 'f'; });
  target = std::move(*list);
  *list = std::move(target);
  EXPECT_EQ(Walked(), "0") << "assigned to within its own walk";
  EXPECT_EQ(Alive(), 0);
  former.Cancel();
  Add('n');
  subscriptions.front().Cancel();
  EXPECT_EQ(Walked(), "n");
}

TEST_F(CallbackLists, KeepTheirOrderThroughThousandsOfChanges) {
  std::mt19937 random(5);
  std::string model;
  for (int step = 0; step < 5000; ++step) {
    const auto choice = random() % 100;
    if (choice < 50 || model.empty()) {
      model += static_cast<char>('!' + random() % 90);
      Add(model.back());
    } else if (choice < 95) {
      const auto ended = random() % model.size();
      model.erase(ended, 1);
      subscriptions.erase(subscriptions.begin() + static_cast<std::ptrdiff_t>(ended));
    } else {
      ASSERT_EQ(Walked(), model);
    }
    ASSERT_EQ(Alive(), static_cast<long>(model.size()));
  }
}

TEST_F(CallbackLists, CancellingOnOtherThreadsHarmsNoWalkAndLosesNoCallback) {
  constexpr int perThread = 2000;
  std::array<std::vector<Subscription>, 3> shares;
  std::atomic<int> released{0};
  int kept = 0;
  const auto stays = list->Add([&](const int&) { ++kept; });
  for (auto& share : shares) {
    for (int i = 0; i < perThread; ++i) {
      auto token = std::make_shared<AtEnd>([&] { ++released; });
      share.push_back(list->Add([held = std::move(token)](const int& value) {
        EXPECT_EQ(value, 7);
        EXPECT_TRUE(held->run);
      }));
    }
  }
  {
    std::vector<std::jthread> threads;
    for (auto& share : shares) threads.emplace_back([&share] { share.clear(); });
    for (int walk = 0; walk < 200; ++walk) {
      list->Call(7);
      const auto passing = list->Add([](const int&) {});
    }
  }
  list->Call(7);
  EXPECT_EQ(kept, 201);
  EXPECT_EQ(released, 3 * perThread);
}

TEST_F(CallbackLists, CancellingMayRaceWithTheEndOfTheList) {
  for (int round = 0; round < 300; ++round) {
    std::array<Subscription, 3> ending;
    for (auto& each : ending) each = list->Add([token = alive](const int&) {});
    {
      std::vector<std::jthread> threads;
      for (auto& each : ending) threads.emplace_back([&each] { each.Cancel(); });
      if (round % 2 == 0) list->Call(0);
      list.reset();
    }
    EXPECT_EQ(Alive(), 0);
    list = std::make_unique<CallbackList<int>>();
  }
}

}  // namespace
}  // namespace DataBinding
