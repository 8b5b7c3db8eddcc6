/// Property names by the thousand, all of twelve characters, and the order in which to use them.
///
/// Deterministic, so that every peer gets the same names in the same order.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Benchmarks {

using Texts = std::vector<std::wstring>;

inline constexpr const wchar_t* oneName = L"Temperature2";

/// Names as they come: they differ everywhere.
[[nodiscard]] Texts OrdinaryNames(std::size_t count);
/// Names that differ in a running number at their end, so that a few share a sampling hash.
[[nodiscard]] Texts NumberedNames(std::size_t count);
/// Up to 10,000 names that differ only where the sampling hash does not look.
[[nodiscard]] Texts AlikeNames(std::size_t count);

/// The numbers below a count in random order.
[[nodiscard]] std::vector<std::size_t> Shuffled(std::size_t count);

/// Strings of their own for some of the texts, in the order given.
template <class Name>
[[nodiscard]] std::vector<Name> MakeNames(const Texts& texts,
                                          const std::vector<std::size_t>& order) {
  std::vector<Name> names;
  names.reserve(order.size());
  for (const auto position : order) names.emplace_back(std::wstring_view(texts[position]));
  return names;
}

/// The same in the texts' own order.
template <class Name>
[[nodiscard]] std::vector<Name> MakeNames(const Texts& texts) {
  return {texts.begin(), texts.end()};
}

}  // namespace Benchmarks
