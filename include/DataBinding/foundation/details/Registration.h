// SPDX-License-Identifier: Apache-2.0
/// What the library's own subscriptions hold: the state of the callback that ends a registration,
/// which can pause the registration and wait for its callback, too.
///
/// It is told what to do by a request, through a function in the state, so that a Subscription need
/// not know what it is a registration with. A callback of somebody's own that ends something knows
/// no requests: nothing happens then.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

#include "DataBinding/foundation/details/BindState.h"

namespace VtrUtils::details {

/// Waits for other threads until the question is answered with false. A wait that lasts leaves the
/// processor to them.
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

/// The base of such a state. Derived ends the registration in End(), once or more often, tells in
/// IsGone() whether there is nothing left to end, and handles the requests in EndAndWait(), Pause()
/// and Resume(). Pauses count. Each of them may run when the registration has ended already.
template <class Derived>
class RegistrationState : public BindStateBase {
 protected:
  RegistrationState() noexcept
      : BindStateBase(reinterpret_cast<InvokeFunction>(&Run), &Destroy, &Ask) {
    SetRequestHandler(&Handle);
  }
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
  static void Handle(const BindStateBase* state, RegistrationRequest request) {
    Derived& self = Of(state);
    switch (request) {
      case RegistrationRequest::End:
        return self.End();
      case RegistrationRequest::EndAndWait:
        return self.EndAndWait();
      case RegistrationRequest::Pause:
        return self.Pause();
      case RegistrationRequest::Resume:
        return self.Resume();
    }
  }
};

}  // namespace VtrUtils::details

namespace DataBinding::details {
using VtrUtils::details::RegistrationState;
using VtrUtils::details::WaitWhile;
}  // namespace DataBinding::details
