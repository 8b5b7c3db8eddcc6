#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

/// Notes "i", "+" or "-" and its mark when the registrar calls it, and then acts.
class Probe : public IAppEventListener {
 public:
  Probe(std::string& notes, char probeMark) : log(notes), mark(probeMark) {}
  void InitEventMap() override { Note('i', onInit); }
  void RegisterAppEventListeners() override { Note('+', onRegister); }
  void UnregisterAppEventListeners() override { Note('-', onUnregister); }

  std::function<void()> onInit, onRegister, onUnregister;

 private:
  void Note(char what, const std::function<void()>& act) {
    (log += what) += mark;
    if (const auto run = act) run();
  }

  std::string& log;
  char mark;
};

class Registrar : public Events {
 protected:
  Registrar() {
    for (const char mark : {'a', 'b', 'c'}) {
      probes.push_back(std::make_unique<Probe>(log, mark));
      registrar().AddEventListener(probes.back().get());
    }
  }
  static WAppEventRegistrar& registrar() { return WAppEventRegistrar::GetInstance(); }
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

TEST_F(Registrar, InitialisesEachListenerOnceAndAgainAfterUnregistering) {
  registrar().AddEventListener(nullptr);
  EXPECT_EQ(Notes(), "");
  Remove(1);
  EXPECT_EQ(Flushed(), "ia+aic+c");
  EXPECT_EQ(Flushed(), "");
  Remove(1);
  Remove(0);
  EXPECT_EQ(Notes(), "-a");
  EXPECT_EQ(Unregistered(), "-c");
  EXPECT_EQ(Unregistered(), "");
  registrar().RegisterAppEvents();
  EXPECT_EQ(Notes(), "ic+c");
  Unregistered();
  Remove(2);
  EXPECT_EQ(Notes() + Flushed(), "") << "it was not subscribed";
}

TEST_F(Registrar, CountsWhatIsAddedTwiceAsTwo) {
  probes.resize(1);
  WAppEventRegistrar::ReleaseInstance(false);
  registrar().AddEventListener(probes[0].get());
  registrar().AddEventListener(probes[0].get());
  Remove(0);
  EXPECT_EQ(Flushed(), "ia+a");
  registrar().AddEventListener(probes[0].get());
  EXPECT_EQ(Unregistered(), "") << "one occurrence of it waits";
  EXPECT_EQ(Flushed(), "ia+aia+a");
  Remove(0);
  Remove(0);
  Remove(0);
  EXPECT_EQ(Notes(), "-a-a");
}

TEST_F(Registrar, FlushReachesWhoIsAddedInItAndNotWhoIsDestroyedInIt) {
  Probe added(log, 'n');
  probes[0]->onInit = [&] {
    End(1);
    registrar().AddEventListener(&added);
    registrar().FlushDelayInitList();
  };
  EXPECT_EQ(Flushed(), "iain+n+aic+c");
  registrar().RemoveEventListener(&added);
  EXPECT_EQ(Notes(), "-n");
}

TEST_F(Registrar, ListenerThatEndsInItsOwnInitialisationIsNotSubscribed) {
  probes[0]->onInit = [&] { Remove(0); };
  probes[1]->onInit = [&] { End(1); };
  EXPECT_EQ(Flushed(), "iaibic+c");
  EXPECT_EQ(Unregistered(), "-c");
}

TEST_F(Registrar, UnregisteringInAFlushLeavesNoTraceOfAListenerThatEndsInItToo) {
  probes[0]->onInit = [&] {
    probes[0]->onInit = nullptr;
    registrar().UnregisterAppEvents();
    End(1);
    End(0);
  };
  Flushed();
  EXPECT_EQ(Unregistered(), "-c");
}

TEST_F(Registrar, ThrowingFlushLeavesTheRestKnownButNotWaiting) {
  for (const bool wasReady : {false, true}) {
    WAppEventRegistrar::ReleaseInstance(false);
    wasReady ? registrar().RegisterAppEvents() : registrar().FlushDelayInitList();
    for (const auto& probe : probes) registrar().AddEventListener(probe.get());
    probes[1]->onRegister = [] { throw std::runtime_error("listener"); };
    EXPECT_THROW(registrar().FlushDelayInitList(), std::runtime_error);
    EXPECT_EQ(Notes(), "ia+aib+b");
    EXPECT_EQ(Flushed(), "");
    Remove(0);
    EXPECT_EQ(Notes(), wasReady ? "-a" : "") << "no flush came to its end";
    probes[1]->onRegister = nullptr;
    EXPECT_EQ(Unregistered(), "-b-c");
    EXPECT_EQ(Flushed(), "ib+bic+c");
  }
}

TEST_F(Registrar, UnregisteringSurvivesRemovalsAndStopsAtAnException) {
  Flushed();
  probes[0]->onUnregister = [&] {
    probes[0]->onUnregister = nullptr;
    End(1);
    End(0);
  };
  EXPECT_EQ(Unregistered(), "-a-b-a-c");
  probes.push_back(std::make_unique<Probe>(log, 'd'));
  registrar().AddEventListener(probes.back().get());
  EXPECT_EQ(Flushed(), "ic+cid+d");
  probes[2]->onUnregister = [] { throw std::runtime_error("listener"); };
  EXPECT_EQ(Unregistered(), "-c");
  EXPECT_EQ(Flushed(), "ic+cid+d") << "all wait again, also the one that was not reached";
}

TEST_F(Registrar, ListenersComeAndGoOnFourThreads) {
  std::atomic<int> balance{0};
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&] {
        for (int round = 0; round < 500; ++round) {
          std::string own;
          Probe probe(own, 'x');
          probe.onRegister = [&] { ++balance; };
          probe.onUnregister = [&] { --balance; };
          registrar().AddEventListener(&probe);
          if (round % 3 == 0) registrar().RegisterAppEvents();
          registrar().RemoveEventListener(&probe);
          EXPECT_TRUE(own.empty() || own == "ix+x-x") << own;
        }
      });
    }
  }
  EXPECT_EQ(balance, 0);
}

/// Listens to one event in the way that the base class asks for.
class View : public AppEventListener {
 public:
  explicit View(std::string& notes, bool activate = true)
      : AppEventListener(activate), log(notes) {}
  void InitEventMap() override {
    if (!IsEventMapInitialised()) {
      eventMap.push_back(nullptr);
      On(moved, &View::OnMoved);
    }
    AppEventListener::InitEventMap();
  }
  void OnMoved(long value) {
    log += "v" + std::to_string(value);
    if (const auto run = act) run();
  }
  using AppEventListener::eventMap;

  std::function<void()> act;

 private:
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

TEST_F(Views, HearWhatComesAfterTheyAreMadeUntilTheyEnd) {
  view.emplace(log);
  EXPECT_FALSE(view->HasListener(L"Moved"));
  moved.Raise(2);
  EXPECT_EQ(Dispatched(), "v2");
  EXPECT_TRUE(view->HasListener(L"Moved"));
  EXPECT_FALSE(view->HasListener(L"moved") || view->HasListener(L"Move"));
  moved.Raise(3);
  view.reset();
  EXPECT_EQ(Dispatched(), "");
  view.emplace(log);
  view.reset();  // while it waits
  EXPECT_EQ(Sent(), "");
}

TEST_F(Views, AreSubscribedOnceHoweverOftenTheyAreInitialised) {
  view.emplace(log);
  auto& registrar = WAppEventRegistrar::GetInstance();
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(Sent(), "v1");
    registrar.UnregisterAppEvents();
    if (round > 0) registrar.RegisterAppEvents();
  }
  EXPECT_EQ(Sent(), "v1");
}

TEST_F(Views, TouchNoSingletonUnlessTheyAreActivated) {
  view.emplace(log, false);
  view->UnregisterAppEventListeners();
  view.reset();
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance() || WAppEventRegistrar::HasInstance());
  view.emplace(log, false);
  EXPECT_EQ(Sent(), "");
  view->ActivateAppEventListeners();
  view->ActivateAppEventListeners();
  view->DeactivateAppEventListeners();
  EXPECT_EQ(Sent(), "v1");
  view->DeactivateAppEventListeners();
  EXPECT_EQ(Sent(), "");
  view->DeactivateAppEventListeners();
  view->ActivateAppEventListeners();
  EXPECT_EQ(Sent(), "") << "this only makes up for one deactivation too many";
  view->ActivateAppEventListeners();
  EXPECT_EQ(Sent(), "v1");
}

TEST_F(Views, MayEndInACallbackOfTheirsOrOfAnother) {
  view.emplace(log);
  std::optional<View> other(std::in_place, log);
  view->act = [&] { other.reset(); };
  EXPECT_EQ(Sent(), "v1");
  view->act = [&] {
    view.reset();
    log += "!";
  };
  EXPECT_EQ(Sent(), "v1!");
  EXPECT_EQ(Sent(), "");
}

/// An entry of the application's own kind, which notes when its subscription begins and ends.
class NotedEntry : public AppEventMapEntry {
 public:
  explicit NotedEntry(std::string& notes) : AppEventMapEntry(L"Noted"), log(notes) {}
  Subscription Subscribe(IAppEventBroadcaster& /*broadcaster*/) override {
    log += '+';
    return Subscription([this] { log += '-'; });
  }

 private:
  std::string& log;
};

TEST_F(Views, SubscribedTwiceHearTwiceAndEndAllAtOnceWithTheBroadcasterOrBeforeIt) {
  view.emplace(log, false);
  view->eventMap.push_back(std::make_unique<NotedEntry>(log));
  for (const bool broadcasterEnds : {false, true}) {
    view->RegisterAppEventListeners();
    view->RegisterAppEventListeners();
    if (broadcasterEnds) IAppEventBroadcaster::ReleaseInstance(false);
    EXPECT_EQ(Notes(), broadcasterEnds ? "++--" : "++");
    view->UnregisterAppEventListeners();
    EXPECT_EQ(Notes(), broadcasterEnds ? "" : "--");
    EXPECT_EQ(IAppEventBroadcaster::HasInstance(), !broadcasterEnds);
  }
}

TEST_F(Views, AtTheAddressOfAnEarlierOneAreToldOfTheEndOfTheBroadcaster) {
  for (const bool broadcasterEnds : {false, true}) {
    view.emplace(log, false);  // in the same place both times
    view->eventMap.push_back(std::make_unique<NotedEntry>(log));
    view->RegisterAppEventListeners();
    if (broadcasterEnds) IAppEventBroadcaster::ReleaseInstance(false);
    EXPECT_EQ(Notes(), broadcasterEnds ? "+-" : "+");
    view.reset();
    EXPECT_EQ(Notes(), broadcasterEnds ? "" : "-");
  }
}

TEST_F(Views, OutliveTheBroadcasterAndTheRegistrarInAnyOrder) {
  for (const bool registrarFirst : {false, true}) {
    view.emplace(log);
    std::optional<View> waiting;
    EXPECT_EQ(Sent(), "v1");
    waiting.emplace(log);
    if (registrarFirst) WAppEventRegistrar::ReleaseInstance(false);
    IAppEventBroadcaster::ReleaseInstance(false);
    WAppEventRegistrar::ReleaseInstance(false);
    waiting.reset();
    view.reset();
    EXPECT_FALSE(IAppEventBroadcaster::HasInstance() || WAppEventRegistrar::HasInstance());
    EXPECT_EQ(Sent(), "");
  }
}

/// Made before any singleton, so it ends after all of them.
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
  EXPECT_EXIT(leave(), ::testing::ExitedWithCode(0), "^outlived$");
}

}  // namespace
}  // namespace DataBinding::Testing
