// SPDX-License-Identifier: Apache-2.0
/// The command line.
#pragma once

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Sysmon {

struct Options {
  std::chrono::milliseconds interval{1000};
  std::uint64_t frames = 0;  ///< 0 for no end
  /// Limits of alarms: names and values, as they were written.
  std::vector<std::pair<std::string, std::string>> alarms;
  bool isJson = false;
  /// Where sysmon-window saves what it shows, before it ends.
  std::string shot;
  bool isHelp = false;
};

/// What is wrong with a command line.
class UsageError : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

extern const char usageText[];

/// Runs a program, and answers its exit code. Where it throws, the reason is printed; a UsageError
/// ends with 2.
[[nodiscard]] int RunProgram(int (*program)(int, char**), int count, char** arguments);

/// Throws UsageError.
[[nodiscard]] Options ParseOptions(int count, char** arguments);

}  // namespace Sysmon
