// SPDX-License-Identifier: Apache-2.0
#include <DataBinding/DataBinding.h>
#include <DataBindingQt6/DataBindingQt6.h>

using namespace DataBinding;

int main() {
  const VtrString text = L"Gr\u00f6\u00dfe";
  QObject window;
  DataSourceProvider scope(nullptr, L"window", nullptr);
  Qt6::SetScope(&window, &scope);
  const bool isRight =
      Qt6::ToVtrString(Qt6::ToQString(text)) == text && Qt6::ScopeOf(&window) == &scope;
  return isRight ? 0 : 1;
}
