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

/// An entry holds a text that is not empty. Its buffer is kept before others see it, since they do
/// not count their references to it.
struct Entry {
  Entry(std::wstring_view literal, std::uint32_t itsHash)
      : hash(itsHash), buffer(StringBuffer::Make(literal)) {
    StringBuffer::Keep(buffer);
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ~Entry() { StringBuffer::Delete(buffer); }

  [[nodiscard]] std::wstring_view Text() const noexcept {
    return {buffer->Text(), static_cast<std::size_t>(buffer->length)};
  }

  Entry* next = nullptr;
  std::uint32_t hash;
  StringBuffer* buffer;
};

constexpr std::size_t bucketCount = 1024;
constinit std::array<std::atomic<Entry*>, bucketCount> buckets{};

/// The number of texts that may still be kept. It bounds the length of the lists, too.
constinit std::atomic<std::int32_t> room{16 * bucketCount};

/// Looks for a literal in a list, from `first` up to `end`, which is not looked at. Returns null if
/// it is not there.
StringBuffer* Find(const Entry* first, const Entry* end, std::wstring_view literal,
                   std::uint32_t hash) noexcept {
  for (const Entry* entry = first; entry != end; entry = entry->next) {
    if (entry->hash == hash && entry->Text() == literal) return entry->buffer;
  }
  return nullptr;
}

/// Adds a literal that was not in the list which began with `head`, unless another thread is
/// faster.
StringBuffer* Add(std::atomic<Entry*>& bucket, Entry* head, std::wstring_view literal,
                  std::uint32_t hash) {
  if (room.load(std::memory_order_relaxed) <= 0) return StringBuffer::Make(literal);
  auto made = std::make_unique<Entry>(literal, hash);
  made->next = head;
  while (!bucket.compare_exchange_weak(head, made.get(), std::memory_order_acq_rel,
                                       std::memory_order_acquire)) {
    if (StringBuffer* const known = Find(head, made->next, literal, hash)) return known;
    made->next = head;
  }
  room.fetch_sub(1, std::memory_order_relaxed);
  return made.release()->buffer;  // the list owns the entry
}

}  // namespace

StringBuffer* KeptBuffer(std::wstring_view literal, std::uint32_t hash) {
  if (literal.empty()) return nullptr;
  std::atomic<Entry*>& bucket = buckets[hash % bucketCount];
  Entry* const head = bucket.load(std::memory_order_acquire);
  StringBuffer* const known = Find(head, nullptr, literal, hash);
  return known != nullptr ? known : Add(bucket, head, literal, hash);
}

}  // namespace VtrPlatform::details
