/// What Explanation sees of a provider that is just disconnecting its listeners. One thread.
#pragma once

#include "DataBinding/DataSourceProvider.h"

namespace DataBinding::details {

class ProviderDoor {
 public:
  /// True for a source from which the provider is disconnecting its listeners.
  [[nodiscard]] static bool IsLeaving(const DataSourceProvider& provider,
                                      const IDataSource& source) noexcept {
    return provider.calls.leaving == &source;
  }
};

}  // namespace DataBinding::details
