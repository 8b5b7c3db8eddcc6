// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/details/ListConnection.h"

#include "FoundList.h"

namespace DataBinding::details {

namespace {

using State = Framework::BindStatus::State;

VtrString NameOf(const runtime_type_base& type) { return VtrString::FromUtf8(type.GetTypeName()); }

using Found = ReflectionAccess::Found;

/// Finds a list with rows of the wanted type; null stands for any.
Found FindRows(const IDataSource* source, const VtrString& name, const RowTable* wanted) {
  Found found = FindList(source, name);
  const bool isWrong = found.property != nullptr && wanted != nullptr &&
                       !AreSameType(*wanted->type, ListOf(*found.property).RowType());
  if (!isWrong) return found;
  Found wrong;
  wrong.error = PropertyError::WrongType;
  return wrong;
}

}  // namespace

ListConnection::ListRef::ListRef(IDataSource* source, const VtrString& list, const RowTable* wanted)
    : PropertyRefBase(source, list, FindRows(source, list, wanted), &runtime_type<AnyList>::Get()) {
}

AnyList* ListConnection::ListRef::List() const {
  PropertyBase* const held = Error() == PropertyError::None ? Access() : nullptr;
  return held == nullptr ? nullptr : &ListOf(*held);
}

ListConnection::ListConnection(const Framework::IBaseBind& bind, const RowTable* wantedRows,
                               BoundRows& shown)
    : BindConnection(bind, &runtime_type<AnyList>::Get(), &runtime_type<const AnyList>::Get()),
      wanted(wantedRows),
      rows(shown),
      property(nullptr, bind.Path(), wanted),
      first(Subscribe([this] { rows.Show(List()); })) {}

ListConnection::~ListConnection() = default;

bool ListConnection::IsReadOnly() const { return HasValue() && property.IsReadOnly(); }

const PropertyRefBase& ListConnection::Refer(IDataSource* newSource, const VtrString& name) {
  return property = ListRef(newSource, name, wanted);
}

/// Looks for a list again if it was not there, since it may come and go while its source stays.
AnyList* ListConnection::List() const {
  AnyList* const known = property.List();
  if (known != nullptr || Source() == nullptr) return known;
  property = ListRef(Source(), PropertyName(), wanted);
  return property.List();
}

Framework::BindStatus ListConnection::Status() const {
  Framework::BindStatus status = BindConnection::Status();
  if (status.state != State::WrongType || Source() == nullptr) return status;
  const auto list = FindList(Source(), PropertyName());
  if (list.property != nullptr) {
    status.text.Format(L"List \"%s\" of data source \"%s\" has rows of type %s, not %s.",
                       PropertyName(), SourceName(), NameOf(ListOf(*list.property).RowType()),
                       NameOf(*wanted->type));
  } else {
    status.text.Format(L"Property \"%s\" of data source \"%s\" has type %s and is no list.",
                       PropertyName(), SourceName(),
                       NameOf(Source()->GetDelegateType(PropertyName())));
  }
  return status;
}

}  // namespace DataBinding::details
