// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/WeakPtr.h"

namespace VtrUtils::details {

void WeakFlagRefCountTraits::Destroy(const WeakFlag* flag) noexcept { delete flag; }

WeakReference WeakReferenceOwner::GetRef() const {
  WeakFlag* current = flag.load(std::memory_order_acquire);
  if (current == nullptr) {
    comlike_ptr<WeakFlag> made(new WeakFlag);
    if (flag.compare_exchange_strong(current, made.Get(), std::memory_order_acq_rel)) {
      current = made.Detach();
    }
  }
  return WeakReference(comlike_ptr<WeakFlag>::Share(current));
}

void WeakReferenceOwner::Invalidate() noexcept {
  if (flag.load(std::memory_order_acquire) == nullptr) return;  // most owners never had references
  const comlike_ptr<WeakFlag> ended(flag.exchange(nullptr, std::memory_order_acq_rel));
  if (ended) ended->End();
}

}  // namespace VtrUtils::details
