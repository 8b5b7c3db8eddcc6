// SPDX-License-Identifier: Apache-2.0
/// Keeps the callback of one registration from being called for a scope.
///
/// It is made of the Subscription of a property, an event, a bind, a destruction handler or a
/// CallbackList. A listener is asked when its turn comes: an announcement that is under way passes
/// it over, too. What it misses is not made up for; an event is missed when it is delivered during
/// the pause, not when it is raised. The listener goes on being counted. A pause may be made and
/// end on the threads on which the subscription may be cancelled; another thread that is in the
/// callback already is not waited for. Allocates nothing.
///
///   const PauseListening quiet(subscription);
///   source.Volume.Set(fromWidget);  // the widget's own listener does not hear of it
#pragma once

#include "DataBinding/foundation/Subscription.h"

namespace VtrUtils {

class [[nodiscard]] PauseListening {
 public:
  /// Pauses until its own end. Pauses of one registration nest; it hears again after the last of
  /// them. The subscription may end or be moved first. Does nothing for an inert one, for one
  /// of a hook, and for one whose end is a callback of somebody's own.
  explicit PauseListening(const Subscription& subscription)
      : paused(comlike_ptr<details::BindStateBase>::Share(subscription.GetRegistration())) {
    if (paused) paused->Request(details::RegistrationRequest::Pause);
  }
  PauseListening(const PauseListening&) = delete;
  PauseListening& operator=(const PauseListening&) = delete;
  ~PauseListening() {
    if (paused) paused->Request(details::RegistrationRequest::Resume);
  }

 private:
  comlike_ptr<details::BindStateBase> paused;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::PauseListening;
}  // namespace DataBinding
