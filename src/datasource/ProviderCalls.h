// SPDX-License-Identifier: Apache-2.0
/// This header holds how a provider changes its sources and listeners, and how it marks what is
/// under way.
///
/// A provider must not be changed while it calls listeners. Code that would change it leaves a
/// callback, which the provider runs when the outermost change is over. All of this belongs to one
/// thread.
#pragma once

#include <type_traits>
#include <utility>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding {

/// Gives a mark of a provider another value during a scope. The provider may end within the scope.
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

/// An Arrival stands on the stack while listeners are connected to a source that is being added.
/// The caller keeps the name alive, and has reserved room for it in `arriving`.
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

/// Runs a step. The callbacks that await the end of the change run whatever the step throws, and
/// the first exception is let out. When one of them ends the provider, the destructor, which is a
/// change too, runs the rest.
template <class Step>
void DataSourceProvider::Change(Step step) {
  const auto alive = GetLiveness();
  FirstFailure failure;
  {
    const Marking changing(*this, calls.changes, calls.changes + 1);
    failure.Try(step);
  }
  while (alive.IsValid() && calls.changes == 0 && !calls.awaiting.empty()) {
    auto enter = std::move(calls.awaiting.front());
    calls.awaiting.erase(calls.awaiting.begin());
    failure.Try([&] { enter(); });
  }
  failure.Rethrow();
}

}  // namespace DataBinding
