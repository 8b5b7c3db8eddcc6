// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include <benchmark/benchmark.h>

#ifdef __clang__
#define COMPILER "clang " __clang_version__
#else
#define COMPILER "g++ " __VERSION__
#endif

// In a process that never had a second thread, locks and reference counts are cheaper. Every
// benchmark is to measure the dearer ones, whatever ran before it, so a thread runs here first.
int main(int argc, char** argv) {
  std::thread([] {}).join();
  benchmark::AddCustomContext("compiler", COMPILER);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  return benchmark::RunSpecifiedBenchmarks() == 0 ? 1 : 0;
}
