// SPDX-License-Identifier: Apache-2.0
/// VtrStringView refers to wide characters that somebody else owns, and knows their number.
/// Functions that only read a name take it as a parameter.
///
/// The code that makes a view has to keep the characters alive. A null pointer makes an empty view.
/// The characters need not end with NUL.
///
/// Views are ordered and compared by code units. A comparison without regard to case folds each
/// character by Unicode's simple case folding, which is the same in every locale.
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

/// Says whether a comparison regards case.
enum class CompareCase { Sensitive = 0, Insensitive = 1 };

namespace details {

/// Throws std::length_error for a length that a signed 32-bit count cannot hold.
[[nodiscard]] DATABINDING_API std::int32_t CheckedLength(std::size_t length);

/// Compares after simple Unicode case folding. Returns a negative number, 0 or a positive number.
[[nodiscard]] DATABINDING_API int CompareFolded(std::wstring_view left,
                                                std::wstring_view right) noexcept;

}  // namespace details

template <class CharT>
class VtrStringViewT {
 public:
  constexpr VtrStringViewT() noexcept = default;
  /// Refers to a NUL-terminated text. Null makes an empty view.
  constexpr VtrStringViewT(const CharT* text)
      : VtrStringViewT(text == nullptr ? std::basic_string_view<CharT>()
                                       : std::basic_string_view<CharT>(text)) {}
  /// Refers to `length` characters. Null or a negative length makes an empty view.
  constexpr VtrStringViewT(const CharT* text, std::int32_t length) noexcept
      : first(text), count(text == nullptr || length < 0 ? 0 : length) {}
  /// Refers to the characters of a standard view. Throws std::length_error for more than INT32_MAX
  /// characters.
  constexpr VtrStringViewT(std::basic_string_view<CharT> text)
      : first(text.data()), count(Count(text.size())) {}
  /// Refers to the characters of a string, until that is changed or destroyed.
  VtrStringViewT(const VtrStringT<CharT>& text) noexcept : first(text), count(text.GetLength()) {}

  /// Returns a pointer to the first character. There may be no NUL behind the last one.
  [[nodiscard]] constexpr const CharT* GetRawUnterminatedString() const noexcept { return first; }
  /// Returns the length in wchar_t units. A unit is UTF-16 on Windows and a whole character
  /// elsewhere.
  [[nodiscard]] constexpr std::int32_t GetLength() const noexcept { return count; }
  /// Returns true for length 0.
  [[nodiscard]] constexpr bool IsEmpty() const noexcept { return count == 0; }
  /// Returns the same characters as a standard view.
  constexpr operator std::basic_string_view<CharT>() const noexcept {
    return {first, static_cast<std::size_t>(count)};
  }

  /// Returns a negative number if this view is ordered before the other, 0 if they are equal,
  /// and a positive number if it is ordered after the other.
  [[nodiscard]] int Compare(VtrStringViewT other,
                            CompareCase mode = CompareCase::Sensitive) const noexcept {
    using Standard = std::basic_string_view<CharT>;
    return mode == CompareCase::Sensitive ? Standard(*this).compare(Standard(other))
                                          : details::CompareFolded(*this, other);
  }
  /// Compares in the same way, but without regard to case.
  [[nodiscard]] int CompareNoCase(VtrStringViewT other) const noexcept {
    return Compare(other, CompareCase::Insensitive);
  }

  /// Returns true for the same code units.
  friend bool operator==(VtrStringViewT left, VtrStringViewT right) noexcept {
    return left.count == right.count && left.Compare(right) == 0;
  }
  /// Orders by code units.
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
