// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/datasource/details/PropertyChanges.h"

namespace DataBinding::details {

PropertyChanges::~PropertyChanges() {
  while (TakeFirst() != nullptr) {
  }
}

void PropertyChanges::Add(PropertyLink& property) noexcept {
  property.place = PropertyLink::Place::Noted;
  if (!property.IsComputed()) property.turn = ++lastChange;
  property.previous = last;
  (last == nullptr ? first : last->next) = &property;
  last = &property;
}

void PropertyChanges::Remove(PropertyLink& property) noexcept {
  (property.previous == nullptr ? first : property.previous->next) = property.next;
  (property.next == nullptr ? last : property.next->previous) = property.previous;
  property.next = property.previous = nullptr;
  property.place = PropertyLink::Place::None;
}

PropertyLink* PropertyChanges::TakeFirst() noexcept {
  PropertyLink* taken = first;
  if (taken != nullptr) Remove(*taken);
  return taken;
}

}  // namespace DataBinding::details
