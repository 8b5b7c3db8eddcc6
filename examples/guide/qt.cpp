// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QCloseEvent>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableView>
#include <QTimer>
#include <iostream>

#include <DataBinding/DataBinding.h>
#include <DataBindingQt6/DataBindingQt6.h>

using namespace DataBinding;

namespace {

// The model knows nothing of Qt.
struct Guest {
  int number = 0;
  VtrString name;
  bool isHere = false;
};
constexpr auto FieldsOf(const Guest* /*row*/) {
  return Fields(Key(L"Number", &Guest::number), Field(L"Name", &Guest::name),
                Field(L"Here", &Guest::isHere));
}

class Party final : public NamedDataSource {
 public:
  Party() : NamedDataSource(L"Party") {}

  Property<VtrString> place{this, L"Place", L"Garden"};
  Property<int> seats{this, L"Seats", 1, {.validate = AtLeastOne}};
  List<Guest> guests{this, L"Guests"};

 private:
  static VtrString AtLeastOne(const int& seats) { return seats < 1 ? L"Somebody must sit." : L""; }
};

// The window knows names.
class PartyWindow final : public QWidget {
 public:
  explicit PartyWindow(IDataSourceProvider& scope)
      : rows(&scope, L"Party", L"Guests"),
        guests(rows, {{L"Number", "No."}, {L"Name", "Guest"}, {L"Here", "Here"}}) {
    Qt6::SetScope(this, &scope);
    Qt6::Bind(&place, L"Party", L"Place");
    Qt6::Bind(&seats, L"Party", L"Seats", {.reasonIn = &reason});
    table.setModel(&guests);
    table.setSortingEnabled(true);
    table.sortByColumn(0, Qt::AscendingOrder);

    layout.addRow("Place", &place);
    layout.addRow("Seats", &seats);
    layout.addRow(&reason);
    layout.addRow(&table);
  }

  QLineEdit place;
  QSpinBox seats;
  QLabel reason;
  QTableView table;

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->setAccepted(Qt6::EditsOf(this).CommitAll().IsAccepted());
  }

 private:
  Framework::AnyListBind rows;
  Qt6::ListModel guests;
  QFormLayout layout{this};
};

void Press(QWidget& widget, int key, const QString& text = {}) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &press);
}

std::ostream& operator<<(std::ostream& out, const QString& text) { return out << qPrintable(text); }

/// Does what a user would do, and prints what is seen of it.
void Play(PartyWindow& window, Party& party) {
  Press(window.place, Qt::Key_End);
  Press(window.place, Qt::Key_S, "s");
  std::cout << "typed: " << window.place.text() << ", filed: " << *party.place << '\n';
  Press(window.place, Qt::Key_Return);
  std::cout << "filed: " << *party.place << '\n';

  Press(window.seats, Qt::Key_Down);
  std::cout << "refused: " << window.seats.value() << ", " << window.reason.text() << '\n';
  std::cout << "closes: " << std::boolalpha << window.close() << '\n';
  Press(window.seats, Qt::Key_Escape);
  std::cout << "seats again: " << window.seats.value() << '\n';

  party.guests.Assign({{1, L"Ada", true}, {2, L"Bo", false}});
  const QAbstractItemModel& rows = *window.table.model();
  std::cout << rows.rowCount() << " rows, first: " << rows.index(0, 1).data().toString() << '\n';
  std::cout << "closes: " << window.close() << '\n';
}

int RunParty(int count, char** arguments) {
  QApplication application(count, arguments);
  Qt6::Install();
  const Qt6::QtIdlePass pass;

  DataSourceProvider scope(nullptr, L"party", nullptr);
  auto& party = Emplace<Party>(scope);
  PartyWindow window(scope);
  window.show();

  QTimer::singleShot(0, &window, [&] { Play(window, party); });
  return QApplication::exec();
}

}  // namespace

int main(int count, char** arguments) { return RunParty(count, arguments); }
