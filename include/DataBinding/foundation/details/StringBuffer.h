// SPDX-License-Identifier: Apache-2.0
/// A StringBuffer is the storage that copies of a wide string share. One allocation holds the
/// reference count, the length, the hash, and behind them the characters.
///
/// The count is atomic, so the owners may be on different threads. The characters do not change
/// once there is a second owner. The hash is computed when it is first asked for. In every
/// operation here a null pointer stands for the empty string.
///
/// A buffer that is kept until the process ends (KeptLiteral.h) is not counted. So threads that
/// copy the same names do not write to memory that they share.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>

#include "DataBinding/foundation/StringView.h"

namespace VtrPlatform::details {

struct StringBuffer {
  explicit StringBuffer(std::int32_t characters) noexcept : references(1), length(characters) {}

  /// Stands in `references` for a buffer that is never released.
  static constexpr auto kept = std::uint32_t{1} << 31;

  std::atomic<std::uint32_t> references;
  std::int32_t length;
  /// The sampling hash, or 0 until it is known.
  std::atomic<std::uint64_t> hash{0};

  /// Keeps the buffer until the process ends: it is not counted from now on.
  static void Keep(StringBuffer* buffer) noexcept {
    if (buffer != nullptr) buffer->references.fetch_or(kept, std::memory_order_relaxed);
  }
  [[nodiscard]] wchar_t* Text() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }

  /// Returns a buffer for `length` characters, or null for 0. The caller still has to write the
  /// characters; the NUL behind them is written already.
  [[nodiscard]] static StringBuffer* Allocate(std::size_t length) {
    const std::int32_t count = CheckedLength(length);
    if (count == 0) return nullptr;
    void* memory = ::operator new(sizeof(StringBuffer) + (length + 1) * sizeof(wchar_t));
    auto* made = ::new (memory) StringBuffer(count);
    made->Text()[length] = L'\0';
    return made;
  }
  [[nodiscard]] static StringBuffer* Make(std::wstring_view text) {
    StringBuffer* made = Allocate(text.size());
    if (made != nullptr) text.copy(made->Text(), text.size());
    return made;
  }
  [[nodiscard]] static StringBuffer* Join(std::wstring_view left, std::wstring_view right) {
    StringBuffer* made = Allocate(left.size() + right.size());
    if (made == nullptr) return nullptr;
    left.copy(made->Text(), left.size());
    right.copy(made->Text() + left.size(), right.size());
    return made;
  }
  static void AddRef(StringBuffer* buffer) noexcept {
    if (IsCounted(buffer)) buffer->references.fetch_add(1, std::memory_order_relaxed);
  }
  static void Release(StringBuffer* buffer) noexcept {
    if (!IsCounted(buffer)) return;
    if (buffer->references.fetch_sub(1, std::memory_order_acq_rel) == 1) Delete(buffer);
  }
  /// Ends a buffer, whether it is kept or not. Nobody else may have it.
  static void Delete(StringBuffer* buffer) noexcept {
    buffer->~StringBuffer();
    ::operator delete(buffer);
  }

 private:
  [[nodiscard]] static bool IsCounted(const StringBuffer* buffer) noexcept {
    return buffer != nullptr && (buffer->references.load(std::memory_order_relaxed) & kept) == 0;
  }
};

}  // namespace VtrPlatform::details
