// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/reflection/details/NumberText.h"

#include <algorithm>
#include <cstdint>

namespace DataBinding::details {

bool IsNearZero(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mark);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first = std::min(mantissa.find_first_of("123456789"), mantissa.size());
  std::string_view digits = number.substr(std::min(mark + 1, number.size()));
  if (digits.starts_with('+')) digits.remove_prefix(1);
  std::int32_t exponent = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
  if (read.ec == std::errc::result_out_of_range) return digits.starts_with('-');
  // This asks whether the power of ten of the first digit is negative: 1e-400 is too small, and
  // 1e400 is too big. Both are far from 1, so that one place more or less does not matter.
  return std::int64_t{exponent} + static_cast<std::int64_t>(point) -
             static_cast<std::int64_t>(first) <
         0;
}

VtrString ExplainUnfit(const VtrString& text, std::errc reason, const runtime_type_base& wanted) {
  constexpr int most = 40;
  const VtrString type = VtrString::FromUtf8(wanted.GetTypeName());
  const auto* rest = text.GetLength() > most ? L"..." : L"";
  if (reason == std::errc::result_out_of_range) {
    return VtrString().Format(L"\"%.*s%s\" is out of the range of type %s.", most, text, rest,
                              type);
  }
  return VtrString().Format(L"\"%.*s%s\" is not a value of type %s.", most, text, rest, type);
}

}  // namespace DataBinding::details
