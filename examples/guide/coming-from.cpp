#include <iostream>
#include <memory>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Counter : public NamedDataSource {
 public:
  Counter() : NamedDataSource(L"Counter") {}

  Property<int> value{
      this, L"Value", 0, {.validate = [](int n) { return n < 100 ? L"" : L"100 is too much."; }}};
  ComputedProperty<bool> isEven{this, L"IsEven", [this] { return *value % 2 == 0; }, value};
};

inline constinit const AppEvent<int> counted{L"Counted"};

// A receiver whose end ends its connections.
class Label {
 public:
  explicit Label(IDataSource* counter)
      : shown(counter->Register([this, counter] { Show(counter); }, L"Value")) {}

 private:
  void Show(IDataSource* counter) {
    std::cout << "label: " << *GetProperty<int>(counter, L"Value") << '\n';
  }

  Subscription shown;  // last, so that it ends first
};

// A receiver that is tracked, for callbacks that somebody else keeps.
class Panel : public SupportsWeakPtr<Panel> {
 public:
  void OnCounted(int value) { std::cout << "panel: " << value << '\n'; }
};

void Connect(Counter& counter) {
  {
    const Label label(&counter);
    counter.value.Set(1);
  }
  counter.value.Set(2);  // nobody listens

  auto panel = std::make_unique<Panel>();
  const Subscription heard = counted.Subscribe(BindWeak(panel->AsWeakPtr(), &Panel::OnCounted));
  counted.Send(3);   // direct: runs now
  counted.Raise(4);  // queued: runs in the next idle pass
  IAppEventBroadcaster::GetInstance().DispatchPendingEvents();
  panel.reset();
  counted.Send(5);  // skipped
}

void Notify(Counter& counter) {
  const Subscription value = counter.Register([] { std::cout << "Value changed\n"; }, L"Value");
  const Subscription even = counter.Register([] { std::cout << "IsEven changed\n"; }, L"IsEven");
  counter.value.Set(6);           // both, since IsEven follows Value
  counter.UpdateListeners(L"*");  // "everything may have changed"
}

void BindTo(Counter& counter, IDataSourceProvider& scope) {
  VtrString text;
  Framework::DataBind<int> value(&scope, L"Counter", L"Value");
  auto join = TwoWay(
      value, [&] { return text; }, [&](const VtrString& shown) { text = shown; },
      TextConverter<int>());
  std::cout << "text: " << text.ToUtf8() << '\n';  // written when the join is made
  text = L"7";
  join.Commit();
  std::cout << "value: " << *counter.value << '\n';
  text = L"100";
  std::cout << "refused: " << join.Commit().reason.ToUtf8() << '\n';
}

void Freeze(Counter& counter) {
  const Subscription value = counter.Register([] { std::cout << "notified once\n"; }, L"Value");
  const PropertyBatch frozen(counter);
  counter.value.Set(8);
  counter.value.Set(9);
}

int main() {
  DataSourceProvider scope(nullptr, L"page", nullptr);
  auto* counter = MakeDataSource<Counter>(&scope).release();
  scope.AddDataSource(counter);
  Connect(*counter);
  Notify(*counter);
  BindTo(*counter, scope);
  Freeze(*counter);
}
