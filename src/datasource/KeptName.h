// SPDX-License-Identifier: Apache-2.0
/// A name that must stay while others are called: a copy of a text that may not.
///
/// Where there is no memory for the copy it is the text itself, for those who must be told all the
/// same. On the stack.
#pragma once

#include <new>

#include "DataBinding/foundation/String.h"

namespace DataBinding {

class KeptName {
 public:
  explicit KeptName(const wchar_t* text) : name(text) {
    try {
      copy = VtrString(name);
      name = copy;
    } catch (const std::bad_alloc&) {
    }
  }
  KeptName(const KeptName&) = delete;
  KeptName& operator=(const KeptName&) = delete;
  ~KeptName() = default;

  operator VtrStringView() const noexcept { return name; }

 private:
  VtrString copy;
  VtrStringView name;
};

}  // namespace DataBinding
