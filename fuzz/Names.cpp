// SPDX-License-Identifier: Apache-2.0
/// Checks lists of names: one line is split, announced, and used as the categories of a scope,
/// which are matched with those of the next line.
#include <set>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/foundation/StringSplit.h"
#include "DataBinding/property/Property.h"
#include "Fuzz.h"

namespace Fuzz {

namespace {

using Names = std::vector<VtrString>;

class Source : public NamedDataSource {
 public:
  Source() : NamedDataSource(L"Source") {}
  Property<int> a{this, L"A"}, dash{this, L"-A"}, wide{this, L"\u00e4"}, size{this, L"Size"};
};

/// The names of a list, character by character; a NUL ends it.
Names NamesOf(const VtrString& list) {
  Names names;
  std::wstring name;
  for (const wchar_t* next = list;; ++next) {
    if (*next != L',' && *next != L'\0') {
      if (!name.empty() || !String::IsBlank(*next)) name += *next;
      continue;
    }
    while (!name.empty() && String::IsBlank(name.back())) name.pop_back();
    if (!name.empty()) names.emplace_back(std::wstring_view(name));
    name.clear();
    if (*next == L'\0') return names;
  }
}

Names Announced(const Source& source, const VtrString& list) {
  Names names = NamesOf(list);
  if (list.IsEmpty() || (!names.empty() && names.front() != L"*")) return names;
  std::set<VtrString> excluded;
  for (std::size_t i = 1; i < names.size(); ++i) excluded.insert(names[i].Mid(1));
  Names rest;
  for (const auto& item : source) {
    if (!excluded.contains(item.first)) rest.push_back(item.first);
  }
  return rest;
}

void CheckAnnouncement(const VtrString& list) {
  const auto source = MakeDataSource<Source>(nullptr);
  const Names expected = Announced(*source, list);
  std::set<VtrString> listened(expected.begin(), expected.end());
  listened.insert({list, L"A", L"-A", L"*", L"\u00e4", L"Size"});
  Names announced;
  std::vector<Subscription> subscriptions;
  subscriptions.reserve(listened.size());
  for (const VtrString& name : listened) {
    subscriptions.push_back(source->Register([&, name] { announced.push_back(name); }, name));
  }
  source->UpdateListeners(list);
  Expect(announced == expected, "each name of the list is announced, in order");
}

}  // namespace

void CheckInput(std::string_view input) {
  const VtrString list = VtrString::FromUtf8(TakeLine(input).substr(0, 300));
  const VtrString others = VtrString::FromUtf8(TakeLine(input));
  const Names names = NamesOf(list);
  Expect(String::Split(list, L',', false, true) == names, "a list splits into its names");
  std::wstring joined;
  for (const VtrStringView piece : String::SplitView(list, others, true, false)) {
    joined.append(std::wstring_view(piece)).append(std::wstring_view(others));
  }
  Expect(list.IsEmpty() || joined == std::wstring_view(list + others), "pieces make up the text");
  const DataSourceProvider scope(nullptr, list, nullptr);
  Expect(scope.GetCategories() == names, "a scope has the categories of its list");
  const Names wanted = NamesOf(others);
  Expect(scope.MatchCategory(others) == (std::ranges::find_first_of(names, wanted) != names.end()),
         "lists match that share a category");
  CheckAnnouncement(list);
}

}  // namespace Fuzz
