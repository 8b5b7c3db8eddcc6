// SPDX-License-Identifier: Apache-2.0
/// Thousands of property names, all of twelve characters, and the order in which they are used.
///
/// Names and order are the same in each run, so that every peer gets the same ones.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Benchmarks {

using Texts = std::vector<std::wstring>;

inline constexpr const wchar_t* oneName = L"Temperature2";

/// A name in the narrow characters that some peers take.
class NarrowName {
 public:
  explicit NarrowName(std::wstring_view wide);
  [[nodiscard]] const char* Text() const noexcept { return text.c_str(); }

 private:
  std::string text;
};

/// Names that differ in all their characters.
[[nodiscard]] Texts OrdinaryNames(std::size_t count);
/// Names that differ in a running number at their end, so that a few share a sampling hash.
[[nodiscard]] Texts NumberedNames(std::size_t count);
/// Up to 10,000 names that differ only where the sampling hash does not look.
[[nodiscard]] Texts AlikeNames(std::size_t count);

/// The numbers below a count in random order.
[[nodiscard]] std::vector<std::size_t> Shuffled(std::size_t count);

/// Makes a name of any type that can be made from wide characters.
template <class Name>
[[nodiscard]] Name MakeName(const std::wstring& text) {
  if constexpr (requires { Name::fromStdWString(text); }) {
    return Name::fromStdWString(text);
  } else {
    return Name(std::wstring_view(text));
  }
}

/// Makes separate strings of some of the texts, in the given order.
template <class Name>
[[nodiscard]] std::vector<Name> MakeNames(const Texts& texts,
                                          const std::vector<std::size_t>& order) {
  std::vector<Name> names;
  names.reserve(order.size());
  for (const auto position : order) names.push_back(MakeName<Name>(texts[position]));
  return names;
}

/// Makes separate strings of all texts, in their own order.
template <class Name>
[[nodiscard]] std::vector<Name> MakeNames(const Texts& texts) {
  return {texts.begin(), texts.end()};
}

}  // namespace Benchmarks
