#include <skeigiot/session/studycheck.hpp>

#include "study/filedigest.hpp"
#include "study/studyinputs.hpp"
#include "study/studyprogress.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace KV::session
{

namespace
{

using Kind = StudyProblem::Kind;

std::string rounded(double seconds)
{
  std::string text;
  appendExact(text, std::round(seconds * 100.) / 100.);
  return text + " s";
}

/// A message about an unknown format lists all formats in lines of their own; here one line will do.
std::string firstLine(const std::string& message)
{
  return message.substr(0, message.find('\n'));
}

/// Notes when a recording begins and ends.
class Extent : public SessionObserver
{
public:
  void stepBegins(const recordings::Step& step) override
  {
    if (_steps++ == 0)
      _first = step.time;
    _last = step.time;
  }

  std::size_t steps() const { return _steps; }
  TimePoint first() const { return _first; }
  TimePoint last() const { return _last; }

private:
  std::size_t _steps = 0;
  TimePoint _first;
  TimePoint _last;
};

struct CheckedFile
{
  std::string path;
  std::string sha256;  ///< empty: not read
  bool isDated = false;
  bool isGood = false;
  double begin = 0.;  ///< [s] since 1970, with its offset
  double end = 0.;
};

/// The findings about one session.
struct CheckedSession
{
  std::vector<StudyProblem> problems;
  std::vector<CheckedFile> files;
};

/// Checks one session.
class SessionCheck
{
public:
  SessionCheck(const Study& study, const StudySession& session, StudyProgress::OfSession& progress)
    : _study(study), _session(session), _progress(progress)
  {}

  CheckedSession run()
  {
    _result.problems = _session.faults;
    for (const Study::Input& input : _session.files)
      if (FileDigest digest; lookAtFile(pathIn(_study, input.path), digest))
        _read(input);
    for (const Study::Input& labels : _session.labels)
      if (FileDigest digest; lookAtFile(pathIn(_study, labels.path), digest))
        _readLabels(labels);
    _checkLength();
    _checkTimes();
    return std::move(_result);
  }

private:
  void _read(const Study::Input& input)
  {
    CheckedFile file;
    file.path = input.path;
    const std::string path = pathIn(_study, input.path);
    Extent extent;
    PlayerOptions options;
    options.skipBad = _study.skipBad;
    options.estimates = false;
    const auto share = 1. / static_cast<double>(_session.files.size());
    const auto before = static_cast<double>(_result.files.size()) * share;
    const Outcome outcome =
        Player(options, [&](const Progress& reached) {
          recordings::InterruptionCheck::ask();
          _progress.reach(before + reached.share * share);
          return true;
        }).play([&] { return recordings::openRecording(path, _study.format, _study.reading); }, {&extent});
    if (outcome.error)
      _add(Kind::Unreadable, firstLine(withoutFolder(_study, outcome.error->what())));
    else if (extent.steps() == 0)
      _add(Kind::Unreadable, input.path + ": there is nothing in this recording");
    try
    {
      file.sha256 = digestOfFile(path).sha256;
    }
    catch (const recordings::Error&)
    {
      // reading it has said so already
    }
    file.isGood = extent.steps() > 0;
    file.isDated = outcome.isDated;
    const auto seconds = [&input](TimePoint time) {
      return static_cast<double>((time.time_since_epoch() + input.offset).count()) * 1e-9;
    };
    file.begin = seconds(extent.first());
    file.end = seconds(extent.last());
    _result.files.push_back(file);
  }

  void _readLabels(const Study::Input& labels)
  {
    try
    {
      std::vector<std::string> warnings;  // the results have them
      const std::vector<ScopeSpan> scopes = scopesOf(_study, labels, warnings);
      if (_result.files.empty() || !_result.files.front().isGood)
        return;
      const double length = _result.files.front().end - _result.files.front().begin;
      const auto isBehind = [length](const ScopeSpan& scope) {
        return static_cast<double>(scope.from.count()) * 1e-9 > length;
      };
      if (const auto count = std::count_if(scopes.begin(), scopes.end(), isBehind); count > 0)
        _add(Kind::Unsynchronised, labels.path + ": " + counted(static_cast<std::size_t>(count), "label") +
                                       " after the end of the recording at " + rounded(length));
    }
    catch (const recordings::Error& error)
    {
      _add(Kind::Unreadable, firstLine(withoutFolder(_study, error.what())));
    }
  }

  /// The first file sets the timing, so its length counts.
  void _checkLength()
  {
    if (_result.files.empty() || !_result.files.front().isGood)
      return;
    const CheckedFile& first = _result.files.front();
    if (first.end - first.begin < _study.minimalLength)
      _add(Kind::TooShort, first.path + ": is " + rounded(first.end - first.begin) + " long; expected at least " +
                               rounded(_study.minimalLength));
  }

  void _checkTimes()
  {
    for (const CheckedFile& file : _result.files)
    {
      const CheckedFile& first = _result.files.front();
      if (&file == &first || !file.isGood || !first.isGood)
        continue;
      if (file.isDated != first.isDated)
        _add(Kind::Unsynchronised, file.path + ": its times " + (file.isDated ? "have" : "have no") +
                                       " dates, but those of " + first.path + (first.isDated ? " have" : " have none") +
                                       ": set an offset");
      else if (file.begin > first.end || first.begin > file.end)
        _add(Kind::Unsynchronised, file.path + ": does not overlap " + first.path + ": begins " +
                                       rounded(file.begin - first.begin) + " after it");
      else if (std::abs(file.begin - first.begin) > _study.greatestDifference)
        _add(Kind::Unsynchronised, file.path + ": begins " + rounded(file.begin - first.begin) + " after " +
                                       first.path + "; expected at most " + rounded(_study.greatestDifference) +
                                       " apart");
    }
  }

  void _add(Kind kind, const std::string& text) { _result.problems.push_back({kind, _session.name, text}); }

  const Study& _study;
  const StudySession& _session;
  StudyProgress::OfSession& _progress;
  CheckedSession _result;
};

}  // namespace

std::vector<StudyProblem> checkStudy(const Study& study, const StudyPlan& plan, const StudyWork& work)
{
  std::vector<const StudySession*> sessions;
  std::vector<std::uintmax_t> bytes;
  for (const StudySession& session : plan.sessions)
    if (session.leftOut.empty())
    {
      sessions.push_back(&session);
      bytes.push_back(bytesOf(study, session));
    }
  StudyProgress progress(std::move(bytes));
  std::vector<StudyProblem> problems;
  std::map<std::string, std::string> byDigest;  // path of the first file with these contents
  workOnSessions<CheckedSession>(
      sessions.size(), work, progress,
      [&](std::size_t i, StudyProgress::OfSession& ofSession) {
        return SessionCheck(study, *sessions[i], ofSession).run();
      },
      [&](std::size_t i, CheckedSession checked) {
        for (const CheckedFile& file : checked.files)
        {
          const auto [first, isNew] = byDigest.emplace(file.sha256, file.path);
          if (!file.sha256.empty() && !isNew)
            checked.problems.push_back(
                {Kind::Doubled, sessions[i]->name, file.path + ": has the same contents as " + first->second});
        }
        problems.insert(problems.end(), checked.problems.begin(), checked.problems.end());
      });
  for (const std::string& path : plan.unused)
    problems.push_back({Kind::Unused, "", path + ": matches no pattern of the study file"});
  return problems;
}

}  // namespace KV::session
