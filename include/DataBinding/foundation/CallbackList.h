// SPDX-License-Identifier: Apache-2.0
/// A signal with typed arguments: an ordered list of callbacks, called often and changed seldom.
///
/// One thread adds, calls and ends; subscriptions may be cancelled on any thread. A call runs, in
/// order of addition, the callbacks that were there when it began and are not cancelled when it
/// reaches them. They may add, cancel, call again or end the list, after which nobody further is
/// called; each stays alive until the outermost call is over. One that is cancelled outside a call
/// is released at once; one that another thread cancels while it runs may go on (CancelAndWait
/// waits for it). A call allocates nothing and takes no lock unless it cancels. An empty list is
/// null.
///   CallbackList<int> moved;
///   Subscription redraw = moved.Add(BindWeak(view.AsWeakPtr(), &View::Redraw));  // (const int&)
///   moved.Call(3);
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/ComlikePtr.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/details/CallOnce.h"

namespace VtrUtils {

namespace details {

class CallbackListCore;

/// An address that no other living thread has.
[[nodiscard]] DATABINDING_API const void* ThisThread() noexcept;

struct CallbackListCoreTraits {
  DATABINDING_API static void Destroy(const CallbackListCore* core) noexcept;
};

/// What a list shares with its subscriptions.
///
/// The walking thread reads entries without the lock. That is sound because only that thread moves
/// them: another one that cancels merely marks an entry, and takes its callback out only where no
/// walk is under way. Both sides announce themselves before they look at the other (`silence` and
/// `walks`, in sequentially consistent order), so at least one of them sees the other.
class CallbackListCore : public RefCounted<CallbackListCore, CallbackListCoreTraits> {
 public:
  struct Entry {
    Entry(std::uint64_t number, const BindStateBase* owned) noexcept
        : run(owned->Invoke()), state(owned), token(number) {}
    Entry(Entry&& other) noexcept
        : run(other.run),
          state(std::exchange(other.state, nullptr)),
          token(other.token),
          silence(other.silence.load(std::memory_order_relaxed)) {}
    Entry& operator=(Entry&& other) noexcept {
      run = other.run;
      std::swap(state, other.state);
      token = other.token;
      silence.store(other.silence.load(std::memory_order_relaxed), std::memory_order_relaxed);
      return *this;
    }
    ~Entry() = default;

    static constexpr std::uint32_t ended = std::uint32_t{1} << 31;
    [[nodiscard]] bool IsCancelled() const noexcept { return silence >= ended; }

    BindStateBase::InvokeFunction run;
    const BindStateBase* state;  // one reference, released by the core
    std::uint64_t token;
    /// How often it is paused; `ended` is added when it is cancelled. Called while it is 0.
    std::atomic<std::uint32_t> silence{0};
  };

  std::uint64_t Add(comlike_ptr<BindStateBase> callback);
  /// Any thread. These do nothing for a token that is no longer there.
  ///@{
  void Cancel(std::uint64_t token) noexcept;
  /// Waits until a walk of another thread is over.
  void CancelAndWait(std::uint64_t token) noexcept;
  /// Adds 1 to the pauses of an entry, or -1.
  void Pause(std::uint64_t token, std::int32_t change) noexcept;
  ///@}
  /// Ends all entries. Those of a walk under way are released when it is over.
  void Close() noexcept;
  DATABINDING_API void EndOutermostWalk() noexcept;

 private:
  friend class CallbackWalk;
  friend CallbackListCoreTraits;
  ~CallbackListCore() = default;
  [[nodiscard]] Entry* Find(std::uint64_t token) noexcept DATABINDING_REQUIRES_SHARED(lock);
  [[nodiscard]] bool Holds(std::uint64_t token) noexcept;
  void ReleaseCancelled() noexcept;
  void CloseGaps() noexcept DATABINDING_REQUIRES(lock);
  std::size_t TakeCancelled(std::span<const BindStateBase*> room) noexcept;

  ThreadLock lock;
  std::vector<Entry> entries;
  std::uint64_t lastToken = 0;
  /// Entries without a callback, left by cancelling outside a walk.
  std::size_t gaps DATABINDING_GUARDED_BY(lock) = 0;
  std::atomic<std::uint32_t> walks{0};
  /// Which thread is walking, while one is.
  std::atomic<const void*> walker{nullptr};
  std::atomic<bool> anyCancelled{false};
  bool closed = false;
};

/// One walk over a list, entry by entry. For the walking thread; made and ended in nested order.
class CallbackWalk {
 public:
  explicit CallbackWalk(CallbackListCore* walked) noexcept : core(walked) {
    if (core == nullptr) return;
    const auto nested = core->walks.load(std::memory_order_relaxed);
    if (nested == 0) core->walker.store(ThisThread(), std::memory_order_relaxed);
    core->walks.store(nested + 1, std::memory_order_seq_cst);
    end = core->entries.size();
  }
  CallbackWalk(const CallbackWalk&) = delete;
  CallbackWalk& operator=(const CallbackWalk&) = delete;
  ~CallbackWalk() {
    if (core == nullptr) return;
    const auto nested = core->walks.load(std::memory_order_relaxed) - 1;
    core->walks.store(nested, std::memory_order_seq_cst);
    if (nested == 0 && core->anyCancelled.load(std::memory_order_seq_cst)) core->EndOutermostWalk();
  }

  /// The next entry to call, or null. The step is made before the call, so that a callback which
  /// throws counts as called.
  [[nodiscard]] const CallbackListCore::Entry* Next() noexcept {
    while (next < end) {
      const auto& entry = core->entries[next++];
      if (entry.silence.load(std::memory_order_seq_cst) == 0) return &entry;
    }
    return nullptr;
  }
  /// True when the list was ended during the walk. Nothing of it is called any more.
  [[nodiscard]] bool IsListGone() const noexcept { return core != nullptr && core->closed; }

 private:
  CallbackListCore* core;
  std::size_t next = 0;
  std::size_t end = 0;
};

}  // namespace details

/// The part of a list that does not depend on its signature.
class DATABINDING_API CallbackListBase {
 public:
  CallbackListBase() noexcept = default;
  /// Takes the callbacks over; their subscriptions stay good.
  CallbackListBase(CallbackListBase&& other) noexcept : core(std::exchange(other.core, nullptr)) {}
  /// The same; what was in this list before is ended.
  CallbackListBase& operator=(CallbackListBase&& other) noexcept {
    if (this != &other) {
      auto* former = std::exchange(core, std::exchange(other.core, nullptr));
      Drop(former);
    }
    return *this;
  }
  ~CallbackListBase() { Drop(core); }

  /// Adds a callback of the list's signature, or nothing for an empty memento.
  Subscription Add(const RepeatingCallbackMemento& callback);
  /// What a walk is made of; null for a list that never had a callback.
  [[nodiscard]] details::CallbackListCore* Core() const noexcept { return core; }

 private:
  static void Drop(details::CallbackListCore* core) noexcept;

  details::CallbackListCore* core = nullptr;
};

/// A list of callbacks that take the arguments by constant reference.
template <class... Args>
class CallbackList : public CallbackListBase {
 public:
  /// What the list holds.
  using Callback = RepeatingCallback<void(const Args&...)>;

  /// Adds a callback at the end until the subscription ends. A null one gives an inert
  /// subscription.
  Subscription Add(const Callback& callback) {
    return CallbackListBase::Add(callback.GetMemento());
  }
  /// The same for one call: the callback is not called again, and its subscription ends with it.
  Subscription AddOnce(OneShotCallback<void(const Args&...)> callback) {
    if (!callback) return {};
    return details::CallOnce(std::move(callback),
                             [this](const Callback& once) { return Add(once); });
  }

  /// Calls each. What a callback throws leaves the call, and those behind it are not called.
  void Call(const Args&... args) const {
    details::CallbackWalk walk(Core());
    CallRest(walk, args...);
  }
  /// Calls those that a walk has not reached yet. After an exception it may be called again.
  static void CallRest(details::CallbackWalk& walk, const Args&... args) {
    using Run = typename details::Invoker<void(const Args&...)>::Function;
    while (const auto* entry = walk.Next()) {
      reinterpret_cast<Run>(entry->run)(entry->state, args...);
    }
  }
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::CallbackList;
using VtrUtils::CallbackListBase;
namespace details {
using VtrUtils::details::CallbackWalk;
}  // namespace details
}  // namespace DataBinding
