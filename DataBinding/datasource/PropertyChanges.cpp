#include "DataBinding/PropertyChanges.h"

namespace DataBinding::details {

void PropertyChanges::Add(PropertyLink& property) noexcept {
  if (property.isChanged) return;
  property.isChanged = true;
  property.previous = last;
  (last == nullptr ? first : last->next) = &property;
  last = &property;
}

void PropertyChanges::Remove(PropertyLink& property) noexcept {
  if (!property.isChanged) return;
  (property.previous == nullptr ? first : property.previous->next) = property.next;
  (property.next == nullptr ? last : property.next->previous) = property.previous;
  property.next = property.previous = nullptr;
  property.isChanged = false;
}

PropertyLink* PropertyChanges::TakeFirst() noexcept {
  PropertyLink* taken = first;
  if (taken != nullptr) Remove(*taken);
  return taken;
}

}  // namespace DataBinding::details
