/// Providers, sources, listeners and constructors that note what happens to them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/DataBinding.h"

namespace DataBinding::Testing {

using Log = std::vector<std::string>;

inline Log Utf8(const std::vector<VtrString>& texts) {
  Log narrow;
  for (const auto& text : texts) narrow.push_back(text.ToUtf8());
  return narrow;
}

/// Notes its end as "~Name".
class LoggedSource : public NamedDataSource {
 public:
  LoggedSource(const VtrString& name, Log& notes) : NamedDataSource(name), log(notes) {}
  void PreDestroy() override {
    if (onPreDestroy) onPreDestroy();
  }
  void AddMember(const VtrString& name, const runtime_type_base& type) { _AddType(name, type); }

  std::function<void()> onPreDestroy;
  VtrString announced;

 protected:
  ~LoggedSource() override { log.push_back("~" + VtrString(GetDataSourceName()).ToUtf8()); }

 private:
  Log& log;
};

/// Notes "+Source", "-Source" and "gone", then runs its hook with that note.
class LoggedListener : public IDataListener {
 public:
  explicit LoggedListener(Log& notes) : log(notes) {}
  void ConnectToDatasource(IDataSource* source) override { Note("+", source); }
  void DisconnectFromDatasource(IDataSource* source) override { Note("-", source); }
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* /*provider*/) override {
    Note("gone", nullptr);
  }

  std::function<void(const std::string& note)> hook;

 protected:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}

 private:
  void Note(std::string note, IDataSource* source) {
    if (source != nullptr) note += VtrString(source->GetDataSourceName()).ToUtf8();
    log.push_back(note);
    if (const auto run = hook) run(note);
  }

  Log& log;
};

/// Notes "tag registered", "tag attached" and "tag unregistered", and builds logged sources.
class LoggedConstructor final : public IDataSourceConstructor {
 public:
  LoggedConstructor(const wchar_t* sourceName, const wchar_t* categoryList, Log& notes,
                    std::string noteTag, Placement place = Placement::Back)
      : name(sourceName),
        categories(categoryList),
        log(notes),
        tag(std::move(noteTag)),
        placement(place) {}
  ~LoggedConstructor() override = default;
  void OnRegistered() override { log.push_back(tag + " registered"); }
  void OnUnregistered() override {
    log.push_back(tag + " unregistered");
    if (onUnregistered) onUnregistered();
  }
  const wchar_t* GetName() override { return name; }
  IDataSource* CreateDataSource(IDataSourceProvider* provider) override {
    return refuses ? nullptr : MakeDataSource<LoggedSource>(provider, name, log).release();
  }
  void OnProviderAttached(IDataSourceProvider* provider) override {
    log.push_back(tag + " attached");
    if (onAttached) onAttached(provider);
  }
  int GetPlacement() override { return static_cast<int>(placement); }
  const wchar_t* GetCategories() override { return categories; }

  std::function<void()> onUnregistered;
  std::function<void(IDataSourceProvider*)> onAttached;
  bool refuses = false;

 private:
  const wchar_t* name;
  const wchar_t* categories;
  Log& log;
  std::string tag;
  Placement placement;
};

struct ProviderDeleter {
  void operator()(IDataSourceProvider* provider) const { IDataSourceProvider::Destroy(provider); }
};
using ProviderPtr = std::unique_ptr<DataSourceProvider, ProviderDeleter>;

inline ProviderPtr MakeProvider(IDataSourceProvider* parent = nullptr,
                                const wchar_t* categories = nullptr) {
  return ProviderPtr(new DataSourceProvider(parent, categories, nullptr));
}

/// Runs each test with a registrar of its own.
class ScopeTest : public ::testing::Test {
 protected:
  ScopeTest() { IDataSourceRegistrar::SetInstanceForTests(&registrar); }
  ~ScopeTest() override { IDataSourceRegistrar::SetInstanceForTests(nullptr); }

  LoggedSource* Add(IDataSourceProvider& provider, const wchar_t* name) {
    auto* source = MakeDataSource<LoggedSource>(&provider, name, log).release();
    provider.AddDataSource(source);
    return source;
  }
  [[nodiscard]] Log TakeLog() { return std::exchange(log, {}); }

  Log log;
  DataSourceRegistrar registrar;
};

}  // namespace DataBinding::Testing
