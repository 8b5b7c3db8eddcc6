// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/EventHold.h"
#include "DataBinding/foundation/BindWeak.h"
#include "Events.h"

namespace DataBinding::Testing {
namespace {

using Deliveries = Events;

TEST_F(Deliveries, NameThatIsUsedWithTwoSignaturesIsRefusedByEveryOperation) {
  const AppEvent<int, VtrString> right(L"Signed");

  EXPECT_EQ(right.Name(), L"Signed");

  const AppEvent<int> wrong(VtrString(L"Signed"));
  const std::function<void()> uses[] = {
      [&] { wrong.Raise(1); },
      [&] { wrong.RaiseLatest(1); },
      [&] { wrong.Send(1); },
      [&] { static_cast<void>(wrong.Name()); },
      [&] { static_cast<void>(wrong.Subscribe([](const int&) {})); },
      [&] { const EventHold hold(wrong); }};

  for (const auto& use : uses) {
    for (const auto* part : {"\"Signed\"", "void (int)", "void (int, "})
      EXPECT_NE(Thrown(use).find(part), std::string::npos) << Thrown(use);
    EXPECT_THROW(use(), std::logic_error);
  }

  EXPECT_FALSE(events().HasPendingEvents() || events().IsDisable(L"Signed"));
}

TEST_F(Deliveries, CopyArgumentsForHooksOnly) {
  const AppEvent<std::shared_ptr<int>> loaded(L"Loaded");
  const auto shared = std::make_shared<int>(5);
  const auto heard =
      loaded.Subscribe([&](const auto& value) { log += std::to_string(value.use_count()); });

  loaded.Raise(shared);
  loaded.RaiseLatest(shared);

  EXPECT_EQ(Dispatched(), "2");

  events().RegisterEventHook({nullptr, [](void*, VtrString, const std::vector<Any>& args) {
                                EXPECT_EQ(std::any_cast<std::shared_ptr<int>>(args[0]).use_count(),
                                          4);
                              }});
  loaded.Send(shared);
  EXPECT_EQ(shared.use_count(), 1);
}

TEST_F(Deliveries, KeepWhatAListenerUsesAlsoWhenItEndsTheBroadcaster) {
  const AppEvent<std::string> said(L"Said");
  auto owner = std::make_unique<Subscription>();
  auto state = std::make_shared<std::string>(50, 's');
  *owner = said.Subscribe([&, kept = std::exchange(state, nullptr)](const std::string& text) {
    owner.reset();
    IAppEventBroadcaster::ReleaseInstance(false);
    log += kept->back() + text;
    throw std::runtime_error("unheard");
  });
  const auto old = said.Subscribe([this](const std::string&) { log += "second"; });

  said.Raise(std::string(50, 'a'));
  said.Raise("never");

  EXPECT_EQ(Dispatched(), 's' + std::string(50, 'a'));
  EXPECT_FALSE(events().HasFailure());

  said.Send("n");
  EXPECT_EQ(log, "");
}

TEST_F(Deliveries, WhatAHandlerThrowsCountsBesideWhatItWasGiven) {
  Listen('a', [] { throw std::runtime_error("listener"); });
  Listen('b');
  int handled = 0;

  events().SetErrorHandler([&](const auto&, const auto&) {
    throw std::runtime_error("handler" + std::to_string(++handled));
  });
  for (const int value : {1, 2, 3}) moved.Send(value);

  EXPECT_EQ(Notes(), "a1b1a2b2a3b3");

  const EventFailure failure = events().TakeFailure();
  EXPECT_EQ(failure.eventName.ToUtf8() + What(failure.exception), "Movedhandler1");
  EXPECT_EQ(failure.others, 5u);
  EXPECT_FALSE(events().HasFailure());
}

TEST_F(Deliveries, HandlerKeepsItsStateWhenItTakesItselfOff) {
  Listen('a', [] { throw std::runtime_error("listener"); });
  Listen('b');

  events().SetErrorHandler([&, state = std::string(50, '!')](const auto&, const auto&) {
    events().SetErrorHandler(nullptr);
    log += state.back();
    IAppEventBroadcaster::ReleaseInstance(false);
    throw std::runtime_error(state);
  });
  moved.Send(1);

  EXPECT_EQ(Notes(), "a1!");
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

/// Whose method is an error handler.
struct Journal : SupportsWeakPtr<Journal> {
  void Note(const VtrString& /*name*/, const std::exception_ptr& failure) {
    log += Events::What(failure);
  }
  explicit Journal(std::string& notes) : log(notes) {}
  std::string& log;
};

TEST_F(Deliveries, FailureIsKeptOnceTheObjectOfItsHandlerHasGone) {
  Listen('a', [] { throw std::runtime_error("!"); });

  {
    Journal journal(log);
    events().SetErrorHandler(BindWeak(journal.AsWeakPtr(), &Journal::Note));
    moved.Send(1);
    EXPECT_EQ(Notes(), "a1!");
  }

  moved.Send(2);
  EXPECT_EQ(What(events().TakeFailure().exception), "!");
}

TEST_F(Deliveries, ReachOnceWhatIsSubscribedOnceHoweverTheyNest) {
  NoteFailures();
  subscriptions.push_back(moved.SubscribeOnce([&, kept = std::make_unique<int>(5)](int value) {
    log += std::to_string(value);
    moved.Send(*kept);
    throw std::runtime_error("once");
  }));
  Listen('b');

  EXPECT_FALSE(moved.SubscribeOnce(nullptr));

  for (const int value : {1, 2}) moved.Send(value);
  EXPECT_EQ(Notes(), "1b5!Moved:onceb1b2");

  moved.SubscribeOnce([this](int) { log += "cancelled"; }).Cancel();
  subscriptions.clear();
  EXPECT_FALSE(moved.HasListeners());
}

TEST_F(Deliveries, HaveListenersWhileAnybodyWouldHear) {
  const auto isHeard = [] { return moved.HasListeners(); };

  EXPECT_FALSE(isHeard());
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());

  const Subscription hook = events().AddEventHook([](const auto&, const auto&) {});
  std::optional<Subscription> heard = closed.Subscribe([] {});
  EXPECT_FALSE(isHeard());

  heard = moved.Subscribe([](int) {});
  EXPECT_TRUE(isHeard());

  heard.reset();
  EXPECT_FALSE(isHeard());
  auto journal = std::make_unique<Journal>(log);
  heard = moved.Subscribe(BindWeak(journal->AsWeakPtr(), [](Journal&, int) {}));
  EXPECT_TRUE(isHeard());
  journal.reset();
  EXPECT_FALSE(isHeard());
}

#if !defined(NDEBUG)
TEST_F(Deliveries, OnTwoThreadsAtATimeAssert) {
  const std::function<void()> uses[] = {
      [] { moved.Send(2); }, [] { static_cast<void>(closed.Subscribe([] {})); },
      [] { const EventHold hold(closed); }, [] { events().DispatchPendingEvents(); }};

  for (const auto& use : uses) {
    const auto elsewhere = [&use] { std::jthread other(use); };
    elsewhere();
    closed.Raise();
    Listen('a', elsewhere);
    EXPECT_DEATH(moved.Send(1), "two threads");
    subscriptions.clear();
  }
}
#endif

}  // namespace
}  // namespace DataBinding::Testing
