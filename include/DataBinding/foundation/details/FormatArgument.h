// SPDX-License-Identifier: Apache-2.0
/// A FormatArgument is one argument of VtrString::Format together with its kind.
///
/// It is made implicitly from arithmetic values, enumerations, pointers and wide texts. Since the
/// kind is known, a conversion can be checked against it, and a value is never read as another
/// type. A text is not copied, so the argument must not outlive the call that it is made for.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "DataBinding/foundation/StringView.h"

namespace VtrPlatform::details {

class FormatArgument {
 public:
  /// Holds a whole number in two forms, for conversions with and without a sign. The second form
  /// keeps the width of the argument's type: an int of -1 has 32 set bits.
  struct Integer {
    long long asSigned;
    unsigned long long asUnsigned;
  };
  using Value = std::variant<Integer, double, const void*, std::wstring_view>;

  template <class T>
  requires std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_pointer_v<T> ||
      std::convertible_to<const T&, VtrStringView>
      FormatArgument(const T& argument) : value(Wrap(argument)) {}

  [[nodiscard]] const Value& Get() const noexcept { return value; }

 private:
  template <class T>
  static Value Wrap(const T& argument) {
    if constexpr (std::is_enum_v<T>) {
      return Wrap(static_cast<std::underlying_type_t<T>>(argument));
    } else if constexpr (std::is_floating_point_v<T>) {
      return static_cast<double>(argument);
    } else if constexpr (std::same_as<T, bool>) {
      return Integer{argument, argument};
    } else if constexpr (std::integral<T>) {
      return Integer{static_cast<long long>(argument),
                     static_cast<std::make_unsigned_t<T>>(argument)};
    } else if constexpr (std::convertible_to<const T&, VtrStringView>) {
      return std::wstring_view(VtrStringView(argument));
    } else {
      return static_cast<const void*>(argument);
    }
  }

  Value value;
};

}  // namespace VtrPlatform::details
