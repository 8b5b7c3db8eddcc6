// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/CallbackList.h"

#include <functional>
#include <memory>
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
  using Act = std::function<void()>;
  /// Adds a callback that notes its mark, and then acts in the outermost walk.
  void Add(char mark, const Act& act = nullptr) {
    subscriptions.push_back(list->Add([this, mark, act, token = alive](const int& depth) {
      log += mark;
      if (depth == 0 && act) act();
      EXPECT_NE(token, nullptr);
    }));
  }
  void AddAll(const std::string& marks, char acting, const Act& act) {
    for (const char mark : marks) Add(mark, mark == acting ? act : nullptr);
  }
  std::string Walked(int depth = 0) {
    list->Call(depth);
    return std::exchange(log, {});
  }
  void EndList() {
    list.reset();
    subscriptions.clear();
    EXPECT_EQ(Alive(), 0);
    list = std::make_unique<CallbackList<int>>();
  }
  /// How many callbacks are not released yet.
  long Alive() const { return alive.use_count() - 1; }

  std::shared_ptr<int> alive = std::make_shared<int>();
  std::unique_ptr<CallbackList<int>> list = std::make_unique<CallbackList<int>>();
  std::vector<Subscription> subscriptions;
  std::string log;
};

TEST_F(CallbackLists, WhatGoesAtAnyPlaceOfAWalkIsReleasedAfterIt) {
  const std::string all = "0123";

  for (std::size_t acting = 0; acting < 4; ++acting) {
    for (std::size_t ended = 0; ended <= 4; ++ended) {
      AddAll(all, all[acting], [&] {
        ended < 4 ? subscriptions[ended].Cancel() : list.reset();
        EXPECT_EQ(Alive(), 4);
      });
      list->Call(0);
      const std::string rest = all.substr(0, ended) + (ended < 3 ? all.substr(ended + 1) : "");
      const std::string reached = ended == 4 ? all.substr(0, acting + 1) : all;
      EXPECT_EQ(std::exchange(log, {}), ended < 4 && ended > acting ? rest : reached);
      EXPECT_EQ(Alive(), ended < 4 ? 3 : 0);
      EXPECT_EQ(ended < 4 ? Walked(1) : rest, rest);
      EndList();
    }
  }
}

TEST_F(CallbackLists, NestedWalkThatHearsNewCallbacksReleasesNone) {
  AddAll("01", '0', [&] {
    Add('n');
    subscriptions[1].Cancel();
    list->Call(1);
    list.reset();
    subscriptions.clear();
    EXPECT_EQ(Alive(), 3);
  });
  list->Call(0);

  EXPECT_EQ(log, "00n");
  EXPECT_EQ(Alive(), 0);
}

TEST_F(CallbackLists, CallbackForOneCallHearsNoNestedOne) {
  subscriptions.push_back(list->AddOnce([this, token = alive](const int& depth) {
    log += std::to_string(depth);
    list->Call(depth + 1);
  }));
  Add('a');

  EXPECT_EQ(Walked(), "0aa");
  EXPECT_EQ(Walked(), "a");
  EXPECT_EQ(Alive(), 1);
  EXPECT_FALSE(list->Add(nullptr) || list->AddOnce(nullptr));
}

TEST_F(CallbackLists, WalkThatAnExceptionEndsLeavesTheListWhole) {
  AddAll("012", '1', [&] {
    subscriptions[1].Cancel();
    subscriptions[2].Cancel();
    throw std::runtime_error("callback");
  });

  EXPECT_THROW(list->Call(0), std::runtime_error);
  EXPECT_EQ(Alive(), 1);
  EXPECT_EQ(Walked(1), "010");
}

TEST_F(CallbackLists, ReleasedCallbackMayUseTheListInItsDestructor) {
  for (const bool ends : {false, true}) {
    for (const bool inWalk : {false, true}) {
      std::shared_ptr<void> atEnd(nullptr, [&, ends](auto) {
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
      EndList();
    }
  }
}

TEST_F(CallbackLists, CancellingMayRaceWithTheEndOfTheList) {
  for (int round = 0; round < 300; ++round) {
    for (int each = 0; each < 3; ++each) Add('.');
    {
      std::vector<std::jthread> threads;
      for (auto& each : subscriptions) threads.emplace_back([&each] { each.Cancel(); });
      if (round % 2 == 0) list->Call(1);
      list.reset();
    }
    EndList();
  }
}

}  // namespace
}  // namespace DataBinding
