// SPDX-License-Identifier: Apache-2.0
/// ScopedListener is a DataListener that leaves its scope by itself when it is given another one.
///
/// Give it a provider to make it enter that scope, another provider to make it move there, or null
/// to make it leave. When it is given its own provider once more, it takes up the entries that were
/// added since. Use it on one thread, that of the provider tree.
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
  /// Leaves the former scope. An override calls this operation first.
  void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) override;
};

}  // namespace DataBinding
