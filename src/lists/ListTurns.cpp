// SPDX-License-Identifier: Apache-2.0
// This file holds the queue of a family of lists.

#include <exception>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/lists/details/ListCore.h"
#include "ListTexts.h"

namespace DataBinding::details {

namespace {

/// So many turns of one outermost operation are taken for callbacks that never come to rest.
constexpr std::size_t mostTurns = 1000;

}  // namespace

ListTurn::~ListTurn() = default;

ListTurns::~ListTurns() = default;

void ListTurns::Reserve() {
  if (waiting.size() == waiting.capacity()) waiting.reserve(2 * waiting.size() + 4);
}

bool ListTurns::Take(ListTurnPtr turn) {
  if (isTelling) {
    waiting.push_back(std::move(turn));
    return false;
  }
  const auto keep = shared_from_this();
  RunAll(std::move(turn));
  return true;
}

void ListTurns::FinishEnd() noexcept {
  isTelling = false;
  try {
    const auto keep = shared_from_this();
    if (auto turn = TakeNext()) RunAll(std::move(turn));
  } catch (...) {
    ReportFailure(root == nullptr ? VtrString() : root->ListName(), std::current_exception());
  }
}

void ListTurns::RunAll(ListTurnPtr first) {
  FirstFailure failure;
  {
    const ScopedValue telling(isTelling, true);
    std::size_t turns = 0;
    for (auto turn = std::move(first); turn != nullptr; turn = TakeNext()) {
      failure.Try([&] { turn->Run(); });
      if (++turns == mostTurns) ReportUnrest();
    }
  }
  failure.Try([this] {
    if (root == nullptr) return;
    root->RestDependents();
    root->AtRest();
  });
  failure.Rethrow();
}

/// Returns the next turn that was not dropped, or null.
ListTurnPtr ListTurns::TakeNext() noexcept {
  while (next < waiting.size()) {
    if (auto turn = std::move(waiting[next++])) return turn;
  }
  waiting.clear();
  next = 0;
  return nullptr;
}

void ListTurns::Drop(const void* owner) noexcept {
  for (auto& turn : waiting) {
    if (turn != nullptr && turn->Owner() == owner) turn = nullptr;
  }
}

void ListTurns::ReportUnrest() {
  wasRestless = true;
  constexpr auto* text =
      "The callbacks of a list have changed it a thousand times within one operation.";
  ReportFailure(root == nullptr ? VtrString() : root->ListName(),
                std::make_exception_ptr(ListFault(text)));
}

}  // namespace DataBinding::details
