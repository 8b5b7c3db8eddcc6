// SPDX-License-Identifier: Apache-2.0
/// What a callback is made of: a counted state with its functions, and the untyped callback bases.
///
/// A state holds a target with its bound arguments. Its invoke function takes the state and the
/// call's arguments and is stored without its type; the callback that holds the state knows the
/// signature and calls it. A state may answer whether its target is gone. States are counted
/// atomically; the last reference runs the destroy function on whatever thread drops it.
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

/// The requests that a registration answers.
enum class RegistrationRequest { End, EndAndWait, Pause, Resume };

class BindStateBase : public RefCounted<BindStateBase, BindStateBaseRefCountTraits> {
 public:
  /// The two questions that a state is asked about its target.
  enum class CancellationQueryMode { IsCancelled, MaybeValid };

  using InvokeFunction = void (*)();
  using DestroyFunction = void (*)(const BindStateBase*);
  using CallLoop = void (*)(const DirectCall* calls, std::atomic<std::uint32_t>* next,
                            std::uint32_t end);
  using RequestHandler = void (*)(const BindStateBase*, RegistrationRequest);
  using CancellationQuery = bool (*)(const BindStateBase*, CancellationQueryMode);

  BindStateBase(InvokeFunction onInvoke, DestroyFunction onDestroy) noexcept
      : BindStateBase(onInvoke, onDestroy, nullptr) {}
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the union begins as a loop
  BindStateBase(InvokeFunction onInvoke, DestroyFunction onDestroy,
                CancellationQuery onQuery) noexcept
      : invoke(onInvoke), destroy(onDestroy), query(onQuery) {}
  ~BindStateBase() = default;

  [[nodiscard]] InvokeFunction Invoke() const noexcept { return invoke; }
  [[nodiscard]] bool IsCancelled() const {
    return query != nullptr && query(this, CancellationQueryMode::IsCancelled);
  }
  [[nodiscard]] bool MaybeValid() const {
    return query == nullptr || query(this, CancellationQueryMode::MaybeValid);
  }
  /// MakeCalls of the module that the state comes from; null for a state with another signature.
  [[nodiscard]] CallLoop Loop() const noexcept { return isRegistration ? nullptr : loop; }
  /// True for a state that ends a registration and knows requests: see RegistrationState.
  [[nodiscard]] bool IsRegistration() const noexcept { return isRegistration; }
  /// Asks a state that ends a registration. Others do nothing.
  void Request(RegistrationRequest request) const {
    if (isRegistration) handler(this, request);
  }
  /// False only when both signatures are known and differ.
  [[nodiscard]] bool FitsSignature(const std::type_info& wanted) const noexcept {
    return signature == nullptr || IsOneType(*signature, wanted);
  }

 protected:
  /// Lets a typed callback recognise a state of its own signature.
  void SetSignature(const std::type_info& type) noexcept { signature = &type; }
  void SetLoop(CallLoop ofModule) noexcept { loop = ofModule; }
  /// Makes it a state that ends a registration.
  void SetRequestHandler(RequestHandler onRequest) noexcept {
    isRegistration = true;
    handler = onRequest;
  }

 private:
  friend BindStateBaseRefCountTraits;

  bool isRegistration = false;  // stands in the gap behind the count

  InvokeFunction invoke;
  DestroyFunction destroy;
  CancellationQuery query;
  const std::type_info* signature = nullptr;
  union {
    CallLoop loop = nullptr;
    RequestHandler handler;
  };
};

inline void BindStateBaseRefCountTraits::Destroy(const BindStateBase* state) {
  state->destroy(state);
}

/// One call of a callback without arguments, taken apart: what a list of listeners is made of.
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

  /// Exchanged for a function that does nothing while another thread may make the call.
  std::atomic<Function> run;
  const BindStateBase* state;
};

/// Makes the calls from `*next` to `end`, at least one, counting on before each, so that one which
/// throws counts as made and other threads see which one is under way. Processors reach a function
/// in the same module faster than one in another: a state therefore names the copy of its own
/// module.
DATABINDING_MODULE_LOCAL DATABINDING_HOT_LOOP inline void MakeCalls(
    const DirectCall* calls, std::atomic<std::uint32_t>* next, std::uint32_t end) {
  std::size_t i = next->load(std::memory_order_relaxed);
  do {  // a check before the loop would push that across two cache lines
    const DirectCall& call = calls[i];
    next->store(static_cast<std::uint32_t>(++i), std::memory_order_release);
    std::atomic_signal_fence(std::memory_order_seq_cst);  // the count first, then the look at it
    call.run.load(std::memory_order_relaxed)(call.state);
  } while (i < end);
}

/// A callback without its signature: owns one reference to a state, or none.
class OneShotCallbackBase {
 public:
  explicit OneShotCallbackBase(comlike_ptr<BindStateBase> adopted) noexcept
      : state(std::move(adopted)) {}
  OneShotCallbackBase(OneShotCallbackBase&&) noexcept = default;
  OneShotCallbackBase& operator=(OneShotCallbackBase&&) noexcept = default;
  ~OneShotCallbackBase() = default;

  /// False for a null callback.
  explicit operator bool() const noexcept { return static_cast<bool>(state); }
  /// The function to call with the state; null for a null callback.
  [[nodiscard]] BindStateBase::InvokeFunction polymorphic_invoke() const noexcept {
    return state ? state->Invoke() : nullptr;
  }
  [[nodiscard]] BindStateBase* GetBindState() const noexcept { return state.Get(); }
  /// True once the target is gone, and for a null callback.
  [[nodiscard]] bool IsCancelled() const { return !state || state->IsCancelled(); }
  /// False once the target is surely gone, and for a null callback.
  [[nodiscard]] bool MaybeValid() const { return state && state->MaybeValid(); }

 protected:
  OneShotCallbackBase() noexcept = default;
  OneShotCallbackBase(const OneShotCallbackBase&) noexcept = default;
  OneShotCallbackBase& operator=(const OneShotCallbackBase&) noexcept = default;

  comlike_ptr<BindStateBase> state;
};

class RepeatingCallbackBase;

}  // namespace details

/// A copyable holder of a repeating callback's state without its signature.
class RepeatingCallbackMemento {
 public:
  RepeatingCallbackMemento() noexcept = default;
  /// True when it holds no callback, so that one made from it would be null.
  [[nodiscard]] bool IsEmpty() const noexcept { return !state; }

 private:
  friend details::RepeatingCallbackBase;

  comlike_ptr<details::BindStateBase> state;
};

namespace details {

/// A callback that may be copied and run many times; copies share one state.
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
  /// Shares the memento's state; an empty one makes the callback null.
  void SetMemento(const RepeatingCallbackMemento& memento) noexcept { state = memento.state; }
};

}  // namespace details
}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::RepeatingCallbackMemento;
namespace details {
using VtrUtils::details::BindStateBase;
using VtrUtils::details::BindStateBaseRefCountTraits;
using VtrUtils::details::OneShotCallbackBase;
using VtrUtils::details::RepeatingCallbackBase;
}  // namespace details
}  // namespace DataBinding
