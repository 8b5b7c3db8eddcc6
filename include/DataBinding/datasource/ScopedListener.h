// SPDX-License-Identifier: Apache-2.0
/// A DataListener that leaves its scope by itself when it is given another one.
///
/// Give it a provider to enter a scope, another one to move there, null to leave. Given its own
/// provider once more, it takes up the entries that were added since. One thread, that of the
/// provider tree.
///
///   class CpuView : public ScopedListener {
///    public:
///     CpuView() { AddDataListener(L"Cpu", L"Load", [this] { Redraw(); }); }
///   };
///   view.SetDataSourceProvider(&provider);
#pragma once

#include "DataBinding/datasource/DataListener.h"

namespace DataBinding {

class DATABINDING_API ScopedListener : public DataListener {
 protected:
  /// Leaves the former scope. An override calls this one first.
  void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) override;
};

}  // namespace DataBinding
