#include <DataBinding/DataBinding.h>

int main() {
  const DataBinding::VtrString name(L"consumer");
  return name.IsEmpty() ? 1 : 0;
}
