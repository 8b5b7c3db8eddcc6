#include "ListenerPin.h"

#include "WListenersImpl.h"

namespace DataBinding::details {

void ListenerPin::Take(ListenerArray& pinned, WListenersImpl& owner,
                       ReaderRecord* ofThread) noexcept {
  array = &pinned;
  registry = &owner;
  if (ofThread != nullptr) {
    for (auto& each : ofThread->pins) {
      if (each.load(std::memory_order_relaxed) != 0) continue;
      pin = &each;
      pin->store(reinterpret_cast<std::uintptr_t>(array), std::memory_order_release);
      return;
    }
  }
  array->reports.fetch_add(1, std::memory_order_relaxed);
  registry->AddKeeper();
}

std::uint32_t ListenerPin::HandOver(ListenerArray& array, WListenersImpl& owner) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(&array);
  for (auto* record = ReaderRecord::First(); record != nullptr; record = record->Next()) {
    for (auto& pin : record->pins) {
      if (pin.load(std::memory_order_acquire) != address) continue;
      array.reports.fetch_add(1, std::memory_order_relaxed);
      owner.AddKeeper();
      auto expected = address;
      if (!pin.compare_exchange_strong(expected, address | ReaderRecord::handedOver,
                                       std::memory_order_acq_rel)) {
        array.reports.fetch_sub(1, std::memory_order_relaxed);  // it ended meanwhile
        owner.DropKeeper();
      }
    }
  }
  return array.reports.load(std::memory_order_acquire);
}

void ListenerPin::Release() noexcept {
  if (array == nullptr) return;
  const bool reports = pin == nullptr || (pin->exchange(0, std::memory_order_acq_rel) &
                                          ReaderRecord::handedOver) != 0;
  if (reports) registry->Report(*array);
}

}  // namespace DataBinding::details
