// SPDX-License-Identifier: Apache-2.0
// This file holds the base of data sources; most of it splits the lists of names that a source
// announces.

#include "DataBinding/datasource/DataSourceImpl.h"

#include <algorithm>
#include <typeinfo>

#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/StringSplit.h"
#include "SilentSource.h"

namespace DataBinding {

namespace {

constexpr wchar_t everyProperty[] = L"*";

/// Returns true for a text that splitting would give back as it is. Most announcements are such
/// texts, and need not be split. A list ends at a NUL. The text is not empty.
bool IsOneName(std::wstring_view names) noexcept {
  if (names.size() == 1 && names.front() == everyProperty[0]) return false;
  if (String::IsBlank(names.front()) || String::IsBlank(names.back())) return false;
  return std::ranges::none_of(names, [](wchar_t each) { return each == L',' || each == L'\0'; });
}

}  // namespace

DataSourceImpl::DataSourceImpl() = default;
DataSourceImpl::~DataSourceImpl() = default;

void DataSourceImpl::Destroy() {
  NoteEnd();
  delete this;
}

IDataContext* DataSourceImpl::GetDataContext() const {
  IDataSourceProvider* const provider = GetDataSourceProvider();
  return provider == nullptr ? nullptr : provider->GetDataContext();
}

void DataSourceImpl::SetDataSourceProvider(IDataSourceProvider* newProvider) {
  dataSourceProvider = {};
  if (newProvider != nullptr) dataSourceProvider = {newProvider->GetLiveness(), newProvider};
}

void DataSourceImpl::UpdateListeners(const VtrString& names) {
  if (names.IsEmpty()) return;
  if (!postConstructed) return NoteSilence(typeid(*this), broadcaster, names);
  if (IsOneName(names)) return broadcaster.UpdateListeners(names);
  UpdateList(names);
}

void DataSourceImpl::UpdateList(const VtrString& names) {
  const auto pieces = String::Split(names, L',', false, true);
  const auto self = GetLiveness();
  if (!pieces.empty() && pieces.front().Compare(everyProperty) != 0) {
    for (const auto& piece : pieces) {
      if (!self.IsValid()) return;
      broadcaster.UpdateListeners(piece);
    }
    return;
  }
  std::set<VtrString> excluded;
  for (std::size_t i = 1; i < pieces.size(); ++i) excluded.insert(pieces[i].Mid(1));
  UpdateAllBut(excluded, self);
}

void DataSourceImpl::UpdateAllBut(const std::set<VtrString>& excluded,
                                  const details::WeakReference& self) {
  for (const auto& [name, item] : *this) {
    if (item.type.get().IsFunction() || excluded.contains(name)) continue;
    broadcaster.UpdateListeners(name);
    if (!self.IsValid()) return;
  }
}

void details::DataSourceAccess::Complete(DataSourceImpl& source, IDataSourceProvider* provider) {
  source.SetDataSourceProvider(provider);
  source.PostConstruct();
  source.postConstructed = true;
}

details::PropertyChanges& details::DataSourceAccess::MakeChanges(DataSourceImpl& source) {
  auto& changes = source.propertyChanges;
  if (changes == nullptr) changes = std::make_unique<PropertyChanges>();
  return *changes;
}

}  // namespace DataBinding
