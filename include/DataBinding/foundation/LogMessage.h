// SPDX-License-Identifier: Apache-2.0
/// A diagnostic message: text is streamed into it, and its end hands the text to the sink.
///
/// Without a sink, which is how a process starts, messages go nowhere. The library emits none of
/// its own; the class is for its users. The sink may be set and messages may end on any thread.
///
///   LogMessage() << L"reload took " << milliseconds << L" ms";
#pragma once

#include <concepts>
#include <sstream>
#include <string_view>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"

namespace VtrUtils {

class LogMessage {
 public:
  /// Takes a finished message, on the thread on which that ends.
  using Sink = void (*)(const VtrPlatform::VtrString& text);

  LogMessage() = default;
  LogMessage(const LogMessage&) = delete;
  LogMessage& operator=(const LogMessage&) = delete;
  /// Hands the text over; what the sink throws is dropped.
  DATABINDING_API ~LogMessage();

  /// Appends a name, a literal, or whatever a wide stream prints.
  template <class T>
  LogMessage& operator<<(const T& value) {
    if constexpr (std::convertible_to<const T&, VtrPlatform::VtrStringView>) {
      text << std::wstring_view(VtrPlatform::VtrStringView(value));
    } else {
      text << value;
    }
    return *this;
  }

  /// Replaces the process-wide sink, null for none, and returns the former one.
  DATABINDING_API static Sink SetSink(Sink sink) noexcept;

 private:
  std::wostringstream text;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::LogMessage;
}  // namespace DataBinding
