#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/contextemotion.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/robotheadposture.hpp>
#include <skeigiot/smile.hpp>

#include <cstddef>

/// \file
/// For the boundary between sensors and library: what is not finite can be kept out there.
///
/// The estimator takes readings as they come. A NaN in a voice, or in the smile of somebody who speaks, ends up in the
/// valence, an infinite pitch of a head in the attention, and stays there for the life of the person; other readings
/// that are not finite, or so large that a sum of a few seconds of them is infinite, show for seconds. Person::update()
/// does not look for them, and costs nothing for it.
///
/// \par Thread safety
///   The functions are safe from any thread, as far as nobody changes their argument meanwhile.
/// \par Complexity
///   Constant; a hundredth of what an update costs.

namespace KV
{

/// The greatest magnitude that counts as finite. It is far beyond what any sensor measures, and sums and products of
/// the update over all that a memory can hold stay finite with it.
constexpr float greatestReading = 1e30f;

/// \name Readings
/// Return whether every number of the reading is finite: neither NaN nor beyond greatestReading.
/// @{
SKEIGIOT_API bool isFinite(const Gaze& gaze);                 ///< both angles
SKEIGIOT_API bool isFinite(const HeadPosture& posture);       ///< all three angles
SKEIGIOT_API bool isFinite(const RobotHeadPosture& posture);  ///< both angles
SKEIGIOT_API bool isFinite(const Smile& smile);               ///< degree and confidence
SKEIGIOT_API bool isFinite(const Expressions& expressions);  ///< all scores and confidences; for a VoiceEmotion as well
SKEIGIOT_API bool isFinite(const FacialPoints& points);      ///< positions and confidences of all twelve
SKEIGIOT_API bool isFinite(const ContextEmotion& emotion);   ///< the lifetime
/// @}

/// Returns whether every reading that is there is finite; one without any reading is.
SKEIGIOT_API bool isFinite(const PersonObservation& observation);

/// Takes the readings that are not finite out of the observation, and returns how many they were; the others stay.
SKEIGIOT_API std::size_t leaveOutNonFinite(PersonObservation& observation);

}  // namespace KV
