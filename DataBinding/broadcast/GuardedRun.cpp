#include "GuardedRun.h"

#include <atomic>
#include <exception>

#if defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

#include "DataBinding/ListenerGuard.h"
#include "DataBinding/foundation/ThreadLock.h"

namespace DataBinding {

namespace {

using FailureHandler = RepeatingCallback<void(const ListenerFailure&)>;

constinit std::atomic<bool> faultGuardOn{true};

/// Who is told of failures. Never destroyed, since listeners may still run while the process ends.
struct HandlerSlot {
  ThreadLock lock;
  FailureHandler handler DATABINDING_GUARDED_BY(lock);
  std::atomic<bool> isSet{false};
};
HandlerSlot& Handler() {
  static auto* slot = new HandlerSlot;
  return *slot;
}

#if defined(__GLIBCXX__)
/// A thread's cancellation is caught as a reference to nothing, which is as the runtime means it.
#define DATABINDING_CATCHES_CANCELLATION __attribute__((no_sanitize("null")))
#else
#define DATABINDING_CATCHES_CANCELLATION
#endif

/// Calls `run` and then `failed`, within the catch block, if it throws. Lets a thread's
/// cancellation pass.
template <class Run, class Failed>
DATABINDING_CATCHES_CANCELLATION void CatchAll(Run run, Failed failed) {
  try {
    run();
#if defined(__GLIBCXX__)
  } catch (const abi::__forced_unwind&) {
    throw;
#endif
  } catch (...) {
    failed();
  }
}

struct Report {
  FailureHandler handler;
  ListenerFailure failure;

  static void Run(void* context) {
    auto& self = *static_cast<Report*>(context);
    CatchAll([&] { self.handler(self.failure); }, [] {});
  }
};

void ReportFailure(const VtrString& property, std::exception_ptr exception, std::uint32_t code) {
  HandlerSlot& slot = Handler();
  if (!slot.isSet.load(std::memory_order_acquire)) return;
  const auto current = [&] {
    const ReadLock guard(slot.lock);
    return slot.handler;
  };
  Report report{current(), {property, std::move(exception), code}};
  if (IsHardwareFaultGuardOn()) {
    details::RunTrapping(&Report::Run, &report);
  } else {
    Report::Run(&report);
  }
}

struct GuardedSteps {
  bool (*step)(void* context);
  void* context;
  const VtrString& property;

  static void Run(void* self) {
    auto& steps = *static_cast<GuardedSteps*>(self);
    for (bool more = true; more;) {
      CatchAll([&] { more = steps.step(steps.context); },
               [&] { ReportFailure(steps.property, std::current_exception(), 0); });
    }
  }
};

}  // namespace

void SetListenerFailureHandler(const FailureHandler& handler) {
  HandlerSlot& slot = Handler();
  FailureHandler former = handler;
  const WriteLock guard(slot.lock);
  std::swap(slot.handler, former);
  slot.isSet.store(static_cast<bool>(slot.handler), std::memory_order_release);
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

void RunGuarded(bool (*step)(void*), void* context, const VtrString& property) {
  GuardedSteps steps{step, context, property};
  if (!IsHardwareFaultGuardOn()) return GuardedSteps::Run(&steps);
  while (const auto code = RunTrapping(&GuardedSteps::Run, &steps)) {
    ReportFailure(property, nullptr, code);
  }
}

}  // namespace details
}  // namespace DataBinding
