// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <string>

#include <DataBinding/DataBinding.h>

/// The application's own: what its scopes and selections stand for.
class DataBinding::IDataContext {
 public:
  const char* title;
};

using namespace DataBinding;

class Cpu : public NamedDataSource {
 public:
  Cpu() : NamedDataSource(L"Cpu") {}

  Property<double> limit{this, L"Limit", 90.0};
};

class SelectionSource : public NamedDataSource {
 public:
  SelectionSource() : NamedDataSource(L"Selection") {}

  Property<IDataContext*> current{this, L"Current"};
};

const AppEvent<IDataContext*> removeItem(L"RemoveItem");

void Follow(IDataSourceProvider& scope) {
  const Framework::DataBind<double> limit(&scope, L"Cpu", L"Limit");
  std::cout << "before: " << limit.Get() << '\n';

  Framework::DataBind<double> followed = limit;  // a copy has a connection of its own
  const Subscription enabled = followed.SubscribeToChanges([](Framework::BindChange change) {
    if (change == Framework::BindChange::Came) std::cout << "there is a limit\n";
  });
  const Subscription shown =
      followed.SubscribeToValue([](double now) { std::cout << "limit: " << now << '\n'; });

  Emplace<Cpu>(scope);  // both binds connect
  followed.Set(95.0);
  std::cout << "the other one: " << *limit.Get() << '\n';
}

/// Stands for a widget: what it shows, and what the user has typed.
struct TextBox {
  VtrString text;
  bool isGrey = false;
  bool isRed = false;
};

void Edit(IDataSourceProvider& scope) {
  TextBox box;
  Framework::DataBind<double> limit(&scope, L"Cpu", L"Limit");
  auto join = TwoWay(
      limit, [&] { return box.text; }, [&](const VtrString& text) { box.text = text; },
      TextConverter<double>(),
      [](const double& x) { return x <= 100 ? L"" : L"It must be at most 100."; });
  join.WhenAbsent([&] { box.isGrey = true; });

  const auto type = [&](const wchar_t* text) {
    box.text = text;
    const SetResult result = join.Commit();
    std::cout << "typed " << box.text << ": " << (result.IsAccepted() ? L"accepted" : result.reason)
              << '\n';
  };
  type(L"80");
  type(L"800");
  type(L"eighty");
}

void FillIn(IDataSourceProvider& scope) {
  TextBox box;
  Framework::DataBind<double> limit(&scope, L"Cpu", L"Limit");
  EditSession edit(
      limit, [&] { return box.text; }, [&](const VtrString& text) { box.text = text; },
      TextConverter<double>());
  const Subscription hint = edit.OnState([&](EditState state) {
    box.isRed = state == EditState::Refused || state == EditState::Conflict;
    if (box.isRed) std::cout << box.text << " stays: " << edit.Reason() << '\n';
  });
  EditGroup window;
  window.Add(edit);

  box.text = L"forty";  // what the widget's handlers do
  edit.Typed();
  window.CommitAll();  // the user presses Save
  box.text = L"40";
  edit.Typed();
  limit.Set(60);  // by somebody else
  window.CommitAll();
  edit.Revert();  // the user presses Escape
  std::cout << "shown again: " << box.text << '\n';
}

void ShowLoad(IDataSourceProvider& scope) {
  IdlePass idle([] { std::cout << "wake\n"; });  // the loop calls idle.Run soon
  Framework::DataBind<double> limit(&scope, L"Cpu", L"Limit");
  const auto label =
      OneWay(limit, idle, [](const double& now) { std::cout << "label: " << now << '\n'; });

  for (int percent = 1; percent <= 50; ++percent) limit.Set(percent);
  idle.Run();
}

void Press(IDataSourceProvider& scope) {
  IDataContext letter{"letter"};
  auto& selection = Emplace<SelectionSource>(scope);

  Framework::EventBind remove(L"", L"", L"RemoveItem");
  remove.SetDataContextBind(
      std::make_unique<Framework::DataBind<IDataContext*>>(&scope, L"Selection", L"Current"),
      nullptr);
  const Subscription enabling = remove.SubscribeToChanges(
      [&] { std::cout << (remove.CanRaise() ? "enabled\n" : "disabled\n"); });
  selection.current.Set(&letter);  // the button hears of it
  { const EventHold saving(removeItem); }

  const Subscription heard = removeItem.Subscribe(
      [](IDataContext* context) { std::cout << "remove the " << context->title << '\n'; });
  remove.Raise();
  IAppEventBroadcaster::GetInstance().DispatchPendingEvents();
}

void Explain(IDataSourceProvider& scope) {
  const Framework::DataBind<int> wrong(&scope, L"Cpu", L"Limit");
  const Framework::DataBind<double> mistyped(&scope, L"CPU", L"Limit");
  const Framework::DataBind<double> right(&scope, L"page", L"Cpu", L"Limit");
  for (const BindDiagnosis& each : Diagnose(scope)) {
    if (each.status.IsConnected()) continue;
    std::cout << each.scopeName << ", " << each.source << '.' << each.property << ": "
              << each.status << '\n';
  }
}

int main() {
  DataSourceProvider scope(nullptr, L"page", nullptr);
  Follow(scope);
  Edit(scope);
  FillIn(scope);
  ShowLoad(scope);
  Press(scope);
  Explain(scope);
}
