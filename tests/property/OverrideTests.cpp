// SPDX-License-Identifier: Apache-2.0
#include <initializer_list>
#include <map>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/property/PropertyBatch.h"

namespace DataBinding {
namespace {

/// Files what is added under another name, too, and under a third one in a table of its own.
class Overriding : public NamedDataSource {
 public:
  Overriding() : NamedDataSource(L"Overriding") {}
  void _AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                    const runtime_type_base& type) override {
    if (isSwallowing) return;
    if (isSealing) return NamedDataSource::_AddDelegate(name, delegate, sealedType);
    kept.insert_or_assign(name, delegate);
    NamedDataSource::_AddDelegate(L"Other" + name, delegate, type);
    NamedDataSource::_AddDelegate(name, delegate, type);
    NamedDataSource::_AddDelegate(name, delegate, type);
  }
  std::pair<std::size_t, RepeatingCallbackMemento> _GetDelegate(
      std::initializer_list<DelegateTag> tags) override {
    auto answer = NamedDataSource::_GetDelegate(tags);
    kept.insert_or_assign(L"Answer", std::move(answer.second));
    return NamedDataSource::_GetDelegate({{redirected, tags.begin()->type}});
  }

  bool isSwallowing = false;
  bool isSealing = false;
  const runtime_type_base& sealedType = runtime_type<const int>::Get();
  VtrString redirected = L"Size";
  std::map<VtrString, RepeatingCallbackMemento> kept;
};

class Overrides : public testing::Test {
 protected:
  /// Tells whether a callback that was kept reaches a living property.
  bool IsLiving(const VtrString& name) {
    details::RepeatingCallbackBase callback;
    callback.SetMemento(source->kept[name]);
    return !callback.IsCancelled();
  }

  DataSourcePtr<Overriding> source = MakeDataSource<Overriding>(nullptr);
  std::unique_ptr<Property<int>> size =
      std::make_unique<Property<int>>(source.get(), PropertyName(L"Size"), 4);
};

TEST_F(Overrides, OfFilingMayKeepAndRenameTheAccessor) {
  EXPECT_TRUE(SetProperty(source.get(), L"OtherSize", 5).changed);
  EXPECT_EQ(**size, 5);
  EXPECT_TRUE(IsLiving(L"Size"));

  size.reset();
  EXPECT_FALSE(IsLiving(L"Size"));
  EXPECT_EQ(GetProperty<int>(source.get(), L"OtherSize").error, PropertyError::Absent);
  EXPECT_EQ(GetProperty<int>(source.get(), L"Size").error, PropertyError::Absent);
}

TEST_F(Overrides, OfFilingMayMakeThePropertyReadOnly) {
  source->isSealing = true;
  const Property<int> sealed(source.get(), PropertyName(L"Sealed"));

  EXPECT_TRUE(source->IsWritableProperty(L"Size"));
  EXPECT_FALSE(source->IsWritableProperty(L"Sealed"));
}

TEST_F(Overrides, OfFilingMaySwallowTheProperty) {
  source->isSwallowing = true;
  int told = 0;
  {
    Property<int> hidden(source.get(), PropertyName(L"Hidden"));
    const auto listener = source->Register([&] { ++told; }, L"Hidden");
    const PropertyBatch batch(*source);
    hidden.Set(3);
    EXPECT_EQ(told, 0);
  }
  EXPECT_EQ(GetProperty<int>(source.get(), L"Hidden").error, PropertyError::Absent);
}

TEST_F(Overrides, OfLookUpsMayKeepAndRedirectTheAnswer) {
  const Property<int> width(source.get(), PropertyName(L"Width"), 7);
  const Property<double> ratio(source.get(), PropertyName(L"Ratio"), 0.5);

  EXPECT_EQ(*GetProperty<int>(source.get(), L"Width"), 4);
  source->redirected = L"Ratio";
  EXPECT_EQ(GetProperty<int>(source.get(), L"Width").error, PropertyError::NoAccessor);

  size.reset();
  EXPECT_TRUE(IsLiving(L"Answer"));
}

/// Asks another source, which ends before the answer is used.
class Forwarding : public NamedDataSource {
 public:
  Forwarding() : NamedDataSource(L"Forwarding") {}
  Property<int> size{this, L"Size", 3};

  std::pair<std::size_t, RepeatingCallbackMemento> _GetDelegate(
      std::initializer_list<DelegateTag> tags) override {
    if (isInner) return NamedDataSource::_GetDelegate(tags);
    const auto inner = MakeDataSource<Forwarding>(nullptr);
    inner->isInner = true;
    return inner->_GetDelegate(tags);
  }

  bool isInner = false;
};

TEST(ForwardedLookUp, NoticesThatTheOtherSourceHasEnded) {
  const auto source = MakeDataSource<Forwarding>(nullptr);

  EXPECT_EQ(GetProperty<int>(source.get(), L"Size").error, PropertyError::Absent);
}

}  // namespace
}  // namespace DataBinding
