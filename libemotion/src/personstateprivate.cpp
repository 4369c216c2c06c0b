#include "personstateprivate.hpp"

#include "age.hpp"
#include "clamp.hpp"
#include "emotionalstatelog.hpp"
#include "forces.hpp"
#include "forcetext.hpp"
#include "forcewatch.hpp"
#include "softstep.hpp"

#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <locale>
#include <sstream>

namespace KV
{

namespace
{

constexpr ko::SystemClock::time_point neverSeen{boost::chrono::nanoseconds(-1000000)};

constexpr float oldObservationInSeconds = 3.f;

/// The cycle of a person who is not seen.
constexpr float notSeenWeight = 0.26f;
constexpr float notSeenConfidenceWeight = 0.7f;
constexpr const char* notSeenSource = "Not visible";

/// Moves the quantities under their mutex, and then shows the force to the observers.
template <typename... Quantities>
__attribute__((noinline)) void moveWatched(float target, float weight, std::string_view source, boost::mutex& mutex,
                                           Quantities... pulled)
{
  std::array<float, sizeof...(pulled)> before{};
  std::array<float, sizeof...(pulled)> after{};
  {
    const boost::lock_guard<boost::mutex> lock(mutex);
    before = {pulled.value...};
    (pulled.move(target, weight), ...);
    after = {pulled.value...};
  }
  std::size_t i = 0;
  for (const Quantity quantity : {pulled.quantity...})
  {
    ForceWatch::show(quantity, target, weight, before.at(i), after.at(i), source);
    ++i;
  }
}

// Without a constructor to run: a look-up is one load.
thread_local WrittenWeight lastWeight __attribute__((tls_model("initial-exec")));

/// Composes the text of the force, and moves the quantities under their mutex.
template <typename... Quantities>
void applyForce(std::string_view words, float target, float weight, std::string_view source, boost::mutex& mutex,
                Quantities... pulled)
{
  DiagnosticText text;
  describeForce(text, words, target, weight, source, lastWeight);
  if (ForceWatch::isOn())
    return moveWatched(target, weight, source, mutex, pulled...);
  const boost::lock_guard<boost::mutex> lock(mutex);
  (pulled.move(target, weight), ...);
}

}  // namespace

PersonStatePrivate::PersonStatePrivate()
  : attentionAngles(initialAttentionAngles()), attentionEstimates(initialAttentionEstimates())
{
  lastObservationTimes.fill(neverSeen);
}

PersonStatePrivate::PersonStatePrivate(const PersonStatePrivate& other)
  : bodyLanguageState(other.bodyLanguageState),
    valence(other.valence),
    hadValenceEvidence(other.hadValenceEvidence),
    attention(other.attention),
    attentionZone(other.attentionZone),
    smile(other.smile),
    gaze(other.gaze),
    expressions(other.expressions),
    headHeight(other.headHeight),
    headAngles(other.headAngles),
    frequencyGaze(other.frequencyGaze),
    frequencyFace(other.frequencyFace),
    lastObservationTimes()
{}

std::vector<float> PersonStatePrivate::initialAttentionAngles()
{
  return std::vector<float>(AttentionChannelCount, -10.f);
}

std::vector<float> PersonStatePrivate::initialAttentionEstimates()
{
  return std::vector<float>(AttentionChannelCount, 0.f);
}

void PersonStatePrivate::_setValence(float value)
{
  valence.value = clampValence(value);
}

void PersonStatePrivate::_setValenceConfidence(float value)
{
  valence.confidence = clampConfidence(value);
}

void PersonStatePrivate::_setAttention(float value)
{
  attention.value = clampAttention(value);
}

void PersonStatePrivate::_setAttentionConfidence(float value)
{
  attention.confidence = clampConfidence(value);
}

void PersonStatePrivate::_setUnsmoothedValence(float value)
{
  unsmoothedValence.value = clampValence(value);
}

void PersonStatePrivate::_setUnsmoothedValenceConfidence(float value)
{
  unsmoothedValence.confidence = clampConfidence(value);
}

void PersonStatePrivate::_applyForceValence(float target, float weight, std::string_view source)
{
  applyForce("valence", target, weight, source, valenceMutex,  //
             Pulled<clampValence>{ValenceQuantity, valence.value},
             Pulled<clampValence>{UnsmoothedValenceQuantity, unsmoothedValence.value});
}

void PersonStatePrivate::_applyForceValenceConfidence(float target, float weight, std::string_view source)
{
  applyForce("valence confidence", target, weight, source, valenceConfidenceMutex,
             Pulled<clampConfidence>{ValenceConfidenceQuantity, valence.confidence},
             Pulled<clampConfidence>{UnsmoothedValenceConfidenceQuantity, unsmoothedValence.confidence});
}

void PersonStatePrivate::_applyForceAttention(float target, float weight, std::string_view source)
{
  applyForce("attention", target, weight, source, attentionMutex,
             Pulled<clampAttention>{AttentionQuantity, attention.value});
}

void PersonStatePrivate::_applyForceAttentionConfidence(float target, float weight, std::string_view source)
{
  applyForce("attention confidence", target, weight, source, attentionConfidenceMutex,
             Pulled<clampConfidence>{AttentionConfidenceQuantity, attention.confidence});
}

float PersonStatePrivate::_computeWeight(float x, float reference)
{
  return softStep(x, reference);
}

float PersonStatePrivate::_computeWeightSmoothed(float x, float reference)
{
  return 0.5f * ((_computeWeight(x, reference) - (x - reference) / (2.f * reference)) + 0.5f);
}

float PersonStatePrivate::_computeDampingFactor(float weight, float count)
{
  return weight / std::pow(count, 0.7f);
}

void PersonStatePrivate::_warnIfObservationOld(std::int64_t ageInMs, std::string_view source)
{
  // The product is formed in double, so that 3000 ms are exactly 3 s.
  const auto seconds = static_cast<float>(static_cast<double>(ageInMs) * 0.001);
  if (!(seconds > oldObservationInSeconds))
    return;

  std::ostringstream message;
  message.imbue(std::locale::classic());
  message.exceptions(std::ios::badbit);  // throws if memory runs out, instead of cutting the text
  message << "Processing old observation from " << seconds << " s ago";
  if (!source.empty())
    message << " of " << source;
  ko::log::log(ko::log::Level::Warning, emotionalStateCategory, message.str(), emotionalStateSourceFile, __func__,
               __LINE__);
}

std::int64_t PersonStatePrivate::_lastTimeStampedObservationValence() const
{
  return _youngestAgeInMs({SmileChannel, ExpressionsChannel, VoiceChannel, AsrChannel, TouchChannel});
}

std::int64_t PersonStatePrivate::_lastTimeStampedObservationAttention() const
{
  return _youngestAgeInMs({HeadPostureChannel, GazeChannel});
}

std::int64_t PersonStatePrivate::_youngestAgeInMs(std::initializer_list<ObservationChannel> channels) const
{
  std::int64_t youngest = std::numeric_limits<std::int64_t>::max();
  for (const ObservationChannel channel : channels)
    youngest = std::min(youngest, ageInMs(lastObservationTimes[channel]));
  return youngest;
}

void PersonStatePrivate::_decreaseSinceNotSeen()
{
  _applyForceValence(0.f, notSeenWeight, notSeenSource);
  _applyForceValenceConfidence(0.f, notSeenConfidenceWeight, notSeenSource);
  _applyForceAttention(0.f, notSeenWeight, notSeenSource);
  _applyForceAttentionConfidence(0.f, notSeenConfidenceWeight, notSeenSource);
}

}  // namespace KV
