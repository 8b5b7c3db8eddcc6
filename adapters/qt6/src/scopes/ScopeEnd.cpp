// SPDX-License-Identifier: Apache-2.0
#include "ScopeEnd.h"

#include <utility>

#include "DataBinding/foundation/BindWeak.h"

namespace DataBinding::Qt6 {

ScopeEnd::ScopeEnd(IDataSourceProvider& watched, std::function<void()> whenEnded)
    : provider(watched.GetLiveness(), &watched), ended(std::move(whenEnded)) {
  Listen();
}

ScopeEnd::~ScopeEnd() {
  if (provider) provider->RemoveDataListener(this);
}

// A provider that is calling its listeners takes no further one.
void ScopeEnd::Listen() {
  if (!provider) return;
  if (!provider->IsConnecting()) return provider->AddDataListener(this, {}, false);
  provider->WhenConnected(BindWeak(AsWeakPtr(), &ScopeEnd::Listen));
}

void ScopeEnd::NotifyDatasourceProviderDestroyed(IDataSourceProvider* /*gone*/) {
  provider = {};
  const auto tell = ended;
  tell();
}

}  // namespace DataBinding::Qt6
