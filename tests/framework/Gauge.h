// SPDX-License-Identifier: Apache-2.0
/// A data source for binds, and a note of what a bind's subscriber sees.
#pragma once

#include <optional>
#include <string>

#include "../support/Scopes.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBinding/property/Property.h"

namespace DataBinding::Testing {

/// Values above 100 become 100, with an exception above 999.
class Gauge : public NamedDataSource {
 public:
  explicit Gauge(const VtrString& name = L"Gauge", int level = 1)
      : NamedDataSource(name),
        Level(this, L"Level", level,
              {.validate = [](const int& wanted) { return wanted < 0 ? L"is negative" : L""; },
               .changed =
                   [this](int, int now) {
                     if (now > 100) Level.Set(100);
                     if (now > 999) throw now;
                   }}) {}

  Property<int> Level;
  ReadOnlyProperty<int> Limit{this, L"Limit", 100};
  Property<double> Ratio{this, L"Ratio"};
  Property<VtrString> Unit{this, L"Unit", L"kg"};
};

/// Has its property only sometimes.
class Drawer : public NamedDataSource {
 public:
  Drawer() : NamedDataSource(L"Drawer") {}

  std::optional<Property<int>> Level;
};

class BindTest : public Scopes {
 protected:
  static Gauge* AddGauge(const ProviderPtr& provider, int level = 1,
                         const VtrString& name = L"Gauge") {
    auto* gauge = MakeDataSource<Gauge>(provider.get(), name, level).release();
    provider->AddDataSource(gauge);
    return gauge;
  }
  static Drawer* AddDrawer(const ProviderPtr& provider) {
    auto* drawer = MakeDataSource<Drawer>(provider.get()).release();
    provider->AddDataSource(drawer);
    return drawer;
  }
  /// Notes the value, or "-", at each notification.
  Subscription Watch(Framework::IDataBind<int>& bind) {
    return bind.SubscribeToChanges([this, watched = &bind] {
      const auto value = watched->Get();
      log += (value ? std::to_string(*value) : "-") + " ";
    });
  }
};

}  // namespace DataBinding::Testing
