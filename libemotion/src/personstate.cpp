#include <skeigiot/personstate.hpp>

#include "clamp.hpp"
#include "emotionalstatelog.hpp"
#include "initialisedearly.hpp"
#include "personstateprivate.hpp"
#include "tunable.hpp"

#include <ko/log.hpp>

#include <boost/assign/list_of.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace KV
{

using ko::human::AttentionState;

// clang-format off
SKEIGIOT_INITIALISED_EARLY const std::map<AttentionState, std::string> attentionZonesStringMapping =
    boost::assign::map_list_of
        (AttentionState::LookingAtRobot, "LookingAtRobot")
        (AttentionState::LookingUp, "LookingUp")
        (AttentionState::LookingDown, "LookingDown")
        (AttentionState::LookingLeft, "LookingLeft")
        (AttentionState::LookingRight, "LookingRight")
        (AttentionState::LookingUpLeft, "LookingUpLeft")
        (AttentionState::LookingUpRight, "LookingUpRight")
        (AttentionState::LookingDownLeft, "LookingDownLeft")
        (AttentionState::LookingDownRight, "LookingDownRight");
// clang-format on

SKEIGIOT_INITIALISED_EARLY Tunable binaryBoundaryPositive(0.2f);
SKEIGIOT_INITIALISED_EARLY Tunable binaryBoundaryNegative(-0.2f);
SKEIGIOT_INITIALISED_EARLY Tunable binaryBoundaryLookingAtRobot(0.6f);
SKEIGIOT_INITIALISED_EARLY Tunable binaryBoundaryStrictlyLookingAtRobot(0.9f);
SKEIGIOT_INITIALISED_EARLY Tunable binaryBoundaryConfidence(0.4f);

namespace
{

[[maybe_unused]] const ko::log::Category registeredCategory = ko::log::addCategory(emotionalStateCategory);

/// Deliberate: compared in double precision and not tunable, unlike the pleasure state.
constexpr double ternaryPositive = 0.2;
constexpr double ternaryNegative = -0.2;

/// The bounds of "engaged" and "inattentive" in emotionLogMessage().
constexpr float engagedAttention = 0.6f;
constexpr float inattentiveAttention = 0.4f;

ValueConfidence<int> ternary(const ValueConfidence<float>& valence)
{
  const auto value = static_cast<double>(valence.value);
  const int sign = value > ternaryPositive ? 1 : value > ternaryNegative ? 0 : -1;
  return {sign, valence.confidence};
}

WarningSource inSetter(const char* function, int line)
{
  return {emotionalStateCategory, emotionalStateSourceFile, function, line};
}

void writePercentages(std::ostream& stream, const char* title, const ValueConfidence<float>& emotion)
{
  stream << title << std::endl;
  stream << "\t - Value: \t" << emotion.value * 100.f << std::endl;
  stream << "\t - Confidence: \t" << emotion.confidence * 100.f << std::endl;
}

}  // namespace

PersonState::PersonState() : _p(boost::make_shared<PersonStatePrivate>()) {}

PersonState::PersonState(float valence, float valenceConfidence, float attention, float attentionConfidence)
  : PersonState()
{
  _p->_setValence(valence);
  _p->_setValenceConfidence(valenceConfidence);
  _p->_setAttention(attention);
  _p->_setAttentionConfidence(attentionConfidence);
  _p->hadValenceEvidence = true;
}

PersonState::~PersonState() = default;

void PersonState::setBinaryBoundaryPositive(float boundary)
{
  setTunable(binaryBoundaryPositive, boundary, valenceInterval, inSetter(__func__, __LINE__));
}

void PersonState::setBinaryBoundaryNegative(float boundary)
{
  setTunable(binaryBoundaryNegative, boundary, valenceInterval, inSetter(__func__, __LINE__));
}

void PersonState::setBinaryBoundaryLookingAtRobot(float boundary)
{
  setTunable(binaryBoundaryLookingAtRobot, boundary, unitInterval, inSetter(__func__, __LINE__));
}

void PersonState::setBinaryBoundaryStrictlyLookingAtRobot(float boundary)
{
  setTunable(binaryBoundaryStrictlyLookingAtRobot, boundary, unitInterval, inSetter(__func__, __LINE__));
}

void PersonState::setBinaryBoundaryConfidence(float boundary)
{
  setTunable(binaryBoundaryConfidence, boundary, unitInterval, inSetter(__func__, __LINE__));
}

float PersonState::getBinaryBoundaryPositive()
{
  return binaryBoundaryPositive.get();
}

float PersonState::getBinaryBoundaryNegative()
{
  return binaryBoundaryNegative.get();
}

float PersonState::getBinaryBoundaryLookingAtRobot()
{
  return binaryBoundaryLookingAtRobot.get();
}

float PersonState::getBinaryBoundaryStrictlyLookingAtRobot()
{
  return binaryBoundaryStrictlyLookingAtRobot.get();
}

float PersonState::getBinaryBoundaryConfidence()
{
  return binaryBoundaryConfidence.get();
}

ValueConfidence<float> PersonState::personEmotion(PersonDescription description) const
{
  switch (description)
  {
    case Positive:
      return {maximum(_p->valence.value, 0.f), _p->valence.confidence};
    case Negative:
      return {maximum(-_p->valence.value, 0.f), _p->valence.confidence};
    case Attention:
      return _p->attention;
  }
  throw std::invalid_argument("Unknown emotional expression descriptor " + std::to_string(description));
}

ValueConfidence<float> PersonState::personValence() const
{
  return _p->valence;
}

bool PersonState::hadValenceEvidence() const
{
  return _p->hadValenceEvidence;
}

ValueConfidence<int> PersonState::personValenceBinary() const
{
  return ternary(_p->valence);
}

ValueConfidence<int> PersonState::personUnsmoothedValenceBinary() const
{
  return ternary(_p->unsmoothedValence);
}

ValueConfidence<float> PersonState::personAttention() const
{
  return _p->attention;
}

std::string PersonState::personAttentionZone() const
{
  const auto found = attentionZonesStringMapping.find(_p->attentionZone);
  return found == attentionZonesStringMapping.end() ? "Unknown" : found->second;
}

PleasureState PersonState::personPleasureState() const
{
  const ValueConfidence<float> valence = _p->valence;
  if (getBinaryBoundaryConfidence() > valence.confidence)
    return PleasureUnknown;
  if (getBinaryBoundaryNegative() > valence.value)
    return PleasureNegative;
  if (getBinaryBoundaryPositive() > valence.value)
    return PleasureNeutral;
  return PleasurePositive;
}

AttentionState PersonState::personAttentionState() const
{
  return _p->attentionZone;
}

Smile PersonState::smile() const
{
  return _p->smile;
}

Expressions PersonState::expressions() const
{
  return _p->expressions;
}

Gaze PersonState::gaze() const
{
  return _p->gaze;
}

HeadPosture PersonState::headAngles() const
{
  return _p->headAngles;
}

float PersonState::headHeight() const
{
  return _p->headHeight;
}

const BodyLanguageState& PersonState::bodyLanguageState() const
{
  return _p->bodyLanguageState;
}

BodyLanguageState& PersonState::bodyLanguageState()
{
  return _p->bodyLanguageState;
}

std::string PersonState::emotionLogMessage() const
{
  const float valence = _p->valence.value;
  const float attention = _p->attention.value;

  std::ostringstream message;
  message.imbue(std::locale::classic());
  message.exceptions(std::ios::badbit);  // throws if memory runs out, instead of cutting the text
  message << "Emotion recognized : \n";
  if (valence > 0.f)
    message << "\t - Actually you're in a positive mood at a " << valence * 100.f << "% rate ＼（＠￣∇￣＠）／ \n";
  else
    message << "\t - Actually you're in a negative mood at a " << valence * -100.f << "% rate ヽ（＠⋋_⋌）ノ \n";

  if (attention > engagedAttention)
    message << "\t - And you're totally engaged in my interaction ＼（〇_ｏ）／ !\n";
  else if (attention > inattentiveAttention)
    message << "\t - But you're a bit inattentive, hum ? ヽ(。_°)ノ \n";
  else
    message << "\t - But you're totally absent in our interaction (-, – )…zzzZZZ \n";
  return message.str();
}

void PersonState::setFrequencyFace(float hz)
{
  _p->frequencyFace = hz;
}

void PersonState::setFrequencyGaze(float hz)
{
  _p->frequencyGaze = hz;
}

void PersonState::decreaseSinceNotSeen()
{
  _p->_decreaseSinceNotSeen();
}

void PersonState::_setValence(float valence)
{
  _p->_setValence(valence);
}

void PersonState::_update(const PersonObservation& observation, const PersonMemory& memory)
{
  _p->__update(observation, memory);
}

std::ostream& operator<<(std::ostream& stream, const PersonState& state)
{
  writePercentages(stream, "Positive: ", state.personEmotion(Positive));
  writePercentages(stream, "Negative: ", state.personEmotion(Negative));
  writePercentages(stream, "Attention: ", state.personEmotion(Attention));
  return stream;
}

}  // namespace KV
