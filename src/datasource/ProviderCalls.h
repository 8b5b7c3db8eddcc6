// SPDX-License-Identifier: Apache-2.0
/// How a provider changes its sources and listeners, and marks what is under way.
///
/// While it calls listeners it must not be changed; those who would do so leave a callback, which
/// is run when the outermost change is over. One thread.
#pragma once

#include <type_traits>
#include <utility>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding {

/// Gives a mark of a provider another value during a scope in which the provider may end.
template <class T>
class DataSourceProvider::Marking {
 public:
  Marking(const DataSourceProvider& provider, T& changed, std::type_identity_t<T> value)
      : alive(provider.GetLiveness()), mark(changed), before(std::exchange(changed, value)) {}
  Marking(const Marking&) = delete;
  Marking& operator=(const Marking&) = delete;
  ~Marking() {
    if (alive.IsValid()) mark = before;
  }

 private:
  details::WeakReference alive;
  T& mark;
  T before;
};

/// The scope in which listeners are connected to a source that is being added. The name outlasts
/// it; room for it was made before.
class DataSourceProvider::Arrival {
 public:
  Arrival(Calls& underWay, VtrStringView name) : calls(underWay), before(calls.arriving.size()) {
    calls.arriving.push_back(name);
  }
  Arrival(const Arrival&) = delete;
  Arrival& operator=(const Arrival&) = delete;
  ~Arrival() { calls.arriving.resize(before); }

 private:
  Calls& calls;
  std::size_t before;
};

/// What is awaiting the end is run whatever the step throws. The first exception is let out.
template <class Step>
void DataSourceProvider::Change(Step step) {
  const auto alive = GetLiveness();
  FirstFailure failure;
  {
    const Marking changing(*this, calls.changes, calls.changes + 1);
    failure.Try(step);
  }
  if (alive.IsValid() && calls.changes == 0) {
    for (auto& enter : std::exchange(calls.awaiting, {})) {
      if (alive.IsValid()) failure.Try([&] { enter(); });
    }
  }
  failure.Rethrow();
}

}  // namespace DataBinding
