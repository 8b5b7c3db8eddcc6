// SPDX-License-Identifier: Apache-2.0
// This file holds the pairing heap of the properties that one thread is about to announce. In each
// link, `child` is the property's first child, and `next` and `previous` join siblings. The
// `previous` of a first child is its parent.

#include "DueProperties.h"

#include <utility>

namespace DataBinding::details {

namespace {

bool IsBefore(const PropertyLink& a, const PropertyLink& b) noexcept {
  return a.depth != b.depth ? a.depth > b.depth : a.turn < b.turn;
}

/// Makes one heap of two, either of which may be null.
PropertyLink* Meld(PropertyLink* a, PropertyLink* b) noexcept {
  if (a == nullptr || b == nullptr) return a == nullptr ? b : a;
  if (IsBefore(*b, *a)) std::swap(a, b);
  b->previous = a;
  b->next = a->child;
  if (b->next != nullptr) b->next->previous = b;
  a->child = b;
  return a;
}

PropertyLink* TakeSibling(PropertyLink*& siblings) noexcept {
  PropertyLink* taken = siblings;
  if (taken != nullptr) siblings = std::exchange(taken->next, nullptr);
  if (taken != nullptr) taken->previous = nullptr;
  return taken;
}

/// Makes one heap of siblings. It first melds each two of them, from left to right, and then the
/// pairs, from right to left. That keeps later steps short.
PropertyLink* MeldSiblings(PropertyLink* siblings) noexcept {
  PropertyLink* pairs = nullptr;
  while (siblings != nullptr) {
    PropertyLink* left = TakeSibling(siblings);
    PropertyLink* pair = Meld(left, TakeSibling(siblings));
    pair->next = pairs;
    pairs = pair;
  }
  PropertyLink* melded = nullptr;
  while (pairs != nullptr) {
    PropertyLink* pair = TakeSibling(pairs);
    melded = Meld(melded, pair);
  }
  return melded;
}

}  // namespace

DueProperties& DueProperties::OfThisThread() noexcept {
  static constinit thread_local DueProperties due;
  return due;
}

void DueProperties::Add(PropertyLink& property, std::uint32_t depth) noexcept {
  property.place = PropertyLink::Place::Due;
  property.depth = depth;
  root = Meld(root, &property);
}

void DueProperties::Remove(PropertyLink& property) noexcept {
  property.place = PropertyLink::Place::None;
  PropertyLink* const below = MeldSiblings(std::exchange(property.child, nullptr));
  PropertyLink* const before = std::exchange(property.previous, nullptr);
  PropertyLink* const after = std::exchange(property.next, nullptr);
  if (before != nullptr) (before->child == &property ? before->child : before->next) = after;
  if (after != nullptr) after->previous = before;
  if (root == &property) root = nullptr;
  root = Meld(root, below);
}

}  // namespace DataBinding::details
