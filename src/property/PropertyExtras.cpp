// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/property/details/PropertyExtras.h"

namespace DataBinding::details {

PropertyExtras::~PropertyExtras() {
  const comlike_ptr<BindStateBase> ended(accessor.load(std::memory_order_acquire));
}

}  // namespace DataBinding::details
