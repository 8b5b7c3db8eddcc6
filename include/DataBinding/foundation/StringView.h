// SPDX-License-Identifier: Apache-2.0
/// A borrowed run of wide characters with its length: the parameter type of everything that only
/// reads a name.
///
/// Owns nothing; whoever made it keeps the characters alive. A null pointer makes an empty view.
/// The characters need not end with NUL. Order and equality are ordinal, by code unit; matching
/// without regard to case folds each character by Unicode's simple case folding, the same in every
/// locale.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "DataBinding/Export.h"

namespace VtrPlatform {

#if defined(_WIN32)
static_assert(sizeof(wchar_t) == 2, "names are UTF-16 on Windows");
#else
static_assert(sizeof(wchar_t) == 4, "names are UTF-32 elsewhere; -fshort-wchar is not supported");
#endif

template <class CharT>
class VtrStringT;

/// How two strings are compared.
enum class CompareCase { Sensitive = 0, Insensitive = 1 };

namespace details {

/// Throws std::length_error for a length that a signed 32-bit count cannot hold.
[[nodiscard]] DATABINDING_API std::int32_t CheckedLength(std::size_t length);

/// Compares after simple Unicode case folding: negative, 0 or positive.
[[nodiscard]] DATABINDING_API int CompareFolded(std::wstring_view left,
                                                std::wstring_view right) noexcept;

}  // namespace details

template <class CharT>
class VtrStringViewT {
 public:
  constexpr VtrStringViewT() noexcept = default;
  /// A NUL-terminated text, or nothing for null.
  constexpr VtrStringViewT(const CharT* text)
      : VtrStringViewT(text == nullptr ? std::basic_string_view<CharT>()
                                       : std::basic_string_view<CharT>(text)) {}
  /// So many characters; none for null or a negative count.
  constexpr VtrStringViewT(const CharT* text, std::int32_t length) noexcept
      : first(text), count(text == nullptr || length < 0 ? 0 : length) {}
  /// Throws std::length_error for more than INT32_MAX characters.
  constexpr VtrStringViewT(std::basic_string_view<CharT> text)
      : first(text.data()), count(Count(text.size())) {}
  /// The characters of a string, until that is changed or destroyed.
  VtrStringViewT(const VtrStringT<CharT>& text) noexcept : first(text), count(text.GetLength()) {}

  /// The first character. No NUL need follow the last one.
  [[nodiscard]] constexpr const CharT* GetRawUnterminatedString() const noexcept { return first; }
  /// In wchar_t units: UTF-16 on Windows, whole characters elsewhere.
  [[nodiscard]] constexpr std::int32_t GetLength() const noexcept { return count; }
  /// True for length 0.
  [[nodiscard]] constexpr bool IsEmpty() const noexcept { return count == 0; }
  /// The same characters as the standard's view.
  constexpr operator std::basic_string_view<CharT>() const noexcept {
    return {first, static_cast<std::size_t>(count)};
  }

  /// Negative, 0 or positive, as this view stands before, with or after the other.
  [[nodiscard]] int Compare(VtrStringViewT other,
                            CompareCase mode = CompareCase::Sensitive) const noexcept {
    using Standard = std::basic_string_view<CharT>;
    return mode == CompareCase::Sensitive ? Standard(*this).compare(Standard(other))
                                          : details::CompareFolded(*this, other);
  }
  /// 0 when the two are equal but for case.
  [[nodiscard]] int CompareNoCase(VtrStringViewT other) const noexcept {
    return Compare(other, CompareCase::Insensitive);
  }

  /// Ordinal, case included.
  friend bool operator==(VtrStringViewT left, VtrStringViewT right) noexcept {
    return left.count == right.count && left.Compare(right) == 0;
  }
  /// Ordinal, by code unit.
  friend std::strong_ordering operator<=>(VtrStringViewT left, VtrStringViewT right) noexcept {
    return left.Compare(right) <=> 0;
  }

 private:
  static constexpr std::int32_t Count(std::size_t length) {
    return length <= INT32_MAX ? static_cast<std::int32_t>(length) : details::CheckedLength(length);
  }

  const CharT* first = nullptr;
  std::int32_t count = 0;
};

using VtrStringView = VtrStringViewT<wchar_t>;

}  // namespace VtrPlatform

template <class CharT>
struct std::hash<VtrPlatform::VtrStringViewT<CharT>> {
  std::size_t operator()(VtrPlatform::VtrStringViewT<CharT> text) const noexcept {
    return std::hash<std::basic_string_view<CharT>>()(text);
  }
};

namespace DataBinding {
using VtrPlatform::CompareCase;
using VtrPlatform::VtrStringView;
using VtrPlatform::VtrStringViewT;
}  // namespace DataBinding
