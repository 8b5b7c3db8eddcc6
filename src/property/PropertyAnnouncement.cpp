// SPDX-License-Identifier: Apache-2.0
// This file holds the steps of an announcement. The banner of PropertyAnnouncement.h says what
// holds between them.

#include "PropertyAnnouncement.h"

#include <algorithm>

#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding::details {

PropertyAnnouncement::PropertyAnnouncement() noexcept
    : due(DueProperties::OfThisThread()), depth(++due.announcements) {}

PropertyAnnouncement::~PropertyAnnouncement() {
  while (PropertyExtras* left = TakeNext()) Note(*left);
  due.announcements = depth - 1;
}

void PropertyAnnouncement::Take(PropertyChanges& noted) noexcept {
  while (PropertyLink* property = noted.TakeFirst()) due.Add(*property, depth);
}

void PropertyAnnouncement::Run() {
  FirstFailure failure;
  while (PropertyExtras* next = TakeNext()) {
    failure.Try([this, next] { Tell(*next); });
  }
  failure.Rethrow();
}

PropertyExtras* PropertyAnnouncement::TakeNext() noexcept {
  PropertyLink* const first = due.First();
  const bool isOutermost = depth == 1;
  if (first == nullptr || (first->depth < depth && !isOutermost)) return nullptr;
  due.Remove(*first);
  return static_cast<PropertyExtras*>(first);
}

void PropertyAnnouncement::Tell(PropertyExtras& property) {
  if (MustWait(property)) return Note(property);
  for (PropertyExtras* follower : property.dependents) MakeDue(*follower);
  property.property->Source().UpdateListeners(property.property->Name());
}

bool PropertyAnnouncement::MustWait(const PropertyExtras& property) noexcept {
  if (ChangesOf(property)->IsOpen()) return true;
  return std::ranges::any_of(property.dependencies, [](const PropertyExtras* followed) {
    return followed->place == PropertyLink::Place::Noted;
  });
}

void PropertyAnnouncement::MakeDue(PropertyExtras& property) noexcept {
  if (property.place == PropertyLink::Place::Due && property.depth >= depth) return;
  Forget(property);
  due.Add(property, depth);
}

PropertyChanges* PropertyAnnouncement::ChangesOf(const PropertyExtras& property) noexcept {
  return DataSourceAccess::Changes(property.property->Source());
}

void PropertyAnnouncement::Forget(PropertyExtras& property) noexcept {
  if (property.place == PropertyLink::Place::Noted) ChangesOf(property)->Remove(property);
  if (property.place == PropertyLink::Place::Due) DueProperties::OfThisThread().Remove(property);
}

void PropertyAnnouncement::Note(PropertyExtras& property) noexcept {
  if (property.place == PropertyLink::Place::Noted) return;
  Forget(property);
  ChangesOf(property)->Add(property);
}

void PropertyAnnouncement::ReleaseFollowers(const PropertyExtras& ending) noexcept {
  if (ending.place != PropertyLink::Place::Noted) return;
  DueProperties& due = DueProperties::OfThisThread();
  for (PropertyExtras* follower : ending.dependents) {
    if (follower->place != PropertyLink::Place::Noted) continue;
    Forget(*follower);
    due.Add(*follower, due.announcements);
  }
}

}  // namespace DataBinding::details
