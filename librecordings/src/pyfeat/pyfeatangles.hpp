#pragma once

#include "face/mapping.hpp"

#include <skeigiot/recordings/pyfeatunits.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Angles in the form of a table of py-feat; NaN is unknown.
struct PyFeatAngles
{
  std::array<double, 3> rotation{};  ///< Pitch, Roll, Yaw
  std::array<double, 2> gaze{};      ///< gaze_pitch, gaze_yaw
  double nod = 0.0;                  ///< how far the ears are below the eyes, as part of the width of the eyes
};

/// Detects the units and signs of the angles in a table of py-feat, from its first rows.
///
/// An angle beyond 3.2 shows that they are in degrees, else they are in radians. If a person looks up, the ears move
/// down relative to the eyes: so the landmarks show whether a pitch above 0 is up.
class PyFeatConvention
{
public:
  explicit PyFeatConvention(const PyFeatConventions& given) : _given(given) {}

  /// Adds the angles of one of the first rows, of this person.
  void learn(const std::string& person, const PyFeatAngles& angles);

  /// Decides by the rows so far.
  void decide();

  /// Returns the decision.
  const PyFeatUnits& units() const { return _units; }

  /// Returns whether these angles contradict radians, if the decision was radians.
  bool isContradictedBy(const PyFeatAngles& angles) const;

  std::string describeRotation() const;
  std::string describeGaze() const;

  /// Returns a warning if the sign of the pitch is a guess, else an empty text. It advises a mapping, which users set
  /// by `mappingName`.
  std::string warning(const std::string& mappingName) const;

private:
  // Sums over the rows of one person, for a correlation.
  struct Sums
  {
    double count = 0.0;
    double pitch = 0.0;
    double nod = 0.0;
    double pitchSquared = 0.0;
    double nodSquared = 0.0;
    double product = 0.0;
  };

  double _correlation() const;
  void _decidePitch();

  PyFeatConventions _given;
  double _greatestRotation = 0.0;
  double _greatestGaze = 0.0;
  std::map<std::string, Sums> _sums;
  bool _anyRotation = false;

  PyFeatUnits _units;
  std::string _pitchReason;
  bool _isGuess = false;  // the pitch
};

}  // namespace KV::recordings
