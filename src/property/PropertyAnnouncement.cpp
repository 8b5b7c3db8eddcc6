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
  while (PropertyBase* left = TakeNext()) Note(*left);
  due.announcements = depth - 1;
}

void PropertyAnnouncement::Take(PropertyChanges& noted) noexcept {
  while (PropertyLink* property = noted.TakeFirst()) due.Add(*property, depth);
}

void PropertyAnnouncement::Run() {
  FirstFailure failure;
  while (PropertyBase* next = TakeNext()) {
    failure.Try([this, next] { Tell(*next); });
  }
  failure.Rethrow();
}

PropertyBase* PropertyAnnouncement::TakeNext() noexcept {
  PropertyLink* const first = due.First();
  const bool isOutermost = depth == 1;
  if (first == nullptr || (first->depth < depth && !isOutermost)) return nullptr;
  due.Remove(*first);
  return static_cast<PropertyBase*>(first);
}

void PropertyAnnouncement::Tell(PropertyBase& property) {
  if (MustWait(property)) return Note(property);
  for (PropertyBase* follower : property.dependents) MakeDue(*follower);
  property.source.UpdateListeners(property.Name());
}

bool PropertyAnnouncement::MustWait(const PropertyBase& property) noexcept {
  if (DataSourceAccess::Changes(property.source).IsOpen()) return true;
  return std::ranges::any_of(property.dependencies, [](const PropertyBase* followed) {
    return followed->place == PropertyLink::Place::Noted;
  });
}

void PropertyAnnouncement::MakeDue(PropertyBase& property) noexcept {
  if (property.place == PropertyLink::Place::Due && property.depth >= depth) return;
  Forget(property);
  due.Add(property, depth);
}

void PropertyAnnouncement::Forget(PropertyBase& property) noexcept {
  if (property.place == PropertyLink::Place::Noted)
    DataSourceAccess::Changes(property.source).Remove(property);
  if (property.place == PropertyLink::Place::Due) DueProperties::OfThisThread().Remove(property);
}

void PropertyAnnouncement::Note(PropertyBase& property) noexcept {
  if (property.place == PropertyLink::Place::Noted) return;
  Forget(property);
  DataSourceAccess::Changes(property.source).Add(property);
}

void PropertyAnnouncement::ReleaseFollowers(const PropertyBase& ending) noexcept {
  if (ending.place != PropertyLink::Place::Noted) return;
  DueProperties& due = DueProperties::OfThisThread();
  for (PropertyBase* follower : ending.dependents) {
    if (follower->place != PropertyLink::Place::Noted) continue;
    Forget(*follower);
    due.Add(*follower, due.announcements);
  }
}

}  // namespace DataBinding::details
