// SPDX-License-Identifier: Apache-2.0
#include "EventRecorder.h"

#include <algorithm>
#include <chrono>
#include <type_traits>
#include <utility>

#include <DataBinding/appevents/IAppEventBroadcaster.h>

#include "Events.h"

namespace Sysmon {

namespace {

using DataBinding::Any;
using DataBinding::EventHook;
using DataBinding::IAppEventBroadcaster;

template <class T>
requires std::is_constructible_v<Value, T> EventArgument Describe(const T& value) {
  return {{{}, value}};
}

EventArgument Describe(const HostSample& host) {
  return {{L"Processes", host.processes},
          {L"Interfaces", host.interfaces},
          {L"Uptime", host.reading.uptime}};
}

EventArgument Describe(const CpuSample& cpu) {
  return {{L"User", cpu.user}, {L"System", cpu.kernel}, {L"Waiting", cpu.waiting}};
}

EventArgument Describe(const MemorySample& memory) {
  return {{L"Total", Bytes{memory.total}}, {L"Available", Bytes{memory.available}}};
}

EventArgument Describe(const LoadSample& load) {
  return {{L"One", load.one}, {L"Five", load.five}, {L"Fifteen", load.fifteen}};
}

EventArgument Describe(const std::vector<Process>& processes) {
  EventArgument described{{L"Processes", processes.size()}};
  const auto busiest = std::ranges::max_element(
      processes, {}, [](const Process& process) { return process.cpu.value; });
  if (busiest == processes.end()) return described;
  described.push_back({L"Busiest", busiest->name});
  described.push_back({L"Cpu", busiest->cpu});
  return described;
}

EventArgument Describe(const std::vector<Interface>& interfaces) {
  VtrString all;
  for (const Interface& one : interfaces) all = all + (all.IsEmpty() ? L"" : L" ") + one.name;
  return {{{}, all}};
}

EventArgument Describe(const Interface& one) {
  return {{L"ReceivedRate", one.receivedRate}, {L"SentRate", one.sentRate}};
}

/// Describes an argument by the one of these types that it has.
template <class... Types>
EventArgument DescribeAny(const Any& argument) {
  EventArgument described{{{}, VtrString(L"?")}};
  const auto attempt = [&]<class T>(std::type_identity<T>) {
    const T* const value = std::any_cast<T>(&argument);
    if (value != nullptr) described = Describe(*value);
    return value != nullptr;
  };
  static_cast<void>((attempt(std::type_identity<Types>()) || ...));
  return described;
}

}  // namespace

EventRecorder::EventRecorder(EventLog& eventLog)
    : log(eventLog),
      hook(IAppEventBroadcaster::GetInstance().RegisterEventHook(
          EventHook::To<&EventRecorder::Record>(*this))) {}

EventRecorder::~EventRecorder() {
  if (IAppEventBroadcaster::HasInstance()) {
    IAppEventBroadcaster::GetInstance().UnregisterEventHook(hook);
  }
}

void EventRecorder::Record(const VtrString& name, const std::vector<Any>& arguments) {
  EventLog::Entry entry{std::chrono::system_clock::now(), name, {}};
  for (const Any& argument : arguments) {
    entry.arguments.push_back(
        DescribeAny<VtrString, Count, double, HostSample, CpuSample, MemorySample, LoadSample,
                    std::vector<Process>, std::vector<Interface>, Interface>(argument));
  }
  log.Add(std::move(entry));
}

}  // namespace Sysmon
