#include "commands/sessionreplay.hpp"

#include "cli/sessionoptions.hpp"
#include "cli/standardinput.hpp"
#include "terminal/personheading.hpp"
#include "terminal/resulttext.hpp"
#include "terminal/shown.hpp"
#include "terminal/summarytext.hpp"
#include "terminal/text.hpp"
#include "terminal/timelinetable.hpp"

#include <skeigiot/session/inspection.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/summary.hpp>
#include <skeigiot/session/timeline.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const wholeRecording = "whole recording";

/// Notes what is in a recording.
class ContentsNoted : public session::SessionObserver
{
public:
  void stepBegins(const recordings::Step& step) override { _contents.add(step); }

  const session::Inspection& contents() const { return _contents; }

private:
  session::Inspection _contents;
};

class SessionReplay
{
public:
  SessionReplay(const session::SessionInputs& inputs, const ReplayOptions& options,
                const ReplaySurroundings& surroundings, const SessionOutlets& outlets)
    : _inputs(inputs), _name(named(inputs).name()), _options(options), _surroundings(surroundings), _outlets(outlets)
  {}

  SessionOutcome run()
  {
    _show(_surroundings.style.bold(shown(_name)) + "\n");
    session::Timeline timeline(_options.step, _options.explain);
    session::Summary summary;
    std::vector<session::SessionObserver*> observers = _outlets.observers;
    observers.insert(observers.end(), {&timeline, &summary});
    ContentsNoted noted;
    if (_outlets.display.shows())
      observers.push_back(&noted);

    const session::Outcome outcome =
        _player().play([this] { return session::openSession(_inputs, _surroundings.open); }, observers);
    _outlets.progress.erase();
    if (outcome.opened)
      _showOutcome(outcome, noted.contents(), timeline, summary);
    std::string error;
    if (outcome.error)
    {
      error = messageOf(*outcome.error);
      _sayError(error);
    }
    return {outcome.error ? BadInput : Success, outcome.opened, _problems, error, _overview(outcome, summary),
            session::ReportOverview(),          outcome.learned};
  }

private:
  session::Player _player() const
  {
    session::PlayerOptions options;
    options.skipBad = _options.skipBad;
    options.cycle = _options.cycle;
    options.scopes.push_back({wholeRecording, session::Duration(0), boost::none});
    options.scopes.insert(options.scopes.end(), _options.scopes.begin(), _options.scopes.end());
    return session::Player(options, [this](const session::Progress& progress) {
      _outlets.checkInterruption();
      if (_outlets.progress.isDue())
        _outlets.progress.show(progress.share, progress.length);
      return true;
    });
  }

  void _showOutcome(const session::Outcome& outcome, const session::Inspection& contents,
                    const session::Timeline& timeline, session::Summary& summary)
  {
    summary.finish();
    _showResult(outcome, summary);
    for (const std::string& text : outcome.warningLines())
    {
      _show(_surroundings.style.yellow("warning: " + shown(text)) + "\n");
      _problems.push_back("warning: " + text);
    }
    _showPersons(timeline, summary);
    _showTrust(contents);
    if (!outcome.leftOut.empty())
      _say("warning: " + _name + ": " + outcome.leftOut);
    for (const std::string& line : outcome.libraryWarnings)
      _say(_name + ": " + line);
    if (outcome.badLines > 0)
      _say(_name + ": " + outcome.skippedText());
  }

  FileOverview _overview(const session::Outcome& outcome, const session::Summary& summary) const
  {
    FileOverview overview;
    overview.file = _inputs.exportedAs(1).file;
    overview.opened = outcome.opened;
    overview.length = outcome.length;
    overview.persons = summary.persons().size();
    overview.warnings = outcome.warnings.size() + outcome.moreWarnings + outcome.libraryWarnings.size() +
                        (outcome.leftOut.empty() ? 0 : 1) + (outcome.badLines > 0 ? 1 : 0);
    overview.cut = outcome.error.has_value();
    const auto meanOf = [&summary](const auto& isKnown, const auto& value) {
      double sum = 0.;
      std::size_t count = 0;
      for (const auto& [number, person] : summary.persons())
      {
        if (!isKnown(person))
          continue;
        sum += value(person);
        ++count;
      }
      return count > 0 ? sum / static_cast<double>(count) : FileOverview::unknown;
    };
    using Person = session::PersonSummary;
    overview.seen = meanOf([](const Person&) { return true; }, [](const Person& one) { return one.seenShare(); });
    overview.valence =
        meanOf([](const Person& one) { return one.isValenceKnown(); }, [](const Person& one) { return one.valence(); });
    overview.attention = meanOf([](const Person& one) { return one.isAttentionKnown(); },
                                [](const Person& one) { return one.attention(); });
    for (const auto& [number, person] : summary.persons())
      ++overview.verdicts[summary.verdicts().front().of(number).word];
    return overview;
  }

  void _showResult(const session::Outcome& outcome, const session::Summary& summary)
  {
    const auto width = static_cast<std::size_t>(_surroundings.outputWidth);
    _show(wrapped(resultText(summary, wholeRecording), width, 0) + "\n");
    _show(_surroundings.style.dim(shown(readingText(outcome.description))) + "\n");
  }

  void _showTrust(const session::Inspection& contents)
  {
    if (contents.persons().empty())
      return;
    const auto width = static_cast<std::size_t>(_surroundings.outputWidth);
    _show("\n" + _surroundings.style.bold("Trust") + "\n  " + wrapped(session::trustIn(contents), width - 2, 2) + "\n");
  }

  void _showPersons(const session::Timeline& timeline, const session::Summary& summary)
  {
    const Style& style = _surroundings.style;
    const session::Duration step = timeline.step();  // not for each person: it examines the rows of all
    for (const auto& [person, rows] : timeline.rows())
      _show("\n" + style.bold(personHeading(person, summary.persons().at(person).name())) + "\n" +
            timelineTable(rows, step, _surroundings.outputWidth, style) + "\n" +
            summaryText(summary, person, _surroundings.outputWidth, style));
    const std::string ambiance = ambianceText(summary.ambiance(), style);
    if (!ambiance.empty())
      _show("\n" + ambiance);
  }

  void _say(const std::string& text)
  {
    _problems.push_back(text);
    _outlets.messages.note(text);
  }

  void _sayError(const std::string& text)
  {
    _problems.push_back(text);
    _outlets.messages.error(text);
  }

  void _show(const std::string& text) { _outlets.display.show(text); }

  const session::SessionInputs& _inputs;
  std::string _name;
  const ReplayOptions& _options;
  const ReplaySurroundings& _surroundings;
  const SessionOutlets& _outlets;
  std::vector<std::string> _problems;  // warnings and errors
};

}  // namespace

SessionOutcome replaySession(const session::SessionInputs& session, const ReplayOptions& options,
                             const ReplaySurroundings& surroundings, const SessionOutlets& outlets)
{
  return SessionReplay(session, options, surroundings, outlets).run();
}

}  // namespace KV::tools
