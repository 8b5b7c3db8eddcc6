// SPDX-License-Identifier: Apache-2.0
// This file holds the table of the literals that are kept. Entries are only ever added, each at the
// head of its bucket's list, so any thread may read and add without a lock.
#include "DataBinding/foundation/details/KeptLiteral.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace VtrPlatform::details {

namespace {

struct Entry {
  Entry(std::wstring_view literal, std::uint32_t itsHash)
      : hash(itsHash), buffer(StringBuffer::Make(literal)), text(VtrString::Adopt(buffer)) {}

  Entry* next = nullptr;
  std::uint32_t hash;
  StringBuffer* buffer;  // that of the text, or null for the empty one
  VtrString text;
};

constexpr std::size_t bucketCount = 1024;
constinit std::array<std::atomic<Entry*>, bucketCount> buckets{};

/// The number of texts that may still be kept. It bounds the length of the lists, too.
constinit std::atomic<std::int32_t> room{16 * bucketCount};

/// Looks for a literal in a list, from `first` up to `end`, which is not looked at.
const Entry* Find(const Entry* first, const Entry* end, std::wstring_view literal,
                  std::uint32_t hash) noexcept {
  for (const Entry* entry = first; entry != end; entry = entry->next) {
    if (entry->hash == hash && std::wstring_view(entry->text) == literal) return entry;
  }
  return nullptr;
}

}  // namespace

VtrString KeptLiteral(std::wstring_view literal, std::uint32_t hash) {
  std::atomic<Entry*>& bucket = buckets[hash % bucketCount];
  Entry* head = bucket.load(std::memory_order_acquire);
  if (const Entry* known = Find(head, nullptr, literal, hash)) return known->text;
  if (room.load(std::memory_order_relaxed) <= 0) return VtrString(VtrStringView(literal));
  auto made = std::make_unique<Entry>(literal, hash);
  made->next = head;
  while (!bucket.compare_exchange_weak(head, made.get(), std::memory_order_acq_rel,
                                       std::memory_order_acquire)) {
    if (const Entry* known = Find(head, made->next, literal, hash)) return known->text;
    made->next = head;
  }
  const Entry* const kept = made.release();  // the list owns it
  room.fetch_sub(1, std::memory_order_relaxed);
  StringBuffer::Keep(kept->buffer);
  return kept->text;
}

}  // namespace VtrPlatform::details
