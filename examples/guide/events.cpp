// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <memory>
#include <stdexcept>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

// Declared once, in a header, and used by every module that includes it.
inline constinit const AppEvent<VtrString, int> processStarted{L"ProcessStarted"};
inline constinit const AppEvent<double> loadChanged{L"LoadChanged"};

class ProcessTable : public AppEventListener {
 private:
  void InitEventMap() override {
    On(processStarted, &ProcessTable::AddRow);
    AppEventListener::InitEventMap();
  }
  void AddRow(const VtrString& name, int id) { std::cout << "row: " << name << ' ' << id << '\n'; }
};

void RaiseAndDeliver(IdlePass& idle) {
  const ProcessTable table;
  const Subscription shown =
      loadChanged.Subscribe([](double load) { std::cout << "load: " << load << '\n'; });

  processStarted.Raise(L"make", 4711);
  loadChanged.RaiseLatest(0.5);
  loadChanged.RaiseLatest(0.7);  // takes the place of 0.5
  idle.Run();
  loadChanged.Send(0.8);  // at once
}

void Pause(IdlePass& idle) {
  const Subscription shown =
      loadChanged.Subscribe([](double load) { std::cout << "load: " << load << '\n'; });
  {
    const EventHold pause(loadChanged);
    loadChanged.Raise(0.1);
    loadChanged.Raise(0.2);
    idle.Run();
    std::cout << "held\n";
  }  // the newest one is delivered here
}

void Throw(IdlePass& idle) {
  const Subscription bad =
      loadChanged.Subscribe([](double) { throw std::runtime_error("no room for the load"); });
  const Subscription good = loadChanged.Subscribe([](double) { std::cout << "still heard\n"; });
  loadChanged.Raise(0.9);
  try {
    idle.Run();
  } catch (const std::exception& failure) {
    std::cout << "Run threw: " << failure.what() << '\n';
  }
}

class Log {
 private:
  static void Note(const VtrString& name, const std::vector<Any>& args) {
    std::cout << "log: " << name << " with " << args.size() << " arguments\n";
  }

  Subscription seen = IAppEventBroadcaster::GetInstance().AddEventHook(&Note);
};

/// An event of the application's own kind: it says itself what its delivery is.
class Ping : public PendingEventBase, public std::enable_shared_from_this<Ping> {
 public:
  void Dispatch(PolicyEventBroadcaster& events) override {
    PreNotify(events);
    if (HoldIfDisabled(events, L"Ping", shared_from_this())) return;
    const auto alive = events.GetWeakPtr();
    try {
      std::cout << "ping\n";
    } catch (...) {
      if (alive) ReportFailure(events, L"Ping");
    }
    if (alive && HasHooks(events)) NotifyHooks(events, L"Ping", {});
  }
};

int main() {
  IdlePass idle([] { std::cout << "wake\n"; });
  RaiseAndDeliver(idle);
  Pause(idle);
  Throw(idle);

  const Log log;
  processStarted.Raise(L"cc1plus", 4712);
  IAppEventBroadcaster::GetInstance().QueueEvent(L"Ping", std::make_shared<Ping>());
  idle.Run();
}
