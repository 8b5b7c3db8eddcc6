// SPDX-License-Identifier: Apache-2.0
#include "Window.h"

using namespace DataBinding;

/// Adds the fields of a contact, bound to the source of that name.
static void AddFields(QFormLayout* form, const VtrString& source) {
  auto* hint = new QLabel;
  hint->setObjectName("hint");
  for (const auto* field : {L"Name", L"Phone", L"Email", L"City"}) {
    auto* edit = new QLineEdit;
    form->addRow(QString::fromWCharArray(field), edit);
    Qt6::Bind(edit, source, field, {.reasonIn = hint});
  }
  auto* isFriend = new QCheckBox("is a friend");
  form->addRow("", isFriend);
  form->addRow(hint);
  Qt6::Bind(isFriend, source, L"Friend");
}

bool View::Holds(const Contact& each) const {
  const VtrString all = each.name + L"\n" + each.phone + L"\n" + each.email + L"\n" + each.city;
  return Qt6::ToQString(all).contains(Qt6::ToQString(*search), Qt::CaseInsensitive);
}

VtrString View::Count() const {
  return VtrString().Format(L"%d of %d contacts", shown.Size(), book.contacts.Size());
}

Window::Window(AddressBook& shownBook, IDataSourceProvider& root)
    : book(shownBook),
      outer(root),
      scope(root.CreateDataSourceProvider(L"", nullptr)),
      view(Emplace<View>(*scope, shownBook)),
      chosen(book.contacts),
      current(scope.get(), L"Contact", chosen),
      draft(scope.get(), L"Draft", drafted),
      model(view.shown, {{L"Name"}, {L"Phone"}, {L"Email"}, {L"City"}, {L"Friend"}}) {
  Qt6::SetScope(this, scope.get());
  setWindowTitle("Address book");
  resize(1160, 640);
  AddToolBar();
  table->setModel(&model);
  connect(
      &model, &Qt6::ListModel::refused, this,
      [this](const QModelIndex&, const QString& reason) { Say(Qt6::ToVtrString(reason)); },
      Qt::QueuedConnection);
  new Qt6::ListSelection(table->selectionModel(), chosen);  // it belongs to the view
  table->setSortingEnabled(true);
  table->sortByColumn(0, Qt::AscendingOrder);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->verticalHeader()->hide();
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  auto* parts = new QSplitter;
  parts->addWidget(table);
  parts->addWidget(MakeCard());
  parts->setStretchFactor(0, 1);
  setCentralWidget(parts);
  auto* count = new QLabel;
  statusBar()->addWidget(count);
  Qt6::Bind(count, L"View", L"Count");
}

void Window::AddToolBar() {
  auto* bar = addToolBar("Contacts");
  const auto add = [&](const char* text, auto act) {
    return bar->addAction(text, this, [this, act] {
      if (Qt6::EditsOf(this).CommitAll().IsAccepted()) act();
    });
  };
  add("Add", [this] { Ask({}); });
  add("Edit", [this] {
    if (const auto id = chosen.CurrentId()) Ask(book.contacts.RowAt(*id));
  });
  add("Remove", [this] { book.Remove(chosen.Ids()); });
  Qt6::BindEnabled(add("Undo", [this] { book.UndoRemoval(); }), L"AddressBook", L"CanUndo");
  bar->addSeparator();
  add("Open", [this] {
    const QString file = QFileDialog::getOpenFileName(this);
    if (!file.isEmpty()) Say(book.Load(file.toStdString()));
  });
  add("Save", [this] {
    const QString file = QFileDialog::getSaveFileName(this);
    if (!file.isEmpty()) Say(book.Save(file.toStdString()));
  });
  add("Add 10,000", [this] { book.AddMany(10'000); });
  add("New window", [this] {
    auto* other = new Window(book, outer);
    other->setAttribute(Qt::WA_DeleteOnClose);
    other->show();
  });
  auto* search = new QLineEdit;
  search->setPlaceholderText("Search");
  search->setClearButtonEnabled(true);
  bar->addWidget(search);
  Qt6::Bind(search, L"View", L"Search", {.commitOn = Qt6::CommitOn::Typing});
}

QWidget* Window::MakeCard() {
  auto* card = new QFrame;
  card->setObjectName("card");
  auto* form = new QFormLayout(card);
  auto* name = new QLabel;
  name->setObjectName("name");
  form->addRow(name);
  Qt6::Bind(name, L"Contact", L"Name");
  AddFields(form, L"Contact");
  return card;
}

/// Has a copy of a contact edited, or a new contact, which has no number yet. Where it is refused,
/// the reason is said and the dialogue stays.
void Window::Ask(const Contact& contact) {
  drafts.Assign({contact});
  drafted.ChooseKey(contact.id);
  auto* dialogue = new QDialog(this);
  dialogue->setAttribute(Qt::WA_DeleteOnClose);
  auto* form = new QFormLayout(dialogue);
  AddFields(form, L"Draft");
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::rejected, dialogue, &QDialog::reject);
  connect(buttons, &QDialogButtonBox::accepted, dialogue, [this, dialogue] {
    if (!Qt6::EditsOf(dialogue).CommitAll().IsAccepted()) return;
    const VtrString reason = book.Put(drafts[0]);
    reason.IsEmpty() ? dialogue->accept() : Say(reason);
  });
  dialogue->open();
}

void Window::Say(const VtrString& reason) {
  if (!reason.IsEmpty()) QMessageBox::warning(this, windowTitle(), Qt6::ToQString(reason));
}

void Window::closeEvent(QCloseEvent* event) {
  event->setAccepted(Qt6::EditsOf(this).CommitAll().IsAccepted());
}

bool Window::Shoot(const QString& file) {
  if (book.contacts.Size() == 0) book.AddMany(10'000);
  show();
  view.search.Set(L"ber");
  table->sortByColumn(1, Qt::AscendingOrder);
  table->selectRow(3);
  auto* email = findChild<QFrame*>("card")->findChildren<QLineEdit*>().at(2);
  email->setText("berger at example.org");
  Qt6::Binding::Of(email)->typed();
  Qt6::EditsOf(this).CommitAll();
  QApplication::processEvents();
  const QImage picture = grab().toImage();
  return !picture.allGray() && picture.save(file);
}
