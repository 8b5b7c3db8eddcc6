#include "DataBinding/PropertyAccess.h"

#include <limits>

namespace DataBinding::details {

ReflectionAccess::Found ReflectionAccess::Find(IDataSource* source, const VtrString& name,
                                               const runtime_type_base& plain,
                                               const runtime_type_base& readOnly) {
  if (source == nullptr) return {PropertyError::NoSource, {}, false};
  const auto [index, type] = source->_GetType({name});
  if (index == std::numeric_limits<std::size_t>::max()) return {PropertyError::Absent, {}, false};
  const bool isReadOnly = readOnly.IsSameType(&type);
  if (!isReadOnly && !plain.IsSameType(&type)) return {PropertyError::WrongType, {}, false};
  auto accessor = source->_GetDelegate({{name, isReadOnly ? readOnly : plain}}).second;
  RepeatingCallbackBase untyped;
  untyped.SetMemento(accessor);
  // Nothing is taken out of a table, so that a property which is gone is still named there.
  if (untyped && untyped.IsCancelled()) return {PropertyError::Absent, {}, false};
  return {PropertyError::None, std::move(accessor), isReadOnly};
}

VtrString ReflectionAccess::Explain(PropertyError error, IDataSource* source, const VtrString& name,
                                    const runtime_type_base& wanted) {
  const VtrString wantedType = VtrString::FromUtf8(wanted.GetTypeName());
  VtrString text;
  if (source == nullptr) {
    return text.Format(L"There is no data source to have a property \"%s\" of type %s.", name,
                       wantedType);
  }
  const VtrString owner = NameOf(*source);
  const VtrString actualType = VtrString::FromUtf8(source->_GetType({name}).second.GetTypeName());
  switch (error) {
    case PropertyError::Absent:
      return text.Format(
          L"Data source \"%s\" has no property \"%s\" (wanted type %s, actual none).", owner, name,
          wantedType);
    case PropertyError::WrongType:
      return text.Format(L"Property \"%s\" of data source \"%s\" has type %s, not %s.", name, owner,
                         actualType, wantedType);
    case PropertyError::ReadOnly:
      return text.Format(
          L"Property \"%s\" of data source \"%s\" can be read, but only its data source sets it.",
          name, owner);
    default:
      return text.Format(
          L"Property \"%s\" of data source \"%s\" has type %s but no accessor for %s.", name, owner,
          actualType, wantedType);
  }
}

VtrString ReflectionAccess::ExplainGone(const VtrString& name, const runtime_type_base& wanted) {
  return VtrString().Format(L"Property \"%s\" (wanted type %s) is gone with its data source.", name,
                            VtrString::FromUtf8(wanted.GetTypeName()));
}

}  // namespace DataBinding::details
