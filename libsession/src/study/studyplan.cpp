#include <skeigiot/session/studyplan.hpp>

#include "study/filedigest.hpp"
#include "study/namepattern.hpp"
#include "study/studyfiles.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;
using recordings::quote;

/// Lists the sessions of a study.
class Planning
{
public:
  explicit Planning(const Study& study) : _study(study) {}

  StudyPlan run()
  {
    const std::vector<std::string> paths = studyFilesIn(_study.folder);
    for (std::size_t i = 0; i < _study.files.size(); ++i)
      _matchAll(_study.files[i], paths, [i](Found& found) { return &found.files[i]; });
    for (std::size_t i = 0; i < _study.labels.size(); ++i)
      _matchAll(_study.labels[i], paths, [i](Found& found) { return &found.labels[i]; });
    _takeListed();
    StudyPlan plan;
    for (auto& [name, session] : _sessions)
    {
      _complete(session, _found[name]);
      plan.sessions.push_back(std::move(session));
    }
    _noteUnused(paths, plan);
    return plan;
  }

private:
  /// Files of one session by the number of their pattern.
  struct Found
  {
    std::map<std::size_t, std::vector<std::string>> files;
    std::map<std::size_t, std::vector<std::string>> labels;
  };

  template <typename Kind>
  void _matchAll(const Study::Files& files, const std::vector<std::string>& paths, Kind&& kind)
  {
    const NamePattern pattern(files.pattern);
    if (!_placeholders)
      _placeholders = pattern.placeholders();
    const std::set<std::string> mine(pattern.placeholders().begin(), pattern.placeholders().end());
    if (mine != std::set<std::string>(_placeholders->begin(), _placeholders->end()))
      throw recordings::Error({_study.path, files.line, "pattern"},
                              "expected the same placeholders as in the first pattern");
    for (const std::string& path : paths)
    {
      recordings::InterruptionCheck::ask();
      if (const auto values = pattern.match(path))
      {
        StudySession& session = _sessionOf(*values);
        kind(_found[session.name])->push_back(path);
        _used.insert(path);
      }
    }
  }

  StudySession& _sessionOf(const std::map<std::string, std::string>& values)
  {
    std::string name;
    for (const std::string& placeholder : *_placeholders)
      name += (name.empty() ? "" : "/") + values.at(placeholder);
    if (name.empty())
      name = "session";
    StudySession& session = _sessions[name];
    session.name = name;
    for (const auto& [placeholder, value] : values)
    {
      if (placeholder == "participant")
        session.participant = value;
      else if (placeholder == "condition")
        session.condition = value;
      else
        session.factors[placeholder] = value;
    }
    return session;
  }

  void _takeListed()
  {
    for (const Study::Session& listed : _study.sessions)
    {
      const bool isNew = _sessions.count(listed.name) == 0;
      if (isNew && listed.files.empty() && listed.leftOut.empty())
        throw recordings::Error(
            {_study.path, listed.line, "sessions.name"},
            "no pattern finds a session " + quote(listed.name) + ": list its files, or correct the name");
      StudySession& session = _sessions[listed.name];
      session.name = listed.name;
      session.participant = listed.participant.value_or(session.participant);
      session.condition = listed.condition.value_or(session.condition);
      session.leftOut = listed.leftOut;
      session.files = listed.files;
      session.labels = listed.labels;
      for (const Study::Input& input : listed.files)
        _used.insert(input.path);
      for (const Study::Input& input : listed.labels)
        _used.insert(input.path);
    }
    for (const Study::Scope& scope : _study.scopes)
      _needSession(scope.session, scope.line, "scopes.session");
    for (const Study::Person& person : _study.persons)
      _needSession(person.session, person.line, "persons.session");
  }

  void _needSession(const std::string& name, std::size_t line, const char* field) const
  {
    if (!name.empty() && _sessions.count(name) == 0)
      throw recordings::Error({_study.path, line, field}, "there is no session " + quote(name));
  }

  /// Fills in the files that the patterns found, and what is wrong with them.
  void _complete(StudySession& session, const Found& found)
  {
    if (session.files.empty())
      _takeFound(_study.files, found.files, session, [&session](const Study::Files& files, const std::string& path) {
        session.files.push_back({path, files.offset, {}});
      });
    if (session.labels.empty())
      _takeFound(_study.labels, found.labels, session,
                 [&session](const Study::Labels& labels, const std::string& path) {
                   session.labels.push_back({path, labels.offset, labels.tier});
                 });
    if (session.files.size() > SessionInputs::most)
      session.faults.push_back({StudyProblem::Kind::TooMany, session.name,
                                "has " + std::to_string(session.files.size()) + " files; a session takes 64 at most"});
    for (const Study::Input& input : session.files)
      _needFile(input.path, session);
    for (const Study::Input& input : session.labels)
      _needFile(input.path, session);
    for (const Study::Scope& scope : _study.scopes)
      if (scope.session.empty() || scope.session == session.name)
        session.scopes.push_back(scope.span);
    for (const Study::Person& person : _study.persons)
      if (person.session.empty() || person.session == session.name)
        session.persons.push_back(person);
    // The first entry that fits a person counts: those for this session alone come first.
    std::stable_partition(session.persons.begin(), session.persons.end(),
                          [](const Study::Person& person) { return !person.session.empty(); });
  }

  template <typename Pattern, typename Take>
  void _takeFound(const std::vector<Pattern>& patterns, const std::map<std::size_t, std::vector<std::string>>& found,
                  StudySession& session, Take&& take)
  {
    for (std::size_t i = 0; i < patterns.size(); ++i)
    {
      const auto paths = found.find(i);
      if (paths == found.end())
      {
        if (!patterns[i].isOptional)
          session.faults.push_back(
              {StudyProblem::Kind::Missing, session.name, "no file matches " + patterns[i].pattern});
        continue;
      }
      if (paths->second.size() > 1)
        session.faults.push_back({StudyProblem::Kind::Doubled, session.name,
                                  "several files match " + patterns[i].pattern + ": " + paths->second[0] + ", " +
                                      paths->second[1] + (paths->second.size() > 2 ? ", ..." : "")});
      take(patterns[i], paths->second.front());
    }
  }

  void _needFile(const std::string& path, StudySession& session) const
  {
    std::error_code error;
    if (!fs::exists(fs::path(_study.folder) / path, error))
      session.faults.push_back({StudyProblem::Kind::Missing, session.name, path + " does not exist"});
  }

  /// A file is noted if no pattern matches it and it has the extension of one that is used.
  void _noteUnused(const std::vector<std::string>& paths, StudyPlan& plan) const
  {
    std::set<std::string> extensions;
    for (const std::string& path : _used)
      extensions.insert(fs::path(path).extension().string());
    for (const std::string& path : paths)
      if (_used.count(path) == 0 &&
          (extensions.count(fs::path(path).extension().string()) > 0 || isNamedAsLabels(path)))
        plan.unused.push_back(path);
  }

  const Study& _study;
  boost::optional<std::vector<std::string>> _placeholders;
  std::map<std::string, StudySession> _sessions;
  std::map<std::string, Found> _found;
  std::set<std::string> _used;
};

}  // namespace

const char* problemName(StudyProblem::Kind kind)
{
  switch (kind)
  {
    case StudyProblem::Kind::Missing:
      return "missing";
    case StudyProblem::Kind::Doubled:
      return "doubled";
    case StudyProblem::Kind::TooMany:
      return "too many files";
    case StudyProblem::Kind::TooShort:
      return "too short";
    case StudyProblem::Kind::Unsynchronised:
      return "not synchronised";
    case StudyProblem::Kind::Unreadable:
      return "unreadable";
    case StudyProblem::Kind::Unused:
      return "not used";
  }
  return "";
}

StudyPlan planStudy(const Study& study)
{
  return Planning(study).run();
}

bool StudyShard::has(const std::string& session) const
{
  const auto digest = sha256(session);
  std::uint64_t hash = 0;
  for (std::size_t i = 0; i < 8; ++i)
    hash = hash << 8U | digest[i];
  return hash % count == number - 1;
}

StudyShard parseShard(const std::string& text)
{
  constexpr std::size_t most = 1000000;
  StudyShard shard;
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, shard.number);
  const bool hasSlash = first.ec == std::errc() && first.ptr != end && *first.ptr == '/';
  const auto second = std::from_chars(hasSlash ? first.ptr + 1 : end, end, shard.count);
  if (second.ec != std::errc() || second.ptr != end || shard.number < 1 || shard.number > shard.count ||
      shard.count > most)
    throw std::invalid_argument("expected I/N with I from 1 to N, such as 3/16, found " + quote(text));
  return shard;
}

}  // namespace KV::session
