// SPDX-License-Identifier: Apache-2.0
// This file tells, in debug builds, of sources that nobody will ever hear. It says nothing while a
// source is being made, and therefore counts on each thread the sources that are.

#include "SilentSource.h"

#include "DataBinding/datasource/MakeDataSource.h"

#if !defined(NDEBUG)
#include <cstdio>
#include <set>
#include <string>

#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/TypeName.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#endif

namespace DataBinding {

namespace {
constinit thread_local int sourcesBeingMade = 0;
}  // namespace

details::SourceBeingMade::SourceBeingMade() noexcept { ++sourcesBeingMade; }
details::SourceBeingMade::~SourceBeingMade() { --sourcesBeingMade; }

#if !defined(NDEBUG)

namespace {

/// Holds the classes that a message has named. It is never destroyed, since sources may end with
/// the process.
struct SpokenOf {
  ThreadLock lock;
  std::set<std::string> classes DATABINDING_GUARDED_BY(lock);
};

bool IsFirstOf(const std::type_info& sourceClass) {
  static auto* spokenOf = new SpokenOf;
  const WriteLock guard(spokenOf->lock);
  return spokenOf->classes.insert(TypeKey(sourceClass)).second;
}

}  // namespace

void NoteSilence(const std::type_info& sourceClass, const details::Broadcaster& broadcaster,
                 const VtrString& name) noexcept {
  if (sourcesBeingMade != 0) return;
  FirstFailure dropped;  // the announcement goes on even if the message fails
  dropped.Try([&] {
    if (!broadcaster.AreListenersAvailable(name) || !IsFirstOf(sourceClass)) return;
    const std::string text = "DataBinding: nobody hears that \"" + name.ToUtf8() +
                             "\" of a data source of class " + ReadableTypeName(sourceClass) +
                             " has changed, because the source was not post-constructed: make it "
                             "with MakeDataSource or Emplace.\n";
    std::fputs(text.c_str(), stderr);
  });
}

#endif

}  // namespace DataBinding
