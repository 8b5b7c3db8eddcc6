// SPDX-License-Identifier: Apache-2.0
/// A CallbackList is a signal with typed arguments: an ordered list of callbacks that is called
/// often and changed seldom.
///
/// One thread adds callbacks, calls the list and ends it. Subscriptions may be cancelled on any
/// thread.
///
/// A call runs the callbacks in the order in which they were added: those that were in the list
/// when the call began and are not cancelled when it reaches them. A callback may add and cancel
/// others, call the list again, and end it; after its end no further callback is called.
///
/// A callback that is cancelled during a call stays alive until the outermost call is over. One
/// that is cancelled outside of calls is released at once. A callback that another thread cancels
/// while it runs may go on; CancelAndWait waits for it.
///
/// A call allocates nothing, and takes no lock unless callbacks were cancelled. A list to which
/// nothing was added yet is one null pointer.
///
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
#include "DataBinding/foundation/details/FirstFailure.h"

namespace VtrUtils {

namespace details {

class CallbackListCore;

/// Returns an address that no other living thread has.
[[nodiscard]] DATABINDING_API const void* ThisThread() noexcept;

struct CallbackListCoreTraits {
  DATABINDING_API static void Destroy(const CallbackListCore* core) noexcept;
};

/// The part of a list that its subscriptions share.
///
/// The walking thread reads entries without the lock. It may do so because no other thread moves
/// entries: another thread that cancels only marks an entry, and takes the callback out only if no
/// walk is under way. The cancelling thread sets `silence` and then reads `walks`; the walking
/// thread sets `walks` and then reads `silence`. Since both do so in sequentially consistent order,
/// at least one of them sees the other.
class CallbackListCore : public RefCounted<CallbackListCore, CallbackListCoreTraits> {
 public:
  struct Entry {
    Entry(std::uint64_t number, const BindStateBase* owned,
          BindStateBase::InvokeFunction caller) noexcept
        : run(caller != nullptr ? caller : owned->Invoke()), state(owned), token(number) {}
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
    const BindStateBase* state;  // a reference that the core releases
    std::uint64_t token;
    /// The number of pauses; `ended` is added when the entry is cancelled. The callback is called
    /// only while this is 0.
    std::atomic<std::uint32_t> silence{0};
  };

  std::uint64_t Add(comlike_ptr<BindStateBase> callback, BindStateBase::InvokeFunction caller);
  /// These may be called on any thread, and do nothing for a token that is no longer in the list.
  ///@{
  void Cancel(std::uint64_t token) noexcept;
  /// Cancels, and waits until the walk of another thread, if there is one, is over.
  void CancelAndWait(std::uint64_t token) noexcept;
  /// Adds the change, 1 or -1, to the pauses of an entry.
  void Pause(std::uint64_t token, std::int32_t change) noexcept;
  ///@}
  /// Cancels all entries and gives the list's reference up, or leaves both releases to the end of
  /// the outermost walk if one is under way.
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
  /// The number of entries whose callback was taken out when it was cancelled outside of walks.
  std::size_t gaps DATABINDING_GUARDED_BY(lock) = 0;
  std::atomic<std::uint32_t> walks{0};
  /// Identifies the thread that walks, while `walks` is not 0.
  std::atomic<const void*> walker{nullptr};
  std::atomic<bool> anyCancelled{false};
  bool closed = false;
};

/// A CallbackWalk goes over a list once, entry by entry. Walks of one list belong to one thread and
/// end in the reverse order of their beginnings.
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

  /// Returns the next entry to call, or null at the end. The walk steps on before the call, so that
  /// a callback which throws counts as called.
  [[nodiscard]] const CallbackListCore::Entry* Next() noexcept {
    while (next < end) {
      const auto& entry = core->entries[next++];
      if (entry.silence.load(std::memory_order_seq_cst) == 0) return &entry;
    }
    return nullptr;
  }
  /// Goes on to the entries that were added since the walk began. Returns false if there is none.
  bool TakeNewcomers() noexcept {
    if (core == nullptr || end == core->entries.size()) return false;
    end = core->entries.size();
    return true;
  }
  /// Returns true when the list was ended during the walk. None of its callbacks is called any
  /// more.
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
  /// Takes the callbacks over. Their subscriptions remain valid.
  CallbackListBase(CallbackListBase&& other) noexcept : core(std::exchange(other.core, nullptr)) {}
  /// Takes the callbacks over, and ends the ones that were in this list.
  CallbackListBase& operator=(CallbackListBase&& other) noexcept {
    if (this != &other) {
      auto* former = std::exchange(core, std::exchange(other.core, nullptr));
      Drop(former);
    }
    return *this;
  }
  ~CallbackListBase() { Drop(core); }

  /// Adds a callback of the list's signature, or any callback with a function that takes the list's
  /// arguments and calls it. An empty memento gives an inert subscription.
  Subscription Add(const RepeatingCallbackMemento& callback,
                   details::BindStateBase::InvokeFunction caller = nullptr);
  /// Returns the part that a CallbackWalk is made with, or null if the list never had a callback.
  [[nodiscard]] details::CallbackListCore* Core() const noexcept { return core; }

 private:
  static void Drop(details::CallbackListCore* core) noexcept;

  details::CallbackListCore* core = nullptr;
};

/// The callbacks of this list take the arguments by constant reference.
template <class... Args>
class CallbackList : public CallbackListBase {
 public:
  /// This is the type of the callbacks in the list.
  using Callback = RepeatingCallback<void(const Args&...)>;
  /// This is the type of the functions that call callbacks of other signatures. Such a function is
  /// given the callback's state.
  using Caller = typename details::Invoker<void(const Args&...)>::Function;

  /// Adds a callback at the end of the list, where it stays until the subscription ends. A null
  /// callback gives an inert subscription.
  Subscription Add(const Callback& callback) {
    return CallbackListBase::Add(callback.GetMemento());
  }
  /// Does the same for a callback of another signature, which the function calls.
  Subscription AddFor(const RepeatingCallbackMemento& callback, Caller caller) {
    return CallbackListBase::Add(callback,
                                 reinterpret_cast<details::BindStateBase::InvokeFunction>(caller));
  }
  /// Adds a callback that is called once at most. Its subscription ends after the call.
  Subscription AddOnce(OneShotCallback<void(const Args&...)> callback) {
    if (!callback) return {};
    return details::CallOnce(std::move(callback),
                             [this](const Callback& once) { return Add(once); });
  }

  /// Calls the callbacks. If one throws, the exception leaves this call and the callbacks behind it
  /// are not called.
  void Call(const Args&... args) const {
    details::CallbackWalk walk(Core());
    CallRest(walk, args...);
  }
  /// Calls all callbacks, also those behind one that throws. The first exception leaves this call
  /// in the end.
  void CallAll(const Args&... args) const {
    FirstFailure failure;
    details::CallbackWalk walk(Core());
    while (!failure.Try([&] { CallRest(walk, args...); })) {
    }
    failure.Rethrow();
  }
  /// Calls the callbacks that a walk has not reached yet. After an exception it may be called
  /// again, to go on behind the callback that threw.
  static void CallRest(details::CallbackWalk& walk, const Args&... args) {
    while (const auto* entry = walk.Next()) {
      reinterpret_cast<Caller>(entry->run)(entry->state, args...);
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
