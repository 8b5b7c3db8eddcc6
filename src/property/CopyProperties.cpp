// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/property/CopyProperties.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "DataBinding/datasource/DataSourceImpl.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/property/PropertyBatch.h"
#include "DataBinding/property/details/ShownRecord.h"

namespace DataBinding {

namespace {

using details::ReflectionAccess;

struct FoundProperty : details::PropertyRefBase {
  FoundProperty(const IDataSource& source, const VtrString& wanted)
      : PropertyRefBase(&source, wanted, ReflectionAccess::FindAny(&source, wanted), nullptr) {}
  using PropertyRefBase::Access;
  using PropertyRefBase::Failure;
};

/// One property that both sources have.
struct Pair {
  VtrString name;
  std::unique_ptr<details::PropertyCopy> copy;
  bool readsOthers = false;
};

class Copying {
 public:
  /// Finds out what can be copied, and notes what is left out.
  Copying(const IDataSource& from, IDataSource& to) {
    for (const VtrString& name : from.GetNamesInOrder()) {
      if (!from.GetDelegateType(name).IsFunction()) Add(from, to, name);
    }
    std::stable_partition(pairs.begin(), pairs.end(),
                          [](const Pair& pair) { return !pair.readsOthers; });
  }

  void Check() {
    for (const Pair& pair : pairs) {
      if (!pair.readsOthers) Judge(pair, pair.copy->Check());
    }
  }
  /// Sets what can be set, in rounds: what one round sets may be what makes another value fit.
  void Set() {
    for (std::size_t before = 1; before != set.size();) {
      before = set.size();
      outcome.refused.clear();
      for (Pair& pair : pairs) {
        if (std::ranges::count(set, &pair) == 0) Set(pair);
      }
    }
  }
  void PutBack() {
    outcome.changed = false;
    FirstFailure failure;
    for (auto pair = set.rbegin(); pair != set.rend(); ++pair) {
      failure.Try([&] { (*pair)->copy->PutBack(); });
    }
    failure.Rethrow();
  }
  [[nodiscard]] bool IsRefused() const noexcept { return !outcome.refused.empty(); }
  [[nodiscard]] CopyResult Result() && {
    if (IsRefused()) {
      outcome.error = outcome.refused.front().result.error;
      outcome.text = outcome.refused.front().result.text;
    }
    return std::move(outcome);
  }

 private:
  /// Sets one value. The pair counts as set before, in case a hook throws.
  void Set(Pair& pair) {
    set.push_back(&pair);
    const SetResult result = pair.copy->Set();
    if (!Judge(pair, result)) set.pop_back();
    outcome.changed = outcome.changed || result.changed;
  }
  void Add(const IDataSource& from, IDataSource& to, const VtrString& name) {
    const FoundProperty source(from, name);
    const FoundProperty target(to, name);
    details::PropertyBase* const read = source.Access();
    details::PropertyBase* const written = target.Access();
    const auto leaveOut = [&](SetResult result) {
      outcome.leftOut.push_back({name, std::move(result)});
    };
    if (read == nullptr) return leaveOut(source.Failure<SetResult>(nullptr));
    const auto& type = read->ValueType();
    if (!target) return leaveOut(target.Failure<SetResult>(&type));
    const auto explain = [&](PropertyError error) {
      leaveOut({false, error, ReflectionAccess::Explain(error, &to, name, &type)});
    };
    if (target.IsReadOnly()) return explain(PropertyError::ReadOnly);
    const auto& wanted = written == nullptr ? to.GetDelegateType(name) : written->ValueType();
    if (!details::AreSameType(type, wanted)) return explain(PropertyError::WrongType);
    if (written == nullptr) return Refuse(name, target.Failure<SetResult>(&type));
    auto copy = written->CopyFrom(*read);
    // A list is not copied, and says by itself that it is no value.
    if (copy == nullptr) return leaveOut(written->TakeValue({}, details::Purpose::Check));
    pairs.push_back({name, std::move(copy), written->ValidatorReadsOthers()});
  }
  void Refuse(const VtrString& name, SetResult result) {
    outcome.refused.push_back({name, std::move(result)});
  }
  bool Judge(const Pair& pair, const SetResult& result) {
    if (!result.IsAccepted()) Refuse(pair.name, result);
    return result.IsAccepted();
  }

  std::vector<Pair> pairs;
  /// Holds the pairs whose values were set, in that order.
  std::vector<Pair*> set;
  CopyResult outcome;
};

}  // namespace

CopyResult CopyProperties(const IDataSource* from, IDataSource* to) {
  if (from == nullptr || to == nullptr) {
    return {false, PropertyError::NoSource, L"There is no data source to copy properties of."};
  }
  Copying copying(*from, *to);
  copying.Check();
  if (copying.IsRefused()) return std::move(copying).Result();
  std::optional<PropertyBatch> batch;
  if (auto* const source = dynamic_cast<DataSourceImpl*>(to)) batch.emplace(*source);
  auto* const record = details::ShownRecord::Of(to);
  const auto isThere = to->GetLiveness();
  if (record != nullptr) record->Hold();
  FirstFailure failure;
  const bool isDone = failure.Try([&] { copying.Set(); });
  if (!isDone || copying.IsRefused()) failure.Try([&] { copying.PutBack(); });
  if (record != nullptr && isThere.IsValid()) failure.Try([&] { record->Release(); });
  if (batch) failure.Try([&] { batch->Commit(); });
  failure.Rethrow();
  return std::move(copying).Result();
}

}  // namespace DataBinding
