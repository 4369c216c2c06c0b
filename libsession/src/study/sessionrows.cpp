#include "study/sessionrows.hpp"

#include "export/summaryrow.hpp"
#include "study/resultschema.hpp"

#include <skeigiot/session/exportfields.hpp>
#include <skeigiot/session/forcenames.hpp>

#include <type_traits>
#include <utility>

namespace KV::session
{

namespace
{

double secondsOf(Duration duration)
{
  return static_cast<double>(duration.count()) / 1e9;
}

/// Binds what an export has: durations are seconds, what is missing is NULL.
template <typename Value>
void addField(Statement& statement, const Value& value)
{
  if constexpr (std::is_same_v<Value, Duration>)
    statement.add(secondsOf(value));
  else if constexpr (std::is_same_v<Value, boost::optional<Duration>>)
  {
    if (value)
      statement.add(secondsOf(*value));
    else
      statement.add(nullptr);
  }
  else
    statement.add(value);
}

/// A force whose person is not known yet: the update that follows says it.
struct Pending
{
  KV::Force force;
  std::string source;
};

const Study::Person* personOf(const StudySession& session, std::int32_t number, const std::string& name)
{
  for (const Study::Person& person : session.persons)
    if (person.number ? *person.number == number : person.name == name)
      return &person;
  return nullptr;
}

}  // namespace

/// Collects the rows of one session.
class SessionRows::Rows : public SessionObserver
{
public:
  Rows(Database& database, bool keepsUpdates, bool keepsForces)
    : _keepsUpdates(keepsUpdates),
      _keepsForces(keepsForces),
      _update(database, insertionInto(resultTable("updates"), "temp.new_updates")),
      _force(database, insertionInto(resultTable("forces"), "temp.new_forces"))
  {}

  bool watchesForces() const override { return _keepsForces; }

  void forceActed(const KV::Force& force) override { _pending.push_back({force, std::string(force.source)}); }

  void personUpdated(const Snapshot& snapshot) override
  {
    _summary.personUpdated(snapshot);
    const std::int64_t number = ++_numbers[snapshot.person];
    if (_keepsUpdates)
      _insertUpdate(snapshot, number);
    if (_keepsForces)
      _insertForces(snapshot, number);
  }

  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override
  {
    _summary.ambianceUpdated(agitation, excitation);
  }
  void scopeJudged(const ScopeVerdict& verdict) override { _summary.scopeJudged(verdict); }

  Summary& summary() { return _summary; }

private:
  void _insertUpdate(const Snapshot& snapshot, std::int64_t number)
  {
    _update.bind("", snapshot.person, number);
    forEachExportedField({}, snapshot, [this](const char* name, const auto& value) {
      if (isKept(name))
        addField(_update, value);
    });
    _update.run();
  }

  void _insertForces(const Snapshot& snapshot, std::int64_t number)
  {
    const TimePoint start = snapshot.time - snapshot.sinceStart;
    int order = 0;
    for (const auto& [force, source] : _pending)
      _force
          .bind("", snapshot.person, number, ++order, secondsOf(force.time - start), quantityName(force.quantity),
                plainSource(source), force.target, force.weight, force.before, force.after)
          .run();
    _pending.clear();
  }

  bool _keepsUpdates;
  bool _keepsForces;
  Statement _update;
  Statement _force;
  Summary _summary;
  std::map<std::int32_t, std::int64_t> _numbers;  // of updates, by person
  std::vector<Pending> _pending;
};

SessionRows::SessionRows(const std::string& results, bool keepsUpdates, bool keepsForces)
  : _database(results, Database::Mode::Write), _keepsUpdates(keepsUpdates), _keepsForces(keepsForces)
{
  _database.run(
      "PRAGMA temp_store = FILE; PRAGMA synchronous = NORMAL;"
      "CREATE TEMP TABLE new_updates AS SELECT * FROM main.updates WHERE 0;"
      "CREATE TEMP TABLE new_forces AS SELECT * FROM main.forces WHERE 0");
}

SessionObserver& SessionRows::begin()
{
  _rows.reset();
  _database.run("DELETE FROM temp.new_updates; DELETE FROM temp.new_forces");
  _rows = std::make_shared<Rows>(_database, _keepsUpdates, _keepsForces);
  _database.run("BEGIN");  // of the temporary tables alone: nothing else is touched before it ends
  return *_rows;
}

void SessionRows::write(const StudySession& session, const NotedSession& noted)
{
  _database.run("COMMIT");
  _rows->summary().finish();
  Transaction transaction(_database);
  removeSession(_database, session.name);
  _insertSession(session, noted);
  _insertSummaries(session);
  _insertWarnings(session, noted);
  for (const char* const name : {"updates", "forces"})
  {
    std::string columns;
    for (const ResultColumn& column : resultTable(name).columns)
      columns += column.name == "session" ? "?" : ", \"" + column.name + "\"";
    Statement(_database, "INSERT INTO main." + std::string(name) + " SELECT " + columns + " FROM temp.new_" + name)
        .bind(session.name)
        .run();
  }
  transaction.commit();
}

void SessionRows::_insertSession(const StudySession& session, const NotedSession& noted)
{
  const Outcome& outcome = noted.outcome;
  const std::size_t warnings = outcome.warnings.size() + outcome.moreWarnings + outcome.libraryWarnings.size() +
                               (outcome.leftOut.empty() ? 0 : 1) + (outcome.badLines > 0 ? 1 : 0);
  Statement row(_database, insertionInto(resultTable("sessions"), "main.sessions"));
  row.bind(session.name, session.participant, session.condition, noted.status, noted.error);
  if (outcome.opened)
  {
    row.add(secondsOf(outcome.length));
    row.add(outcome.isDated);
  }
  else
  {
    row.add(nullptr);
    row.add(nullptr);
  }
  row.add(_rows->summary().persons().size());
  row.add(warnings);
  row.add(outcome.badLines);
  row.add(noted.plan);
  row.run();

  Statement input(_database, insertionInto(resultTable("recordings"), "main.recordings"));
  std::size_t number = 0;
  for (const NotedInput& one : noted.inputs)
    input
        .bind(session.name, ++number, one.kind, one.path, secondsOf(one.offset), one.format, one.digest.bytes,
              one.digest.modified, one.digest.sha256)
        .run();
  Statement factor(_database, insertionInto(resultTable("factors"), "main.factors"));
  for (const auto& [name, value] : session.factors)
    factor.bind(session.name, name, value).run();
}

void SessionRows::_insertSummaries(const StudySession& session)
{
  const Summary& summary = _rows->summary();
  Statement personRow(_database, insertionInto(resultTable("persons"), "main.persons"));
  Statement row(_database, insertionInto(resultTable("summaries"), "main.summaries"));
  const std::string none;
  for (const auto& [number, person] : summary.persons())
  {
    const Study::Person* const known = personOf(session, number, person.name());
    const bool hasOwn = known != nullptr && !known->participant.empty();
    personRow
        .bind(session.name, number, person.name(), hasOwn ? known->participant : session.participant,
              known == nullptr ? "" : known->role, person.updates())
        .run();
    int count = 0;
    for (const ScopeVerdict& scope : summary.verdicts())
    {
      row.bind(session.name, number, ++count);
      forEachSummaryColumn({}, SummaryRow{&scope, &person, number, &summary.ambiance(), none},
                           [&row](const std::string& name, const auto&... value) {
                             if (!isKept(name))
                               return;
                             if constexpr (sizeof...(value) == 0)
                               row.add(nullptr);
                             else
                               (addField(row, value), ...);
                           });
      row.run();
    }
  }
}

void SessionRows::_insertWarnings(const StudySession& session, const NotedSession& noted)
{
  const auto insert = [&](const char* table, const std::vector<std::pair<const char*, std::string>>& lines) {
    Statement row(_database, insertionInto(resultTable(table), std::string("main.") + table));
    int number = 0;
    for (const auto& [kind, text] : lines)
      if (!text.empty())
        row.bind(session.name, ++number, kind, text).run();
  };
  std::vector<std::pair<const char*, std::string>> warnings;
  for (const std::string& line : noted.outcome.warningLines())
    warnings.emplace_back("recording", line);
  warnings.emplace_back("bad lines", noted.outcome.skippedText());
  warnings.emplace_back("readings", noted.outcome.leftOut);
  for (const std::string& line : noted.outcome.libraryWarnings)
    warnings.emplace_back("library", line);
  insert("warnings", warnings);

  std::vector<std::pair<const char*, std::string>> notes;
  for (const std::string& line : noted.outcome.description)
    notes.emplace_back("read as", line);
  for (const std::string& line : noted.outcome.learned)
    notes.emplace_back("learned", line);
  insert("notes", notes);
}

void removeSession(Database& database, const std::string& session)
{
  for (const ResultTable& table : resultTables())
    if (table.isOfSessions)
      Statement(database, "DELETE FROM main." + table.name + " WHERE session = ?").bind(session).run();
}

}  // namespace KV::session
