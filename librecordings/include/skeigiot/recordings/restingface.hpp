#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/rest.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KV::recordings
{

/// One score at rest.
struct SKEIGIOT_API RestingScore
{
  float typical = 0.f;  ///< in [0, 1]: of a person of whom nothing is known yet
  float most = 0.5f;    ///< in [0, 1]: no rest is learned beyond it, so that a lasting expression still counts
};

/// The learned values of one score.
struct SKEIGIOT_API LearnedScore
{
  std::string name;     ///< of the score, such as "AU12"
  float typical = 0.f;  ///< what rest was taken to be at first
  float rest = 0.f;     ///< what it is now
};

/// One person's face and head direction at rest: learned as faces come, never from later ones.
///
/// The rest of a score is a running low quantile: it rises by 0.002 and falls by 0.012 of the full scale a second, so
/// that a face is below it for about a seventh of the time. A held expression of four seconds raises it by 0.008.
/// Learning by time rather than by faces makes it the same at any frame rate. Small: a few hundred bytes.
///
/// A FaceAdapter reads and changes it.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API RestingFace
{
public:
  /// Makes a face of which nothing is known. A span counts from `start`, or else from the first face.
  explicit RestingFace(boost::optional<ko::SystemClock::time_point> start = {}) : _start(start) {}

  /// Returns what was learned of the scores of the face, those first that moved most; empty if nothing was.
  std::vector<LearnedScore> learned() const;

private:
  friend struct FaceAdapterPrivate;
  using TimePoint = ko::SystemClock::time_point;

  /// The time that passed for learning.
  struct Clock
  {
    /// Returns the seconds since the last call, 0.5 at most: a gap is not time in which a face was seen.
    float advance(TimePoint now);

    boost::optional<TimePoint> last;
  };

  /// The rest of the scores of one table.
  struct Scores
  {
    /// How often a score had which value.
    struct Histogram
    {
      std::array<std::uint32_t, 256> counts{};  ///< by the value, in 256 parts of [0, 1]
      std::uint32_t total = 0;                  ///< sum of the counts
    };

    void takeOff(std::vector<float>& scores, TimePoint now, const Rest& options, boost::optional<TimePoint> start);
    void learnSpan(const std::vector<float>& scores);
    void endSpan();

    std::vector<std::string> names;
    std::vector<RestingScore> limits;
    std::vector<float> rest;
    boost::optional<TimePoint> first;
    Clock clock;
    std::vector<Histogram> span;  // while the span is open, and only then
    bool given = false;           // by a span that is over
  };

  /// Where the head rests.
  struct Head
  {
    Clock clock;
    float yaw = 0.f;    // [deg]
    float pitch = 0.f;  // [deg]
  };

  boost::optional<TimePoint> _start;
  boost::optional<Scores> _actionUnits;
  boost::optional<Scores> _blendshapes;
  Head _head;
};

}  // namespace KV::recordings
