// SPDX-License-Identifier: Apache-2.0
#include "Watch.h"

#include <utility>

#include "Text.h"

namespace Sysmon {

Watch::Watch(IDataSourceProvider& watchedScope, std::vector<Name> watchedNames)
    : scope(watchedScope),
      names(std::move(watchedNames)),
      values(names.size()),
      changed(names.size()) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    AddDataListener(names[i].source, names[i].property, [this, i] { Fetch(i); });
  }
  SetDataSourceProvider(&scope);
  for (std::size_t i = 0; i < names.size(); ++i) Fetch(i);
}

VtrString Watch::TextAt(std::size_t index) const {
  return values[index] ? Show(*values[index]) : VtrString(L"-");
}

void Watch::Fetch(std::size_t index) {
  values[index] = ReadValue(scope.GetDataSource(names[index].source), names[index].property);
  changed[index] = true;
}

}  // namespace Sysmon
