#include "face/actionunits.hpp"

#include <skeigiot/recordings/actionunits.hpp>

#include <algorithm>
#include <cctype>
#include <limits>

namespace KV::recordings
{

ActionUnits::ActionUnits()  // NOLINT(*-member-init): all are set below
{
  intensity.fill(std::numeric_limits<float>::quiet_NaN());
}

// Joy, sorrow, surprise and anger: Ekman, Friesen & Hager, Facial Action Coding System, Investigator's Guide (2002),
// the prototypes of EMFACS, without their variants.
//
// Laughter has no table: it is a joy with lips parted (25) and jaw dropped (26). Speech parts the lips as well, so both
// must be strong.
//
// Excitement has none either, and is not told from action units. A smile is the lip corner puller.
const ScoreTable& actionUnitTable()
{
  static const ScoreTable table = [] {
    ScoreTable units;
    units.smile = {{{1.f, {"AU12"}}}, {}};
    units.joy = {{{1.f, {"AU06", "AU12"}}}, {}};
    units.sorrow = {{{1.f, {"AU01", "AU04", "AU15"}}}, {}};
    units.surprise = {{{1.f, {"AU01", "AU02", "AU05", "AU26"}}}, {}};
    units.anger = {{{1.f, {"AU04", "AU05", "AU07", "AU23"}}}, {}};
    units.laughter = {{{1.f, {"AU06", "AU12"}}}, {{1.f, {"AU25", "AU26"}}}};
    return units;
  }();
  return table;
}

bool isActionUnitName(const std::string& name)
{
  const auto isDigit = [](char character) { return std::isdigit(static_cast<unsigned char>(character)) != 0; };
  return name.size() == 4 && name.compare(0, 2, "AU") == 0 && isDigit(name[2]) && isDigit(name[3]);
}

std::size_t actionUnitNumber(const std::string& name)
{
  return static_cast<std::size_t>(std::stoi(name.substr(2)));
}

float actionUnitScore(double intensity, float fullScale)
{
  return std::clamp(static_cast<float>(intensity) / fullScale, 0.f, 1.f);
}

}  // namespace KV::recordings
