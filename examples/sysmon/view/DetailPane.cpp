// SPDX-License-Identifier: Apache-2.0
#include "DetailPane.h"

#include <utility>
#include <vector>

#include <DataBinding/datasource/IDataSource.h>

namespace Sysmon {

namespace {

constexpr int nameWidth = 14;

std::vector<Watch::Name> PublishedNames(IDataSourceProvider& scope) {
  std::vector<Watch::Name> names;
  for (const wchar_t* const sourceName : {L"Command", L"Process"}) {
    IDataSource* const source = scope.GetDataSource(sourceName);
    if (source == nullptr) continue;
    for (const auto& item : *source) names.push_back({sourceName, item.first});
  }
  return names;
}

}  // namespace

DetailPane::DetailPane(IDataSourceProvider& root, DataBinding::ReadableList<Process>& processes,
                       DataBinding::RowId shownProcess)
    : process(root, processes), watch(process.Get(), PublishedNames(process.Get())) {
  process.Show(shownProcess);
}

void DetailPane::Draw(Surface& surface, const Area& area) {
  const bool isWhole = !std::exchange(isShown, true);
  const auto& names = watch.Names();
  int line = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i == 0 || names[i].source != names[i - 1].source) {
      if (isWhole) surface.Write(area.At(line, 0, area.width), names[i].source, Style::Title);
      ++line;
    }
    if (isWhole) surface.Write(area.At(line, 0, nameWidth), names[i].property, Style::Label);
    if (isWhole || watch.IsChanged(i)) {
      surface.Write(area.At(line, nameWidth, area.width), watch.TextAt(i));
    }
    ++line;
  }
  watch.Settle();
}

}  // namespace Sysmon
