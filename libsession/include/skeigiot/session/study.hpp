#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/readingoptions.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/duration.hpp>
#include <skeigiot/session/scopespan.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// The contents of a study file: which files make one session, who is in it, and how all of them are read.
///
/// Paths and patterns are relative to the folder of the study file. A pattern is a path with placeholders, such as
/// "{participant}/{condition}/face.csv". A placeholder matches one part of a path without slashes, and `*` matches
/// anything but a slash. No placeholder is named "scope". Files whose placeholders have the same values belong to one
/// session.
struct SKEIGIOT_API Study
{
  /// Files of one kind, of which each session has at most one.
  struct Files
  {
    std::string pattern;      ///< with the same placeholders as the other patterns of the study
    Duration offset{0};       ///< [ns] added to all times of these files
    bool isOptional = false;  ///< a session without such a file is played, too
    std::size_t line = 0;     ///< of the study file
  };

  /// Files of labels: each label is a scope.
  struct Labels : Files
  {
    std::string tier;  ///< only labels of this tier; empty: all
  };

  /// A person of the sessions.
  struct Person
  {
    boost::optional<std::int32_t> number;  ///< in the recording; nothing: known by the name
    std::string name;                      ///< in the recording; empty: known by the number
    std::string role;                      ///< such as "child"
    std::string participant;               ///< identifier across sessions; empty: that of the session
    std::string session;                   ///< the only session that this is about; empty: all
    std::size_t line = 0;                  ///< of the study file
  };

  /// A scope that is judged.
  struct Scope
  {
    ScopeSpan span;        ///< name, start and end
    std::string session;   ///< the only session that has it; empty: all
    std::size_t line = 0;  ///< of the study file
  };

  /// One file of a session that is listed by name.
  struct Input
  {
    std::string path;    ///< relative to the folder of the study file
    Duration offset{0};  ///< [ns] added to all its times
    std::string tier;    ///< of labels: only those of this tier; empty: all
  };

  /// A session that is listed by name: a new one, or changes of one that the patterns find.
  struct Session
  {
    std::string name;                          ///< values of the placeholders, with slashes between them
    boost::optional<std::string> participant;  ///< replaces the value of the placeholder
    boost::optional<std::string> condition;    ///< replaces the value of the placeholder
    std::vector<Input> files;                  ///< replace the files that the patterns found, if there are any
    std::vector<Input> labels;                 ///< replace the labels that the patterns found, if there are any
    std::string leftOut;                       ///< why the session is not played; empty: it is
    std::size_t line = 0;                      ///< of the study file
  };

  std::string path;    ///< of the study file
  std::string folder;  ///< of the study file
  std::string name;    ///< of the study

  std::vector<Files> files;       ///< recordings; the first that a session has sets its timing
  std::vector<Labels> labels;     ///< labels, which become scopes
  std::vector<Person> persons;    ///< roles and identifiers
  std::vector<Scope> scopes;      ///< besides the labels
  std::vector<Session> sessions;  ///< listed by name

  recordings::ReadingOptions reading;          ///< how all recordings are read
  std::string format;                          ///< of all recordings; empty: detected
  bool skipBad = false;                        ///< continue after lines that cannot be used
  Cycle cycle;                                 ///< how often persons are updated
  std::map<std::string, float> boundaries;     ///< by their names, see boundaries()
  std::map<std::string, std::string> options;  ///< all of the above that the file sets, as text

  bool keepsUpdates = false;       ///< the results have each update of each person
  bool keepsForces = false;        ///< the results have each force
  double minimalLength = 0.;       ///< [s] a shorter session is a problem
  double greatestDifference = 1.;  ///< [s] by which files of one session may begin apart, before it is a problem
};

/// The version of the study file that this library reads.
constexpr int studyFileVersion = 1;

/// Reads a study file.
///
/// \throws recordings::Error that names file, line and field if it cannot be read or something in it is wrong.
SKEIGIOT_API Study readStudy(const std::string& path);

}  // namespace KV::session
