// SPDX-License-Identifier: Apache-2.0
/// The driver for builds without a fuzzer: it checks each file of a folder.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Fuzz.h"

int main(int count, char** arguments) {
  if (count != 2) return EXIT_FAILURE;
  int checked = 0;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    std::cerr << entry.path().filename().string() << '\n';
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(file), {}};
    Fuzz::Expect(file.good(), "the file can be read");
    Fuzz::CheckInput(input);
    ++checked;
  }
  return checked > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
