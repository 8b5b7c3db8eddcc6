// SPDX-License-Identifier: Apache-2.0
/// A LogMessage is a diagnostic message. Text is streamed into it, and its destructor hands the
/// text to the sink.
///
/// A process starts without a sink, and then messages go nowhere. The library writes no messages
/// itself; the class is for its users. The sink may be set, and messages may end, on any thread.
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
  /// A function that gets finished messages, each on the thread on which the message ends.
  using Sink = void (*)(const VtrPlatform::VtrString& text);

  LogMessage() = default;
  LogMessage(const LogMessage&) = delete;
  LogMessage& operator=(const LogMessage&) = delete;
  /// Hands the text to the sink. What the sink throws is dropped.
  DATABINDING_API ~LogMessage();

  /// Appends a name, a literal, or any other value that a wide stream can print.
  template <class T>
  LogMessage& operator<<(const T& value) {
    if constexpr (std::convertible_to<const T&, VtrPlatform::VtrStringView>) {
      text << std::wstring_view(VtrPlatform::VtrStringView(value));
    } else {
      text << value;
    }
    return *this;
  }

  /// Replaces the sink of the process and returns the former one. Null stands for no sink.
  DATABINDING_API static Sink SetSink(Sink sink) noexcept;

 private:
  std::wostringstream text;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::LogMessage;
}  // namespace DataBinding
