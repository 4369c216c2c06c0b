#include <skeigiot/session/player.hpp>

#include "player/notedreading.hpp"

#include <skeigiot/session/librarylog.hpp>

#include <utility>

namespace KV::session
{

namespace
{

using recordings::Error;
using recordings::Reader;
using recordings::Step;

/// Plays one recording, and fills in its outcome.
class Playing
{
public:
  Playing(const PlayerOptions& options, const Player::GoOn& goOn, Reader& reader,
          const std::vector<SessionObserver*>& observers, Outcome& outcome)
    : _goOn(goOn), _reader(reader), _observers(observers), _outcome(outcome), _reading(reader, options.skipBad)
  {
    if (options.estimates)
      _session.emplace(options.scopes, observers, options.cycle);
  }

  void run()
  {
    bool more = _advance();
    _describe();  // the reader's description is complete after the first step
    while (more)
    {
      _play();
      if (!_isWanted())
        break;
      more = _advance();
    }
    _finish();
  }

private:
  /// Reads the next step, which is empty for a skipped bad line; returns false at the end.
  bool _advance()
  {
    const bool more = _reading.next(_step) != NotedReading::Read::End;
    if (!more)
      _isWanted();  // an interruption may have ended it
    return more;
  }

  /// Returns whether the caller wants more.
  bool _isWanted()
  {
    if (_goOn && !_goOn({_reader.progress(), _length()}))
      _outcome.stopped = true;
    return !_outcome.stopped;
  }

  void _describe()
  {
    if (_session)
      _session->setDated(_reader.isDated());
    for (SessionObserver* const observer : _observers)
    {
      observer->recordingDated(_reader.isDated());
      observer->recordingDescribed(_reader.describe());
    }
  }

  void _play()
  {
    if (!_step)
      return;
    if (_session)
      _session->play(*_step);
    else
      for (SessionObserver* const observer : _observers)
        observer->stepBegins(*_step);
  }

  void _finish()
  {
    if (_session && !_outcome.stopped)
      _session->finish();
    _outcome.description = _reader.describe();
    _outcome.learned = _reader.describeLearned();
    _outcome.columns = _reader.columns();
    static_cast<ReadingNotes&>(_outcome) = _reading.notes();
    _outcome.length = _length();
    _outcome.isDated = _reader.isDated();
    if (_session)
    {
      _outcome.leftOut = _session->takeOmittedReadings();
      if (std::string note = _session->takeNotesOnScopes(); !note.empty())
        _outcome.warnings.push_back(std::move(note));
    }
    _outcome.libraryWarnings = _log.take();
  }

  Duration _length() const { return _session ? _session->length() : Duration(0); }

  const Player::GoOn& _goOn;
  Reader& _reader;
  const std::vector<SessionObserver*>& _observers;
  Outcome& _outcome;
  LibraryLog _log;
  boost::optional<Session> _session;
  NotedReading _reading;
  boost::optional<Step> _step;
};

}  // namespace

Player::Player(PlayerOptions options, GoOn goOn) : _options(std::move(options)), _goOn(std::move(goOn)) {}

Outcome Player::play(const Open& open, const std::vector<SessionObserver*>& observers) const
{
  Outcome outcome;
  try
  {
    const std::unique_ptr<Reader> reader = open();
    outcome.opened = true;
    Playing(_options, _goOn, *reader, observers, outcome).run();
  }
  catch (const Error& error)
  {
    if (_goOn)
      _goOn({});  // an interruption may be the reason
    outcome.error = error;
  }
  return outcome;
}

}  // namespace KV::session
