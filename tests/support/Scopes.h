// SPDX-License-Identifier: Apache-2.0
/// Sources, listeners and constructors that note what happens to them, and a fixture around them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/registrar/DataSourceRegistrar.h"
#include "DataBinding/registrar/IDataSourceConstructor.h"

namespace DataBinding::Testing {

/// The texts, one blank between them.
inline std::string Joined(const std::vector<VtrString>& texts) {
  std::string joined;
  for (const auto& text : texts) joined.append(joined.empty() ? "" : " ").append(text.ToUtf8());
  return joined;
}

/// Notes its end as "~Name".
class LoggedSource : public NamedDataSource {
 public:
  LoggedSource(const VtrString& name, std::string& notes) : NamedDataSource(name), log(notes) {}
  void PreDestroy() override {
    if (onPreDestroy) onPreDestroy();
  }
  using NamedDataSource::_AddType;

  std::function<void()> onPreDestroy;

 protected:
  ~LoggedSource() override {
    log.append("~").append(VtrString(GetDataSourceName()).ToUtf8()).append(" ");
  }

 private:
  std::string& log;
};

/// Notes "+Name", "-Name" and "gone", and runs its hook with the note.
class LoggedListener : public IDataListener {
 public:
  explicit LoggedListener(std::string& notes) : log(notes) {}
  void ConnectToDatasource(IDataSource* source) override { Note("+", source->GetDataSourceName()); }
  void DisconnectFromDatasource(IDataSource* source) override {
    Note("-", source->GetDataSourceName());
  }
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* /*provider*/) override {
    Note("gone", L"");
  }

  std::function<void(const std::string& note)> hook;

 protected:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}

 private:
  void Note(std::string note, const VtrString& name) {
    note += name.ToUtf8();
    log += note + " ";
    if (const auto run = hook) run(note);
  }

  std::string& log;
};

/// Notes "tag:registered", "tag:attached" and "tag:unregistered", and builds logged sources.
class LoggedConstructor final : public IDataSourceConstructor {
 public:
  LoggedConstructor(std::string& notes, std::string noteTag, const wchar_t* sourceName,
                    const wchar_t* categoryList, int place = 2)
      : log(notes),
        tag(std::move(noteTag)),
        name(sourceName),
        categories(categoryList),
        placement(place) {}
  ~LoggedConstructor() override = default;
  void OnRegistered() override { log += tag + ":registered "; }
  void OnUnregistered() override {
    log += tag + ":unregistered ";
    if (onUnregistered) onUnregistered();
  }
  const wchar_t* GetName() override { return name; }
  IDataSource* CreateDataSource(IDataSourceProvider* provider) override {
    return MakeDataSource<LoggedSource>(provider, name, log).release();
  }
  void OnProviderAttached(IDataSourceProvider* /*provider*/) override {
    log += tag + ":attached ";
    if (onAttached) onAttached();
  }
  int GetPlacement() override {
    if (const auto run = std::exchange(onPlaced, nullptr)) run();
    return placement;
  }
  const wchar_t* GetCategories() override { return categories; }

  std::function<void()> onUnregistered;
  std::function<void()> onAttached;
  std::function<void()> onPlaced;

 private:
  std::string& log;
  std::string tag;
  const wchar_t* name;
  const wchar_t* categories;
  int placement;
};

struct ProviderDeleter {
  void operator()(IDataSourceProvider* provider) const { IDataSourceProvider::Destroy(provider); }
};
using ProviderPtr = std::unique_ptr<DataSourceProvider, ProviderDeleter>;

inline ProviderPtr MakeProvider(IDataSourceProvider* parent = nullptr,
                                const wchar_t* categories = nullptr) {
  return ProviderPtr(new DataSourceProvider(parent, categories, nullptr));
}

/// Gives each test a registrar of its own and two scopes, one inside the other.
class Scopes : public ::testing::Test {
 public:
  Scopes() {
    IDataSourceRegistrar::SetInstanceForTests(&registrar);
    parent = MakeProvider(nullptr, L" A ,,B");
    child = MakeProvider(parent.get(), L"C");
  }
  ~Scopes() override {
    child.reset();
    parent.reset();
    IDataSourceRegistrar::SetInstanceForTests(nullptr);
  }
  LoggedSource* Add(const ProviderPtr& provider, const wchar_t* name) {
    auto* source = MakeDataSource<LoggedSource>(provider.get(), name, log).release();
    provider->AddDataSource(source);
    return source;
  }
  /// What was noted since the last call.
  std::string Notes() {
    if (!log.empty()) log.pop_back();
    return std::exchange(log, {});
  }

  std::string log;
  DataSourceRegistrar registrar;
  ProviderPtr parent;
  ProviderPtr child;
};

}  // namespace DataBinding::Testing
