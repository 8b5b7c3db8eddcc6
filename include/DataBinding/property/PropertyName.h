// SPDX-License-Identifier: Apache-2.0
/// A PropertyName is a name that a property may bear. It is not empty, holds no comma and no NUL,
/// is not "*" and has no blank at either end, since names are sent in trimmed, comma-separated
/// lists, which end at a NUL.
///
/// A literal is checked when it is compiled, and all properties that bear it share one string,
/// which is kept until the process ends. Any other text is checked when the name is made, which
/// throws std::invalid_argument for a bad one. The name refers to the text that it was made from.
///
///   Property<int> size{this, L"Size"};                       // checked by the compiler
///   Property<int> extra{this, PropertyName(column.name)};    // checked at run time
///   std::make_unique<Property<int>>(this, PropertyName(L"Size"));  // checked by the compiler
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/StringSplit.h"
#include "DataBinding/foundation/details/KeptLiteral.h"

namespace DataBinding {

class PropertyName {
 public:
  /// Takes a literal, which is checked when it is compiled.
  template <std::size_t Size>
  consteval PropertyName(const wchar_t (&literal)[Size])
      : text(literal, Size - 1),
        literalHash(VtrPlatform::details::LiteralHash(text)),
        isLiteral(true) {
    Check(text);
  }
  /// Takes any other text, which must outlive this object. Throws std::invalid_argument for a text
  /// that cannot be a name.
  ///@{
  template <class Pointer>
  requires std::same_as<Pointer, const wchar_t*> || std::same_as<Pointer, wchar_t*>
  explicit PropertyName(Pointer name) : text(VtrStringView(name)) { Check(text); }
  explicit PropertyName(const VtrString& name) : text(name) { Check(text); }
  explicit PropertyName(VtrStringView name) : text(name) { Check(text); }
  explicit PropertyName(std::wstring_view name) : text(name) { Check(text); }
  ///@}

  /// Returns the checked text, in the place that it was made from.
  [[nodiscard]] constexpr std::wstring_view Get() const noexcept { return text; }
  /// Returns a string of the name, which for a literal is the shared one.
  [[nodiscard]] VtrString ToString() const {
    return isLiteral ? VtrPlatform::details::KeptLiteral(text, literalHash) : VtrString(text);
  }

 private:
  static constexpr void Check(std::wstring_view name) {
    if (name.empty()) throw std::invalid_argument("a property name must not be empty");
    if (name == L"*") throw std::invalid_argument("a property must not be named *");
    if (name.find(L',') != name.npos) {
      throw std::invalid_argument("a property name must not hold a comma");
    }
    if (name.find(L'\0') != name.npos) {
      throw std::invalid_argument("a property name must not hold a NUL");
    }
    if (String::IsBlank(name.front()) || String::IsBlank(name.back())) {
      throw std::invalid_argument("a property name must not begin or end with a blank");
    }
  }

  std::wstring_view text;
  std::uint32_t literalHash = 0;
  bool isLiteral = false;
};

}  // namespace DataBinding
