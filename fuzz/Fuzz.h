// SPDX-License-Identifier: Apache-2.0
/// What the fuzz targets share.
///
/// Each <Target>.cpp defines CheckInput, which aborts where something does not hold of the input.
/// Under the fuzz preset the fuzzer calls it with inputs of its own making; everywhere else a
/// driver replays those of corpus/<Target>, so that what was found once stays found.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "DataBinding/DataBinding.h"

namespace Fuzz {

using namespace DataBinding;

void CheckInput(std::string_view input);

inline void Expect(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "does not hold: " << what << '\n';
  std::abort();
}

/// Takes the first line off the front of the rest, and its end with it.
inline std::string_view TakeLine(std::string_view& rest) {
  const auto end = std::min(rest.find('\n'), rest.size());
  const auto line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

}  // namespace Fuzz
