// SPDX-License-Identifier: Apache-2.0
/// An empty marker base through which an application reaches its own data source classes.
///
/// A concrete data source returns this part of itself from GetDataSourceBaseImpl; the application
/// casts it to what it knows it to be. Owns nothing, is owned by the data source that it is a part
/// of. Copying is trivial.
#pragma once

#include "DataBinding/Export.h"

namespace DataBinding {

class DATABINDING_API IDataSourceBase {
 public:
  IDataSourceBase() noexcept = default;
  IDataSourceBase(const IDataSourceBase&) noexcept = default;
  IDataSourceBase& operator=(const IDataSourceBase&) noexcept = default;

 protected:
  virtual ~IDataSourceBase();
};

}  // namespace DataBinding
