/// Runs the steps of a tear-down to the end, whatever they throw, and keeps the first exception.
#pragma once

#include <exception>

namespace DataBinding::details {

class FirstFailure {
 public:
  template <class Step>
  void Try(Step step) {
    try {
      step();
    } catch (...) {
      if (first == nullptr) first = std::current_exception();
    }
  }
  void Rethrow() const {
    if (first != nullptr) std::rethrow_exception(first);
  }

 private:
  std::exception_ptr first;
};

}  // namespace DataBinding::details
