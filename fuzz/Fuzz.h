// SPDX-License-Identifier: Apache-2.0
/// Helpers that the fuzz targets share.
///
/// Each <Target>.cpp defines CheckInput, which aborts when an input breaks a promise of the parser.
/// Under the fuzz preset the fuzzer calls it with inputs of its own making. In all other builds a
/// driver replays the inputs of corpus/<Target>, so that a mistake that was found once does not
/// come back.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "DataBinding/foundation/String.h"

namespace Fuzz {

using namespace DataBinding;

void CheckInput(std::string_view input);

inline void Expect(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "does not hold: " << what << '\n';
  std::abort();
}

/// Removes the first line and its end from the front of the rest, and gives the line.
inline std::string_view TakeLine(std::string_view& rest) {
  const auto end = std::min(rest.find('\n'), rest.size());
  const auto line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

}  // namespace Fuzz
