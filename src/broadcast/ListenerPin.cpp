// SPDX-License-Identifier: Apache-2.0
// This file holds the pins: how a broadcast takes and releases one, how a writer hands them over,
// and how a waiting thread reads them.
#include "ListenerPin.h"

#include <utility>

#include "WListenersImpl.h"

namespace DataBinding::details {

namespace {

/// Heads the list of the calling thread's pins that found no place in its record.
constinit thread_local ListenerPin* innermostWithoutPlace = nullptr;

}  // namespace

void ListenerPin::TakeWithoutPlace() noexcept {
  outer = std::exchange(innermostWithoutPlace, this);
  array->withoutPlace.fetch_add(1, std::memory_order_relaxed);
  registry->ExpectReport(*array);
}

std::uint32_t ListenerPin::HandOver(ListenerArray& array, WListenersImpl& registry) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(&array);
  for (auto* record = ReaderRecord::First(); record != nullptr; record = record->Next()) {
    for (auto& [pin, next] : record->pins) {
      if (pin.load(std::memory_order_acquire) != address) continue;
      // The exchange fails when the run has just ended. A run that sees the mark at its end reports
      // under the write lock, which the caller holds, so it may be counted after the exchange.
      auto expected = address;
      if (pin.compare_exchange_strong(expected, address | ReaderRecord::handedOver,
                                      std::memory_order_acq_rel)) {
        registry.ExpectReport(array);
      }
    }
  }
  return array.reports.load(std::memory_order_acquire);
}

bool ListenerPin::IsCalledElsewhere(const ListenerArray& array, std::uint32_t position,
                                    bool fenced) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(&array);
  const ReaderRecord* const own = ReaderRecord::Existing();
  for (auto* record = ReaderRecord::First(); record != nullptr; record = record->Next()) {
    for (const auto& pin : record->pins) {
      const auto pinned = pin.array.load(std::memory_order_acquire);
      if ((pinned & ~ReaderRecord::handedOver) != address || record == own) continue;
      const auto next = pin.next.load(std::memory_order_acquire);
      if (next == position + 1 || (!fenced && next <= position)) return true;
    }
  }
  std::uint32_t ownWithoutPlace = 0;
  for (const auto* each = innermostWithoutPlace; each != nullptr; each = each->outer) {
    if (each->array == &array) ++ownWithoutPlace;
  }
  return array.withoutPlace.load(std::memory_order_acquire) != ownWithoutPlace;
}

void ListenerPin::Release() noexcept {
  if (array == nullptr) return;
  if (pin == nullptr) {
    innermostWithoutPlace = outer;
    array->withoutPlace.fetch_sub(1, std::memory_order_release);
    return registry->Report(*array);
  }
  const auto released = pin->array.exchange(0, std::memory_order_acq_rel);
  if ((released & ReaderRecord::handedOver) != 0) registry->Report(*array);
}

}  // namespace DataBinding::details
