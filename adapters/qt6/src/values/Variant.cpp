// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/values/Variant.h"

#include <QMetaType>
#include <QString>
#include <utility>
#include <variant>

#include "DataBindingQt6/values/Text.h"

namespace DataBinding::Qt6 {

namespace {

/// Makes the QVariant of what a Value holds.
struct VariantMaker {
  QVariant operator()(std::monostate /*nothing*/) const { return {}; }
  QVariant operator()(bool truth) const { return truth; }
  QVariant operator()(std::int64_t number) const {
    if (std::in_range<int>(number)) return static_cast<int>(number);
    return static_cast<qlonglong>(number);
  }
  QVariant operator()(std::uint64_t number) const { return static_cast<qulonglong>(number); }
  QVariant operator()(double number) const { return number; }
  QVariant operator()(const VtrString& text) const { return ToQString(text); }
};

Value ToTextValue(QVariant variant) {
  if (!variant.convert(QMetaType::fromType<QString>())) return {};
  return ToVtrString(variant.toString());
}

}  // namespace

QVariant ToVariant(const Value& value) { return value.Visit(VariantMaker()); }

Value ToValue(const QVariant& variant) {
  switch (variant.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
      return {};
    case QMetaType::Bool:
      return variant.toBool();
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
      return variant.toLongLong();
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar:
      return variant.toULongLong();
    case QMetaType::Float:
    case QMetaType::Double:
      return variant.toDouble();
    default:
      return ToTextValue(variant);
  }
}

}  // namespace DataBinding::Qt6
