// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;
using Framework::BindChange;

struct Guest {
  int id = 0;
  VtrString name;
  int seats = 1;
};

VtrString AtLeastOne(const int& seats) { return seats < 1 ? L"one seat at least" : L""; }

constexpr auto FieldsOf(const Guest*) {
  return Fields(Key(L"Id", &Guest::id, {.readOnly = true}), Field(L"Name", &Guest::name),
                Field(L"Seats", &Guest::seats, {.validate = AtLeastOne}));
}

class Bookings : public NamedDataSource {
 public:
  Bookings() : NamedDataSource(L"Bookings") {
    guests.Assign({{1, L"Ann", 2}, {2, L"Bob", 4}, {3, L"Cleo", 1}});
  }
  List<Guest> guests{this, L"Guests"};
};

/// The fields of one guest. The form knows names only.
class Form {
 public:
  explicit Form(IDataSourceProvider* scope)
      : name(scope, L"Guest", L"Name"), seats(scope, L"Guest", L"Seats") {}

  void Show(BindChange change) {
    constexpr const char* what[] = {"edited", "chosen", "nothing", "another"};
    std::cout << what[static_cast<int>(change)];
    if (name.HasValue()) std::cout << ": " << name.Get() << ", " << seats.Get();
    std::cout << '\n';
  }

  Framework::DataBind<VtrString> name;
  Framework::DataBind<int> seats;
  Subscription seen = seats.SubscribeToChanges([this](BindChange change) { Show(change); });
};

int main() {
  DataSourceProvider window(nullptr, L"window", nullptr);
  Framework::ListBind<Guest> shown(&window, L"Bookings", L"Guests");
  Selection<Guest> chosen(shown);
  const CurrentRow current(&window, L"Guest", chosen);
  Form form(&window);
  const Subscription gone = chosen.Observe(
      {.gone = [&](RowId id) { std::cout << shown.RowAt(id).name << " has cancelled\n"; }});

  auto& bookings = Emplace<Bookings>(window);
  std::cout << form.seats.Status() << '\n';
  chosen.ChooseKey(2);
  chosen.ChooseKey(3);
  std::cout << form.seats.Set(0) << '\n';
  form.seats.Set(2);

  bookings.guests.Assign({{3, L"Cleo", 5}, {1, L"Ann", 2}});  // Cleo stays chosen
  bookings.guests.RemoveKey(3);

  chosen.ChooseKey(1);
  window.DeleteLocalDataSourceInstance(L"Bookings");
  Emplace<Bookings>(window);  // has a row of the key that was chosen
}
