// SPDX-License-Identifier: Apache-2.0
/// A PauseListening keeps the callback of one registration from being called while it lives.
///
/// A pause is made of the Subscription of a property, an event, a bind, a destruction handler or a
/// CallbackList. Whether a listener is paused is looked up when its turn comes, so an announcement
/// that is under way passes it over, too. Calls that it misses are not made up for. An event is
/// missed if it is delivered during the pause; when it was raised does not matter. A paused
/// listener still counts as registered.
///
/// A pause may begin and end on the threads on which the subscription may be cancelled. It does not
/// wait for another thread that is in the callback already. It allocates nothing.
///
///   const PauseListening quiet(subscription);
///   source.Volume.Set(fromWidget);  // the widget's own listener does not hear of it
#pragma once

#include "DataBinding/foundation/Subscription.h"

namespace VtrUtils {

class [[nodiscard]] PauseListening {
 public:
  /// Pauses the registration until this object ends. Pauses of one registration nest: the callback
  /// is called again after the last pause. The subscription may end or be moved before that. The
  /// pause has no effect if the subscription is inert, belongs to a hook, or was made with a
  /// callback of the user's own that ends something.
  explicit PauseListening(const Subscription& subscription)
      : paused(subscription.GetRegistration()) {
    paused.Request(details::RegistrationRequest::Pause);
  }
  PauseListening(const PauseListening&) = delete;
  PauseListening& operator=(const PauseListening&) = delete;
  ~PauseListening() { paused.Request(details::RegistrationRequest::Resume); }

 private:
  details::SharedRegistration paused;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::PauseListening;
}  // namespace DataBinding
