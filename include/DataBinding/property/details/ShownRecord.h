// SPDX-License-Identifier: Apache-2.0
/// A ShownRecord is a data source that shows one record after another by the same properties, and
/// none for a while. Binds ask it for its serial number, by which they know that another record is
/// shown, and explanations ask it why there is no value.
///
/// A source has this interface if FindInterfaceByIID answers for it. It belongs to the source, and
/// to the thread of the source.
#pragma once

#include <cstdint>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/IVantorGeneric.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

class DATABINDING_API ShownRecord {
 public:
  ShownRecord() noexcept = default;
  ShownRecord(const ShownRecord&) = delete;
  ShownRecord& operator=(const ShownRecord&) = delete;

  /// Returns the source's record, or null for a source that is not of this kind.
  ///@{
  [[nodiscard]] static const ShownRecord* Of(const IDataSource* source);
  [[nodiscard]] static ShownRecord* Of(IDataSource* source);
  ///@}

  /// Returns a number that is another one whenever another record is shown.
  [[nodiscard]] virtual std::uint64_t Serial() const noexcept = 0;
  /// Says why there is no record when there is none: "no row is chosen".
  [[nodiscard]] virtual const wchar_t* WhyAbsent() const noexcept = 0;
  /// Goes on showing the present record, until Release is called as often, while another one is
  /// chosen: what is set property by property then all goes to one record. Where that record ends
  /// meanwhile, there is none.
  ///@{
  virtual void Hold() noexcept = 0;
  virtual void Release() = 0;
  ///@}

 protected:
  virtual ~ShownRecord();
};

/// Explains that a property has no value because its source shows no record.
[[nodiscard]] DATABINDING_API VtrString ExplainAbsence(const ShownRecord& record,
                                                       const VtrString& source,
                                                       const VtrString& property);

}  // namespace DataBinding::details

template <>
struct VtrUtils::InterfaceId<DataBinding::details::ShownRecord> {
  /// Holds the identifier.
  static constexpr GUID value{
      0x6B0D1E52, 0x3C47, 0x4F0A, {0x9A, 0x61, 0x52, 0x8E, 0x07, 0xC3, 0x1D, 0xB4}};
};
