/// How a provider changes its sources and listeners.
///
/// While it calls listeners it must not be changed; those who would do so leave a callback, which
/// is run when the outermost change is over. One thread.
#pragma once

#include <utility>

#include "DataBinding/DataSourceProvider.h"
#include "DataBinding/foundation/FirstFailure.h"
#include "DataBinding/foundation/Meanwhile.h"

namespace DataBinding {

/// The scope of a change. A source that is destroyed in it may end the provider.
class DataSourceProvider::Changing {
 public:
  explicit Changing(DataSourceProvider& changed)
      : provider(changed), liveness(changed.GetLiveness()) {
    ++provider.changes;
  }
  Changing(const Changing&) = delete;
  Changing& operator=(const Changing&) = delete;
  ~Changing() {
    if (liveness.IsValid()) --provider.changes;
  }

 private:
  DataSourceProvider& provider;
  details::WeakReference liveness;
};

/// What is awaiting the end is run whatever the step throws. The first exception is let out.
template <class Step>
void DataSourceProvider::Change(Step step) {
  const auto alive = GetLiveness();
  FirstFailure failure;
  {
    const Changing scope(*this);
    failure.Try(step);
  }
  if (alive.IsValid() && changes == 0) {
    for (const auto& enter : std::exchange(awaiting, {})) failure.Try(enter);
  }
  failure.Rethrow();
}

}  // namespace DataBinding
