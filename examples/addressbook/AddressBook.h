// SPDX-License-Identifier: Apache-2.0
/// The data of the address book, which knows nothing of windows: contacts, what is removed and can
/// come back, and files. A file that is damaged anywhere changes nothing.
#pragma once

#include <filesystem>
#include <map>
#include <span>

#include <DataBinding/DataBinding.h>

struct Contact {
  int id = 0;
  DataBinding::VtrString name, phone, email, city;
  bool isFriend = false;
  bool operator==(const Contact&) const = default;
};

DataBinding::VtrString WhyNoName(const DataBinding::VtrString& text);
DataBinding::VtrString WhyNoPhone(const DataBinding::VtrString& text);
DataBinding::VtrString WhyNoEmail(const DataBinding::VtrString& text);

constexpr auto FieldsOf(const Contact*) {
  using namespace DataBinding;
  return Fields(Key(L"Id", &Contact::id, {.readOnly = true}),
                Field(L"Name", &Contact::name, {.validate = WhyNoName}),
                Field(L"Phone", &Contact::phone, {.validate = WhyNoPhone}),
                Field(L"Email", &Contact::email, {.validate = WhyNoEmail}),
                Field(L"City", &Contact::city), Field(L"Friend", &Contact::isFriend));
}

class AddressBook : public DataBinding::NamedDataSource {
 public:
  AddressBook() : NamedDataSource(L"AddressBook") {}

  /// Puts a contact in the place of the one of its number, or adds it under a number of its own
  /// where it has none. Answers why not, or nothing.
  DataBinding::VtrString Put(Contact contact);
  void AddMany(int count);
  void Remove(std::span<const DataBinding::RowId> ids);
  void UndoRemoval();
  /// Answer why the file cannot be read or written, or nothing.
  ///@{
  DataBinding::VtrString Load(const std::filesystem::path& path);
  [[nodiscard]] DataBinding::VtrString Save(const std::filesystem::path& path) const;
  ///@}

  DataBinding::List<Contact> contacts{this, L"Contacts"};
  DataBinding::Property<bool> canUndo{this, L"CanUndo", false};

 private:
  int lastId = 0;
  std::map<std::size_t, Contact> removed;  // by their places
};
