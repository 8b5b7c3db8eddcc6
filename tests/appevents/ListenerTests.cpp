// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "DataBinding/appevents/AppEventListener.h"
#include "DataBinding/appevents/AppEventMapEntry.h"
#include "Events.h"

namespace DataBinding::Testing {
namespace {

/// Notes "i", "+" or "-" and its mark when the registrar calls it, and then acts.
struct Probe : IAppEventListener {
  Probe(std::string& notes, char probeMark) : log(notes), mark(probeMark) {}
  void InitEventMap() override { Note('i', onInit); }
  void RegisterAppEventListeners() override { Note('+', onRegister); }
  void UnregisterAppEventListeners() override { Note('-', onUnregister); }
  void Note(char what, const std::function<void()>& act) {
    (log += what) += mark;
    if (const auto run = act) run();
  }

  std::function<void()> onInit, onRegister, onUnregister;
  std::string& log;
  char mark;
};

class AppEventRegistrar : public Events {
 protected:
  AppEventRegistrar() {
    for (const char mark : {'a', 'b', 'c'})
      Add(probes.emplace_back(std::make_unique<Probe>(log, mark)).get());
  }
  static WAppEventRegistrar& registrar() { return WAppEventRegistrar::GetInstance(); }
  static void Add(Probe* probe) { registrar().AddEventListener(probe); }
  void Remove(std::size_t probe) { registrar().RemoveEventListener(probes[probe].get()); }
  void End(std::size_t probe) {
    Remove(probe);
    probes[probe].reset();
  }
  std::string Flushed() {
    registrar().FlushDelayInitList();
    return Notes();
  }
  std::string Unregistered() {
    registrar().UnregisterAppEvents();
    return Notes();
  }

  std::vector<std::unique_ptr<Probe>> probes;
};

TEST_F(AppEventRegistrar, CountsWhatIsAddedTwiceAsTwo) {
  for (const std::size_t probe : {1u, 2u, 0u}) Remove(probe);
  for (const std::size_t probe : {0u, 0u}) Add(probes[probe].get());

  EXPECT_EQ(Flushed(), "ia+aia+a");

  Add(probes[0].get());
  EXPECT_EQ(Unregistered(), "") << "one occurrence of it waits";

  for (int removal = 0; removal < 3; ++removal) Remove(0);
  EXPECT_EQ(Flushed(), "");
}

TEST_F(AppEventRegistrar, FlushReachesThoseThatAreThereWhenItComesToThem) {
  Probe added(log, 'n');
  probes[0]->onInit = [&] {
    End(1);
    Add(&added);
    registrar().FlushDelayInitList();
  };
  probes[2]->onInit = [&] { End(2); };

  EXPECT_EQ(Flushed(), "iain+n+aic-c");
  EXPECT_EQ(Unregistered(), "-a-n");
}

TEST_F(AppEventRegistrar, UnregisteringInAFlushLeavesNoTraceOfAListenerThatEndsInItToo) {
  probes[0]->onInit = [&] {
    probes[0]->onInit = nullptr;
    registrar().UnregisterAppEvents();
    End(1);
    End(0);
  };

  Flushed();
  EXPECT_EQ(Unregistered(), "-c");
}

TEST_F(AppEventRegistrar, ThrowingFlushLeavesTheRestKnownButNotWaiting) {
  for (const bool wasReady : {false, true}) {
    WAppEventRegistrar::ReleaseInstance(false);
    if (wasReady) registrar().RegisterAppEvents();
    for (const auto& probe : probes) Add(probe.get());
    probes[1]->onRegister = [] { throw std::runtime_error("listener"); };
    EXPECT_THROW(registrar().FlushDelayInitList(), std::runtime_error);
    EXPECT_EQ(Notes() + Flushed(), "ia+aib+b");
    Remove(0);
    EXPECT_EQ(Notes(), wasReady ? "-a" : "") << "no flush came to its end";
    probes[1]->onRegister = nullptr;
    EXPECT_EQ(Unregistered(), "-b-c");
    EXPECT_EQ(Flushed(), "ib+bic+c");
  }
}

TEST_F(AppEventRegistrar, UnregisteringSurvivesRemovals) {
  Flushed();
  probes[0]->onUnregister = [&] {
    probes[0]->onUnregister = nullptr;
    End(1);
    End(0);
  };

  EXPECT_EQ(Unregistered(), "-a-b-a-c");
}

TEST_F(AppEventRegistrar, UnregisteringStopsAtAnException) {
  Add(nullptr);
  Flushed();
  probes[1]->onUnregister = [] { throw std::runtime_error("listener"); };

  EXPECT_EQ(Unregistered(), "-a-b");
  EXPECT_EQ(Flushed(), "ia+aib+bic+c") << "all wait again, also the one that was not reached";
}

TEST_F(AppEventRegistrar, FourThreadsMayBringTheirListenersAtOnce) {
  std::atomic<int> balance{0};
  const auto comeAndGo = [&] {
    for (int round = 0; round < 500; ++round) {
      std::string own;
      Probe probe(own, 'x');
      probe.onRegister = [&] { ++balance; };
      probe.onUnregister = [&] { --balance; };
      Add(&probe);
      if (round % 3 == 0) registrar().RegisterAppEvents();
      registrar().RemoveEventListener(&probe);
      EXPECT_TRUE(own.empty() || own == "ix+x-x") << own;
    }
  };

  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) threads.emplace_back(comeAndGo);
  }

  EXPECT_EQ(balance, 0);
}

/// Notes when its subscription begins and ends, and then acts.
struct NotedEntry : AppEventMapEntry {
  explicit NotedEntry(std::string& notes, std::function<void()> action = nullptr)
      : AppEventMapEntry(L"Noted"), log(notes), act(std::move(action)) {}
  Subscription Subscribe(IAppEventBroadcaster& /*broadcaster*/) override {
    log += '+';
    return Subscription([this] {
      log += '-';
      if (act) act();
    });
  }
  std::string& log;
  std::function<void()> act;
};

/// Listens to one event in the way that the base class asks for.
struct View : AppEventListener {
  explicit View(std::string& notes, bool activate = true)
      : AppEventListener(activate), log(notes) {}
  void InitEventMap() override {
    if (!IsEventMapInitialised()) {
      eventMap.push_back(nullptr);
      On(closed, [this] { log += 'c'; });
    }
    On(moved, &View::OnMoved);  // again each time
    AppEventListener::InitEventMap();
  }
  void OnMoved(long value) { log += "v" + std::to_string(value); }
  using AppEventListener::eventMap;

  std::string& log;
};

class Views : public Events {
 protected:
  std::string Sent() {
    moved.Send(1);
    return Notes();
  }
  std::optional<View> view;
};

/// Sends an event while it is made, and so has the listener whose member it is initialised.
struct Announcer {
  Announcer() { moved.Send(0); }
};
struct Panel : AppEventListener {
  Announcer announcer;
};
struct PanelView : Panel {
  explicit PanelView(std::string& notes) : log(notes) {}
  void InitEventMap() override {
    if (!IsEventMapInitialised()) On(moved, [this](int) { log += 'p'; });
    AppEventListener::InitEventMap();
  }
  std::string& log;
};

TEST_F(Views, InitialisedAsTheirBaseAreInitialisedAsTheyAreTheNextTime) {
  const PanelView panel(log);

  Sent();

  for (int round = 0; round < 2; ++round) {
    WAppEventRegistrar::GetInstance().UnregisterAppEvents();
    EXPECT_EQ(Sent(), "p");
  }
}

TEST_F(Views, MayBeSubscribedByWhatEndsWithTheirSubscriptions) {
  view.emplace(log, false);
  bool isFirst = true;
  const auto subscribe = [&] {
    if (std::exchange(isFirst, false)) view->RegisterAppEventListeners();
  };

  view->eventMap.push_back(std::make_unique<NotedEntry>(log, subscribe));
  view->RegisterAppEventListeners();
  view->UnregisterAppEventListeners();

  EXPECT_EQ(Notes(), "+-+");

  view.reset();
  EXPECT_EQ(Notes(), "-");
}

TEST_F(Views, TouchNoSingletonUnlessTheyAreActivated) {
  view.emplace(log, false);
  view->UnregisterAppEventListeners();
  view.emplace(log, false);

  EXPECT_FALSE(IAppEventBroadcaster::HasInstance() || WAppEventRegistrar::HasInstance());

  std::string heard = Sent();
  for (const char change : std::string("++---++")) {
    change == '+' ? view->ActivateAppEventListeners() : view->DeactivateAppEventListeners();
    heard += change + Sent();
  }
  EXPECT_EQ(heard, "+v1+v1-v1--++v1") << "the sixth only makes up for the fifth";
}

TEST_F(Views, FollowEachOtherAtOneAddress) {
  for (const bool broadcasterEnds : {false, true}) {
    view.emplace(log, false);
    view->eventMap.push_back(std::make_unique<NotedEntry>(log));
    for (int times = 0; times < 2; ++times) view->RegisterAppEventListeners();
    if (broadcasterEnds) IAppEventBroadcaster::ReleaseInstance(false);
    EXPECT_EQ(Notes(), broadcasterEnds ? "++--" : "++");
    view.reset();
    EXPECT_EQ(Notes(), broadcasterEnds ? "" : "--");
  }
}

TEST_F(Views, OutliveTheSingletonsWhicheverEndsFirst) {
  for (const bool registrarFirst : {false, true}) {
    view.emplace(log);
    EXPECT_EQ(Sent(), "v1");
    std::optional<View> waiting(std::in_place, log);
    if (registrarFirst) WAppEventRegistrar::ReleaseInstance(false);
    IAppEventBroadcaster::ReleaseInstance(false);
    WAppEventRegistrar::ReleaseInstance(false);
    waiting.reset();
    view.reset();
    EXPECT_FALSE(IAppEventBroadcaster::HasInstance() || WAppEventRegistrar::HasInstance());
  }
}

/// Made before any singleton, so it ends after all of them; but on Windows whatever belongs to an
/// executable ends before what belongs to its libraries.
#if defined(_WIN32)
constexpr const char* expectedAtExit = "^early$";
#else
constexpr const char* expectedAtExit = "^outlived$";
#endif
std::string exitNotes;
struct AtExit : View {
  using View::View;
  ~AtExit() override {
    const bool gone = !IAppEventBroadcaster::HasInstance() && !WAppEventRegistrar::HasInstance();
    std::fputs(gone ? "outlived" : "early", stderr);
  }
} atExit(exitNotes, false);

TEST(ViewsDeathTest, MayEndAfterTheSingletonsAtExit) {
  const auto leave = [] {
    atExit.ActivateAppEventListeners();
    moved.Send(1);
    std::exit(exitNotes == "v1" ? 0 : 1);
  };

  EXPECT_EXIT(leave(), ::testing::ExitedWithCode(0), expectedAtExit);
}

}  // namespace
}  // namespace DataBinding::Testing
