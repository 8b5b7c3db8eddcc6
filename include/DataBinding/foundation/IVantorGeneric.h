// SPDX-License-Identifier: Apache-2.0
/// An object that can be asked for its interfaces by identifier, and the typed form of the
/// question.
///
/// FindInterfaceByIID answers false and leaves the pointer alone unless the object has the
/// interface; nothing is counted, nothing is owned. A class gets an identifier by specialising
/// InterfaceId.
///
///   IDataSource* source = provider.GetDataSourceInterface(L"Cpu").As<IDataSource>();
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Guid.h"

namespace VtrUtils {

class DATABINDING_API IVantorGeneric {
 public:
  /// Stores the interface in the out-pointer and answers true, or answers false.
  virtual bool FindInterfaceByIID(const GUID& id, void** out);

 protected:
  IVantorGeneric() noexcept = default;
  IVantorGeneric(const IVantorGeneric&) noexcept = default;
  IVantorGeneric& operator=(const IVantorGeneric&) noexcept = default;
  ~IVantorGeneric() = default;
};

/// The identifier of an interface; specialise it beside the interface's declaration.
template <class Interface>
struct InterfaceId;

}  // namespace VtrUtils

namespace IVantorGenericDetail {

/// Asks an object for an interface by type. A proxy over no object answers null.
class FindInterfaceProxy {
 public:
  /// Asks that object, which must outlive the proxy; null answers null.
  explicit FindInterfaceProxy(VtrUtils::IVantorGeneric* asked) noexcept : object(asked) {}

  /// The interface of that identifier, or null.
  [[nodiscard]] void* Find(const VtrUtils::GUID& id) const {
    void* found = nullptr;
    return object != nullptr && object->FindInterfaceByIID(id, &found) ? found : nullptr;
  }
  /// The interface of that type, or null; needs InterfaceId<Interface>.
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
