#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/facereadings.hpp>
#include <skeigiot/recordings/readingoptions.hpp>
#include <skeigiot/recordings/restingface.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <memory>
#include <string>
#include <vector>

namespace KV::recordings
{

struct FaceAdapterPrivate;

/// Converts the output of a front end for a face to readings. All readers of recordings use this class. A live program
/// that uses it gets the same readings, to the last bit, as a recording of the same numbers.
///
/// People differ at rest, so what a person's face is at rest is taken off its scores: with a RestingFace for each
/// person it is learned as faces come, as readers do; without one, a typical face of the front end is assumed.
///
/// Of the options it reads the mapping, mirrored, lineOfSight, lookAt, rest, cameraHeight, minimalConfidence and
/// actionUnitFullScale.
/// Copies share the record, which never changes.
///
/// \par Thread safety
///   Not synchronised, and nothing changes: any number of threads may use one adapter.
class SKEIGIOT_API FaceAdapter
{
public:
  /// Reads the file of the mapping, if the options name one.
  ///
  /// \throws Error if it cannot be read or used: names the member, and what was expected.
  explicit FaceAdapter(const ReadingOptions& options = {});

  /// Returns the observation of this face, all readings made at `time`; nothing if the face is not tracked
  /// (isTracked()): the person was not seen in this cycle.
  boost::optional<KV::PersonObservation> observe(const Face& face, ko::SystemClock::time_point time) const;

  /// As above; learns from the face what this person's face is at rest. Times must not run back.
  boost::optional<KV::PersonObservation> observe(const Face& face, ko::SystemClock::time_point time,
                                                 RestingFace& rest) const;

  /// Returns whether a face of this confidence counts: it is at least minimalConfidence; NaN is not.
  bool isTracked(float confidence) const;

  /// Returns the readings of a face, whatever its confidence.
  ///
  /// - headPosture, gaze: of the pose; relative to the line from the face to what lookAt says, where that is a point
  /// and
  ///   the position is known, with left and right exchanged if the image is mirrored.
  /// - distance [m]: to the camera. headHeight [m]: cameraHeight less how far the face is below the camera.
  /// - smile: emotions by their table; else action units, else blendshapes, each by theirs.
  /// - expressions: emotions by their table, else action units, else blendshapes. Of a table the expressions whose
  ///   scores are unknown get confidence 0.
  /// - facialPoints: those of the landmarks that are known.
  FaceReadings read(const Face& face) const;

  /// As above; learns from the face what this person's face is at rest.
  FaceReadings read(const Face& face, ko::SystemClock::time_point time, RestingFace& rest) const;

  /// Returns which action units the tables read, such as "AU06"; all others are passed over.
  const std::vector<std::string>& actionUnitNames() const;

  /// Returns which blendshapes the tables read, such as "mouthSmileLeft"; all others are passed over.
  const std::vector<std::string>& blendshapeNames() const;

  /// Returns which emotions the tables read, such as "happy"; all others are passed over.
  const std::vector<std::string>& emotionNames() const;

  std::shared_ptr<const FaceAdapterPrivate> _p;  ///< the shared record, for the library's own components
};

}  // namespace KV::recordings
