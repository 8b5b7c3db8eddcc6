// SPDX-License-Identifier: Apache-2.0
/// IVantorGeneric is an object that can be asked for its interfaces by identifier.
/// FindInterfaceProxy asks it by type.
///
/// If the object does not have the interface, FindInterfaceByIID returns false and leaves the
/// pointer alone. A returned interface is neither counted nor owned. An interface gets its
/// identifier by a specialisation of InterfaceId.
///
///   IDataSource* source = provider.GetDataSourceInterface(L"Cpu").As<IDataSource>();
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Guid.h"

namespace VtrUtils {

class DATABINDING_API IVantorGeneric {
 public:
  /// Stores the interface in the out-pointer and returns true, or returns false.
  virtual bool FindInterfaceByIID(const GUID& id, void** out);

 protected:
  IVantorGeneric() noexcept = default;
  IVantorGeneric(const IVantorGeneric&) noexcept = default;
  IVantorGeneric& operator=(const IVantorGeneric&) noexcept = default;
  ~IVantorGeneric() = default;
};

/// Holds the identifier of an interface. Specialise it beside the declaration of the interface.
template <class Interface>
struct InterfaceId;

}  // namespace VtrUtils

namespace IVantorGenericDetail {

/// Asks an object for an interface by type. A proxy without an object answers null.
class FindInterfaceProxy {
 public:
  /// The object must outlive the proxy. With a null object every answer is null.
  explicit FindInterfaceProxy(VtrUtils::IVantorGeneric* asked) noexcept : object(asked) {}

  /// Returns the interface with that identifier, or null if the object does not have it.
  [[nodiscard]] void* Find(const VtrUtils::GUID& id) const {
    void* found = nullptr;
    return object != nullptr && object->FindInterfaceByIID(id, &found) ? found : nullptr;
  }
  /// Returns the interface of that type, or null if the object does not have it.
  /// InterfaceId<Interface> must be specialised.
  template <class Interface>
  [[nodiscard]] Interface* As() const {
    return static_cast<Interface*>(Find(VtrUtils::InterfaceId<Interface>::value));
  }

 private:
  VtrUtils::IVantorGeneric* object;
};

}  // namespace IVantorGenericDetail

namespace DataBinding {
using VtrUtils::InterfaceId;
using VtrUtils::IVantorGeneric;
namespace IVantorGenericDetail = ::IVantorGenericDetail;
}  // namespace DataBinding
