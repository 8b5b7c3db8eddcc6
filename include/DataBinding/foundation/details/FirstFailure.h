// SPDX-License-Identifier: Apache-2.0
/// Runs the steps of a tear-down to the end, whatever they throw, and keeps the first exception.
///
/// Allocates nothing of its own. Owns the exception that it keeps. For one thread.
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
  /// Runs a step. A thread's cancellation goes through.
  template <class Step>
  DATABINDING_CATCHES_CANCELLATION void Try(Step step) {
    try {
      step();
    }
    DATABINDING_PASS_CANCELLATION catch (...) {
      if (first == nullptr) first = std::current_exception();
    }
  }
  /// Throws what the first step that failed threw; does nothing when none failed.
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
