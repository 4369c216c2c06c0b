#include <skeigiot/session/studyrun.hpp>

#include "study/resultschema.hpp"
#include "study/sessionrows.hpp"
#include "study/studyinputs.hpp"
#include "study/studyprogress.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/exactnumber.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <tuple>

namespace KV::session
{

namespace
{

std::string seconds(Duration duration)
{
  std::string text;
  appendExactSeconds(text, duration);
  return text;
}

/// Returns a digest of all that the plan says of a session, except the contents of its files.
std::string digestOf(const StudySession& session)
{
  std::string text;
  const auto add = [&text](const std::string& part) { text += std::to_string(part.size()) + ":" + part + "\n"; };
  for (const std::string& part : {session.name, session.participant, session.condition, session.leftOut})
    add(part);
  for (const auto& [name, value] : session.factors)
    add("factor"), add(name), add(value);
  for (const auto& [kind, inputs] : {std::pair("file", &session.files), std::pair("labels", &session.labels)})
    for (const Study::Input& input : *inputs)
      add(kind), add(input.path), add(seconds(input.offset)), add(input.tier);
  for (const ScopeSpan& scope : session.scopes)
    add("scope"), add(scope.name), add(seconds(scope.from)), add(scope.to ? seconds(*scope.to) : "");
  for (const Study::Person& person : session.persons)
    add("person"), add(person.number ? std::to_string(*person.number) : ""), add(person.name), add(person.role),
        add(person.participant);
  for (const StudyProblem& fault : session.faults)
    add("fault"), add(fault.text);
  return hexSha256(text);
}

/// The results of sessions that a file has: enough to see whether they are still right.
class KnownSessions
{
public:
  explicit KnownSessions(Database& database)
  {
    Statement sessions(database, "SELECT session, plan FROM main.sessions WHERE status <> 'failed'");
    while (sessions.step())
      _plans[sessions.text(0)] = sessions.text(1);
    Statement inputs(database, "SELECT session, path, bytes, modified, sha256 FROM main.recordings");
    while (inputs.step())
      _inputs[inputs.text(0)][inputs.text(1)] = {static_cast<std::uintmax_t>(inputs.whole(2)), inputs.whole(3),
                                                 inputs.text(4)};
  }

  /// Returns whether the session was done, with the same files.
  bool has(const Study& study, const StudySession& session, const std::string& plan)
  {
    const auto known = _plans.find(session.name);
    if (known == _plans.end() || known->second != plan)
      return false;
    if (!session.leftOut.empty())
      return true;
    const auto inputs = _inputs.find(session.name);
    return inputs != _inputs.end() && _areTheSame(study, session, session.files, inputs->second) &&
           _areTheSame(study, session, session.labels, inputs->second);
  }

  /// Writes the new times of files whose contents are the same, so that the next run need not read them again.
  void renewTimes(Database& database)
  {
    Transaction transaction(database);
    Statement renewal(database, "UPDATE main.recordings SET modified = ? WHERE session = ? AND path = ?");
    for (const auto& [session, path, modified] : _renewed)
      renewal.bind(modified, session, path).run();
    transaction.commit();
  }

private:
  using Inputs = std::map<std::string, FileDigest>;

  bool _areTheSame(const Study& study, const StudySession& session, const std::vector<Study::Input>& inputs,
                   const Inputs& known)
  {
    for (const Study::Input& input : inputs)
    {
      const auto before = known.find(input.path);
      FileDigest now;
      if (before == known.end() || !lookAtFile(pathIn(study, input.path), now) || now.bytes != before->second.bytes)
        return false;
      if (now.modified == before->second.modified)
        continue;
      if (!_hasDigest(pathIn(study, input.path), before->second.sha256))
        return false;
      _renewed.emplace_back(session.name, input.path, now.modified);
    }
    return true;
  }

  /// A file that cannot be read has another digest: the session is played again, and its row then has the error.
  static bool _hasDigest(const std::string& path, const std::string& sha256)
  {
    try
    {
      return digestOfFile(path).sha256 == sha256;
    }
    catch (const recordings::Error&)
    {
      return false;
    }
  }

  std::map<std::string, std::string> _plans;
  std::map<std::string, Inputs> _inputs;
  std::vector<std::tuple<std::string, std::string, std::int64_t>> _renewed;  // session, path, time of change
};

/// Hands out connections to the results, one for each thread that works.
class Writers
{
public:
  Writers(std::string results, const Study& study) : _results(std::move(results)), _study(study) {}

  std::unique_ptr<SessionRows> take()
  {
    {
      const std::lock_guard<std::mutex> lock(_mutex);
      if (!_free.empty())
      {
        std::unique_ptr<SessionRows> rows = std::move(_free.back());
        _free.pop_back();
        return rows;
      }
    }
    return std::make_unique<SessionRows>(_results, _study.keepsUpdates, _study.keepsForces);
  }

  /// Writes the session, and keeps the connection for the next one.
  void write(std::unique_ptr<SessionRows> rows, const StudySession& session, const NotedSession& noted)
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    rows->write(session, noted);
    _free.push_back(std::move(rows));
  }

private:
  const std::string _results;
  const Study& _study;
  std::mutex _mutex;

  // Guarded by _mutex
  std::vector<std::unique_ptr<SessionRows>> _free;
};

/// Runs a study.
class StudyRun
{
public:
  StudyRun(const Study& study, const StudyPlan& plan, const StudyTarget& target, const StudyWork& work)
    : _study(study), _plan(plan), _target(target), _work(work)
  {}

  StudyOutcome run()
  {
    const SavedBoundaries saved;
    for (const Boundary& boundary : boundaries())
      if (const auto value = _study.boundaries.find(boundary.option); value != _study.boundaries.end())
        if (!setBoundary(boundary, value->second))
          throw std::invalid_argument(boundary.option + ": " + boundaryRefusal(boundary, value->second));
    _open();
    _listMissing();
    _playMissing();
    _listErrors();
    return _outcome;
  }

private:
  void _open()
  {
    _database.emplace(_target.results, Database::Mode::Write);
    bool isThere = isResultFile(*_database);
    if (isThere && _target.anew)
    {
      _database.reset();
      std::filesystem::remove(_target.results);
      _database.emplace(_target.results, Database::Mode::Write);
      isThere = false;
    }
    _database->run("PRAGMA main.synchronous = NORMAL");
    Database wanted("", Database::Mode::Memory);
    _writeMaking(wanted);
    if (isThere)
      _compare(wanted);
    else
      _writeMaking(*_database);
  }

  void _compare(Database& wanted)
  {
    try
    {
      compareMaking(wanted, *_database);
    }
    catch (const recordings::Error& error)
    {
      throw recordings::Error({}, std::string(error.what()) + "; run the study anew, or write to another file");
    }
  }

  /// Makes the tables, and writes how the results are made.
  void _writeMaking(Database& database) const
  {
    Transaction transaction(database);
    makeResultTables(database);
    Statement study(database, insertionInto(resultTable("study"), "main.study"));
    study.bind("name", _study.name).run();
    study.bind("version", _target.version).run();
    Statement option(database, insertionInto(resultTable("options"), "main.options"));
    for (const auto& [name, value] : _study.options)
      option.bind(name, value).run();
    option.bind("updates", _study.keepsUpdates ? "true" : "false").run();
    option.bind("forces", _study.keepsForces ? "true" : "false").run();
    if (!_study.reading.mapping.empty())
      option.bind("mapping-sha256", digestOfFile(_study.reading.mapping).sha256).run();
    transaction.commit();
  }

  void _listMissing()
  {
    KnownSessions known(*_database);
    std::set<std::string> wanted;  // also those of other shards, which the file may have
    for (const StudySession& session : _plan.sessions)
    {
      recordings::InterruptionCheck::ask();
      wanted.insert(session.name);
      if (!_target.shard.has(session.name))
        continue;
      std::string plan = digestOf(session);
      if (known.has(_study, session, plan))
      {
        ++(session.leftOut.empty() ? _outcome.unchanged : _outcome.leftOut);
        continue;
      }
      _missing.push_back(&session);
      _plans.push_back(std::move(plan));
    }
    known.renewTimes(*_database);
    std::vector<std::string> gone;
    Statement sessions(*_database, "SELECT session FROM main.sessions");
    while (sessions.step())
      if (wanted.count(sessions.text(0)) == 0)
        gone.push_back(sessions.text(0));
    for (const std::string& session : gone)
    {
      Transaction transaction(*_database);
      removeSession(*_database, session);
      transaction.commit();
    }
    _outcome.removed = gone.size();
  }

  void _playMissing()
  {
    std::vector<std::uintmax_t> bytes;
    for (const StudySession* const session : _missing)
      bytes.push_back(bytesOf(_study, *session));
    StudyProgress progress(std::move(bytes));
    Writers writers(_target.results, _study);
    workOnSessions<Status>(
        _missing.size(), _work, progress,
        [&](std::size_t i, StudyProgress::OfSession& ofSession) {
          return _playOne(*_missing[i], _plans[i], writers, ofSession);
        },
        [this](std::size_t, Status status) {
          if (status == Status::Played)
            ++_outcome.played;
          else if (status == Status::LeftOut)
            ++_outcome.leftOut;
        });
  }

  enum class Status
  {
    Played,
    LeftOut,
    Failed
  };

  Status _playOne(const StudySession& session, const std::string& plan, Writers& writers,
                  StudyProgress::OfSession& progress) const
  {
    std::unique_ptr<SessionRows> rows = writers.take();
    SessionObserver& observer = rows->begin();
    NotedSession noted;
    noted.plan = plan;
    if (!session.leftOut.empty())
    {
      noted.status = "left out";
      noted.error = session.leftOut;
    }
    else
      _play(session, observer, noted, progress);
    writers.write(std::move(rows), session, noted);
    return noted.status == "left out" ? Status::LeftOut : noted.error.empty() ? Status::Played : Status::Failed;
  }

  void _play(const StudySession& session, SessionObserver& observer, NotedSession& noted,
             StudyProgress::OfSession& progress) const
  {
    try
    {
      if (!session.faults.empty())
        throw recordings::Error({}, session.faults.front().text);
      PlayerOptions options;
      options.skipBad = _study.skipBad;
      options.cycle = _study.cycle;
      std::vector<std::string> warnings;
      options.scopes = _scopesOf(session, warnings);
      _noteInputs(session, noted);
      const Player player(options, [&progress](const Progress& reached) {
        recordings::InterruptionCheck::ask();
        progress.reach(reached.share);
        return true;
      });
      noted.outcome = player.play([&] { return openStudySession(_study, session); }, {&observer});
      noted.outcome.warnings.insert(noted.outcome.warnings.end(), warnings.begin(), warnings.end());
      if (noted.outcome.error)
        noted.error = withoutFolder(_study, noted.outcome.error->what());
      _relate(noted.outcome);
    }
    catch (const recordings::Error& error)
    {
      noted.error = withoutFolder(_study, error.what());
    }
    noted.status = noted.error.empty() ? "complete" : noted.outcome.opened ? "cut short" : "failed";
  }

  std::vector<ScopeSpan> _scopesOf(const StudySession& session, std::vector<std::string>& warnings) const
  {
    std::vector<ScopeSpan> scopes{{wholeRecordingScope, Duration(0), boost::none}};
    scopes.insert(scopes.end(), session.scopes.begin(), session.scopes.end());
    for (const Study::Input& labels : session.labels)
    {
      const std::vector<ScopeSpan> spans = scopesOf(_study, labels, warnings);
      scopes.insert(scopes.end(), spans.begin(), spans.end());
    }
    return scopes;
  }

  void _noteInputs(const StudySession& session, NotedSession& noted) const
  {
    for (const Study::Input& input : session.files)
    {
      const std::string path = pathIn(_study, input.path);
      noted.inputs.push_back({"recording", input.path, input.offset,
                              _study.format.empty() ? recordings::formatNameOf(path) : _study.format,
                              digestOfFile(path)});
    }
    for (const Study::Input& input : session.labels)
      noted.inputs.push_back({"labels", input.path, input.offset, "", digestOfFile(pathIn(_study, input.path))});
  }

  void _relate(Outcome& outcome) const
  {
    for (std::vector<std::string>* const lines :
         {&outcome.warnings, &outcome.libraryWarnings, &outcome.description, &outcome.learned})
      for (std::string& line : *lines)
        line = withoutFolder(_study, line);
    outcome.firstBadLine = withoutFolder(_study, outcome.firstBadLine);
    outcome.leftOut = withoutFolder(_study, outcome.leftOut);
  }

  void _listErrors()
  {
    Statement sessions(
        *_database,
        "SELECT session, error FROM main.sessions WHERE status IN ('failed', 'cut short') ORDER BY session");
    while (sessions.step())
      _outcome.failed.emplace_back(sessions.text(0), sessions.text(1));
  }

  const Study& _study;
  const StudyPlan& _plan;
  const StudyTarget& _target;
  const StudyWork& _work;
  std::optional<Database> _database;
  std::vector<const StudySession*> _missing;
  std::vector<std::string> _plans;  // digests, of the missing ones
  StudyOutcome _outcome;
};

}  // namespace

StudyOutcome runStudy(const Study& study, const StudyPlan& plan, const StudyTarget& target, const StudyWork& work)
{
  return StudyRun(study, plan, target, work).run();
}

}  // namespace KV::session
