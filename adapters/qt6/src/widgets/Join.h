// SPDX-License-Identifier: Apache-2.0
/// A Join lets something of an object, such as its title or what a click does, follow the
/// application's data by name, in the scope of the object.
///
/// It is a child of the object and ends with it. An object has one join of each kind: a new one
/// takes the place of the former. Explain asks all joins of a window for their status.
#pragma once

#include <QObject>
#include <QString>

#include "DataBinding/framework/BindStatus.h"
#include "DataBindingQt6/scopes/Scope.h"

namespace DataBinding::Qt6 {

class Join : public QObject {
 public:
  Join(QObject& joined, const char* kind) {
    const QString name = QStringLiteral("DataBinding.%1").arg(QLatin1String(kind));
    delete joined.findChild<QObject*>(name, Qt::FindDirectChildrenOnly);
    setObjectName(name);
    setParent(&joined);
  }

  /// Says whether what the join names was found, and if not, why.
  [[nodiscard]] virtual Framework::BindStatus Status() const = 0;

 protected:
  /// Enters the scope of the object now, and another one when that comes.
  void Follow() {
    FollowScope(this, [this](IDataSourceProvider* scope) { Enter(scope); });
  }

 private:
  virtual void Enter(IDataSourceProvider* scope) = 0;
};

}  // namespace DataBinding::Qt6
