// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "DataBinding/foundation/String.h"

#if defined(__GLIBC__)

namespace DataBinding {
namespace {

/// Writes a locale of numbers as the C library reads it from a file, because a machine need not
/// have one with a decimal point of its own.
void WriteLocale(const std::filesystem::path& folder, const std::string& decimalPoint) {
  std::filesystem::create_directories(folder);
  constexpr std::uint32_t count = 6;
  constexpr std::uint32_t begin = 4 * (2 + count);
  const auto after = static_cast<std::uint32_t>(begin + 8 + decimalPoint.size());
  // The parts are the decimal point, no separator, no groups, both marks as numbers, and the
  // encoding.
  const std::uint32_t head[] = {0x20031115 ^ LC_NUMERIC,
                                count,
                                begin + 8,
                                after,
                                after,
                                begin,
                                begin + 4,
                                after,
                                L'\u066B',
                                0};
  std::ofstream file(folder / "LC_NUMERIC", std::ios::binary);
  file.write(reinterpret_cast<const char*>(head), sizeof head);
  file << decimalPoint << '\0';
}

TEST(StringFormat, IsTheSameInEveryLocale) {
  const auto folder = std::filesystem::path(testing::TempDir()) / std::to_string(getpid());
  WriteLocale(folder / "xx", "\u066B");
  setenv("LOCPATH", folder.c_str(), 1);
  ASSERT_NE(std::setlocale(LC_NUMERIC, "xx"), nullptr);
  char local[16];
  std::snprintf(local, sizeof local, "%.2f", 0.25);

  const VtrString text =
      VtrString().Format(L"%.2f|%7.2f|%-6.1f|%07.2f|%g|%d", 0.25, -0.25, 1e3, 2.5, 1e300, 7);

  std::setlocale(LC_NUMERIC, "C");
  std::filesystem::remove_all(folder);
  EXPECT_STREQ(local, "0\u066B25");
  EXPECT_EQ(text, L"0.25|  -0.25|1000.0|0002.50|1e+300|7");
}

}  // namespace
}  // namespace DataBinding

#endif
