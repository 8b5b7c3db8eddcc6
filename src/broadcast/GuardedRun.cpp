// SPDX-License-Identifier: Apache-2.0
// This file holds the part of the guard that is the same on all platforms: the loop that goes on
// after a failure, the failure handler, and what a debug build shows where there is no handler.
#include "GuardedRun.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <exception>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/details/Cancellation.h"

namespace DataBinding {

namespace {

using FailureHandler = RepeatingCallback<void(const ListenerFailure&)>;

constinit std::atomic<bool> faultGuardOn{true};

/// While no handler is set, a failure takes no lock: this flag is looked at first.
constinit std::atomic<bool> handlerIsSet{false};

/// Holds the handler that is told of failures. The slot is never destroyed, because listeners may
/// still run while the process ends.
struct HandlerSlot {
  ThreadLock lock;
  FailureHandler handler DATABINDING_GUARDED_BY(lock);
};
HandlerSlot& Handler() {
  static auto* slot = new HandlerSlot;
  return *slot;
}

/// Calls `run`. If that throws, calls `failed` within the catch block.
template <class Run, class Failed>
DATABINDING_CATCHES_CANCELLATION void CatchAll(Run run, Failed failed) {
  try {
    run();
  }
  DATABINDING_PASS_CANCELLATION catch (...) { failed(); }
}

/// One call of the failure handler, which may fault or throw as well.
struct Report {
  FailureHandler handler;
  ListenerFailure failure;

  static void Run(void* context) {
    auto& self = *static_cast<Report*>(context);
    CatchAll([&] { self.handler(self.failure); }, [] {});
  }
};

/// Tells the handler. Returns false when the object that the handler is bound to has gone.
bool Tell(const VtrString& property, std::exception_ptr exception, std::uint32_t code) {
  HandlerSlot& slot = Handler();
  const auto current = [&] {
    const ReadLock guard(slot.lock);
    return slot.handler;
  };
  Report report{current(), {property, std::move(exception), code}};
  if (report.handler.IsCancelled()) return false;
  if (IsHardwareFaultGuardOn()) {
    details::RunTrapping(&Report::Run, &report);
  } else {
    Report::Run(&report);
  }
  return true;
}

/// Calls a function with what an exception says of itself.
template <class Call>
void CallWithText(const std::exception_ptr& exception, Call call) {
  try {
    std::rethrow_exception(exception);
  } catch (const std::exception& thrown) {
    call(thrown.what());
  } catch (const VtrString& text) {
    call(text.ToUtf8().c_str());
  } catch (...) {
    call("an exception of a class of its own");
  }
}

#if !defined(NDEBUG)

/// Writes without allocating, since a fault may have left the heap locked.
void Show(const VtrString& name, const char* failure) {
  std::array<char, 64> inAscii{};
  const auto length = std::min(static_cast<std::size_t>(name.GetLength()), inAscii.size() - 1);
  for (std::size_t i = 0; i < length; ++i) {
    const wchar_t character = name[i];
    inAscii[i] = character < 0x80 ? static_cast<char>(character) : '?';
  }
  std::fprintf(stderr,
               "DataBinding: swallowed a failure at \"%s\": %s. Only the first one is shown; "
               "SetListenerFailureHandler tells of all.\n",
               inAscii.data(), failure);
}

/// Shows the first failure of the process that no handler is told of.
void ShowFirst(const VtrString& name, const std::exception_ptr& exception, std::uint32_t code) {
  static constinit std::atomic_flag isShown;
  if (isShown.test_and_set(std::memory_order_relaxed)) return;
  if (exception == nullptr) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "hardware fault 0x%x", code);
    return Show(name, text.data());
  }
  CallWithText(exception, [&](const char* text) { Show(name, text); });
}

#endif

}  // namespace

VtrString ExceptionText(const std::exception_ptr& exception) {
  VtrString copy;
  if (exception == nullptr) return copy;
  CallWithText(exception, [&](const char* text) { copy = VtrString::FromUtf8(text); });
  return copy;
}

void details::ReportFailure(const VtrString& name, const std::exception_ptr& exception,
                            std::uint32_t code) {
  bool isTold = false;
  if (handlerIsSet.load(std::memory_order_acquire)) {
    CatchAll([&] { isTold = Tell(name, exception, code); }, [] {});
  }
  if (isTold) return;
#if !defined(NDEBUG)
  ShowFirst(name, exception, code);
#endif
}

void ReportListenerFailure(const VtrString& name, const std::exception_ptr& exception) noexcept {
  details::ReportFailure(name, exception);
}

void SetListenerFailureHandler(const FailureHandler& handler) {
  HandlerSlot& slot = Handler();
  FailureHandler former = handler;
  const WriteLock guard(slot.lock);
  std::swap(slot.handler, former);
  handlerIsSet.store(static_cast<bool>(slot.handler), std::memory_order_release);
}

void SetHardwareFaultGuard(bool on) noexcept { faultGuardOn.store(on, std::memory_order_relaxed); }

bool IsHardwareFaultGuardOn() noexcept {
#if defined(DATABINDING_NO_FAULT_GUARD)
  return false;
#else
  return faultGuardOn.load(std::memory_order_relaxed);
#endif
}

namespace details {

#if defined(DATABINDING_NO_FAULT_GUARD)

std::uint32_t RunTrapping(void (*run)(void*), void* context) {
  run(context);
  return 0;
}

void RunUntrapped(void (*run)(void*), void* context) { run(context); }

#endif

void GuardedStep::Run(void* self) {
  const auto& guarded = *static_cast<GuardedStep*>(self);
  for (bool done = false; !done;) {
    CatchAll([&] { guarded.step(guarded.context), done = true; },
             [&] { ReportFailure(guarded.property, std::current_exception()); });
  }
}

}  // namespace details
}  // namespace DataBinding
