// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/ScopeList.h"

#include "../support/Scopes.h"
#include "DataBinding/lists/Selection.h"

namespace DataBinding::Testing {
namespace {

class ScopeLists : public Scopes {
 protected:
  std::string Listed() {
    std::string names;
    for (const ChildScope& row : list.Rows()) {
      names += row.scope ? row.scope->GetCategories().back().ToUtf8() : "?";
    }
    return names;
  }

  ProviderPtr early = MakeProvider(parent.get(), L"doc,E");
  ScopeList list{*parent, L"doc,page"};
};

TEST_F(ScopeLists, HoldTheScopesOfTheirCategoriesInTheOrderOfTheirComing) {
  ProviderPtr doc = MakeProvider(parent.get(), L"doc,D");
  const ProviderPtr other = MakeProvider(parent.get(), L"other");
  const ProviderPtr page = MakeProvider(parent.get(), L"page,P");
  EXPECT_EQ(Listed(), "EDP");
  Add(doc, L"Doc");
  const Subscription seen = list.Rows().Observe({.before = [&](const auto& change) {
    if (change[0].scope->GetLocalDataSourceInstance(L"Doc") != nullptr) log += "found ";
  }});
  doc.reset();
  EXPECT_EQ(Notes(), "found ~Doc");
  EXPECT_EQ(Listed(), "EP");
  parent.reset();
  EXPECT_EQ(Listed(), "");
}

TEST_F(ScopeLists, TakeWhatChangesWhileTheyTell) {
  ProviderPtr brief;
  const Subscription seen = list.Rows().Observe({.before = [&](const auto& change) {
    if (change.Kind() != ListChangeKind::Inserted || brief != nullptr) return;
    brief = MakeProvider(parent.get(), L"doc,B");
    early.reset();
    EXPECT_EQ(Listed(), "?");
    brief.reset();
    brief = MakeProvider(parent.get(), L"doc,L");
  }});
  const ProviderPtr doc = MakeProvider(parent.get(), L"doc,D");
  EXPECT_EQ(Listed(), "DL");
}

}  // namespace
}  // namespace DataBinding::Testing
