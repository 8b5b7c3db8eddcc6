// SPDX-License-Identifier: Apache-2.0
/// The operations of the scripts of sources, scopes and listeners, and the names that they use.
#pragma once

#include <array>
#include <string_view>

#include "Script.h"

namespace DataBinding::Stress {

inline constexpr int providerCount = 6;  // the first is the registrar's root
inline constexpr int listenerCount = 4;
inline constexpr int watchCount = 3;

/// The names, in order. The last differs from the second only by its case.
inline constexpr const wchar_t* sourceNames[] = {L"Art", L"Doc", L"Map", L"New", L"doc"};
inline constexpr int nameCount = 5;
/// The properties A, B and C are numbers, E is an event source, * is not declared.
inline constexpr const wchar_t* propertyNames[] = {L"A", L"B", L"C", L"E", L"*"};
inline constexpr int propertyCount = 5;
/// A watch of this number hears any property.
inline constexpr int anyProperty = propertyCount;

/// Lists of categories as they are written, and a letter for each category that they name.
struct Categories {
  const wchar_t* text;
  std::string_view letters;
};
inline constexpr Categories categoryLists[] = {
    {L"", ""},   {L"A", "A"},     {L"B", "B"}, {L" A ,,B", "AB"},
    {L"a", "a"}, {L"C,A ", "CA"}, {L"C", "C"}, {L"root", "r"},
};
inline constexpr int rootCategories = 7;
struct ConstructorTraits {
  int name = 0;
  int placement = 0;
  Categories categories;
};
inline constexpr ConstructorTraits constructorTraits[] = {
    {1, 2, {L"A", "A"}},       {2, 1, {L"B, A", "BA"}}, {1, 2, {L"B,C", "BC"}},
    {0, 1, {L"root,C", "rC"}}, {3, 2, {L"", ""}},       {4, 0, {L"A", "A"}},
};
inline constexpr int constructorCount = 6;

/// Announcements as they are written, and the properties that they mean.
struct Announcement {
  const wchar_t* text;
  std::string_view properties;
};
inline constexpr Announcement announcements[] = {
    {L"A", "0"},       {L"*", "012"},  {L"B, A,,E", "103"}, {L"B", "1"},     {L"*,-A", "12"},
    {L"*,!C,xB", "0"}, {L"B,*", "14"}, {L"", ""},           {L" , ", "012"},
};
inline constexpr int announcementCount = 9;

template <class World>
std::vector<Operation<World>> DataOperations() {
  using enum Place;
  return {
      {"OpenProvider", "p6p6c7", &World::OpenProvider, 8},
      {"EndProvider", "p6", &World::EndProvider, 2},
      {"ShutDownProvider", "p6", &World::ShutDownProvider, 2},
      {"AttachProvider", "p6", &World::AttachProvider, 3},
      {"DetachProvider", "p6", &World::DetachProvider},
      {"AddSources", "p6n5k6", &World::AddSources, 14, Parting},
      {"AdoptSource", "p6s9", &World::AdoptSource, 3},
      {"RemoveSources", "p6s9s9", &World::RemoveSources, 6},
      {"EndSource", "s9", &World::EndSource, 2},
      {"DeleteSource", "p6n5", &World::DeleteSource, 4},
      {"LookUp", "p6n5k6", &World::LookUp, 12, Wiring},
      {"SetCustomData", "p6k6v4", &World::SetCustomData, 2, Wiring},
      {"RegisterConstructor", "k6", &World::RegisterConstructor, 5},
      {"UnregisterConstructor", "k6", &World::UnregisterConstructor, 2},
      {"ToggleRefusal", "k6", &World::ToggleRefusal},
      {"Want", "l4n5q5", &World::Want, 14, Wiring},
      {"SetProvider", "l4p6", &World::SetProvider, 12, Parting},
      {"AddListener", "p6l4m0", &World::AddListener, 6},
      {"RemoveListener", "p6l4", &World::RemoveListener, 5},
      {"EndListener", "l4", &World::EndListener, 4, Wiring},
      {"MoveListener", "l4l4", &World::MoveListener, 2},
      {"Watch", "w3s9q6", &World::Watch, 6, Wiring},
      {"CancelWatch", "w3", &World::CancelWatch, 5, Wiring},
      {"Announce", "s9a9", &World::Announce, 12, Wiring},
      {"SetProperty", "s9q5v4", &World::SetProperty, 15, Wiring},
      {"When", "x4l4m3", &World::When, 14},
      {"Throw", "", &World::Throw, 2},
  };
}

inline constexpr std::array<std::string_view, 4> dataPoints = {"called", "connected",
                                                               "disconnected", "gone"};

}  // namespace DataBinding::Stress
