// SPDX-License-Identifier: Apache-2.0
/// IDataSource is a named object that publishes properties (IReflectable) and announces their
/// changes (IBroadcaster).
///
/// Providers file sources by name and own the sources that were added to them. The owner of a
/// source ends it with IDataSource::Destroy, never with delete. Client modules write the concrete
/// sources, most easily by deriving from NamedDataSource, else from DataSourceImpl. A source is
/// used on the thread that owns the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/broadcast/IBroadcaster.h"
#include "DataBinding/foundation/IVantorGeneric.h"
#include "DataBinding/reflection/IReflectable.h"

namespace DataBinding {

struct DATABINDING_API IDataSource : public IVantorGeneric,
                                     public IBroadcaster,
                                     public IReflectable {
 public:
  IDataSource();

  /// Runs PreDestroy, then destroys the source. Null does nothing.
  ///
  /// When PreDestroy throws, the source stays alive, although its provider has let go of it
  /// already. An exception derived from std::exception then arrives as a plain std::exception,
  /// deliberately: its type may belong to a module that is going away. An exception of a
  /// destruction handler arrives once the source is gone.
  static void Destroy(IDataSource* source);

 protected:
  /// Answers for the identifier of IDataSource only.
  bool FindInterfaceByIID(const GUID& id, void** out) override;

 private:
  virtual void Destroy() = 0;

 public:
  /// Runs just before the source is destroyed.
  virtual void PreDestroy();
  /// Returns the name under which providers file the source. A source that answers null is owned by
  /// its provider but cannot be found.
  virtual const wchar_t* GetDataSourceName() = 0;
  /// Returns the context that the source's data belongs to, or null.
  virtual IDataContext* GetDataContext() const = 0;
  /// Returns what GetDataSourceBaseImpl returns.
  virtual IDataSourceBase* GetDataSourceBase();
  /// Returns the application's own part of the source, or null.
  virtual IDataSourceBase* GetDataSourceBaseImpl() = 0;

 protected:
  ~IDataSource() override;
};

}  // namespace DataBinding

/// FindInterfaceByIID knows a data source by {E7971A8A-7E61-442A-8FFC-4EC80A8E756E}.
template <>
struct VtrUtils::InterfaceId<DataBinding::IDataSource> {
  /// Holds the identifier.
  static constexpr GUID value{
      0xE7971A8A, 0x7E61, 0x442A, {0x8F, 0xFC, 0x4E, 0xC8, 0x0A, 0x8E, 0x75, 0x6E}};
};
