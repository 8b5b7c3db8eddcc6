// SPDX-License-Identifier: Apache-2.0
/// Fields() names the fields of a plain struct or of a data source, so that lists of such rows can
/// say which fields have changed, find rows by their key, and show cells to code that does not know
/// the row type. The fields of a data source are properties of it.
///
/// The names are given once, beside the struct, by a function that is found by argument-dependent
/// look-up. One field may be the key, by which a row is known when a whole list is assigned. Its
/// type has == and std::hash, which do not throw. A field may be read-only and may have a
/// validator; both guard what is set by name, and the validator also what List::Update does.
/// Fields without == count as changed each time.
///
///   struct Process { int id; VtrString name; double cpu; };
///   constexpr auto FieldsOf(const Process*) {
///     return Fields(Key(L"Id", &Process::id), Field(L"Name", &Process::name),
///                   Field(L"Cpu", &Process::cpu, {.validate = NotNegative}));
///   }
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/String.h"
#include "DataBinding/lists/details/RowTable.h"
#include "DataBinding/property/PropertyName.h"
#include "DataBinding/property/details/PropertyBase.h"
#include "DataBinding/reflection/ValueForm.h"

namespace DataBinding {

/// FieldOptions holds what a field does beside keeping its value.
template <class T>
struct FieldOptions {
  /// Answers why a value is refused, or an empty text to accept it.
  VtrString (*validate)(const T& value) = nullptr;
  /// Nobody sets a read-only field by name; the list's owner still does.
  bool readOnly = false;
};

/// PropertyFieldOptions holds what a field does that is a property: the property has its validator.
struct PropertyFieldOptions {
  /// Nobody sets a read-only field by name. Properties that only their source sets are read-only
  /// anyway.
  bool readOnly = false;
};

namespace details {

/// Members that are properties.
template <class T>
concept PropertyMember = std::derived_from<T, PropertyBase> && requires(const T& property) {
  property.Get();
};

/// Returns the value of a field: that of the property, where it is one.
template <class T>
[[nodiscard]] decltype(auto) ValueIn(const T& field) {
  if constexpr (PropertyMember<T>) {
    return field.Get();
  } else {
    return (field);
  }
}
template <class T>
using TypeIn = std::remove_cvref_t<decltype(ValueIn(std::declval<const T&>()))>;

template <class T>
using OptionsOf =
    std::conditional_t<PropertyMember<T>, PropertyFieldOptions, FieldOptions<TypeIn<T>>>;

template <class RowType, class T, bool IsTheKey>
struct FieldDescription {
  using Row = RowType;
  using Member = T;
  using Type = TypeIn<T>;
  static constexpr bool isKey = IsTheKey;

  std::wstring_view name;
  T Row::*member;
  OptionsOf<T> options;
};

template <class T>
concept KeyType = std::equality_comparable<T> && requires(const T& key) {
  { std::hash<T>()(key) } -> std::convertible_to<std::size_t>;
};

/// Members that can be keys: a property must keep its value.
template <class T>
concept KeyMember =
    KeyType<TypeIn<T>> && std::is_reference_v<decltype(ValueIn(std::declval<const T&>()))>;

}  // namespace details

/// Describes a field: its name, the member, and options.
template <class Row, class T>
[[nodiscard]] constexpr auto Field(PropertyName name, T Row::*member,
                                   details::OptionsOf<T> options = {}) {
  return details::FieldDescription<Row, T, false>{name.Get(), member, options};
}

/// Describes the field that is the key of its rows. A row type has at most one.
template <class Row, details::KeyMember T>
[[nodiscard]] constexpr auto Key(PropertyName name, T Row::*member,
                                 details::OptionsOf<T> options = {}) {
  return details::FieldDescription<Row, T, true>{name.Get(), member, options};
}

/// Brings the fields of a row type together, in the order in which they are shown.
template <class... Descriptions>
[[nodiscard]] constexpr auto Fields(Descriptions... fields) {
  static_assert((std::size_t{0} + ... + (Descriptions::isKey ? 1 : 0)) <= 1,
                "a row type has at most one key");
  return std::tuple<Descriptions...>(fields...);
}

/// Types that can be rows of a list: they have fields, are copied, are moved without throwing, and
/// need no greater alignment than `new` gives.
template <class Row>
concept ListRow = std::copyable<Row> && std::is_nothrow_move_constructible_v<Row> &&
                  std::is_nothrow_destructible_v<Row> &&
                  alignof(Row) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__&& requires(const Row* row) {
  FieldsOf(row);
};

/// Data sources that can be rows of a SourceList: their fields are named.
template <class Row>
concept SourceRow = std::derived_from<Row, DataSourceImpl> && requires(const Row* row) {
  FieldsOf(row);
};

/// Types that can be rows of lists, views and binds to lists.
template <class Row>
concept AnyRow = ListRow<Row> || SourceRow<Row>;

namespace details {

/// A row as a list shows it. A data source is lent, so that its properties can be set.
template <class Row>
using ShownRow = std::conditional_t<std::derived_from<Row, DataSourceImpl>, Row, const Row>;
template <class Row>
[[nodiscard]] ShownRow<Row>& AsShown(const void* row) noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only a data source loses its const
  return *static_cast<ShownRow<Row>*>(const_cast<void*>(row));
}

template <class Row>
inline constexpr auto fieldsOf = FieldsOf(static_cast<const Row*>(nullptr));

/// Calls visit(field, number) for each field of a row type.
template <class Row, class Visit>
constexpr void VisitFields(Visit&& visit) {
  std::apply(
      [&](const auto&... field) {
        std::size_t number = 0;
        (visit(field, number++), ...);
      },
      fieldsOf<Row>);
}

template <class Row>
constexpr std::size_t FindKey() {
  std::size_t found = std::tuple_size_v<decltype(fieldsOf<Row>)>;
  VisitFields<Row>([&](const auto& field, std::size_t number) {
    if (std::remove_cvref_t<decltype(field)>::isKey) found = number;
  });
  return found;
}

/// The number of a row type's key; the number of its fields where it has no key.
template <class Row>
inline constexpr std::size_t keyOf = FindKey<Row>();

template <class Row>
inline constexpr bool hasKey = keyOf<Row> < std::tuple_size_v<decltype(fieldsOf<Row>)>;

/// Stands for the key of rows that have none.
class NoKey;

template <class Row>
struct KeyTypeOf {
  using Type = NoKey;
};
template <class Row>
requires hasKey<Row>
struct KeyTypeOf<Row> {
  using Type = typename std::remove_cvref_t<decltype(std::get<keyOf<Row>>(fieldsOf<Row>))>::Type;
};
template <class Row>
using KeyOf = typename KeyTypeOf<Row>::Type;

/// Returns the number of the field that a member is, or nothing if it is none.
template <class Row, class T>
[[nodiscard]] constexpr std::optional<std::size_t> NumberOf(T Row::*member) {
  std::optional<std::size_t> found;
  VisitFields<Row>([&](const auto& field, std::size_t number) {
    if constexpr (std::same_as<decltype(field.member), T Row::*>) {
      if (field.member == member) found = number;
    }
  });
  return found;
}

template <class T>
[[nodiscard]] bool Differ(const T& one, const T& other) {
  if constexpr (std::equality_comparable<T>) {
    return !(one == other);
  } else {
    return true;
  }
}

/// The functions that a row type adds.
template <class Row>
struct RowFunctions {
  static const Row& As(const void* row) noexcept { return *static_cast<const Row*>(row); }
  static Row& As(void* row) noexcept { return *static_cast<Row*>(row); }

  static void Copy(void* to, const void* from) { ::new (to) Row(As(from)); }
  static void Move(void* to, void* from) noexcept { ::new (to) Row(std::move(As(from))); }
  static void Destroy(void* row) noexcept { std::destroy_at(&As(row)); }
  static void Exchange(void* one, void* other) noexcept {
    Row kept(std::move(As(one)));
    Destroy(one);
    Move(one, other);
    Destroy(other);
    Move(other, &kept);
  }
  static std::uint64_t Differing(const void* one, const void* other) {
    std::uint64_t bits = 0;
    VisitFields<Row>([&](const auto& field, std::size_t number) {
      const bool differs = Differ(ValueIn(As(one).*field.member), ValueIn(As(other).*field.member));
      if (differs) bits |= RowTable::BitOf(number);
    });
    if constexpr (std::equality_comparable<Row>) {
      if (bits == 0 && !(As(one) == As(other))) bits = RowTable::BitOf(RowTable::lastBit);
    }
    return bits;
  }
  static const void* KeyIn(const void* row) noexcept {
    return &ValueIn(As(row).*std::get<keyOf<Row>>(fieldsOf<Row>).member);
  }
  static std::size_t HashOfKey(const void* key) noexcept {
    return std::hash<KeyOf<Row>>()(*static_cast<const KeyOf<Row>*>(key));
  }
  static VtrString KeyText(const void* key) { return ToText(*static_cast<const KeyOf<Row>*>(key)); }
  static bool AreKeysEqual(const void* one, const void* other) noexcept {
    return *static_cast<const KeyOf<Row>*>(one) == *static_cast<const KeyOf<Row>*>(other);
  }
};

/// The functions of one field. Description is its type in the tuple of Fields().
template <class Description>
struct FieldFunctions {
  using Row = typename Description::Row;

  static const Description& Of(const RowField& field) noexcept {
    return *static_cast<const Description*>(field.description);
  }
  template <std::size_t Number>
  static const void* Member(const void* row) {
    return &(RowFunctions<Row>::As(row).*std::get<Number>(fieldsOf<Row>).member);
  }
  template <std::size_t Number>
  static Value Get(const void* row) {
    return ToValue(ValueIn(RowFunctions<Row>::As(row).*std::get<Number>(fieldsOf<Row>).member));
  }
  template <std::size_t Number>
  static PropertyBase& AsProperty(const void* row) {
    return AsShown<Row>(row).*std::get<Number>(fieldsOf<Row>).member;
  }
  template <std::size_t Number>
  static SetResult WriteProperty(void* row, const Value& value) {
    SetResult result = AsProperty<Number>(row).TakeValue(value, Purpose::Set);
    if (result.reason.IsEmpty()) result.reason = result.text;
    return result;
  }
  template <std::size_t Number>
  static SetResult Set(void* row, const Value& value) {
    auto made = FromValue<typename Description::Type>(value);
    if (!made) return {false, made.error, made.text, made.text};
    RowFunctions<Row>::As(row).*std::get<Number>(fieldsOf<Row>).member = std::move(*made.value);
    return {};
  }
  static VtrString ReasonAgainst(const RowField& field, const void* row) {
    const Description& own = Of(field);
    if (own.options.validate == nullptr) return {};
    return own.options.validate(RowFunctions<Row>::As(row).*own.member);
  }
};

/// Properties that anybody sets.
template <class T>
concept CanBeSet = requires(T& property) {
  property.Set(property.Get());
};

template <class Row, std::size_t Number>
[[nodiscard]] RowField MakeField() {
  constexpr const auto& described = std::get<Number>(fieldsOf<Row>);
  using Description = std::remove_cvref_t<decltype(described)>;
  using Functions = FieldFunctions<Description>;
  RowField field;
  field.name = VtrString(described.name);
  field.type = &runtime_type<typename Description::Type>::Get();
  if constexpr (HasValueForm<typename Description::Type>) {
    field.kind = ValueForm<typename Description::Type>::kind;
  }
  field.isReadOnly = described.options.readOnly;
  field.isKey = Description::isKey;
  field.number = Number;
  field.get = &Functions::template Get<Number>;
  field.description = &described;
  if constexpr (PropertyMember<typename Description::Member>) {
    if constexpr (!CanBeSet<typename Description::Member>) field.isReadOnly = true;
    field.property = &Functions::template AsProperty<Number>;
    field.set = &Functions::template WriteProperty<Number>;
  } else {
    field.member = &Functions::template Member<Number>;
    field.set = &Functions::template Set<Number>;
    field.reasonAgainst = &Functions::ReasonAgainst;
  }
  return field;
}

template <class Row>
[[nodiscard]] RowTable MakeTable() {
  using Functions = RowFunctions<Row>;
  RowTable table;
  table.type = &runtime_type<Row>::Get();
  table.differing = &Functions::Differing;
  if constexpr (ListRow<Row>) {
    table.size = sizeof(Row);
    table.alignment = alignof(Row);
    table.copy = &Functions::Copy;
    table.move = &Functions::Move;
    table.exchange = &Functions::Exchange;
    table.destroy = &Functions::Destroy;
  } else {
    table.areSources = true;
  }
  if constexpr (hasKey<Row>) {
    table.key = &Functions::KeyIn;
    table.hashOfKey = &Functions::HashOfKey;
    table.keyText = &Functions::KeyText;
    table.areKeysEqual = &Functions::AreKeysEqual;
  }
  [&]<std::size_t... Numbers>(std::index_sequence<Numbers...>) {
    (table.fields.push_back(MakeField<Row, Numbers>()), ...);
  }
  (std::make_index_sequence<std::tuple_size_v<decltype(fieldsOf<Row>)>>());
  return table;
}

/// Returns this module's table of a row type.
template <AnyRow Row>
[[nodiscard]] const RowTable& TableOf() {
  static const RowTable table = MakeTable<Row>();
  return table;
}

}  // namespace details

}  // namespace DataBinding
