// SPDX-License-Identifier: Apache-2.0
/// A broadcaster for tests, with its protected query in the open.
///
/// Names are passed as literals; log listeners write their mark into a text that tests compare.
#pragma once

#include <string>
#include <utility>

#include <DataBinding/broadcast/IBroadcaster.h>

namespace DataBinding {

class Notifier : public IBroadcaster {
 public:
  using IBroadcaster::GetNumRegistered;

  /// Registers a callback for the property "A".
  Subscription Listen(const RepeatingCallback<void()>& callback) {
    return Register(callback, L"A");
  }
  Subscription ListenOnce(OneShotCallback<void()> callback) {
    return RegisterOnce(std::move(callback), L"A");
  }
  /// Registers a listener that appends a mark to the log.
  Subscription Log(char mark, const wchar_t* property = L"A") {
    return Register([this, mark] { log += mark; }, property);
  }
  /// Registers a listener that appends the mark and each announced name to the log.
  Subscription LogAny(char mark) {
    return RegisterAny(
        [this, mark](const VtrString& name) { (log += mark).append(name.ToUtf8()); });
  }
  /// What an announcement of the property makes the listeners log.
  std::string Announce(const wchar_t* property = L"A") {
    log.clear();
    UpdateListeners(property);
    return log;
  }

  std::string log;
};

}  // namespace DataBinding
