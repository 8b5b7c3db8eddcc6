// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/OwnedSources.h"

#include <algorithm>
#include <new>

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/property/details/PropertyBase.h"
#include "ListTexts.h"

namespace DataBinding::details {

namespace {

/// The bits of the fields that a property of this name is, or the last bit for any other property.
std::uint64_t FieldsOfProperty(const RowTable& table, const void* row, const VtrString& name) {
  std::uint64_t bits = 0;
  for (const RowField& field : table.fields) {
    if (field.property(row).Name() == name) bits |= RowTable::BitOf(field.number);
  }
  return bits != 0 ? bits : RowTable::BitOf(RowTable::lastBit);
}

}  // namespace

OwnedSource::OwnedSource(OwnedSources& itsOwner, const void* itsRow,
                         DataSourcePtr<IDataSource> itsSource)
    : owner(itsOwner), row(itsRow), source(std::move(itsSource)) {}

OwnedSource::~OwnedSource() {
  InvalidateWeakPtrs();
  announced.Cancel();
  if (taker != nullptr) *taker = std::move(source);
}

void OwnedSource::Hear(const VtrString& property) { owner.Note(*this, property); }

/// The turn in which the noted rows are told. It holds what the told step refers to, so that the
/// list may end meanwhile.
class OwnedSources::Turn final : public ListTurn {
 public:
  explicit Turn(OwnedSources& itsSources)
      : sources(itsSources.AsWeakPtr()), owner(&itsSources.node) {}

  void Run() override {
    if (!sources) return;
    sources->isTurnWaiting = false;
    Collect(sources->noted, sources->engine.Order());
    if (ids.empty()) return;
    sources->engine.PrepareChange(step);
    for (OwnedSource* const row : sources->noted) row->noted = 0;
    sources->noted.clear();
    sources->engine.TellChange(step);
  }
  [[nodiscard]] const void* Owner() const noexcept override { return owner; }
  void Release() noexcept override {
    if (sources && sources->spare == nullptr) {
      sources->spare.reset(this);
    } else {
      delete this;
    }
  }

 private:
  /// Makes the step of the rows that are in the list, in their order; a row that is not needs no
  /// telling.
  void Collect(std::vector<OwnedSource*>& heard, const RowOrder& order) {
    std::erase_if(heard, [&](OwnedSource* row) {
      const bool isGone = !order.Contains(row->id);
      if (isGone) row->noted = 0;
      return isGone;
    });
    std::ranges::sort(heard, {}, [&](const OwnedSource* row) { return order.IndexOf(row->id); });
    ids.clear();
    rows.clear();
    ids.reserve(heard.size());
    rows.reserve(heard.size());
    step.fields = 0;
    for (const OwnedSource* const row : heard) {
      ids.push_back(row->id);
      rows.push_back(row->row);
      step.fields |= row->noted;
    }
    step.kind = ListChangeKind::Changed;
    step.count = ids.size();
    step.rows = ids;
    step.others = rows;
  }

  WeakPtr<OwnedSources> sources;
  const void* owner;
  ListStep step;
  std::vector<RowId> ids;
  std::vector<const void*> rows;
};

OwnedSources::OwnedSources(ListNode& itsNode, ListEngine& itsEngine) noexcept
    : node(itsNode), engine(itsEngine) {}

OwnedSources::~OwnedSources() { InvalidateWeakPtrs(); }

const RowTable& OwnedSources::StoredTable() {
  static const RowTable table = [] {
    RowTable made;
    made.type = &runtime_type<Slot>::Get();
    made.size = sizeof(Slot);
    made.alignment = alignof(Slot);
    made.move = &MoveSlot;
    made.destroy = &GiveUp;
    made.placed = &Place;
    return made;
  }();
  return table;
}

void OwnedSources::MoveSlot(void* to, void* from) noexcept {
  ::new (to) Slot(std::move(*static_cast<Slot*>(from)));
}

void OwnedSources::Place(void* slot, RowId id) noexcept {
  OwnedSource& placed = **static_cast<Slot*>(slot);
  placed.id = id;
  ++placed.owner.count;
}

/// Takes the source out of its slot, to be ended later.
void OwnedSources::GiveUp(void* slot) noexcept {
  Slot& own = *static_cast<Slot*>(slot);
  OwnedSources& owner = own->owner;
  own->InvalidateWeakPtrs();
  if (own->noted != 0) std::erase(owner.noted, own.get());
  --owner.count;
  own->nextEnded = std::move(owner.ended);
  owner.ended = std::move(own);
  std::destroy_at(&own);
}

void OwnedSources::EndGone() noexcept {
  auto ending = std::move(ended);
  while (ending != nullptr) ending = std::move(ending->nextEnded);
}

void OwnedSources::EndAll() noexcept {
  hasEnded = true;
  engine.EndRows();
  EndGone();
}

SetResult OwnedSources::Insert(std::size_t at, DataSourcePtr<IDataSource> source, const void* row) {
  if (source == nullptr || hasEnded) return NoSuchSource(node);
  if (noted.capacity() <= count) noted.reserve(2 * count + 4);
  auto owned = std::make_unique<OwnedSource>(*this, row, std::move(source));
  owned->announced = owned->source->RegisterAny(BindWeak(owned->AsWeakPtr(), &OwnedSource::Hear));
  const auto self = AsWeakPtr();
  FirstFailure failure;
  SetResult result;
  const bool isDone = failure.Try([&] {
    result = engine.Insert(at, {reinterpret_cast<std::byte*>(&owned), sizeof(owned), 1});
  });
  if (!isDone && self) EndGone();
  failure.Rethrow();
  return result;
}

DataSourcePtr<IDataSource> OwnedSources::Take(std::size_t at) {
  if (node.Turns()->IsTelling() || at >= engine.Order().Size()) return nullptr;
  OwnedSource& owned = **static_cast<Slot*>(engine.Slots().Row(engine.Order().At(at)));
  const auto there = owned.AsWeakPtr();
  DataSourcePtr<IDataSource> taken;
  owned.taker = &taken;
  FirstFailure failure;
  failure.Try([&] { engine.Remove(at, 1); });
  if (there) there->taker = nullptr;
  failure.Rethrow();
  return taken;
}

SetResult OwnedSources::Update(RowId id, const RowEdit& edit) {
  if (!engine.Order().Contains(id)) return RowIsGone(node);
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): a source is set by its own properties
  return edit(const_cast<void*>(SourceIn(engine.Slots().Row(id))));
}

void OwnedSources::Note(OwnedSource& source, const VtrString& property) {
  const std::uint64_t fields = FieldsOfProperty(*node.Table(), source.row, property);
  if (source.noted == 0) noted.push_back(&source);
  source.noted |= fields;
  if (isTurnWaiting) return;
  const auto turns = node.Turns();
  auto turn = spare != nullptr ? std::move(spare) : std::make_unique<Turn>(*this);
  turns->Reserve();
  isTurnWaiting = turns->IsTelling();
  turns->Take(std::move(turn));
}

}  // namespace DataBinding::details
