// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/datasource/IDataSourceProvider.h"

namespace DataBinding {

IDataSourceProvider::~IDataSourceProvider() = default;

void IDataSourceProvider::Destroy(IDataSourceProvider* provider) {
  if (provider != nullptr) provider->Destroy();
}

bool IDataSourceProvider::IsConnecting() const { return false; }

void IDataSourceProvider::WhenConnected(OneShotCallback<void()> callback) { callback(); }

void IDataSourceProvider::VisitDataSources(
    const std::function<void(IDataSource&)>& /*visit*/) const {}
void IDataSourceProvider::VisitChildren(
    const std::function<void(IDataSourceProvider&)>& /*visit*/) const {}
void IDataSourceProvider::VisitDataListeners(
    const std::function<void(IDataListener&)>& /*visit*/) const {}

Subscription IDataSourceProvider::ObserveChildren(const ChildCallback& /*callback*/) { return {}; }

void IDataSourceProvider::NoteGoingChild(IDataSourceProvider* /*child*/) {}

// The values that are attached to a provider are no part of its state, so a proxy may set them on a
// const provider.
CustomDataProxy IDataSourceProvider::GetCustomData() const noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
  return CustomDataProxy(const_cast<IDataSourceProvider*>(this));
}

void* CustomDataProxy::GetRaw(const Guid& id) const {
  return provider == nullptr ? nullptr : provider->GetCustomData(id);
}

void* CustomDataProxy::SetRaw(const Guid& id, void* value) const {
  return provider == nullptr ? nullptr : provider->SetCustomData(id, value);
}

}  // namespace DataBinding
