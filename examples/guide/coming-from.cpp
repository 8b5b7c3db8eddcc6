// SPDX-License-Identifier: Apache-2.0
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

// A receiver that ends its connections by itself, and may end while other listeners are still
// called.
class Label : public SupportsWeakPtr<Label> {
 public:
  explicit Label(IDataSource* counter)
      : value(counter, L"Value"),
        shown(counter->Register(BindWeak(AsWeakPtr(), &Label::Show), L"Value")) {}

 private:
  void Show() { std::cout << "label: " << value.Get() << '\n'; }

  PropertyRef<int> value;  // knows when the counter has gone
  Subscription shown;
};

// A receiver that a std::shared_ptr owns and that is tracked.
class Panel {
 public:
  void OnCounted(int value) { std::cout << "panel: " << value << '\n'; }
};

void Connect(Counter& counter) {
  {
    const Label label(&counter);
    counter.value.Set(1);
  }
  counter.value.Set(2);  // nobody listens

  auto panel = std::make_shared<Panel>();
  const Subscription heard = counted.Subscribe(BindWeak(panel, &Panel::OnCounted));
  counted.Send(3);   // direct: runs now
  counted.Raise(4);  // queued: runs in the next idle pass
  IAppEventBroadcaster::GetInstance().DispatchPendingEvents();
  panel.reset();
  counted.Send(5);  // skipped
}

// A signal without a name, which is a member of its sender.
struct Slider {
  CallbackList<int> moved;
};

void Emit() {
  Slider slider;
  Slider mirror;
  const Subscription print = slider.moved.Add([](int x) { std::cout << "moved to " << x << '\n'; });
  const Subscription first = slider.moved.AddOnce([](int) { std::cout << "for the first time\n"; });
  const Subscription relay = slider.moved.Add([&](int x) { mirror.moved.Call(x); });
  slider.moved.Call(1);  // both print
  {
    const PauseListening quiet(print);
    slider.moved.Call(2);  // nobody prints
  }
  slider.moved.Call(3);
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
  std::cout << "text: " << text << '\n';  // written when the join is made
  text = L"7";
  join.Commit();
  std::cout << "value: " << *counter.value << '\n';
  text = L"100";
  std::cout << "refused: " << join.Commit().reason << '\n';
}

void Freeze(Counter& counter) {
  const Subscription value = counter.Register([] { std::cout << "notified once\n"; }, L"Value");
  const PropertyBatch frozen(counter);
  counter.value.Set(8);
  counter.value.Set(9);
}

int main() {
  DataSourceProvider scope(nullptr, L"page", nullptr);
  auto& counter = Emplace<Counter>(scope);
  Connect(counter);
  Emit();
  Notify(counter);
  BindTo(counter, scope);
  Freeze(counter);
}
