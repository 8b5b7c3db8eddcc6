// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/models/ScopeTreeModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <memory>

#include <gtest/gtest.h>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding::Qt6::Testing {
namespace {

struct Page : NamedDataSource {
  Page() : NamedDataSource(L"Page") {}
  Property<VtrString> title{this, L"Title", {}, {.validate = &NotEmpty}};
  Property<bool> done{this, L"Done", false};
  static VtrString NotEmpty(const VtrString& text) { return text.IsEmpty() ? L"is empty" : L""; }
};

class ScopeTreeModelTest : public testing::Test {
 protected:
  DataSourceProviderPtr Open(IDataSourceProvider* above, const wchar_t* title,
                             const wchar_t* category = L"page") {
    DataSourceProviderPtr scope{new DataSourceProvider(above, category, nullptr)};
    auto page = MakeDataSource<Page>(scope.get());
    page->title.Set(title);
    scope->AddDataSource(page.release());
    return scope;
  }
  QString Shown(const ScopeTreeModel& model, const QModelIndex& parent = {}) {
    QString text;
    for (int row = 0; row < model.rowCount(parent); ++row) {
      const QModelIndex index = model.index(row, 0, parent);
      text += index.data().toString();
      if (model.rowCount(index) > 0) text += "(" + Shown(model, index) + ")";
    }
    return text;
  }

  DataSourceProviderPtr upper{new DataSourceProvider(nullptr, L"", nullptr)};
};

TEST_F(ScopeTreeModelTest, ShowsScopesThatComeAndGoByTheTextsOfTheirSources) {
  const auto early = Open(upper.get(), L"A");
  auto inner = Open(early.get(), L"b");
  ScopeTreeModel model(*upper, L"page", {{L"Page", L"Title"}, {L"Page", L"Done", "Ready"}});
  const QAbstractItemModelTester check(&model,
                                       QAbstractItemModelTester::FailureReportingMode::Fatal);
  const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);

  auto late = Open(upper.get(), L"C");
  const auto other = Open(upper.get(), L"X", L"tool");
  const auto deep = Open(inner.get(), L"d");
  EXPECT_EQ(Shown(model), "A(b(d))C");
  EXPECT_EQ(model.ScopeAt(model.index(1, 0)), late.get());
  SetProperty(late->GetLocalDataSourceInstance(L"Page"), L"Title", VtrString(L"E"));
  EXPECT_EQ(Shown(model), "A(b(d))E");
  EXPECT_GT(changes.size(), 0);

  const QSignalSpy refusals(&model, &ScopeTreeModel::refused);
  EXPECT_TRUE(model.setData(model.index(1, 1), Qt::Checked, Qt::CheckStateRole));
  EXPECT_EQ(model.index(1, 1).data(Qt::CheckStateRole).toInt(), Qt::Checked);
  EXPECT_FALSE(model.setData(model.index(1, 0), ""));
  EXPECT_EQ(refusals.value(0).value(1).toString(), "is empty");
  EXPECT_EQ(model.headerData(1, Qt::Horizontal).toString(), "Ready");
  EXPECT_EQ(model.headerData(0, Qt::Horizontal).toString(), "Title");
  inner.reset();
  EXPECT_EQ(Shown(model), "AE");
  late.reset();
  EXPECT_EQ(Shown(model), "A");
  upper.reset();
  EXPECT_EQ(model.rowCount(), 0);
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing
