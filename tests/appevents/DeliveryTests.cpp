#include <memory>
#include <stdexcept>
#include <string>

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
    try {
      use();
      ADD_FAILURE() << "not refused";
    } catch (const std::logic_error& error) {
      const std::string text = error.what();
      for (const auto* part : {"\"Signed\"", "void (int)", "void (int, "}) {
        EXPECT_NE(text.find(part), std::string::npos) << text;
      }
    }
  }
  EXPECT_FALSE(events().HasPendingEvents() || events().IsDisable(L"Signed"));
}

/// Counts its copies.
struct Heavy {
  explicit Heavy(int& count) : copies(&count) {}
  Heavy(const Heavy& other) : copies(other.copies), text(other.text) { ++*copies; }
  Heavy(Heavy&&) noexcept = default;
  Heavy& operator=(const Heavy&) = default;
  Heavy& operator=(Heavy&&) noexcept = default;
  ~Heavy() = default;

  int* copies;
  std::string text = std::string(100, 'x');
};

TEST_F(Deliveries, MoveArgumentsToTheListenersAndCopyThemForHooksOnly) {
  const AppEvent<Heavy, std::shared_ptr<int>> loaded(L"Loaded");
  int copies = 0;
  const auto shared = std::make_shared<int>(5);
  const auto heard = loaded.Subscribe([&](const Heavy& heavy, const std::shared_ptr<int>& value) {
    log += std::to_string(heavy.text.size()) + "," + std::to_string(*value) + " ";
  });
  loaded.Raise(Heavy(copies), shared);
  loaded.RaiseLatest(Heavy(copies), shared);
  EXPECT_EQ(shared.use_count(), 2);
  EXPECT_EQ(Dispatched(), "100,5 ");
  EXPECT_EQ(shared.use_count(), 1);
  EXPECT_EQ(copies, 0);
  events().RegisterEventHook({nullptr, [](void*, VtrString, const std::vector<Any>& args) {
                                EXPECT_EQ(args.size(), 2u);
                              }});
  loaded.Send(Heavy(copies), shared);
  EXPECT_EQ(copies, 1);
}

TEST_F(Deliveries, ReachAListenerAddedMeanwhileWithTheNextEventOrANestedOne) {
  Listen('a', [this] {
    if (subscriptions.size() == 2) {
      Listen('c');
      moved.Send(2);
    }
  });
  Listen('b');
  moved.Send(1);
  EXPECT_EQ(Notes(), "a1a2b2c2b1");
  EXPECT_FALSE(moved.Subscribe(nullptr));
  moved.Send(3);
  EXPECT_EQ(Notes(), "a3b3c3");
}

TEST_F(Deliveries, ListenerMayDestroyWhatOwnsItAndItsArgumentsStay) {
  struct Owner {
    Subscription subscription;
    std::string text = std::string(50, 'o');
  };
  const AppEvent<std::string> said(L"Said");
  auto owner = std::make_unique<Owner>();
  auto state = std::make_shared<std::string>(50, 's');
  owner->subscription =
      said.Subscribe([&, kept = std::exchange(state, nullptr)](const std::string& text) {
        owner.reset();
        log += kept->front();
        IAppEventBroadcaster::ReleaseInstance(false);
        log += kept->back() + text;
      });
  said.Raise(std::string(50, 'a'));
  events().DispatchPendingEvents();
  EXPECT_EQ(log, "ss" + std::string(50, 'a'));
}

struct Hook {
  void OnEvent(VtrString name, const std::vector<Any>& /*args*/) { log += name.ToUtf8(); }
  std::string& log;
};

TEST_F(Deliveries, EndWithTheBroadcasterWhichAnOldSubscriptionDoesNotOutlast) {
  Hook hook{log};
  events().RegisterEventHook(EventHook::To<&Hook::OnEvent>(hook));
  Listen('a', [this] {
    if (log == "a1") IAppEventBroadcaster::ReleaseInstance(false);
    throw std::runtime_error("unheard");
  });
  Listen('b');
  moved.Raise(1);
  moved.Raise(2);
  events().DispatchPendingEvents();
  EXPECT_EQ(Notes(), "a1");
  EXPECT_FALSE(events().HasFailure());
  auto old = std::exchange(subscriptions, {});
  Listen('n');
  EXPECT_TRUE(old.front());
  old.clear();
  moved.Send(3);
  EXPECT_EQ(Notes(), "n3");
}

TEST_F(Deliveries, FailureOfAListenerStopsNobodyAndGoesToTheErrorHandler) {
  NoteFailures();
  Listen('a', [] { throw std::runtime_error("one"); });
  Listen('b');
  Listen('c', [] { throw std::logic_error("two"); });
  Listen('d');
  moved.Raise(1);
  moved.Raise(2);
  EXPECT_EQ(Dispatched(), "a1!Moved:oneb1c1!Moved:twod1a2!Moved:oneb2c2!Moved:twod2");
  EXPECT_FALSE(events().HasFailure());
  EXPECT_FALSE(events().TakeFailure());
}

TEST_F(Deliveries, WithoutAHandlerTheFirstFailureIsKeptOthersCountAndAPassIsAskedFor) {
  CountWakes();
  NoteFailures();
  events().SetErrorHandler(nullptr);
  const auto failing = closed.Subscribe([] { throw std::runtime_error("first"); });
  Listen('a', [] { throw std::logic_error("later"); });
  closed.Send();
  EXPECT_EQ(wakes, 1);
  moved.Send(1);
  moved.Send(2);
  EXPECT_EQ(wakes, 1);
  const EventFailure failure = events().TakeFailure();
  EXPECT_EQ(failure.eventName, L"Closed");
  EXPECT_EQ(What(failure.exception), "first");
  EXPECT_EQ(failure.others, 2u);
  EXPECT_FALSE(events().HasFailure());
  moved.Send(3);
  EXPECT_EQ(What(events().TakeFailure().exception), "later");
}

TEST_F(Deliveries, HandlerMayThrowReplaceItselfAndReleaseTheBroadcaster) {
  Listen('a', [] { throw std::runtime_error("listener"); });
  Listen('b');
  events().SetErrorHandler([state = std::string("handler")](const auto&, const auto&) {
    events().SetErrorHandler(nullptr);
    throw std::runtime_error(state);
  });
  moved.Send(1);
  EXPECT_EQ(Notes(), "a1b1");
  EXPECT_EQ(What(events().TakeFailure().exception), "handler");
  events().SetErrorHandler([](const auto&, const auto&) {
    IAppEventBroadcaster::ReleaseInstance(false);
    throw std::runtime_error("after the end");
  });
  moved.Send(2);
  EXPECT_EQ(Notes(), "a2");
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

}  // namespace
}  // namespace DataBinding::Testing
