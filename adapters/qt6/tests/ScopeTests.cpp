// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/scopes/Scope.h"

#include <QAction>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QVBoxLayout>
#include <memory>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/datasource/DataSourceProvider.h"

namespace DataBinding::Qt6 {
namespace {

using Scopes = std::vector<IDataSourceProvider*>;

class QtScope : public testing::Test {
 protected:
  /// Notes each scope that the object is told.
  Scopes& Heard(QObject* object) {
    auto& heard = notes.emplace_back(std::make_unique<Scopes>());
    FollowScope(object, [&told = *heard](IDataSourceProvider* scope) { told.push_back(scope); });
    return *heard;
  }

  std::vector<std::unique_ptr<Scopes>> notes;
  DataSourceProviderPtr outer{new DataSourceProvider(nullptr, L"", nullptr)};
  DataSourceProviderPtr inner{new DataSourceProvider(nullptr, L"", nullptr)};
  QWidget window;
};

TEST_F(QtScope, IsInheritedByChildrenAndDialogues) {
  QLineEdit edit(&window);
  QDialog dialogue(&window);
  QAction action(&dialogue);
  Scopes& heard = Heard(&edit);

  SetScope(&window, outer.get());
  EXPECT_EQ(ScopeOf(&action), outer.get());
  SetScope(&dialogue, inner.get());
  EXPECT_EQ(ScopeOf(&action), inner.get());
  SetScope(&dialogue, nullptr);
  EXPECT_EQ(ScopeOf(&action), outer.get());
  EXPECT_EQ(heard, (Scopes{nullptr, outer.get()}));
}

TEST_F(QtScope, IsFoundWhenALayoutMovesAParent) {
  QVBoxLayout layout(&window);
  auto* box = new QGroupBox;
  auto* edit = new QLineEdit;
  Scopes& heard = Heard(edit);
  SetScope(&window, outer.get());

  (new QVBoxLayout(box))->addWidget(edit);
  layout.addWidget(box);
  EXPECT_EQ(heard, (Scopes{nullptr, outer.get()}));
  QWidget other;
  SetScope(&other, inner.get());
  box->setParent(&other);

  EXPECT_EQ(heard, (Scopes{nullptr, outer.get(), inner.get()}));
}

TEST_F(QtScope, FollowsAnActionThatMoves) {
  QWidget other;
  SetScope(&window, outer.get());
  SetScope(&other, inner.get());
  QAction action(&window);
  Scopes& heard = Heard(&action);

  action.setParent(&other);

  EXPECT_EQ(heard, (Scopes{outer.get(), inner.get()}));
}

TEST_F(QtScope, EndsWithItsProvider) {
  QLineEdit edit(&window);
  Scopes& heard = Heard(&edit);
  SetScope(&window, outer.get());
  DataSourceProviderPtr child(outer->CreateDataSourceProvider(L"", nullptr));
  SetScope(&edit, child.get());
  const IDataSourceProvider* const former = child.get();

  child.reset();
  EXPECT_EQ(ScopeOf(&edit), nullptr);
  outer.reset();

  ASSERT_EQ(heard.size(), 4U);
  EXPECT_EQ(heard[2], former);
  EXPECT_EQ(heard[3], nullptr);
}

TEST_F(QtScope, MayBeSetAnewByAFollower) {
  QLineEdit edit(&window);
  FollowScope(&edit, [&](IDataSourceProvider* scope) {
    if (scope == outer.get()) SetScope(&edit, inner.get());
  });
  Scopes& heard = Heard(&edit);

  SetScope(&window, outer.get());

  EXPECT_EQ(heard, (Scopes{nullptr, inner.get()}));
}

TEST_F(QtScope, FollowerMayEndTheObjectAndItsParent) {
  auto* box = new QGroupBox(&window);
  auto* edit = new QLineEdit(box);
  new QLineEdit(box);
  FollowScope(edit, [box](IDataSourceProvider* scope) {
    if (scope != nullptr) delete box;
  });
  Scopes& heard = Heard(edit);

  SetScope(&window, outer.get());

  EXPECT_TRUE(window.findChildren<QWidget*>().isEmpty());
  EXPECT_EQ(heard, Scopes{nullptr});
}

TEST_F(QtScope, FollowerThatThrowsKeepsNobodyFromHearing) {
  FollowScope(&window, [](IDataSourceProvider* scope) {
    if (scope != nullptr) throw std::runtime_error("no room");
  });
  Scopes& heard = Heard(&window);

  SetScope(&window, outer.get());

  EXPECT_EQ(heard.size(), 2U);
}

TEST_F(QtScope, ObjectsThatEndAreToldNothing) {
  auto* dialogue = new QDialog(&window);
  Scopes& heard = Heard(new QLineEdit(dialogue));
  SetScope(dialogue, outer.get());

  delete dialogue;

  EXPECT_EQ(heard, (Scopes{nullptr, outer.get()}));
}

}  // namespace
}  // namespace DataBinding::Qt6
