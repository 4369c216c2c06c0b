#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/session/personsummary.hpp>
#include <skeigiot/session/scopespan.hpp>
#include <skeigiot/session/snapshot.hpp>
#include <skeigiot/verdict.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// How a scope came to its end.
enum class ScopeEnd
{
  Complete,    ///< stopped by the recording, or all of its span lies in the recording
  NotStopped,  ///< the recording started it and never stopped it
  CutShort,    ///< the recording ended inside its span
  NotReached,  ///< the recording ended before its span
  NotOpen      ///< the recording stopped what it had not started
};

/// Returns "complete", "not stopped", "cut short", "not reached" or "not open".
SKEIGIOT_API const char* scopeEndName(ScopeEnd end);

/// How a scope went, for each person with an update in it.
struct SKEIGIOT_API ScopeVerdict
{
  /// The verdict on one person.
  struct OfPerson
  {
    std::string word;            ///< "positive", "neutral", "negative" or "unknown"
    std::size_t updates = 0;     ///< number of updates that it is based on
    PersonSummary summary = {};  ///< of these updates; finished
  };

  /// Returns the verdict on `person`: that of a scope without updates if they had none in it, "error" if the scope was
  /// not open, and "-" if it was not reached.
  OfPerson of(std::int32_t person) const;

  std::string name;  ///< of the scope
  Duration from{0};  ///< since the start of the recording
  Duration to{0};    ///< since the start of the recording; of the last update where that is what ended it
  ScopeEnd end = ScopeEnd::Complete;         ///< how it came to its end
  std::map<std::int32_t, OfPerson> persons;  ///< those with an update in the scope
};

/// The scopes of one recording: those that it starts and stops itself, and spans given beforehand.
///
/// Judges as KV::KVEmotionRecorder does, one recorder for each person, but in constant memory. All times are since the
/// start of the recording and never decrease.
///
/// A scope keeps a few numbers for each person, so that what is kept is a product. Hence there are limits: to the
/// scopes that a recording may have open at once, and to the persons in all scopes together (recordings::limits).
class SKEIGIOT_API Scopes
{
public:
  /// How many scopes of the recording may be open at once.
  static constexpr std::size_t mostOpen = recordings::limits::mostOpenScopes;

  /// Takes the spans that are judged besides the scopes of the recording.
  explicit Scopes(const std::vector<ScopeSpan>& spans);

  /// Moves on to `now`: opens the spans that it reaches, and closes and returns those that it has left behind.
  std::vector<ScopeVerdict> advance(Duration now);

  /// Opens a scope for that many updates of each person (negative: without limit); one of that name starts anew.
  ///
  /// Returns false, and opens nothing, if it would be one more than mostOpen.
  bool start(const std::string& name, std::int32_t samples, Duration now);

  /// Adds the state, as it is now, to every open scope that still takes updates of this person.
  ///
  /// A person who is new in a scope is left out of it if all scopes together, with those that are over, have
  /// recordings::limits::mostPersonsInScopes persons more than there were updates.
  ///
  /// \param snapshot of the same update; says who the person is
  void update(const Snapshot& snapshot, const KV::PersonState& state);

  /// Returns whether update() would not leave the person out of any scope.
  bool hasRoomFor(std::int32_t person) const;

  /// Returns a sentence about the persons that update() left out since the last call, or an empty text.
  std::string takeOmittedUpdates();

  /// Returns how many scopes are open that start() opened.
  std::size_t openCount() const { return _started.size(); }

  /// Returns whether start() opened a scope of that name that is still open.
  bool isOpen(const std::string& name) const { return _started.count(name) != 0; }

  /// Closes a scope that start() opened.
  ScopeVerdict stop(const std::string& name, Duration now);

  /// Closes all that is open, and returns the verdicts on it and on the spans that were never reached.
  std::vector<ScopeVerdict> finish(Duration now);

private:
  struct Tally
  {
    KV::Verdict verdict;
    std::size_t updates = 0;
    PersonSummary summary;
  };

  struct Open
  {
    Duration from{0};
    std::int32_t samples = -1;
    std::map<std::int32_t, Tally> tallies;
  };

  struct Span
  {
    ScopeSpan span;
    boost::optional<Open> open;
    bool closed = false;
  };

  void _add(const std::string& name, Open& scope, const Snapshot& snapshot, const KV::PersonState& state);
  static ScopeVerdict _judge(const std::string& name, const Open& scope, Duration to, ScopeEnd end);
  static ScopeVerdict _judgeAtTheEnd(const Span& span, Duration now);

  std::map<std::string, Open> _started;
  std::vector<Span> _spans;
  std::vector<std::size_t> _openSpans;     // their places in _spans
  Duration _nextChange = Duration::min();  // the first time at which a span may open or close
  std::size_t _room;                       // for persons in scopes
  std::size_t _leftOut = 0;
  std::string _firstLeftOut;  // the scope
};

}  // namespace KV::session
