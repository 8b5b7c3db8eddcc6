// SPDX-License-Identifier: Apache-2.0
#include "Names.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <stdexcept>

#include "DataBinding/foundation/SamplingHash.h"

namespace Benchmarks {

namespace {

constexpr std::size_t nameLength = 12;

/// A text with a number in it, which is padded to as many digits.
std::wstring Digits(std::size_t number, std::size_t width) {
  const std::wstring digits = std::to_wstring(number);
  return std::wstring(width - std::min(width, digits.size()), L'0') + digits;
}

}  // namespace

NarrowName::NarrowName(std::wstring_view wide) : text(wide.size(), '\0') {
  std::transform(wide.begin(), wide.end(), text.begin(),
                 [](wchar_t character) { return static_cast<char>(character); });
}

Texts OrdinaryNames(std::size_t count) {
  std::mt19937 random(1);
  Texts names(count, std::wstring(nameLength, L'a'));
  for (auto& name : names) {
    for (auto& character : name) character += static_cast<wchar_t>(random() % 26);
  }
  return names;
}

Texts NumberedNames(std::size_t count) {
  Texts names;
  for (std::size_t i = 0; i < count; ++i) names.push_back(L"Sensor" + Digits(i, 6));
  return names;
}

Texts AlikeNames(std::size_t count) {
  Texts names;
  for (std::size_t i = 0; i < count; ++i) {
    std::wstring name = oneName;
    const std::wstring digits = Digits(i, 4);
    for (std::size_t place = 0; place < digits.size(); ++place) name[2 * place + 1] = digits[place];
    if (DataBinding::SamplingHash(name) != DataBinding::SamplingHash(oneName)) {
      throw std::logic_error("the sampling hash looks where it should not");
    }
    names.push_back(name);
  }
  return names;
}

std::vector<std::size_t> Shuffled(std::size_t count) {
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::shuffle(order.begin(), order.end(), std::mt19937(2));
  return order;
}

}  // namespace Benchmarks
