#include "actionunits.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace tools
{
namespace
{
using Expression = KV::ValueConfidence<float> KV::Expressions::*;

const std::vector<int> smile = {12};  // lip corner puller

// An expression is as strong as its action units are on the mean, and, if a second group is given, no stronger than
// that one is.
struct Composition
{
  Expression expression;
  std::vector<int> units;
  std::vector<int> limitingUnits;
};

// Joy, sorrow, surprise and anger: Ekman, Friesen & Hager, Facial Action Coding System, Investigator's Guide (2002),
// the prototypes of EMFACS, without their variants.
//
// Laughter has no table: it is a joy with lips parted (25) and jaw dropped (26). Speech parts the lips as well, so both
// must be strong.
//
// Excitement has none either, and is not told from action units.
const std::vector<Composition> compositions = {
    {&KV::Expressions::joy, {6, 12}, {}},
    {&KV::Expressions::sorrow, {1, 4, 15}, {}},
    {&KV::Expressions::surprise, {1, 2, 5, 26}, {}},
    {&KV::Expressions::anger, {4, 5, 7, 23}, {}},
    {&KV::Expressions::laughter, {6, 12}, {25, 26}},
};

std::size_t indexOf(int unit)
{
  const auto* const found = std::find(usedActionUnits.begin(), usedActionUnits.end(), unit);
  return static_cast<std::size_t>(std::distance(usedActionUnits.begin(), found));
}

// NaN if an action unit is unknown.
float strengthOf(const Composition& composition, const ActionUnits& units)
{
  const float strength = units.mean(composition.units);
  if (composition.limitingUnits.empty())
    return strength;
  const float limit = units.mean(composition.limitingUnits);
  return std::isnan(limit) ? limit : std::min(strength, limit);
}

}  // namespace

ActionUnits::ActionUnits()
{
  _intensities.fill(std::numeric_limits<float>::quiet_NaN());
}

void ActionUnits::set(std::size_t index, double intensity, float fullScale)
{
  _intensities.at(index) = std::clamp(static_cast<float>(intensity) / fullScale, 0.f, 1.f);
}

float ActionUnits::mean(const std::vector<int>& units) const
{
  float sum = 0.f;
  for (const int unit : units)
    sum += _intensities.at(indexOf(unit));
  return sum / static_cast<float>(units.size());
}

std::optional<KV::Smile> smileOf(const ActionUnits& units, float confidence)
{
  const float degree = units.mean(smile);
  if (std::isnan(degree))
    return {};
  return KV::Smile(degree, confidence);
}

std::optional<KV::Expressions> expressionsOf(const ActionUnits& units, float confidence)
{
  KV::Expressions expressions;
  float strongest = 0.f;
  std::size_t known = 0;
  for (const Composition& composition : compositions)
  {
    const float strength = strengthOf(composition, units);
    if (std::isnan(strength))
      continue;
    expressions.*composition.expression = {strength, confidence};
    strongest = std::max(strongest, strength);
    ++known;
  }

  if (known == 0)
    return {};
  // A face is calm as far as no expression shows: that takes all of them.
  if (known == compositions.size())
    expressions.calm = {1.f - strongest, confidence};
  return expressions;
}

}  // namespace tools
