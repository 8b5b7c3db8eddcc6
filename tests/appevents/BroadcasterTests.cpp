#include <array>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

class Cleanups : public Events {
 protected:
  /// Leaves a callback that notes the owner's number and then acts.
  void Add(std::size_t owner, std::function<void()> act = nullptr) {
    target->AddCleanupCallback(&owners[owner], [this, owner, run = std::move(act)] {
      log += std::to_string(owner);
      if (run) run();
    });
  }

  std::array<char, 6> owners{};
  std::optional<OwnBroadcaster> broadcaster{std::in_place};
  PolicyEventBroadcaster* const target = &*broadcaster;
};

TEST_F(Cleanups, RunOnceInOrderOfTheirOwnersAndMayAddAndRemoveOthersAndThrow) {
  const auto weak = broadcaster->GetWeakPtr();
  for (const std::size_t owner : {4u, 1u, 2u, 5u}) Add(owner);
  Add(0, [&] {
    EXPECT_TRUE(weak);
    weak->RemoveCleanupCallback(&owners[0]);
    weak->RemoveCleanupCallback(&owners[2]);
    Add(3);
    throw std::runtime_error("cleanup");
  });
  broadcaster->AddCleanupCallback(&owners[4], [this] { log += "second of its owner"; });
  broadcaster->RemoveCleanupCallback(&owners[5]);
  broadcaster->RemoveCleanupCallback(this);
  broadcaster.reset();
  EXPECT_FALSE(weak);
  EXPECT_EQ(log, "0134");
}

TEST_F(Cleanups, MayOwnWhatTakesThemOff) {
  std::shared_ptr<void> owner(this, [this](auto key) { target->RemoveCleanupCallback(key); });
  broadcaster->AddCleanupCallback(this, [keep = std::move(owner)] { FAIL(); });
  broadcaster->RemoveCleanupCallback(this);
  broadcaster.reset();
}

/// A hook that notes its mark and then acts.
struct Hook {
  void OnEvent(VtrString name, const std::vector<Any>& args) {
    log += mark;
    seen = name + L"!";
    values = args;
    if (act) act();
  }
  EventHook Delegate() { return EventHook::To<&Hook::OnEvent>(*this); }

  std::string& log;
  char mark;
  std::function<void()> act = nullptr;
  VtrString seen = {};
  std::vector<Any> values = {};
};

class Hooks : public Events {
 protected:
  Hook first{log, '1'}, second{log, '2'}, third{log, '3'};
};

TEST_F(Hooks, HaveIdsThatAreNeverUsedAgainAndGoSinglyOrByOwner) {
  EXPECT_EQ(events().RegisterEventHook(first.Delegate()), 1);
  EXPECT_EQ(events().RegisterEventHook(second.Delegate(), this), 2);
  EXPECT_TRUE(events().UnregisterEventHook(1));
  EXPECT_FALSE(events().UnregisterEventHook(1) || events().UnregisterEventHook(0));
  EXPECT_EQ(events().RegisterEventHook(third.Delegate(), this), 3);
  EXPECT_EQ(events().RegisterEventHook(first.Delegate()), 4);
  EXPECT_EQ(events().UnregisterEventHooks(nullptr), 0);
  EXPECT_EQ(events().UnregisterEventHooks(this), 2);
  closed.Send();
  EXPECT_EQ(log, "1");
}

TEST_F(Hooks, SeeAllArgumentsInOrderAfterTheListeners) {
  const AppEvent<double, int> drawn(L"Drawn");
  const auto heard = drawn.Subscribe([&](const auto&, const auto&) { log += 'a'; });
  events().RegisterEventHook({});
  for (Hook* hook : {&first, &second}) events().RegisterEventHook(hook->Delegate());
  drawn.Send(0.5, 7);
  EXPECT_EQ(log, "a12");
  EXPECT_EQ(second.seen, L"Drawn!");
  EXPECT_EQ(std::any_cast<double>(second.values.at(0)), 0.5);
  EXPECT_EQ(std::any_cast<int>(second.values.at(1)), 7);
}

TEST_F(Hooks, MayThrowAndAddAndRemoveThemselvesAndOthersAndReleaseTheBroadcaster) {
  NoteFailures();
  first.act = [this] {
    events().UnregisterEventHook(1);
    events().UnregisterEventHook(3);
    events().RegisterEventHook(third.Delegate());
    throw std::runtime_error("hook");
  };
  for (Hook* hook : {&first, &second, &third}) events().RegisterEventHook(hook->Delegate());
  closed.Send();
  EXPECT_EQ(Notes(), "1!Closed:hook2");
  closed.Send();
  EXPECT_EQ(Notes(), "23");
  second.act = [] {
    IAppEventBroadcaster::ReleaseInstance(false);
    throw std::runtime_error("after the end");
  };
  closed.Send();
  EXPECT_EQ(Notes(), "2");
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

}  // namespace
}  // namespace DataBinding::Testing
