// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <memory>

#include "DataBinding/appevents/AppEventListener.h"
#include "Plugin.h"

namespace Boundary {

using namespace DataBinding;

namespace {

IAppEventBroadcaster& events() { return IAppEventBroadcaster::GetInstance(); }

// g++ keeps a module that uses std::to_string loaded for good.
std::string Digit(int value) { return {static_cast<char>('0' + value)}; }

Subscription Listen(std::string& heard) {
  return read.Subscribe(
      [&heard](const Reading& reading) { heard += Digit(reading.value) + reading.unit.ToUtf8(); });
}

void Raise(int value) { read.Raise(Reading{value, L"plug"}); }

struct Unnamed {};

template <class T>
std::string Use(const wchar_t* name) {
  try {
    AppEvent<T>(name).Send({});
  } catch (const std::exception& exception) {
    return exception.what();
  }
  return "";
}

class OwnEvent : public PendingEventBase {
 public:
  explicit OwnEvent(std::string& text) : PendingEventBase(ThisModule()), heard(text) {}
  void Dispatch(PolicyEventBroadcaster& broadcaster) override {
    heard += "own";
    if (HasHooks(broadcaster)) NotifyHooks(broadcaster, L"Own", {Any(Reading{})});
  }

 private:
  std::string& heard;
};

class Guest : public AppEventListener {
 public:
  explicit Guest(std::string& text) : heard(text) {}
  void InitEventMap() override {
    if (!IsEventMapInitialised()) On(read, &Guest::OnRead);
    AppEventListener::InitEventMap();
  }
  void OnRead(const Reading& reading) { heard += "guest" + Digit(reading.value); }
  void OnEvent(VtrString /*name*/, const std::vector<Any>& args) {
    heard += "hook" + Digit(std::any_cast<const Reading&>(args.at(0)).value);
  }

 private:
  std::string& heard;
};
std::unique_ptr<Guest> guest;

void Enter(std::string& heard) {
  guest = std::make_unique<Guest>(heard);
  events().RegisterEventHook(EventHook::To<&Guest::OnEvent>(*guest), ThisModule());
  events().QueueEvent(L"Own", std::make_shared<OwnEvent>(heard));
}

void Leave() {
  events().DropEventsFrom(ThisModule());
  events().UnregisterEventHooks(ThisModule());
  guest.reset();
}

}  // namespace

PluginEvents MakePluginEvents() {
  return {&events,       &WAppEventRegistrar::GetInstance,
          &Listen,       &Raise,
          &Use<Reading>, &Use<Unnamed>,
          &Enter,        &Leave};
}

}  // namespace Boundary
