#pragma once

#include <skeigiot/contextemotion.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/robotheadposture.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/valueconfidence.hpp>
#include <skeigiot/voiceemotion.hpp>

#include <cstdint>

namespace binding
{

/// Describes the expected value of a reading in error messages.
template <typename T>
inline constexpr const char* expectedValue = nullptr;

template <>
inline constexpr const char* expectedValue<float> = "a number";
template <>
inline constexpr const char* expectedValue<bool> = "True or False";
template <>
inline constexpr const char* expectedValue<std::int32_t> = "a whole number";
template <>
inline constexpr const char* expectedValue<KV::ValueConfidence<bool>> =
    "ValueConfidence(value, confidence) with a bool, such as ValueConfidence(True, 0.9)";
template <>
inline constexpr const char* expectedValue<KV::ValueConfidence<unsigned int>> =
    "ValueConfidence(value, confidence) with a whole number, such as ValueConfidence(34, 0.9)";
template <>
inline constexpr const char* expectedValue<KV::Smile> = "Smile(value, confidence), such as Smile(0.8, 0.9)";
template <>
inline constexpr const char* expectedValue<KV::Gaze> = "Gaze(yaw, pitch) in degrees, such as Gaze(5.0, -2.0)";
template <>
inline constexpr const char* expectedValue<KV::HeadPosture> =
    "HeadPosture(yaw, pitch, roll) in degrees, such as HeadPosture(5.0, -2.0, 0.0)";
template <>
inline constexpr const char* expectedValue<KV::RobotHeadPosture> =
    "RobotHeadPosture(yaw, pitch) in degrees, such as RobotHeadPosture(5.0, -2.0)";
template <>
inline constexpr const char* expectedValue<KV::Expressions> =
    "Expressions of scores with confidences, such as Expressions(joy=(0.8, 0.9), calm=(0.1, 0.9))";
template <>
inline constexpr const char* expectedValue<KV::VoiceEmotion> =
    "VoiceEmotion of scores with confidences, such as VoiceEmotion(joy=(0.8, 0.9), calm=(0.1, 0.9))";
template <>
inline constexpr const char* expectedValue<KV::FacialPoints> =
    "FacialPoints of twelve points with confidences, such as FacialPoints([((0.0, 0.0), 0.9)] * 12)";
template <>
inline constexpr const char* expectedValue<KV::ContextEmotion> =
    "ContextEmotion(valence, lifetime) with seconds, such as ContextEmotion(1, 5.0)";

}  // namespace binding
