// SPDX-License-Identifier: Apache-2.0
#include <DataBindingGlib/GlibIdlePass.h>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

inline constinit const AppEvent<int> sampleTaken{L"SampleTaken"};

int main() {
  const GlibIdlePass pass;
  sampleTaken.Raise(1);
  return pass.Pass().IsRequested() ? 0 : 1;
}
