// SPDX-License-Identifier: Apache-2.0
/// Events and listeners that note what happens to them, and a fixture that gives each test a
/// broadcaster and a registrar of its own.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/UpdatePolicy.h"
#include "DataBinding/appevents/WAppEventRegistrar.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding::Testing {

inline constinit const AppEvent<int> moved{L"Moved"};
inline constinit const AppEvent<> closed{L"Closed"};
inline constinit const AppEvent<std::shared_ptr<void>> ending{L"Ending"};

/// A broadcaster beside that of the process.
class OwnBroadcaster final : public PolicyEventBroadcaster {};

/// An event of the application's own kind: notes its mark when it is dispatched, then acts.
class NotedEvent : public PendingEventBase {
 public:
  using Act = std::function<void(PolicyEventBroadcaster&)>;
  NotedEvent(std::string& notes, std::string eventMark, Act action = nullptr,
             const void* key = nullptr)
      : PendingEventBase(key), log(notes), mark(std::move(eventMark)), act(std::move(action)) {}
  void Dispatch(PolicyEventBroadcaster& broadcaster) override {
    log += mark;
    if (act) act(broadcaster);
  }
  using PendingEventBase::HoldIfDisabled;

 private:
  std::string& log;
  std::string mark;
  Act act;
};

class Events : public ::testing::Test {
 public:
  ~Events() override {
    AEB::UpdatePolicy::SetUpdateUICallback({});
    IAppEventBroadcaster::ReleaseInstance(false);
    WAppEventRegistrar::ReleaseInstance(false);
  }
  static IAppEventBroadcaster& events() { return IAppEventBroadcaster::GetInstance(); }

  /// Subscribes a listener that notes its mark and the value, and then acts.
  void Listen(char mark, std::function<void()> act = nullptr) {
    subscriptions.push_back(moved.Subscribe([this, mark, run = std::move(act)](const int& value) {
      (log += mark) += std::to_string(value);
      if (run) run();
    }));
  }
  void Queue(const wchar_t* name, const std::string& mark, NotedEvent::Act act = nullptr) {
    events().QueueEvent(name, std::make_shared<NotedEvent>(log, mark, std::move(act)));
  }
  /// An argument that acts when the last copy of it ends.
  static std::shared_ptr<void> AtEnd(std::function<void()> act) {
    return {nullptr, [run = std::move(act)](void*) { run(); }};
  }
  void CountWakes() {
    AEB::UpdatePolicy::SetUpdateUICallback([this] { ++wakes; });
  }
  std::string Dispatched() {
    events().DispatchPendingEvents();
    return Notes();
  }
  /// What was noted since the last call.
  std::string Notes() { return std::exchange(log, {}); }
  void NoteFailures() {
    events().SetErrorHandler([this](const VtrString& name, const std::exception_ptr& failure) {
      log += "!" + name.ToUtf8() + ":" + What(failure);
    });
  }
  static std::string What(const std::exception_ptr& failure) {
    return Thrown([&] { std::rethrow_exception(failure); });
  }
  static std::string Thrown(const std::function<void()>& act) {
    try {
      act();
    } catch (const std::exception& exception) {
      return exception.what();
    }
    return "";
  }

  std::string log;
  std::vector<Subscription> subscriptions;
  int wakes = 0;
};

}  // namespace DataBinding::Testing
