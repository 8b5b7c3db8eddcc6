// SPDX-License-Identifier: Apache-2.0
/// A source that has a property for every kind of widget, and a window to bind in.
#pragma once

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QWidget>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/framework/AnyBind.h"
#include "DataBinding/property/Property.h"
#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/widgets/Bind.h"

namespace DataBinding::Qt6::Testing {

/// Counts its changes, and refuses all of them on request.
class Thing : public NamedDataSource {
 public:
  Thing() : NamedDataSource(L"Thing") {}

  template <class T>
  PropertyOptions<T> Options() {
    return {.validate = [this](const T&) { return refuses ? L"is <b>refused</b>" : L""; },
            .changed =
                [this](const T&, const T&) {
                  ++changes;
                  if (onChange) onChange();
                }};
  }

  bool refuses = false;
  int changes = 0;
  std::function<void()> onChange;
  Property<VtrString> Text{this, L"Text", L"", Options<VtrString>()};
  Property<int> Number{this, L"Number", 0, Options<int>()};
  Property<double> Real{this, L"Real", 0, Options<double>()};
  Property<bool> Flag{this, L"Flag", false, Options<bool>()};
  ReadOnlyProperty<VtrString> FixedText{this, L"FixedText", L"x"};
  ReadOnlyProperty<int> FixedNumber{this, L"FixedNumber", 1};
  ReadOnlyProperty<double> FixedReal{this, L"FixedReal", 1};
  ReadOnlyProperty<bool> FixedFlag{this, L"FixedFlag", true};
};

/// A window that has the focus elsewhere, within a scope that has a Thing.
class BoundWindow : public testing::Test {
 protected:
  BoundWindow() {
    SetScope(&window, scope.get());
    window.show();
    QApplication::setActiveWindow(&window);
    elsewhere.setFocus();
  }

  static Thing* AddThing(const DataSourceProviderPtr& provider) {
    auto* added = MakeDataSource<Thing>(provider.get()).release();
    provider->AddDataSource(added);
    return added;
  }
  void RemoveThing() {
    scope->DeleteLocalDataSourceInstance(L"Thing");
    thing = nullptr;
  }
  static bool Shows(const QWidget& widget, const char* property) {
    return widget.property(property).toBool();
  }

  DataSourceProviderPtr scope{new DataSourceProvider(nullptr, L"", nullptr)};
  Thing* thing = AddThing(scope);
  QWidget window;
  QLineEdit elsewhere{&window};
  QLabel hint{&window};
};

}  // namespace DataBinding::Qt6::Testing
