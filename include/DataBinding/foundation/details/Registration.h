// SPDX-License-Identifier: Apache-2.0
/// A RegistrationState is the state that most of the library's own subscriptions hold. It ends a
/// registration, and can also pause the registration and wait for its callback. (Subscriptions to
/// properties have no states of their own: their registry handles the requests of them all.)
///
/// A request tells the state which of these to do. The state has a function for requests, so that a
/// Subscription need not know with what the callback is registered. A callback of the user's own
/// that ends something has no such function, and requests to it do nothing.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

#include "DataBinding/foundation/details/BindState.h"

namespace VtrUtils::details {

/// Waits until the question is answered with false. A wait that takes long sleeps between the
/// questions, to leave the processor to the other threads.
template <class Question>
void WaitWhile(Question question) {
  for (std::uint32_t round = 0; question(); ++round) {
    if (round < 64) {
      std::this_thread::yield();
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

/// RegistrationState is the base class of such a state. `Derived` has these functions: End() ends
/// the registration; IsGone() tells whether there is nothing left to end; EndAndWait(), Pause() and
/// Resume() handle the requests. Pauses are counted. Each function may be called when the
/// registration has ended already, and End() more than once.
template <class Derived>
class RegistrationState : public BindStateBase {
 protected:
  RegistrationState() noexcept
      : BindStateBase(reinterpret_cast<InvokeFunction>(&Run), &Destroy, traits) {}
  ~RegistrationState() = default;

 private:
  static Derived& Of(const BindStateBase* state) noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): callbacks share their states as const
    return const_cast<Derived&>(*static_cast<const Derived*>(state));
  }
  static void Run(const BindStateBase* state) { Of(state).End(); }
  static void Destroy(const BindStateBase* state) { delete &Of(state); }
  static bool Ask(const BindStateBase* state, CancellationQueryMode mode) {
    return Of(state).IsGone() == (mode == CancellationQueryMode::IsCancelled);
  }
  static void Handle(const BindStateBase* state, RegistrationRequest request,
                     const RegistrationKey& /*key*/) {
    Derived& self = Of(state);
    switch (request) {
      case RegistrationRequest::End:
      case RegistrationRequest::Leave:
        return self.End();
      case RegistrationRequest::EndAndWait:
        return self.EndAndWait();
      case RegistrationRequest::Pause:
        return self.Pause();
      case RegistrationRequest::Resume:
        return self.Resume();
    }
  }
  DATABINDING_MODULE_LOCAL static constexpr Traits traits{&Ask, nullptr, nullptr, &Handle};
};

}  // namespace VtrUtils::details

namespace DataBinding::details {
using VtrUtils::details::RegistrationState;
using VtrUtils::details::WaitWhile;
}  // namespace DataBinding::details
