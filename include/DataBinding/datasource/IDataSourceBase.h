// SPDX-License-Identifier: Apache-2.0
/// IDataSourceBase is an empty marker base through which an application reaches its own data source
/// classes.
///
/// A concrete data source returns this part of itself from GetDataSourceBaseImpl, and the
/// application casts it to the class that it knows it to be. The base owns nothing; the data source
/// of which it is a part owns it. Copying it is trivial.
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
