// SPDX-License-Identifier: Apache-2.0
/// VtrString is the wide string in which all names are kept. Its characters are shared, never
/// change, and end with NUL.
///
/// A string is one pointer. Copies share one counted buffer, so copying allocates nothing, and
/// copies may be used on different threads. One string object must not be written by one thread
/// while another uses it. Changing a string gives it a buffer of its own. The empty string has no
/// buffer. Lengths are signed 32-bit numbers; a longer text throws std::length_error.
///
///   VtrString name = L"Memory";
///   VtrString text;
///   text.Format(L"%s: %d of %.1f GiB", name, 3, 15.5);
///   std::cout << text << '\n';  // narrow streams get UTF-8
#pragma once

#include <array>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/SamplingHash.h"
#include "DataBinding/foundation/StringView.h"
#include "DataBinding/foundation/details/FormatArgument.h"
#include "DataBinding/foundation/details/StringBuffer.h"

namespace VtrPlatform {

namespace details {

[[nodiscard]] DATABINDING_API StringBuffer* FormatBuffer(std::wstring_view format,
                                                         std::span<const FormatArgument> arguments);
[[nodiscard]] DATABINDING_API StringBuffer* BufferFromUtf8(std::string_view text);
[[nodiscard]] DATABINDING_API std::string ToUtf8(std::wstring_view text);

}  // namespace details

template <class CharT>
class DATABINDING_SHARED_TYPE VtrStringT {
  static_assert(std::same_as<CharT, wchar_t>, "only wide strings are supported");

 public:
  /// The view by which code reads a string without owning it.
  using View = VtrStringViewT<CharT>;

  VtrStringT() noexcept = default;
  /// Copies a NUL-terminated text. Null makes the empty string.
  VtrStringT(const CharT* text) : VtrStringT(View(text)) {}
  /// Copies the characters. NULs may be among them.
  ///@{
  VtrStringT(View text) : buffer(details::StringBuffer::Make(text)) {}
  VtrStringT(std::basic_string_view<CharT> text) : VtrStringT(View(text)) {}
  ///@}
  /// Shares the other's characters, and allocates nothing.
  VtrStringT(const VtrStringT& other) noexcept : buffer(other.buffer) {
    details::StringBuffer::AddRef(buffer);
  }
  /// Takes the other's characters and leaves it empty.
  VtrStringT(VtrStringT&& other) noexcept : buffer(std::exchange(other.buffer, nullptr)) {}
  ~VtrStringT() { details::StringBuffer::Release(buffer); }

  /// Shares the characters of a copied string, or takes those of a temporary over.
  VtrStringT& operator=(VtrStringT other) noexcept {
    std::swap(buffer, other.buffer);
    return *this;
  }
  /// Joins both texts in a new buffer. Other strings that share the old buffer do not change.
  VtrStringT& operator+=(const VtrStringT& other) {
    return *this = Adopt(details::StringBuffer::Join(*this, other));
  }

  /// Makes a string of a buffer, and takes over one reference to it. Null makes the empty string.
  [[nodiscard]] static VtrStringT Adopt(details::StringBuffer* owned) noexcept {
    VtrStringT made;
    made.buffer = owned;
    return made;
  }
  /// Decodes UTF-8. Each ill-formed sequence becomes one U+FFFD.
  [[nodiscard]] static VtrStringT FromUtf8(std::string_view text) {
    return Adopt(details::BufferFromUtf8(text));
  }
  /// Encodes as UTF-8. A unit that is no Unicode character, such as a lone surrogate, becomes
  /// U+FFFD.
  [[nodiscard]] std::string ToUtf8() const { return details::ToUtf8(*this); }

  /// Replaces this string by the formatted text and returns it. The text is the same in every
  /// locale: the decimal point is a point.
  ///
  /// The format is that of printf: flags, width and precision (both also as `*`), and the
  /// conversions d i u o x X c s p e E f F g G a A %. Length modifiers are accepted and ignored,
  /// because the type of each argument is known. `%s` takes a wide string. A conversion that does
  /// not fit its argument, a missing argument, and an unknown conversion throw
  /// std::invalid_argument.
  template <class... Args>
  VtrStringT& Format(View format, const Args&... args) & {
    const std::array<details::FormatArgument, sizeof...(Args)> list{
        details::FormatArgument(args)...};
    return *this = FormatInternal(format, list);
  }
  /// Does the same on a temporary: `const VtrString text = VtrString().Format(...)`.
  template <class... Args>
  [[nodiscard]] VtrStringT Format(View format, const Args&... args) && {
    return std::move(this->Format(format, args...));
  }

  /// Returns a negative number if this string is ordered before the other, 0 if they are equal,
  /// and a positive number if it is ordered after the other.
  [[nodiscard]] int Compare(View other, CompareCase mode = CompareCase::Sensitive) const noexcept {
    return View(*this).Compare(other, mode);
  }
  /// Compares in the same way, but without regard to case.
  [[nodiscard]] int CompareNoCase(View other) const noexcept {
    return View(*this).CompareNoCase(other);
  }
  /// Returns the characters from a start index to the end. A negative start gives the whole string,
  /// a start past the end the empty string.
  [[nodiscard]] VtrStringT Mid(std::int32_t start) const {
    if (start <= 0) return *this;
    if (start >= GetLength()) return VtrStringT();
    return VtrStringT(View(Text() + start, GetLength() - start));
  }
  /// Returns true for length 0.
  [[nodiscard]] bool IsEmpty() const noexcept { return buffer == nullptr; }
  /// Returns the length in wchar_t units. A unit is UTF-16 on Windows and a whole character
  /// elsewhere.
  [[nodiscard]] std::int32_t GetLength() const noexcept {
    return buffer == nullptr ? 0 : buffer->length;
  }
  /// Returns the SamplingHash of the characters, for tables that are keyed by names. It is computed
  /// once and kept in the buffer.
  [[nodiscard]] std::uint64_t GetSamplingHash() const noexcept {
    if (buffer == nullptr) return VtrUtils::SamplingHash({});
    const auto known = buffer->hash.load(std::memory_order_relaxed);
    if (known != 0) return known;
    const auto computed = VtrUtils::SamplingHash(*this);
    buffer->hash.store(computed, std::memory_order_relaxed);
    return computed;
  }
  /// Returns the NUL-terminated characters. The pointer is valid until this string is changed or
  /// destroyed.
  operator const CharT*() const noexcept { return Text(); }
  /// Returns a view of the characters, which is valid until this string is changed or destroyed.
  operator std::basic_string_view<CharT>() const noexcept { return View(*this); }
  /// A string cannot be used as a condition: it converts to a pointer that is never null, so the
  /// condition would always hold. Use IsEmpty. The second deleted conversion makes the implicit one
  /// to bool ambiguous. It makes `delete` of a string ambiguous, too.
  ///@{
  explicit operator bool() const = delete;
  operator const void*() const = delete;
  ///@}
  /// A number or a character cannot be added to a string: it would move the pointer to which the
  /// string converts.
  ///@{
  template <std::integral Number>
  friend void operator+(const VtrStringT& left, Number right) = delete;
  template <std::integral Number>
  friend void operator+(Number left, const VtrStringT& right) = delete;
  ///@}

  /// Compare by code units, with regard to case. All tables of names are ordered in this way. The
  /// other side may be any wide text: a literal, a view or a std::wstring.
  ///@{
  friend bool operator==(const VtrStringT& left, const VtrStringT& right) noexcept {
    return left.buffer == right.buffer || View(left) == View(right);
  }
  friend std::strong_ordering operator<=>(const VtrStringT& left,
                                          const VtrStringT& right) noexcept {
    return View(left) <=> View(right);
  }
  template <class Text>
  requires std::constructible_from<View, const Text&>
  friend bool operator==(const VtrStringT& left, const Text& right) {
    return View(left) == View(right);
  }
  template <class Text>
  requires std::constructible_from<View, const Text&>
  friend std::strong_ordering operator<=>(const VtrStringT& left, const Text& right) {
    return View(left) <=> View(right);
  }
  ///@}

  /// Writes the text: as UTF-8 to a narrow stream, unchanged to a wide one.
  ///@{
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const VtrStringT& text) {
    return out << text.ToUtf8();
  }
  template <class Traits>
  friend std::basic_ostream<CharT, Traits>& operator<<(std::basic_ostream<CharT, Traits>& out,
                                                       const VtrStringT& text) {
    return out << std::basic_string_view<CharT, Traits>(text.Text(),
                                                        static_cast<std::size_t>(text.GetLength()));
  }
  ///@}

 private:
  static VtrStringT FormatInternal(View format, std::span<const details::FormatArgument> args) {
    return Adopt(details::FormatBuffer(format, args));
  }
  [[nodiscard]] const CharT* Text() const noexcept {
    return buffer == nullptr ? L"" : buffer->Text();
  }

  details::StringBuffer* buffer = nullptr;
};

using VtrString = VtrStringT<wchar_t>;

/// Joins two texts, each of which may be a string, a view or a literal.
[[nodiscard]] inline VtrString operator+(VtrStringView left, VtrStringView right) {
  return VtrString::Adopt(details::StringBuffer::Join(left, right));
}

}  // namespace VtrPlatform

template <class CharT>
struct std::hash<VtrPlatform::VtrStringT<CharT>> {
  std::size_t operator()(const VtrPlatform::VtrStringT<CharT>& text) const noexcept {
    return std::hash<VtrPlatform::VtrStringViewT<CharT>>()(text);
  }
};

namespace DataBinding {
using VtrPlatform::VtrString;
using VtrPlatform::VtrStringT;
}  // namespace DataBinding
