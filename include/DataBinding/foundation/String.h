// SPDX-License-Identifier: Apache-2.0
/// The wide string of every name: an immutable, shared, NUL-terminated run of characters.
///
/// A string is one pointer. Copies share one counted buffer, so copying allocates nothing and
/// copies may be used on different threads; one string object is not to be written by one thread
/// while another uses it. Changing a string gives it a buffer of its own. The empty string has no
/// buffer. Lengths are signed 32-bit counts; a longer text throws std::length_error.
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
  /// What reads a string without owning it.
  using View = VtrStringViewT<CharT>;

  VtrStringT() noexcept = default;
  /// Copies a NUL-terminated text; null makes the empty string.
  VtrStringT(const CharT* text) : VtrStringT(View(text)) {}
  /// Copies the characters, which may hold NULs.
  ///@{
  VtrStringT(View text) : buffer(details::StringBuffer::Make(text)) {}
  VtrStringT(std::basic_string_view<CharT> text) : VtrStringT(View(text)) {}
  ///@}
  /// Shares the other's characters; allocates nothing.
  VtrStringT(const VtrStringT& other) noexcept : buffer(other.buffer) {
    details::StringBuffer::AddRef(buffer);
  }
  /// Takes the other's characters and leaves it empty.
  VtrStringT(VtrStringT&& other) noexcept : buffer(std::exchange(other.buffer, nullptr)) {}
  ~VtrStringT() { details::StringBuffer::Release(buffer); }

  /// By value: copies share, temporaries are taken over.
  VtrStringT& operator=(VtrStringT other) noexcept {
    std::swap(buffer, other.buffer);
    return *this;
  }
  /// Appends in a new buffer; other strings that shared the old one keep it.
  VtrStringT& operator+=(const VtrStringT& other) {
    return *this = Adopt(details::StringBuffer::Join(*this, other));
  }

  /// Makes a string of a buffer with one count, which it takes over, or of none.
  [[nodiscard]] static VtrStringT Adopt(details::StringBuffer* owned) noexcept {
    VtrStringT made;
    made.buffer = owned;
    return made;
  }
  /// Decodes UTF-8. Each ill-formed sequence becomes one U+FFFD.
  [[nodiscard]] static VtrStringT FromUtf8(std::string_view text) {
    return Adopt(details::BufferFromUtf8(text));
  }
  /// Encodes as UTF-8. What is no character (a lone surrogate) becomes U+FFFD.
  [[nodiscard]] std::string ToUtf8() const { return details::ToUtf8(*this); }

  /// Replaces this string by the formatted text and returns it.
  ///
  /// The format is printf's: flags, width, precision (both also as `*`), and the conversions
  /// d i u o x X c s p e E f F g G a A %. Length modifiers are accepted and ignored, since each
  /// argument's own type is known; `%s` takes a wide string. A conversion that does not fit its
  /// argument, a missing argument or an unknown conversion throws std::invalid_argument.
  template <class... Args>
  VtrStringT& Format(View format, const Args&... args) & {
    const std::array<details::FormatArgument, sizeof...(Args)> list{
        details::FormatArgument(args)...};
    return *this = FormatInternal(format, list);
  }
  /// The same of a temporary, by value: `const VtrString text = VtrString().Format(...)`.
  template <class... Args>
  [[nodiscard]] VtrStringT Format(View format, const Args&... args) && {
    return std::move(this->Format(format, args...));
  }

  /// Negative, 0 or positive, as this string stands before, with or after the other.
  [[nodiscard]] int Compare(View other, CompareCase mode = CompareCase::Sensitive) const noexcept {
    return View(*this).Compare(other, mode);
  }
  /// 0 when the two are equal but for case.
  [[nodiscard]] int CompareNoCase(View other) const noexcept {
    return View(*this).CompareNoCase(other);
  }
  /// The characters from a start index to the end: all for a negative start, none past the end.
  [[nodiscard]] VtrStringT Mid(std::int32_t start) const {
    if (start <= 0) return *this;
    if (start >= GetLength()) return VtrStringT();
    return VtrStringT(View(Text() + start, GetLength() - start));
  }
  /// True for length 0.
  [[nodiscard]] bool IsEmpty() const noexcept { return buffer == nullptr; }
  /// In wchar_t units: UTF-16 on Windows, whole characters elsewhere.
  [[nodiscard]] std::int32_t GetLength() const noexcept {
    return buffer == nullptr ? 0 : buffer->length;
  }
  /// SamplingHash of the characters, kept for the next time: for tables keyed by names.
  [[nodiscard]] std::uint64_t GetSamplingHash() const noexcept {
    if (buffer == nullptr) return VtrUtils::SamplingHash({});
    const auto known = buffer->hash.load(std::memory_order_relaxed);
    if (known != 0) return known;
    const auto computed = VtrUtils::SamplingHash(*this);
    buffer->hash.store(computed, std::memory_order_relaxed);
    return computed;
  }
  /// NUL-terminated; lives as long as this string is neither changed nor destroyed.
  operator const CharT*() const noexcept { return Text(); }
  /// A view that lives as long as this string is neither changed nor destroyed.
  operator std::basic_string_view<CharT>() const noexcept { return View(*this); }
  /// A string is neither a condition nor an address, although it converts to a pointer: its pointer
  /// is never null. Ask IsEmpty. The second conversion makes the way to bool ambiguous, and with it
  /// `delete`.
  ///@{
  explicit operator bool() const = delete;
  operator const void*() const = delete;
  ///@}
  /// A number or a character cannot be appended: the pointer must not be moved by it.
  ///@{
  template <std::integral Number>
  friend void operator+(const VtrStringT& left, Number right) = delete;
  template <std::integral Number>
  friend void operator+(Number left, const VtrStringT& right) = delete;
  ///@}

  /// Ordinal comparison, case included, by code unit: the order of all tables of names. The other
  /// side may be any wide text: a literal, a view or a std::wstring.
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

  /// Writes the text: as UTF-8 to a narrow stream, as it is to a wide one.
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

/// Joins two texts; strings, views and literals all fit.
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
