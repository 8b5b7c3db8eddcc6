// SPDX-License-Identifier: Apache-2.0
/// Construction notes which sources are being built on this thread, to answer constructors that ask
/// for each other.
///
/// A constructor that asks its scope for further sources has these built first. When one of them in
/// turn asks the same scope for the first source, building that source once more would never end.
/// Such a request is therefore answered null, and the failure handler is told of it.
#pragma once

#include <memory>

#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

/// A Construction stands on the stack while a provider builds a source and takes it over.
class Construction {
 public:
  Construction(const IDataSourceProvider& provider, const wchar_t* name);
  Construction(const Construction&) = delete;
  Construction& operator=(const Construction&) = delete;
  ~Construction();

  /// Returns true while that provider builds a source of that name. The failure handler is then
  /// told both this name and the name of the source whose building asks for it.
  [[nodiscard]] static bool IsAskedForItself(const IDataSourceProvider& provider,
                                             const wchar_t* name) {
    return innermost != nullptr && FindAndReport(provider, name);
  }

 private:
  /// A Record stands on the heap, because a hardware fault in a listener may skip the destructor
  /// that takes the record off. Its name then cannot be built in that scope any more.
  struct Record {
    const IDataSourceProvider* provider;
    VtrString name;
    const Record* outer;
  };
  static bool FindAndReport(const IDataSourceProvider& provider, const wchar_t* name);

  static inline constinit thread_local const Record* innermost = nullptr;

  std::unique_ptr<const Record> record;
};

}  // namespace DataBinding
