// SPDX-License-Identifier: Apache-2.0
/// IBaseBind holds what every bind between a user-interface element and data knows: the data
/// context in which it looks, the data source there, and the path inside the data source.
///
/// A bind is first of all a description by three names, which are copied with it. Concrete binds
/// connect it to a scope of data sources, which they do not own. A bind is used on one thread, that
/// of the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/BindStatus.h"
#include "DataBinding/framework/BindTypes.h"

namespace DataBinding::Framework {

class DATABINDING_API IBaseBind {
 public:
  /// Makes a bind with three empty names.
  IBaseBind();
  /// Takes the three names. The bind is connected to nothing.
  IBaseBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
            const VtrStringT<wchar_t>& pathInSource);
  /// Copies the names only.
  IBaseBind(const IBaseBind& other);
  /// Takes the other's three names over; a connection stays as it is.
  IBaseBind& operator=(const IBaseBind& other);
  virtual ~IBaseBind();

  /// Connects the bind to a scope, in place of the former one. Null disconnects it.
  virtual void Connect(IDataSourceProvider* provider) = 0;
  /// Tells what kind of bind this is.
  [[nodiscard]] virtual BindTypeEnum BindType() const = 0;
  /// Tells whether the bind has found what it names, and if not, why. Builds no data source to find
  /// out.
  [[nodiscard]] virtual BindStatus Status() const = 0;
  /// Returns the names, joined by "::", for logs and test tools. A name that is empty or a marker
  /// is left out. Deliberately the separator stands even where nothing precedes it:
  /// "::Source::Path" tells a bind without a data context from one without a data source.
  [[nodiscard]] virtual VtrStringT<wchar_t> GetTrackingName();

  /// Returns the category of the scope to begin at; it is empty or the marker for the scope that is
  /// given.
  [[nodiscard]] const VtrStringT<wchar_t>& DataContextName() const noexcept { return contextName; }
  /// Returns the name by which a provider finds the data source.
  [[nodiscard]] const VtrStringT<wchar_t>& DataSource() const noexcept { return sourceName; }
  /// Returns a property's name, or an event's.
  [[nodiscard]] const VtrStringT<wchar_t>& Path() const noexcept { return pathName; }

 private:
  VtrStringT<wchar_t> contextName;
  VtrStringT<wchar_t> sourceName;
  VtrStringT<wchar_t> pathName;
};

}  // namespace DataBinding::Framework
