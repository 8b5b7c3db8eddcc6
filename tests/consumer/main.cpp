// SPDX-License-Identifier: Apache-2.0
// Writes a data source, finds it by name, hears of a change and raises an event, with the installed
// package alone.
#include <DataBinding/DataBinding.h>

using namespace DataBinding;

namespace {

class Lamp : public NamedDataSource {
 public:
  Lamp() : NamedDataSource(L"Lamp") { MakeEventSource(L"Failed"); }
  Property<bool> on{this, L"On", false};
  ReadOnlyProperty<VtrString> maker{this, L"Maker", L"Vega \"E\""};
  ComputedProperty<int> watts{this, L"Watts", [this] { return *on ? 60 : 0; }, on};
};

class Switch : public DataListener {
 public:
  Switch() {
    AddDataListener(L"Lamp", L"On", [this] { lit = !lit; });
  }
  bool lit = false;

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}
};

constinit const AppEvent<VtrString> switched{L"Switched"};

}  // namespace

int main() {
  DataSourceProvider house(nullptr, L"house", nullptr);
  const DataSourceConstructor<Lamp> registration(L"Lamp", L"house");
  IDataSource& lamp = house.GetDataSourceReference(L"Lamp");
  const auto raise = [&] { switched.Raise(L"Lamp"); };
  const Subscription subscription = lamp.Register(raise, L"On");
  Switch onTheWall;
  onTheWall.SetDataSourceProvider(&house);
  const SetResult set = SetProperty(&lamp, L"On", true);
  const auto events = IAppEventBroadcaster::GetInstance().GetWeakPtr();
  return set.changed && onTheWall.lit && events->HasPendingEvents() ? 0 : 1;
}
