#include "pyfeat/pyfeatangles.hpp"

#include "face/settingname.hpp"

#include <algorithm>
#include <cmath>

namespace KV::recordings
{
namespace
{
constexpr double greatestRadians = 3.2;  // a little more than half a turn

// A correlation that chance hardly reaches.
constexpr double tellingRows = 8.0;
constexpr double tellingCorrelation = 0.6;

template <std::size_t Count>
double greatestOf(const std::array<double, Count>& angles)
{
  double greatest = 0.0;
  for (const double angle : angles)
    greatest = std::max(greatest, std::abs(angle));  // skips a NaN
  return greatest;
}

}  // namespace

void PyFeatConvention::learn(const std::string& person, const PyFeatAngles& angles)
{
  _greatestRotation = std::max(_greatestRotation, greatestOf(angles.rotation));
  _greatestGaze = std::max(_greatestGaze, greatestOf(angles.gaze));
  const double pitch = angles.rotation.front();
  _anyRotation = _anyRotation || std::isfinite(pitch);
  if (!std::isfinite(pitch) || !std::isfinite(angles.nod))
    return;
  Sums& sums = _sums[person];
  sums.count += 1.0;
  sums.pitch += pitch;
  sums.nod += angles.nod;
  sums.pitchSquared += pitch * pitch;
  sums.nodSquared += angles.nod * angles.nod;
  sums.product += pitch * angles.nod;
}

void PyFeatConvention::decide()
{
  _units.rotationInDegrees = _given.degrees.value_or(_greatestRotation > greatestRadians);
  _units.gazeInDegrees = _greatestGaze > greatestRadians;
  _units.gazeYawIsLeft = _given.gazeYawIsLeft;
  _units.gazePitchIsUp = _given.gazePitchIsUp;
  _decidePitch();
  _sums.clear();
}

void PyFeatConvention::_decidePitch()
{
  const double correlation = _correlation();
  if (_given.pitchIsUp)
  {
    _units.pitchIsUp = *_given.pitchIsUp;
    _pitchReason = "as given";
  }
  else if (std::abs(correlation) >= tellingCorrelation)
  {
    _units.pitchIsUp = correlation > 0.0;
    _pitchReason = "by the landmarks";
  }
  else
  {
    // The documentation says up. In tables in radians, of version 0.7 and later, a pitch > 0 was seen to be down.
    _units.pitchIsUp = _units.rotationInDegrees;
    _pitchReason = "a guess";
    _isGuess = _anyRotation;
  }
}

std::string PyFeatConvention::warning(const std::string& mappingName) const
{
  if (!_isGuess)
    return {};
  return std::string("the landmarks do not show whether Pitch counts up or down: it is taken for ") +
         (_units.pitchIsUp ? "up" : "down") + "; say so by pyFeat.pitch in a mapping" + settingName(mappingName) +
         " if it is not";
}

// Of pitch and nod, both relative to their mean of each person: cameras see persons from different heights. 0 if it
// cannot be computed.
double PyFeatConvention::_correlation() const
{
  Sums within;
  for (const auto& [person, sums] : _sums)
  {
    within.count += sums.count;
    within.pitchSquared += sums.pitchSquared - sums.pitch * sums.pitch / sums.count;
    within.nodSquared += sums.nodSquared - sums.nod * sums.nod / sums.count;
    within.product += sums.product - sums.pitch * sums.nod / sums.count;
  }
  const double norm = std::sqrt(within.pitchSquared * within.nodSquared);
  return within.count >= tellingRows && norm > 1e-12 ? within.product / norm : 0.0;
}

bool PyFeatConvention::isContradictedBy(const PyFeatAngles& angles) const
{
  return (!_units.rotationInDegrees && greatestOf(angles.rotation) > greatestRadians) ||
         (!_units.gazeInDegrees && greatestOf(angles.gaze) > greatestRadians);
}

std::string PyFeatConvention::describeRotation() const
{
  const std::string found = _given.degrees             ? " as given"
                            : _units.rotationInDegrees ? ", since one of the first rows is beyond 3.2"
                                                       : ", since none of the first rows is beyond 3.2";
  return "angles in " + std::string(_units.rotationInDegrees ? "degrees" : "radians") + found + ", Pitch " +
         (_units.pitchIsUp ? "up" : "down") + " (" + _pitchReason +
         "), Yaw to the own right, Roll to the own right shoulder";
}

std::string PyFeatConvention::describeGaze() const
{
  return std::string("gaze_yaw to the own ") + (_units.gazeYawIsLeft ? "left" : "right") + ", gaze_pitch " +
         (_units.gazePitchIsUp ? "up" : "down");
}

}  // namespace KV::recordings
