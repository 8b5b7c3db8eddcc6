// SPDX-License-Identifier: Apache-2.0
/// Rows for the tests of models.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/lists/List.h"

namespace DataBinding::Qt6::Testing {

struct Person {
  int id = 0;
  VtrString name;
  double weight = 0;
  bool isMember = false;
  bool operator==(const Person&) const = default;
};

inline VtrString NotNegative(const double& value) { return value < 0 ? L"is negative" : L""; }

constexpr auto FieldsOf(const Person*) {
  return Fields(Key(L"Id", &Person::id, {.readOnly = true}), Field(L"Name", &Person::name),
                Field(L"Weight", &Person::weight, {.validate = NotNegative}),
                Field(L"Member", &Person::isMember));
}

/// Makes people of these ids.
inline std::vector<Person> People(const std::vector<int>& ids) {
  std::vector<Person> people;
  for (const int id : ids) people.push_back({id, VtrString(std::to_wstring(id)), 0.5 * id, false});
  return people;
}

/// A source with a list of people.
struct Club : NamedDataSource {
  explicit Club(std::vector<Person> people) : NamedDataSource(L"Club") {
    members.Assign(std::move(people));
  }

  List<Person> members{this, L"Members"};
};

}  // namespace DataBinding::Qt6::Testing
