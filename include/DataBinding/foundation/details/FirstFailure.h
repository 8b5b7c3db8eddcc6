// SPDX-License-Identifier: Apache-2.0
/// A FirstFailure runs steps that must all be done, such as those of a tear-down, and keeps the
/// first exception that one of them throws.
///
/// It owns that exception and allocates nothing itself. One object serves one thread.
///
///   FirstFailure failure;
///   for (auto& part : parts) failure.Try([&] { part.End(); });
///   failure.Rethrow();
#pragma once

#include <exception>

#include "DataBinding/foundation/details/Cancellation.h"

namespace VtrUtils {

class FirstFailure {
 public:
  /// Runs a step and catches what it throws, except for the cancellation of the thread. Returns
  /// true if the step has not thrown.
  template <class Step>
  DATABINDING_CATCHES_CANCELLATION bool Try(Step step) {
    try {
      step();
      return true;
    }
    DATABINDING_PASS_CANCELLATION catch (...) {
      if (first == nullptr) first = std::current_exception();
      return false;
    }
  }
  /// Throws the first exception again. Does nothing if no step has failed.
  void Rethrow() const {
    if (first != nullptr) std::rethrow_exception(first);
  }

 private:
  std::exception_ptr first;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::FirstFailure;
}  // namespace DataBinding
