// SPDX-License-Identifier: Apache-2.0
#include "Limits.h"

#include <algorithm>

#include <DataBinding/datasource/IDataSource.h>
#include <DataBinding/framework/DataBind.h>
#include <DataBinding/framework/TextConverter.h>
#include <DataBinding/property/PropertyAccess.h>

namespace Sysmon {

std::vector<VtrString> LimitNames(IDataSourceProvider& root) {
  std::vector<VtrString> names;
  IDataSource* const source = root.GetDataSource(limitSource);
  if (source == nullptr) return names;
  for (const auto& item : *source) {
    const auto property = DataBinding::FindProperty<double>(source, item.first);
    if (property && !property.IsReadOnly()) names.push_back(item.first);
  }
  std::ranges::sort(names);
  return names;
}

VtrString SetLimit(IDataSourceProvider& root, const VtrString& limit, const VtrString& text) {
  const auto names = LimitNames(root);
  const auto found = std::ranges::find_if(
      names, [&](const VtrString& name) { return name.CompareNoCase(limit) == 0; });
  if (found == names.end()) {
    VtrString known;
    for (const VtrString& name : names) known = known + (known.IsEmpty() ? L"" : L", ") + name;
    return VtrString().Format(L"There is no limit \"%s\", only %s.", limit, known);
  }
  const auto value = DataBinding::TextConverter<double>().parse(text);
  if (!value) return value.text;
  return DataBinding::Framework::DataBind<double>(&root, limitSource, *found).Set(*value).text;
}

VtrString SetLimits(IDataSourceProvider& root,
                    const std::vector<std::pair<std::string, std::string>>& limits) {
  for (const auto& [name, value] : limits) {
    const VtrString limit = VtrString::FromUtf8(name);
    const VtrString wrong = SetLimit(root, limit, VtrString::FromUtf8(value));
    if (!wrong.IsEmpty()) return limit + L": " + wrong;
  }
  return {};
}

}  // namespace Sysmon
