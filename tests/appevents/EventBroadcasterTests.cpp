// SPDX-License-Identifier: Apache-2.0
#include <array>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

class EventCleanups : public Events {
 protected:
  /// Leaves a callback that notes the owner's number and then acts.
  void Add(std::size_t owner, std::function<void()> act = nullptr) {
    target->AddCleanupCallback(&owners[owner], [this, owner, run = std::move(act)] {
      log += std::to_string(owner);
      if (run) run();
    });
  }

  std::array<char, 4> owners{};
  std::optional<OwnBroadcaster> broadcaster{std::in_place};
  PolicyEventBroadcaster* const target = &*broadcaster;
};

TEST_F(EventCleanups, MayChangeTheOthersBeforeTheyThrow) {
  const auto weak = broadcaster->GetWeakPtr();
  for (const std::size_t owner : {1u, 2u}) Add(owner);
  Add(0, [&] {
    EXPECT_TRUE(weak);
    weak->RemoveCleanupCallback(&owners[0]);
    weak->RemoveCleanupCallback(&owners[2]);
    Add(3);
    throw std::runtime_error("cleanup");
  });

  broadcaster->AddCleanupCallback(&owners[1], [this] { log += "second of its owner"; });
  broadcaster.reset();

  EXPECT_FALSE(weak);
  EXPECT_EQ(log, "013");
}

TEST_F(EventCleanups, MayOwnWhatTakesThemOff) {
  std::shared_ptr<void> owner(this, [this](auto key) { target->RemoveCleanupCallback(key); });
  broadcaster->AddCleanupCallback(this, [keep = std::move(owner)] { FAIL(); });
  broadcaster->RemoveCleanupCallback(this);
  broadcaster.reset();
}

using EventHooks = Events;

TEST_F(EventHooks, LastAsLongAsTheirSubscriptionsWhichMayOutliveTheBroadcaster) {
  EXPECT_FALSE(events().AddEventHook(nullptr));

  const auto note = [this](const VtrString& name, const auto&) { log += name.ToUtf8(); };
  Subscription seen = events().AddEventHook(note);
  closed.Send();
  seen.Cancel();
  closed.Send();
  EXPECT_EQ(Notes(), "Closed");

  seen = events().AddEventHook(note);
  IAppEventBroadcaster::ReleaseInstance(false);
  const Subscription next = events().AddEventHook(note);
  seen.Cancel();
  closed.Send();
  EXPECT_EQ(Notes(), "Closed") << "the next one has the same id";
}

TEST_F(EventHooks, MayOwnWhatTakesOthersOff) {
  for (const bool isReleased : {false, true}) {
    const auto weak = events().GetWeakPtr();
    std::vector<Subscription> hooks;
    for (const int id : {1, 2}) {
      const auto takeOtherOff = [&, id] {
        auto& broadcaster = static_cast<IAppEventBroadcaster&>(*weak);
        log += broadcaster.UnregisterEventHook(3 - id) ? "taken off " : "gone ";
      };
      hooks.push_back(
          events().AddEventHook([end = AtEnd(takeOtherOff)](const auto&, const auto&) {}));
    }
    isReleased ? IAppEventBroadcaster::ReleaseInstance(false) : hooks.front().Cancel();
    EXPECT_EQ(Notes(), isReleased ? "gone gone " : "gone taken off ");
    closed.Send();
    IAppEventBroadcaster::ReleaseInstance(false);
  }
}

TEST_F(EventHooks, MayEndTogetherWithTheNextOne) {
  auto next = std::make_shared<Subscription>();
  Subscription own = events().AddEventHook([&own, this, next](const auto&, const auto&) {
    log += '1';
    own.Cancel();
  });

  *next = events().AddEventHook([this](const auto&, const auto&) { log += '2'; });
  next.reset();
  closed.Send();

  EXPECT_EQ(Notes(), "1");
}

TEST_F(EventHooks, SeeAllArgumentsInOrderAfterTheListeners) {
  const AppEvent<double, int> drawn(L"Drawn");
  const auto heard = drawn.Subscribe([&](const auto&, const auto&) { log += "heard "; });
  events().RegisterEventHook({});
  const auto hook = events().AddEventHook([this](const VtrString& name, const auto& args) {
    log += name.ToUtf8();
    EXPECT_EQ(std::any_cast<double>(args.at(0)), 0.5);
    EXPECT_EQ(std::any_cast<int>(args.at(1)), 7);
  });

  EXPECT_EQ(events().UnregisterEventHooks(nullptr), 0) << "they have no origin";

  drawn.Send(0.5, 7);
  EXPECT_EQ(log, "heard Drawn");
}

TEST_F(EventHooks, MayReleaseTheBroadcaster) {
  const auto first = events().AddEventHook([this](const auto&, const auto&) {
    IAppEventBroadcaster::ReleaseInstance(false);
    log += '1';
    throw std::runtime_error("after the end");
  });
  const auto second = events().AddEventHook([this](const auto&, const auto&) { log += '2'; });

  closed.Send();

  EXPECT_EQ(Notes(), "1");
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

}  // namespace
}  // namespace DataBinding::Testing
