#include <array>
#include <optional>
#include <stdexcept>

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

  std::array<char, 5> owners{};
  std::optional<OwnBroadcaster> broadcaster{std::in_place};
  PolicyEventBroadcaster* const target = &*broadcaster;
};

TEST_F(Cleanups, RunOnceInOrderOfTheirOwnersAndTheFirstOfAnOwnerStays) {
  for (const std::size_t owner : {3u, 0u, 2u, 1u}) Add(owner);
  auto unused = std::make_shared<int>();
  broadcaster->AddCleanupCallback(&owners[2], [this, unused] { log += "second"; });
  EXPECT_EQ(unused.use_count(), 1);
  broadcaster->RemoveCleanupCallback(&owners[1]);
  broadcaster->RemoveCleanupCallback(this);
  broadcaster.reset();
  EXPECT_EQ(log, "023");
}

TEST_F(Cleanups, MayAddAndRemoveOthersAndThrowWhileTheBroadcasterEnds) {
  const auto weak = broadcaster->GetWeakPtr();
  Add(0, [&] {
    EXPECT_TRUE(weak);
    weak->RemoveCleanupCallback(&owners[0]);
    weak->RemoveCleanupCallback(&owners[2]);
    Add(3);
    throw std::runtime_error("cleanup");
  });
  for (const std::size_t owner : {1u, 2u, 4u}) Add(owner);
  broadcaster.reset();
  EXPECT_FALSE(weak);
  EXPECT_EQ(log, "0134");
}

TEST_F(Cleanups, MayOwnWhatTakesThemOff) {
  struct Owner {
    explicit Owner(PolicyEventBroadcaster& cleaning) : broadcaster(cleaning) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { broadcaster.RemoveCleanupCallback(this); }
    PolicyEventBroadcaster& broadcaster;
  };
  auto owner = std::make_shared<Owner>(*broadcaster);
  void* const key = owner.get();
  broadcaster->AddCleanupCallback(key, [keep = std::move(owner)] { FAIL(); });
  broadcaster->RemoveCleanupCallback(key);
  broadcaster.reset();
}

TEST_F(Events, SingletonsAreMadeOnFirstUseAndAnewAfterTheirRelease) {
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance() || WAppEventRegistrar::HasInstance());
  IAppEventBroadcaster::ReleaseInstance(true);
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
  AEB::UpdatePolicy().PreNotify();
  EXPECT_TRUE(WAppEventRegistrar::HasInstance());
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
  const auto first = events().GetWeakPtr();
  EXPECT_EQ(first.Get(), &events());
  events().DisableEvent(L"A");
  IAppEventBroadcaster::ReleaseInstance(true);
  EXPECT_FALSE(first || IAppEventBroadcaster::HasInstance());
  EXPECT_FALSE(events().IsDisable(L"A"));
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
  Hook first{log, '1'};
  Hook second{log, '2'};
  Hook third{log, '3'};
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
  EXPECT_EQ(events().UnregisterEventHooks(this), 0);
  events().DisableEvent(closed.Name());
  closed.Send();
  EXPECT_EQ(Notes(), "");
  events().EnableEvent(closed.Name(), true);
  EXPECT_EQ(Notes(), "1");
}

TEST_F(Hooks, SeeAllArgumentsInOrderAfterTheListenersAndEvenWithoutAny) {
  const AppEvent<VtrString, double, std::vector<int>> drawn(L"Drawn");
  events().RegisterEventHook(first.Delegate());
  events().RegisterEventHook({});
  events().RegisterEventHook(second.Delegate());
  Listen('a');
  moved.Raise(7);
  EXPECT_EQ(Dispatched(), "a712");
  EXPECT_EQ(std::any_cast<int>(first.values.at(0)), 7);
  drawn.Raise(L"line", 0.5, {1, 2});
  EXPECT_EQ(Dispatched(), "12");
  EXPECT_EQ(second.seen, L"Drawn!");
  ASSERT_EQ(second.values.size(), 3u);
  EXPECT_EQ(std::any_cast<VtrString>(second.values[0]), L"line");
  EXPECT_EQ(std::any_cast<double>(second.values[1]), 0.5);
  EXPECT_EQ(std::any_cast<std::vector<int>>(second.values[2]), (std::vector<int>{1, 2}));
  EXPECT_TRUE(NotedEvent::HasHooks(events()));
  NotedEvent::NotifyHooks(events(), L"Own", {Any(true)});
  EXPECT_EQ(first.seen, L"Own!");
}

TEST_F(Hooks, MayThrowAndAddAndRemoveThemselvesAndOthers) {
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
}

TEST_F(Hooks, MayReleaseTheBroadcasterAndThrowThen) {
  for (const bool throws : {false, true}) {
    first.act = [throws] {
      IAppEventBroadcaster::ReleaseInstance(false);
      if (throws) throw std::runtime_error("hook");
    };
    events().RegisterEventHook(first.Delegate());
    events().RegisterEventHook(second.Delegate());
    closed.Raise();
    closed.Raise();
    EXPECT_EQ(Dispatched(), "1");
    EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
  }
}

}  // namespace
}  // namespace DataBinding::Testing
