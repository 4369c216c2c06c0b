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

// The action units of each emotion: Ekman, Friesen & Hager, Facial Action Coding System, Investigator's Guide (2002),
// the prototypes of EMFACS. Their weights were chosen on labelled recordings of OpenFace (docs/validation.md), since
// analysers do not detect every unit of an emotion:
//
// - The lip corners (12) show a smile; lowered brows (4) exclude one: a disgusted face raises 12 as well.
//   Joy is the smile: in conversations 12 alone follows smiles better than 12 with 6.
// - Anger is lowered brows, and the wrinkled nose (9) and raised upper lip (10) of disgust, which has no reading of its
//   own. A smile raises 10 too, so cheeks (6) and lip corners are subtracted. 5, 7 and 23 stay out: 7 is higher in calm
//   and happy faces than in angry ones.
// - Sorrow is lowered brows too; inner brows (1) and lip corners down (15) count little, since OpenFace treats most of
// them as part of the face at rest.
// - Laughter is a joy with lips parted (25) and jaw dropped (26). Speech parts the lips as well, so both must be
// strong.
// - Excitement has no table.
//
// The scores are parts of the full scale. At rest: means of neutral clips; those of 4 and 12 are above most people's,
// so that a stranger does not seem angry or happy by mistake. A person who smiles all the time is smiling, so the rest
// of 6 and 12 is not learned beyond 0.2.
const ScoreTable& actionUnitTable()
{
  static const ScoreTable table = [] {
    ScoreTable units;
    units.smile = {{{1.f, {"AU12"}}, {-0.75f, {"AU04"}}}, {}};
    units.joy = units.smile;
    units.anger = {{{1.f, {"AU04"}}, {1.f, {"AU09"}}, {1.f, {"AU10"}}, {-1.f, {"AU06"}}, {-1.f, {"AU12"}}}, {}};
    units.sorrow = {{{1.f, {"AU04"}}, {0.25f, {"AU01"}}, {0.25f, {"AU15"}}, {-1.f, {"AU06"}}, {-1.f, {"AU12"}}}, {}};
    units.surprise = {{{1.f, {"AU01", "AU02", "AU05", "AU26"}}}, {}};
    units.laughter = {units.joy.sum, {{1.f, {"AU25", "AU26"}}}};
    units.rest = {{"AU01", {0.15f, 0.5f}}, {"AU02", {0.1f, 0.5f}},  {"AU04", {0.15f, 0.5f}}, {"AU05", {0.1f, 0.5f}},
                  {"AU06", {0.05f, 0.2f}}, {"AU09", {0.05f, 0.5f}}, {"AU10", {0.1f, 0.5f}},  {"AU12", {0.2f, 0.2f}},
                  {"AU15", {0.1f, 0.5f}},  {"AU25", {0.15f, 0.5f}}, {"AU26", {0.15f, 0.5f}}};
    return units;
  }();
  return table;
}

// py-feat's action units rest high: medians of neutral faces.
const std::map<std::string, RestingScore>& pyFeatRest()
{
  static const std::map<std::string, RestingScore> rest = {
      {"AU01", {0.4f, 0.5f}}, {"AU02", {0.3f, 0.5f}},  {"AU04", {0.35f, 0.5f}}, {"AU05", {0.4f, 0.5f}},
      {"AU06", {0.1f, 0.2f}}, {"AU09", {0.15f, 0.5f}}, {"AU10", {0.1f, 0.5f}},  {"AU12", {0.1f, 0.2f}},
      {"AU15", {0.4f, 0.5f}}, {"AU25", {0.15f, 0.5f}}, {"AU26", {0.2f, 0.5f}}};
  return rest;
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
