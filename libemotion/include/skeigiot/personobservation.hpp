#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/contextemotion.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/robotheadposture.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/timestamped.hpp>
#include <skeigiot/valueconfidence.hpp>
#include <skeigiot/voiceemotion.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>

namespace KV
{

/// The readings of one person in one perception cycle: independent, each optional and with its own time.
///
/// The library never modifies an observation and never assumes that a reading is there; one without any reading is
/// valid.
///
/// PersonMemory::remembered() returns the remembered readings, also those that the estimate does not use.
struct SKEIGIOT_API PersonObservation
{
  /// A value and when it was observed, or nothing.
  template <typename T>
  using Reading = boost::optional<Timestamped<T>>;

  Reading<bool> lookingAtRobot;                ///< remembered for 7 s; not read by the estimate
  Reading<float> headHeight;                   ///< [m] above the floor; kept in the state, never remembered
  Reading<float> distance;                     ///< [m] from the robot; 0 is assumed where it is missing
  Reading<Gaze> gaze;                          ///< remembered for 7 s
  Reading<Smile> smile;                        ///< acts once per time stamp
  Reading<Expressions> expressions;            ///< facial expressions; acts once per time stamp
  Reading<HeadPosture> headPosture;            ///< remembered for 7 s
  Reading<ValueConfidence<bool>> gender;       ///< remembered for 7 s; callers say what true means
  Reading<ValueConfidence<unsigned int>> age;  ///< [years]; remembered for 7 s
  Reading<bool> faceDetected;                  ///< remembered for 7 s; not read by the estimate
  Reading<FacialPoints> facialPoints;          ///< remembered for 7 s
  Reading<VoiceEmotion> voiceEmotion;          ///< acts once per time stamp, never remembered
  Reading<float> asrEmotion;                   ///< valence of the recognised speech; only its sign counts; 7 s
  Reading<std::int32_t> touchEmotion;          ///< above 0 is a pleasant touch, everything else an unpleasant one; 7 s
  Reading<ContextEmotion> contextEmotion;      ///< remembered for 20 s
  Reading<bool> speaking;                      ///< whether the person speaks; remembered for 7 s
  Reading<RobotHeadPosture> robotHeadPosture;  ///< remembered for 7 s
};

}  // namespace KV
