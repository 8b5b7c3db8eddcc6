#include "ListenerPin.h"

#include "WListenersImpl.h"

namespace DataBinding::details {

void ListenerPin::Take(ListenerArray& pinned, WListenersImpl& owner,
                       ReaderRecord* ofThread) noexcept {
  array = &pinned;
  registry = &owner;
  if (ofThread != nullptr && ofThread->depth < ReaderRecord::mostPins) {
    record = ofThread;
    const auto address = reinterpret_cast<std::uintptr_t>(array);
    record->pins[record->depth++].store(address, std::memory_order_release);
  } else {
    array->reports.fetch_add(1, std::memory_order_relaxed);
    registry->AddKeeper();
  }
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
  bool reports = true;
  if (record != nullptr) {
    auto& pin = record->pins[--record->depth];
    reports = (pin.exchange(0, std::memory_order_acq_rel) & ReaderRecord::handedOver) != 0;
  }
  if (reports) registry->Report(*array);
}

}  // namespace DataBinding::details
