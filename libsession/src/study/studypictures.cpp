#include "study/studypictures.hpp"

#include "report/stretchmeans.hpp"
#include "study/resultschema.hpp"

#include <skeigiot/session/duration.hpp>
#include <skeigiot/session/studyreport.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr double longestHold = 1.;  // [s] how long an update counts if no next one follows, as in a summary

Json thousandths(double value)
{
  constexpr double most = 1e12;  // far beyond any value; a whole number can have it
  return std::isnan(value) ? Json() : Json(std::llround(std::clamp(value, -most, most) * 1000.));
}

Json thousandths(const Statement& row, int column)
{
  return row.isNull(column) ? Json() : thousandths(row.number(column));
}

Json curve(const StretchMeans& means)
{
  Json json = Json::array();
  for (const float mean : means.all())
    json.push_back(thousandths(static_cast<double>(mean)));
  return json;
}

constexpr double latest = 8e9;  // [s] far beyond any recording; whole nanoseconds of it fit a Duration

Duration durationOf(double seconds)
{
  return Duration(static_cast<Duration::rep>(std::llround(std::clamp(seconds, 0., latest) * 1e9)));
}

/// One update, as it is in the results.
struct Update
{
  double time = 0.;
  float valence = 0.f;
  float attention = 0.f;
  bool valenceKnown = false;
  bool attentionKnown = false;
};

/// Makes the pictures, session by session.
class Pictures
{
public:
  explicit Pictures(Database& database)
    : _database(database),
      _persons(database, "SELECT person, name, role, participant FROM main.persons WHERE session = ? ORDER BY person"),
      _updates(database,
               "SELECT time, valence, valence_known, attention, attention_known FROM main.updates"
               " WHERE session = ? AND person = ? ORDER BY number"),
      _summaries(database,
                 "SELECT scope, start, stop, valence, attention FROM main.summaries"
                 " WHERE session = ? AND person = ? ORDER BY number")
  {}

  Json all()
  {
    const auto wanted = static_cast<std::size_t>(_database.whole("SELECT coalesce(sum(min(max(persons, 0), " +
                                                                 std::to_string(StudyReport::mostPersonsOfSession) +
                                                                 ")), 0) AS persons FROM main.sessions"));
    const std::size_t pictures = std::clamp<std::size_t>(wanted, 1, StudyReport::mostPictures);
    _stretches = std::min(StudyReport::mostNumbers / (2 * pictures), StudyReport::mostPoints);

    Json sessions = Json::array();
    Statement row(_database,
                  "SELECT session, participant, condition, status, length, persons FROM main.sessions"
                  " ORDER BY session LIMIT ?");
    row.bind(StudyReport::mostSessions);
    while (row.step())
    {
      const double length = row.isNull(4) ? 0. : row.number(4);
      sessions.push_back({{"name", row.text(0)},
                          {"participant", row.text(1)},
                          {"condition", row.text(2)},
                          {"status", row.text(3)},
                          {"length", row.isNull(4) ? Json() : Json(length)},
                          {"personCount", row.whole(5)},
                          {"persons", _personsOf(row.text(0), length)}});
    }
    return {{"sessions", std::move(sessions)},
            {"stretches", _stretches},
            {"scopeNames", _scopeNames},
            {"withoutPicture", _database.whole("SELECT count(*) FROM main.persons JOIN main.sessions USING (session)") -
                                   static_cast<std::int64_t>(_made)}};
  }

private:
  Json _personsOf(const std::string& session, double length)
  {
    Json persons = Json::array();
    _persons.bind(session);
    const auto isFull = [&] {
      return persons.size() == StudyReport::mostPersonsOfSession || _made == StudyReport::mostPictures;
    };
    while (!isFull() && _persons.step())
    {
      ++_made;
      Json person = {{"id", _persons.whole(0)},
                     {"name", _persons.text(1)},
                     {"role", _persons.text(2)},
                     {"participant", _persons.text(3)}};
      _addSummaries(person, session, _persons.whole(0));
      _addUpdates(person, session, _persons.whole(0), length);
      persons.push_back(std::move(person));
    }
    return persons;
  }

  /// Adds the means of the whole recording, and those of the scopes.
  void _addSummaries(Json& person, const std::string& session, std::int64_t number)
  {
    Json whole = Json::array();
    Json scopes = Json::array();
    std::size_t more = 0;
    _summaries.bind(session, number);
    while (_summaries.step())
    {
      const bool isWhole = _summaries.text(0) == wholeRecordingScope;
      if (isWhole)
      {
        person["valence"] = thousandths(_summaries, 3);
        person["attention"] = thousandths(_summaries, 4);
      }
      if (!isWhole && scopes.size() == StudyReport::mostPoints)
      {
        ++more;
        continue;
      }
      (isWhole ? whole : scopes)
          .push_back({_numberOf(_summaries.text(0)), _summaries.number(1), _summaries.number(2),
                      thousandths(_summaries, 3), thousandths(_summaries, 4)});
    }
    person["scopes"] = scopes.empty() ? std::move(whole) : std::move(scopes);
    if (more > 0)
      person["moreScopes"] = more;
  }

  /// Replaces the scopes by curves, if the results have updates of the person.
  void _addUpdates(Json& person, const std::string& session, std::int64_t number, double length)
  {
    StretchMeans valence(durationOf(length), _stretches);
    StretchMeans attention(durationOf(length), _stretches);
    const auto add = [&](const Update& update, double next) {
      const double to = std::min({next, update.time + longestHold, std::max(length, update.time)});
      if (update.valenceKnown)
        valence.add(durationOf(update.time), durationOf(to), update.valence);
      if (update.attentionKnown)
        attention.add(durationOf(update.time), durationOf(to), update.attention);
    };
    _updates.bind(session, number);
    if (!_updates.step())
      return;
    Update last = _update();
    while (_updates.step())
    {
      const Update next = _update();
      add(last, next.time);
      last = next;
    }
    add(last, last.time + longestHold);
    person["valenceCurve"] = curve(valence);
    person["attentionCurve"] = curve(attention);
    person.erase("scopes");
    person.erase("moreScopes");
  }

  Update _update() const
  {
    return {_updates.number(0), static_cast<float>(_updates.number(1)), static_cast<float>(_updates.number(3)),
            _updates.whole(2) != 0, _updates.whole(4) != 0};
  }

  std::size_t _numberOf(const std::string& scope)
  {
    const auto [found, isNew] = _scopeNumbers.emplace(scope, _scopeNames.size());
    if (isNew)
      _scopeNames.push_back(scope);
    return found->second;
  }

  Database& _database;
  Statement _persons;
  Statement _updates;
  Statement _summaries;
  std::size_t _stretches = StudyReport::mostPoints;
  std::size_t _made = 0;
  Json _scopeNames = Json::array();
  std::map<std::string, std::size_t> _scopeNumbers;
};

}  // namespace

Json studyPictures(Database& database)
{
  return Pictures(database).all();
}

}  // namespace KV::session
