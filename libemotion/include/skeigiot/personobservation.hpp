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

/// What one perception cycle knows of one person: independent readings, each optional and with its own time.
///
/// The library never modifies an observation and never assumes that a reading is there; one without any reading is
/// valid.
struct SKEIGIOT_API PersonObservation
{
  template <typename T>
  using Reading = boost::optional<Timestamped<T>>;

  Reading<bool> lookingAtRobot;
  Reading<float> headHeight;  ///< [m] above the floor; kept in the state, never remembered
  Reading<float> distance;    ///< [m] from the robot
  Reading<Gaze> gaze;
  Reading<Smile> smile;
  Reading<Expressions> expressions;  ///< facial expressions
  Reading<HeadPosture> headPosture;
  Reading<ValueConfidence<bool>> gender;
  Reading<ValueConfidence<unsigned int>> age;  ///< [years]
  Reading<bool> faceDetected;
  Reading<FacialPoints> facialPoints;
  Reading<VoiceEmotion> voiceEmotion;  ///< acts once per time stamp, never remembered
  Reading<float> asrEmotion;           ///< valence of the recognised speech; only its sign counts
  Reading<std::int32_t> touchEmotion;  ///< above 0 is a pleasant touch, everything else an unpleasant one
  Reading<ContextEmotion> contextEmotion;
  Reading<bool> speaking;  ///< whether the person speaks
  Reading<RobotHeadPosture> robotHeadPosture;
};

}  // namespace KV
