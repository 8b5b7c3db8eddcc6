// SPDX-License-Identifier: Apache-2.0
#include "AddressBook.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

using namespace DataBinding;

VtrString WhyNoName(const VtrString& text) {
  return text.IsEmpty() ? L"A contact needs a name." : L"";
}

VtrString WhyNoPhone(const VtrString& text) {
  const std::wstring_view allowed = L"0123456789 +-()/";
  const bool isRight = std::wstring_view(text).find_first_not_of(allowed) == allowed.npos;
  return isRight ? L"" : L"A phone number has digits, blanks and + - ( ) / only.";
}

VtrString WhyNoEmail(const VtrString& text) {
  const bool isRight = text.IsEmpty() || std::ranges::count(std::wstring_view(text), L'@') == 1;
  return isRight ? L"" : L"An address has one @.";
}

static Contact ContactIn(const nlohmann::json& at, int id) {
  const auto text = [&](const char* key) { return VtrString::FromUtf8(at.value(key, "")); };
  return {id, text("name"), text("phone"), text("email"), text("city"), at.value("friend", false)};
}

VtrString AddressBook::Put(Contact contact) {
  const SetResult checked = contacts.CheckRow(contact);
  if (!checked.IsAccepted()) return checked.reason;
  if (contact.id != 0)
    return contacts.Update(contact.id, [&](Contact& row) { row = contact; }).text;
  contact.id = ++lastId;
  return contacts.Insert(contacts.Size(), std::move(contact)).text;
}

void AddressBook::AddMany(int count) {
  static constexpr std::array first{L"Ada", L"Bruno", L"Clara", L"Emma", L"Farid", L"Hugo"};
  static constexpr std::array last{L"Amsel", L"Berger", L"Dorn", L"Fischer", L"Hansen", L"Jung"};
  static constexpr std::array city{L"Aachen", L"Bergen", L"Como", L"Delft", L"Essen", L"Graz"};
  std::mt19937 random(static_cast<unsigned>(lastId));
  const auto any = [&](const auto& names) { return names[random() % names.size()]; };
  std::vector<Contact> made;
  for (int i = 0; i < count; ++i) {
    const VtrString name = any(last);
    made.push_back({++lastId, VtrString().Format(L"%s %s", any(first), name),
                    VtrString().Format(L"+49 %d %d", 200 + random() % 700, random() % 1'000'000),
                    VtrString().Format(L"%s%d@mail.org", name, lastId), any(city),
                    random() % 5 == 0});
  }
  contacts.Insert(contacts.Size(), std::move(made));
}

void AddressBook::Remove(std::span<const RowId> ids) {
  if (ids.empty()) return;
  removed.clear();
  std::set<int> going;
  for (const RowId id : ids) {
    const Contact& contact = contacts.RowAt(id);
    going.insert(contact.id);
    removed.emplace(*contacts.IndexOf(id), contact);
  }
  contacts.Edit([&](std::vector<Contact>& rows) {
    std::erase_if(rows, [&](const Contact& row) { return going.contains(row.id); });
  });
  canUndo.Set(true);
}

void AddressBook::UndoRemoval() {
  contacts.Edit([this](std::vector<Contact>& rows) {
    for (const auto& [at, contact] : removed) {
      rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(std::min(at, rows.size())), contact);
    }
  });
  removed.clear();
  canUndo.Set(false);
}

VtrString AddressBook::Load(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return L"The file cannot be read.";
  const std::string text(std::istreambuf_iterator<char>(file), {});
  std::vector<Contact> read;
  int number = 1;
  try {
    for (const auto& each : nlohmann::json::parse(text).get<std::vector<nlohmann::json>>()) {
      read.push_back(ContactIn(each, lastId + number));  // no number comes again
      const VtrString reason = contacts.CheckRow(read.back()).reason;
      if (!reason.IsEmpty()) return VtrString().Format(L"Contact %d: %s", number, reason);
      ++number;
    }
  } catch (const nlohmann::json::parse_error& fault) {
    const auto before = std::string_view(text).substr(0, fault.byte == 0 ? 0 : fault.byte - 1);
    return VtrString().Format(L"Line %d, column %d: the file is damaged.",
                              std::ranges::count(before, '\n') + 1,
                              before.size() - (before.rfind('\n') + 1) + 1);
  } catch (const nlohmann::json::exception& fault) {
    return VtrString().Format(L"Contact %d: %s.", number, VtrString::FromUtf8(fault.what()));
  }
  lastId += number - 1;
  canUndo.Set(false);
  return contacts.Assign(std::move(read)).reason;
}

VtrString AddressBook::Save(const std::filesystem::path& path) const {
  auto json = nlohmann::json::array();
  for (const Contact& each : contacts) {
    json.push_back({{"name", each.name.ToUtf8()},
                    {"phone", each.phone.ToUtf8()},
                    {"email", each.email.ToUtf8()},
                    {"city", each.city.ToUtf8()},
                    {"friend", each.isFriend}});
  }
  return std::ofstream(path) << json.dump(2) << std::endl ? L"" : L"The file cannot be written.";
}
