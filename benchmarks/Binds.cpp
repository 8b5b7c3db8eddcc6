// SPDX-License-Identifier: Apache-2.0
#include "Binds.h"

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/property/Property.h"

namespace Benchmarks {

namespace {

using DataBinding::DataSourceProvider;
using DataBinding::MakeDataSource;

class Heater : public DataBinding::NamedDataSource {
 public:
  Heater() : NamedDataSource(L"Heater") {}

  DataBinding::Property<double> target{this, L"Target", 0.0};
};

/// A scope with a source, and the value of its property that was shown last.
class HeatedScope {
 public:
  HeatedScope() { scope.AddDataSource(source); }
  HeatedScope(const HeatedScope&) = delete;
  HeatedScope& operator=(const HeatedScope&) = delete;

  void Set(double wanted) { benchmark::DoNotOptimize(source->target.Set(wanted)); }
  [[nodiscard]] double Shown() const { return shown; }

 protected:
  DataSourceProvider scope{nullptr, nullptr, nullptr};
  Heater* source = MakeDataSource<Heater>(&scope).release();
  double shown = 0.0;
};

/// A callback at the source, which reads the property directly.
class CallbackOfSource : public HeatedScope {
 private:
  DataBinding::Subscription watching =
      source->Register([this] { shown = source->target.Get(); }, L"Target");
};

class OurBind : public HeatedScope {
 protected:
  DataBinding::Framework::DataBind<double> bind{&scope, L"", L"Heater", L"Target"};
};

/// A subscriber that is given the value.
class ToldValue : public OurBind {
 private:
  DataBinding::Subscription watching = bind.SubscribeToValue([this](double now) { shown = now; });
};

/// A subscriber that asks the bind for the value.
class ToldChange : public OurBind {
 private:
  DataBinding::Subscription watching = bind.SubscribeToChanges([this] { shown = *bind.Get(); });
};

[[maybe_unused]] const bool bindsMeasured[] = {
    MeasureBind<CallbackOfSource>("callback"),
    MeasureBind<ToldValue>("ours"),
    MeasureBind<ToldChange>("asking"),
};

}  // namespace

}  // namespace Benchmarks
