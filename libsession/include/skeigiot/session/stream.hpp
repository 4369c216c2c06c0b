#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/librarylog.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KV::session
{

/// Answers each line of a live stream by one line: the estimate of the person whom the line is about, or
/// the error in the line.
class SKEIGIOT_API Stream
{
public:
  /// Makes a stream in which nobody is known; the parameters are those of LiveSession.
  ///
  /// An answer says whether the line updated the person, or is remembered for the next update.
  Stream(StreamTimes times, std::function<TimePoint()> wallClock, Cycle cycle = Cycle());

  /// Returns the answer to the next line, with its line end.
  std::string answer(std::string_view line);

  /// Returns the answer to a line that was longer than `longest` bytes.
  std::string answerToLongLine(std::size_t longest);

private:
  /// Keeps what the session says of one line.
  struct Observer : SessionObserver
  {
    /// The result of the last update of the room.
    struct Ambiance
    {
      float agitation = 0.f;                                   ///< in [0, 1]
      KV::ExcitationState excitation = KV::ExcitationUnknown;  ///< the same in a word
    };

    void stepBegins(const recordings::Step& step) override { about = step.person; }
    void personUpdated(const Snapshot& snapshot) override;
    bool watchesWaiting() const override { return true; }
    void personWaits(const Snapshot& snapshot) override { person = snapshot; }
    void ambianceUpdated(float agitation, KV::ExcitationState state) override { ambiance = Ambiance{agitation, state}; }
    void scopeJudged(const ScopeVerdict& verdict) override { verdicts.push_back(verdict); }
    void clear();

    boost::optional<std::int32_t> about;  // whom the line names
    boost::optional<Snapshot> person;
    bool updated = false;
    boost::optional<Ambiance> ambiance;
    std::vector<ScopeVerdict> verdicts;
  };

  std::string _refusal(const std::string& member, const std::string& message) const;
  std::string _state();

  Observer _observer;
  LiveSession _session;
  LibraryLog _log;
  std::size_t _lineNumber = 0;
};

}  // namespace KV::session
