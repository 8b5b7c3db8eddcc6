// SPDX-License-Identifier: Apache-2.0
/// A callback is made of the parts in this header: a counted state with its functions, and base
/// classes that do not know the signature.
///
/// A state holds a target with its bound arguments. Its invoke function takes the state and the
/// arguments of the call, and is stored without its type; the callback that holds the state knows
/// the signature and casts it back. A state may be able to tell whether its target is gone. The
/// references to a state are counted atomically. The last release runs the destroy function, on the
/// thread that releases.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <typeinfo>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/ComlikePtr.h"
#include "DataBinding/foundation/TypeName.h"

namespace VtrUtils {

namespace details {

class BindStateBase;
struct DirectCall;

struct BindStateBaseRefCountTraits {
  static void Destroy(const BindStateBase* state);
};

/// The requests that can be made to the state of a registration. Leave is the last one that the
/// Subscription to one of many registrations makes: it ends the registration and gives up the
/// Subscription's part in the state.
enum class RegistrationRequest { End, EndAndWait, Pause, Resume, Leave };

/// Leads the state of many registrations to one of them. It is empty where a state belongs to one
/// registration only.
struct RegistrationKey {
  void* place = nullptr;
  std::uint64_t id = 0;
};

class BindStateBase : public RefCounted<BindStateBase, BindStateBaseRefCountTraits> {
 public:
  /// The two questions that a state is asked about its target.
  enum class CancellationQueryMode { IsCancelled, MaybeValid };

  using InvokeFunction = void (*)();
  using DestroyFunction = void (*)(const BindStateBase*);
  using CallLoop = void (*)(const DirectCall* calls, std::atomic<std::uint32_t>* next,
                            std::uint32_t end);
  using RequestHandler = void (*)(const BindStateBase*, RegistrationRequest,
                                  const RegistrationKey&);
  using CancellationQuery = bool (*)(const BindStateBase*, CancellationQueryMode);
  /// Says what all states of one kind have in common, so that not each of them has to keep it. Any
  /// part may be null.
  struct Traits {
    CancellationQuery query = nullptr;
    /// The signature, by which a typed callback tells whether the state fits.
    const std::type_info& (*signature)() noexcept = nullptr;
    /// The copy of MakeCalls in the module that the state comes from, where the signature is
    /// void().
    CallLoop loop = nullptr;
    /// Handles requests to the state of a registration. Other states have none.
    RequestHandler handler = nullptr;
  };

  BindStateBase(InvokeFunction onInvoke, DestroyFunction onDestroy) noexcept
      : BindStateBase(onInvoke, onDestroy, withoutTraits) {}
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): of the union, one is enough
  BindStateBase(InvokeFunction onInvoke, DestroyFunction onDestroy,
                CancellationQuery onQuery) noexcept
      : hasOwnQuery(true), invoke(onInvoke), destroy(onDestroy), query(onQuery) {}
  /// The traits must outlive the state.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): of the union, one is enough
  BindStateBase(InvokeFunction onInvoke, DestroyFunction onDestroy,
                const Traits& itsTraits) noexcept
      : invoke(onInvoke), destroy(onDestroy), ofKind(&itsTraits) {}
  ~BindStateBase() = default;

  [[nodiscard]] InvokeFunction Invoke() const noexcept { return invoke; }
  [[nodiscard]] bool IsCancelled() const {
    const auto ask = Query();
    return ask != nullptr && ask(this, CancellationQueryMode::IsCancelled);
  }
  [[nodiscard]] bool MaybeValid() const {
    const auto ask = Query();
    return ask == nullptr || ask(this, CancellationQueryMode::MaybeValid);
  }
  /// Returns the copy of MakeCalls in the module that the state comes from, or null if the
  /// signature of the state is not void().
  [[nodiscard]] CallLoop Loop() const noexcept { return GetTraits().loop; }
  /// Returns true for a state that ends a registration and handles requests: see RegistrationState.
  [[nodiscard]] bool IsRegistration() const noexcept { return GetTraits().handler != nullptr; }
  /// Makes a request to the state of a registration, or of many, of which the key says which one.
  /// Other states do nothing.
  void Request(RegistrationRequest request, const RegistrationKey& key) const {
    if (const auto handler = GetTraits().handler) handler(this, request, key);
  }
  /// Returns false only when both signatures are known and differ.
  [[nodiscard]] bool FitsSignature(const std::type_info& wanted) const noexcept {
    const auto signature = GetTraits().signature;
    return signature == nullptr || IsOneType(signature(), wanted);
  }

 private:
  friend BindStateBaseRefCountTraits;
  DATABINDING_MODULE_LOCAL static const Traits withoutTraits;

  [[nodiscard]] const Traits& GetTraits() const noexcept {
    return hasOwnQuery ? withoutTraits : *ofKind;
  }
  [[nodiscard]] CancellationQuery Query() const noexcept {
    return hasOwnQuery ? query : ofKind->query;
  }

  bool hasOwnQuery = false;  // declared first because it fits into the gap behind the count

  InvokeFunction invoke;
  DestroyFunction destroy;
  union {
    CancellationQuery query;
    const Traits* ofKind;
  };
};

inline constexpr BindStateBase::Traits BindStateBase::withoutTraits{};

inline void BindStateBaseRefCountTraits::Destroy(const BindStateBase* state) {
  state->destroy(state);
}

/// A DirectCall is one call of a callback without arguments: its function and its state. A list of
/// listeners is an array of these.
struct DirectCall {
  using Function = void (*)(const BindStateBase* state);

  DirectCall(Function called, const BindStateBase* with) noexcept : run(called), state(with) {}
  DirectCall(const DirectCall& other) noexcept
      : run(other.run.load(std::memory_order_relaxed)), state(other.state) {}
  DirectCall& operator=(const DirectCall& other) noexcept {
    if (this == &other) return *this;
    run.store(other.run.load(std::memory_order_relaxed), std::memory_order_relaxed);
    state = other.state;
    return *this;
  }
  ~DirectCall() = default;

  /// Another thread may replace this by a function that does nothing, while the call is made.
  std::atomic<Function> run;
  const BindStateBase* state;
};

/// Makes the calls from `*next` to `end`; there must be at least one. `*next` is increased before
/// each call, so that a call which throws counts as made, and other threads see which call is under
/// way. A processor reaches a function in the same module faster than one in another module, so
/// each module has its own copy of this function, and a state names the copy of its module.
DATABINDING_MODULE_LOCAL DATABINDING_HOT_LOOP inline void MakeCalls(
    const DirectCall* calls, std::atomic<std::uint32_t>* next, std::uint32_t end) {
  std::size_t i = next->load(std::memory_order_relaxed);
  do {  // with a check before it, this loop would lie across two cache lines
    const DirectCall& call = calls[i];
    next->store(static_cast<std::uint32_t>(++i), std::memory_order_release);
    // The position is stored before the function is loaded: see ReaderRecord::FenceOthers.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    call.run.load(std::memory_order_relaxed)(call.state);
  } while (i < end);
}

/// A callback whose signature is not known. It owns one reference to a state, or none.
class OneShotCallbackBase {
 public:
  explicit OneShotCallbackBase(comlike_ptr<BindStateBase> adopted) noexcept
      : state(std::move(adopted)) {}
  OneShotCallbackBase(OneShotCallbackBase&&) noexcept = default;
  OneShotCallbackBase& operator=(OneShotCallbackBase&&) noexcept = default;
  ~OneShotCallbackBase() = default;

  /// Returns false for a null callback.
  explicit operator bool() const noexcept { return static_cast<bool>(state); }
  /// Returns the function that is called with the state, or null for a null callback.
  [[nodiscard]] BindStateBase::InvokeFunction polymorphic_invoke() const noexcept {
    return state ? state->Invoke() : nullptr;
  }
  [[nodiscard]] BindStateBase* GetBindState() const noexcept { return state.Get(); }
  /// Gives the state to the caller, and leaves a null callback.
  [[nodiscard]] comlike_ptr<BindStateBase> TakeBindState() noexcept { return std::move(state); }
  /// Returns true once the target is gone, and for a null callback.
  [[nodiscard]] bool IsCancelled() const { return !state || state->IsCancelled(); }
  /// Returns false once the target is surely gone, and for a null callback.
  [[nodiscard]] bool MaybeValid() const { return state && state->MaybeValid(); }

 protected:
  OneShotCallbackBase() noexcept = default;
  OneShotCallbackBase(const OneShotCallbackBase&) noexcept = default;
  OneShotCallbackBase& operator=(const OneShotCallbackBase&) noexcept = default;

  comlike_ptr<BindStateBase> state;
};

class RepeatingCallbackBase;

}  // namespace details

namespace details {

/// Makes the state of a callback once somebody wants it. A memento can lend such a callback.
class CallbackMaker {
 public:
  CallbackMaker(const CallbackMaker&) = delete;
  CallbackMaker& operator=(const CallbackMaker&) = delete;

  /// Returns the state, which is the same each time.
  [[nodiscard]] virtual comlike_ptr<BindStateBase> MakeState() = 0;

 protected:
  CallbackMaker() noexcept = default;
  ~CallbackMaker() = default;
};

}  // namespace details

/// Holds a repeating callback whose signature is not known. It can be copied.
///
/// The library also passes mementos that only lend a callback: they refer to a CallbackMaker, which
/// outlives them. To copy, move or assign such a memento makes the callback, so whoever keeps one
/// has a callback of his own. That may throw std::bad_alloc; with other mementos nothing throws.
class RepeatingCallbackMemento {
 public:
  RepeatingCallbackMemento() noexcept = default;
  /// These hold the other's callback, which is made where it was only lent.
  ///@{
  RepeatingCallbackMemento(const RepeatingCallbackMemento& other) : state(other.Shared()) {}
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): what is lent is made here
  RepeatingCallbackMemento(RepeatingCallbackMemento&& other) : state(other.Taken()) {}
  RepeatingCallbackMemento& operator=(const RepeatingCallbackMemento& other) {
    if (this != &other) Hold(other.Shared());
    return *this;
  }
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): as above
  RepeatingCallbackMemento& operator=(RepeatingCallbackMemento&& other) {
    if (this != &other) Hold(other.Taken());
    return *this;
  }
  ///@}
  ~RepeatingCallbackMemento() = default;

  /// Returns true when the memento holds no callback.
  [[nodiscard]] bool IsEmpty() const noexcept { return !state && lender == nullptr; }
  /// Makes this memento lend a callback.
  void Lend(details::CallbackMaker& maker) noexcept {
    state = {};
    lender = &maker;
  }
  /// Returns the maker of a callback that is only lent, or null.
  [[nodiscard]] details::CallbackMaker* Lender() const noexcept { return lender; }

 private:
  friend details::RepeatingCallbackBase;

  [[nodiscard]] comlike_ptr<details::BindStateBase> Shared() const {
    return lender == nullptr ? state : lender->MakeState();
  }
  [[nodiscard]] comlike_ptr<details::BindStateBase> Taken() {
    return lender == nullptr ? std::move(state) : lender->MakeState();
  }
  void Hold(comlike_ptr<details::BindStateBase> held) noexcept {
    lender = nullptr;
    state = std::move(held);
  }

  comlike_ptr<details::BindStateBase> state;
  details::CallbackMaker* lender = nullptr;
};

namespace details {

/// A callback that may be copied and run many times. Copies share one state.
class RepeatingCallbackBase : public OneShotCallbackBase {
 public:
  RepeatingCallbackBase() noexcept = default;
  using OneShotCallbackBase::OneShotCallbackBase;
  RepeatingCallbackBase(const RepeatingCallbackBase&) noexcept = default;
  RepeatingCallbackBase(RepeatingCallbackBase&&) noexcept = default;
  RepeatingCallbackBase& operator=(const RepeatingCallbackBase&) noexcept = default;
  RepeatingCallbackBase& operator=(RepeatingCallbackBase&&) noexcept = default;
  ~RepeatingCallbackBase() = default;

  [[nodiscard]] RepeatingCallbackMemento GetMemento() const noexcept {
    RepeatingCallbackMemento memento;
    memento.state = state;
    return memento;
  }
  /// Shares the memento's state. An empty memento makes the callback null.
  void SetMemento(const RepeatingCallbackMemento& memento) { state = memento.Shared(); }
};

}  // namespace details
}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::RepeatingCallbackMemento;
namespace details {
using VtrUtils::details::BindStateBase;
using VtrUtils::details::BindStateBaseRefCountTraits;
using VtrUtils::details::CallbackMaker;
using VtrUtils::details::OneShotCallbackBase;
using VtrUtils::details::RegistrationKey;
using VtrUtils::details::RegistrationRequest;
using VtrUtils::details::RepeatingCallbackBase;
}  // namespace details
}  // namespace DataBinding
