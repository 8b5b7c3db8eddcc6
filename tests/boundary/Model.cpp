// SPDX-License-Identifier: Apache-2.0
#include <optional>

#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/DataSourceConstructor.h"
#include "DataBinding/property/Property.h"
#include "Shared.h"

namespace Boundary {

using namespace DataBinding;

namespace {

class Gauge : public NamedDataSource {
 public:
  Gauge() : NamedDataSource(L"Gauge") {}
  Property<int> Level{this, L"Level", 0, {.changed = [this](int, int now) {
                        Assign(Last, Reading{now, L"bar"});
                      }}};
  ReadOnlyProperty<Reading> Last{this, L"Last"};
};

std::optional<DataSourceConstructor<Gauge>> registration;

}  // namespace

void StartModel() { registration.emplace(L"Gauge", L"root"); }
void StopModel() { registration.reset(); }

}  // namespace Boundary
