#pragma once

#include <ko/log.hpp>

#include <ko/human/attentionstate.hpp>

#include <map>
#include <string>
#include <vector>

/// Values that a static initialiser of a program finds when it uses the libraries.
struct StaticInitialisation
{
  bool libraryCameFirst = false;  ///< whether the ordinary static initialisers of the library had run before
  const std::string* stateCategory = nullptr;
  const std::string* ownCategory = nullptr;
  float confidenceBoundary = 0.f;                ///< the default
  float confidenceBoundaryAfterRejection = 0.f;  ///< after an attempt to set it to 2
  std::vector<ko::log::Record> warnings;         ///< of that attempt
  std::map<ko::human::AttentionState, std::string> zones;
  float valenceOfASmile = 0.f;  ///< see valenceOfASmilingPerson()
};

/// Returns the values that this program's own static initialiser found.
///
/// It also set the boundaries of PersonState and AmbianceState to `negativeBoundarySet` and `excitementBoundarySet`.
const StaticInitialisation& foundAtStaticInitialisation();

constexpr float negativeBoundarySet = -0.75f;
constexpr float excitementBoundarySet = 0.75f;

/// Returns the valence of a person after one observation of a smiling face; the same at any time.
float valenceOfASmilingPerson();
