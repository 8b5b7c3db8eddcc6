// SPDX-License-Identifier: Apache-2.0
/// A window with a table of the contacts, and a form for the one that is chosen. Several windows
/// show the same book; each has a search text and a choice of its own.
#pragma once

#include <QtWidgets>

#include <DataBindingQt6/DataBindingQt6.h>

#include "AddressBook.h"

/// A View is the part of the book that one window shows, and the text it is searched for.
struct View : DataBinding::NamedDataSource {
  explicit View(AddressBook& shownBook) : NamedDataSource(L"View"), book(shownBook) {}
  [[nodiscard]] bool Holds(const Contact& each) const;
  [[nodiscard]] DataBinding::VtrString Count() const;

  AddressBook& book;
  DataBinding::Property<DataBinding::VtrString> search{this, L"Search"};
  DataBinding::FilteredList<Contact> shown{
      book.contacts, [this](const Contact& each) { return Holds(each); }, search};
  DataBinding::ComputedProperty<DataBinding::VtrString> count{
      this, L"Count", [this] { return Count(); }, book.contacts, search};
};

class Window : public QMainWindow {
 public:
  Window(AddressBook& shownBook, DataBinding::IDataSourceProvider& root);

  /// Shows a contact with an edit that is refused, and saves the picture. False where it is empty.
  bool Shoot(const QString& file);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void AddToolBar();
  QWidget* MakeCard();
  void Ask(const Contact& contact);
  void Say(const DataBinding::VtrString& reason);

  AddressBook& book;
  DataBinding::IDataSourceProvider& outer;
  DataBinding::DataSourceProviderPtr scope;
  View& view;
  DataBinding::Selection<Contact> chosen;
  DataBinding::CurrentRow<Contact> current;
  /// The contact that a dialogue edits, as a source of the window's scope.
  ///@{
  DataBinding::ListData<Contact> drafts;
  DataBinding::Selection<Contact> drafted{drafts};
  DataBinding::CurrentRow<Contact> draft;
  ///@}
  DataBinding::Qt6::ListModel model;
  QTableView* table = new QTableView;
};
