/// What binds see of a provider that is just calling its listeners.
///
/// It must not be changed then, so those who would register with it wait until it has done so. For
/// providers of other kinds than the library's own there is nothing to wait for. One thread.
#pragma once

#include <utility>

#include "DataBinding/DataSourceProvider.h"

namespace DataBinding::details {

class ProviderDoor {
 public:
  /// The scope, if it is calling its listeners; else null.
  [[nodiscard]] static DataSourceProvider* IfClosed(IDataSourceProvider& scope) {
    auto* provider = dynamic_cast<DataSourceProvider*>(&scope);
    if (provider == nullptr) return nullptr;
    const bool isClosed = provider->notifications != 0 || provider->tellsItsEnd;
    return isClosed ? provider : nullptr;
  }
  /// Runs the callback when the provider's outermost change is over.
  static void Await(DataSourceProvider& closed, RepeatingCallback<void()> callback) {
    closed.awaiting.push_back(std::move(callback));
  }
  /// True for a source from which the provider is disconnecting its listeners.
  [[nodiscard]] static bool IsLeaving(const DataSourceProvider& provider,
                                      const IDataSource& source) noexcept {
    return provider.leaving == &source;
  }
};

}  // namespace DataBinding::details
