// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/BindChoices.h"

#include <QComboBox>
#include <QLineEdit>
#include <QStringList>
#include <utility>

#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/AnyListBind.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/details/Guard.h"
#include "DataBindingQt6/widgets/Binding.h"
#include "Join.h"
#include "TextKinds.h"

namespace DataBinding::Qt6 {

namespace {

/// Joins one box to one list.
class Choices final : public Join {
 public:
  Choices(QComboBox& itsBox, const VtrString& context, const VtrString& source,
          const VtrString& list, VtrString shownField)
      : Join(itsBox, "choices"),
        box(itsBox),
        rows(context, source, list),
        field(std::move(shownField)) {
    changes = rows.Observe({.before = {}, .after = [this](const ListChange&) { FillLater(); }});
    Follow();
    Fill();
  }

  [[nodiscard]] Framework::BindStatus Status() const override { return rows.Status(); }

 private:
  void Enter(IDataSourceProvider* scope) override { rows.Connect(scope); }
  void FillLater() {
    if (std::exchange(isDue, true)) return;
    QMetaObject::invokeMethod(this, &Choices::Fill, Qt::QueuedConnection);
  }
  void Fill();
  [[nodiscard]] QStringList Entries() const;

  QComboBox& box;
  Framework::AnyListBind rows;
  VtrString field;
  Subscription changes;
  bool isDue = false;
};

QStringList Choices::Entries() const {
  QStringList entries;
  const auto number = rows.FieldNumber(field);
  if (!number) return entries;
  entries.reserve(static_cast<qsizetype>(rows.Size()));
  for (std::size_t row = 0; row < rows.Size(); ++row) {
    QString entry;
    details::Guard(field, [&] { entry = ToQString(rows.Cell(row, *number).ToText()); });
    entries.append(entry);
  }
  return entries;
}

/// A box that is cleared forgets what was typed into it, too.
void Choices::Fill() {
  isDue = false;
  const QString shown = box.currentText();
  const int caret = box.isEditable() ? box.lineEdit()->cursorPosition() : 0;
  box.clear();
  box.addItems(Entries());
  const int index = box.findText(shown, Qt::MatchExactly | Qt::MatchCaseSensitive);
  box.setCurrentIndex(index);
  if (box.isEditable()) {
    box.setEditText(shown);
    box.lineEdit()->setCursorPosition(caret);
    return;
  }
  Binding* const binding = Binding::Of(&box);
  if (index >= 0 || binding == nullptr || !binding->HasTyped()) return;
  details::Guard(field, [&] { binding->Revert(); });
}

}  // namespace

void BindChoices(QComboBox* box, const VtrString& source, const VtrString& list,
                 const VtrString& field, const VtrString& context) {
  if (box == nullptr) return;
  new Choices(*box, context, source, list, field);  // it belongs to the box
}

}  // namespace DataBinding::Qt6
