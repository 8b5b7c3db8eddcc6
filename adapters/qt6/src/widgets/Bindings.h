// SPDX-License-Identifier: Apache-2.0
/// Bindings are all that there are, in the order in which they were made. A group of buttons need
/// not stand in the tree of its window's objects, so they cannot be looked for there.
#pragma once

#include <vector>

#include "DataBindingQt6/widgets/Binding.h"

namespace DataBinding::Qt6 {

/// Says whether a widget stands in a window. A dock that floats does, a dialogue does not.
[[nodiscard]] bool IsWithin(const QWidget* widget, const QWidget& window);

class Bindings {
 public:
  static void Add(Binding& binding) { All().push_back(&binding); }
  static void Remove(const Binding& binding) { std::erase(All(), &binding); }
  /// Is never given back, because widgets with static lifetime may end after it would.
  static std::vector<Binding*>& All() {
    static auto& all = *new std::vector<Binding*>;
    return all;
  }
};

}  // namespace DataBinding::Qt6
