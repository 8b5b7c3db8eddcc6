// SPDX-License-Identifier: Apache-2.0
/// A KeptName is a name that stays valid while other code is called. It is a copy of a text that
/// may go meanwhile.
///
/// Where there is no memory for the copy, it refers to the text itself, so that listeners that must
/// be told are told all the same. It stands on the stack.
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
