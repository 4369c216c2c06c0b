#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/study.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// Something about a study that somebody should look at before it is played.
struct SKEIGIOT_API StudyProblem
{
  /// Kinds of problems.
  enum class Kind
  {
    Missing,         ///< a file that the session should have
    Doubled,         ///< the same contents twice, or two files where one is expected
    TooMany,         ///< more files than a session can have
    TooShort,        ///< shorter than the study file allows
    Unsynchronised,  ///< files of one session that begin far apart, or do not overlap
    Unreadable,      ///< a file with an error, or no format fits
    Unused           ///< a file that no pattern matches
  };

  Kind kind = Kind::Missing;  ///< what it is
  std::string session;        ///< of which session; empty: of none
  std::string text;           ///< in a sentence, with the file
};

/// Returns "missing", "doubled", "too many files", "too short", "not synchronised", "unreadable" or "not used".
SKEIGIOT_API const char* problemName(StudyProblem::Kind kind);

/// One session of a study.
struct SKEIGIOT_API StudySession
{
  std::string name;                            ///< values of the placeholders, with slashes between them
  std::string participant;                     ///< value of the placeholder "participant"; may be empty
  std::string condition;                       ///< value of the placeholder "condition"; may be empty
  std::map<std::string, std::string> factors;  ///< values of all other placeholders
  std::vector<Study::Input> files;             ///< recordings; the first sets the timing
  std::vector<Study::Input> labels;            ///< their labels are scopes
  std::vector<ScopeSpan> scopes;               ///< besides the labels
  std::vector<Study::Person> persons;          ///< those of the study that are in this session
  std::string leftOut;                         ///< why it is not played; empty: it is
  std::vector<StudyProblem> faults;            ///< why it cannot be played; empty: it can
};

/// The sessions of a study.
struct SKEIGIOT_API StudyPlan
{
  std::vector<StudySession> sessions;  ///< in the order of their names
  std::vector<std::string> unused;     ///< files that look like recordings or labels, and match no pattern
};

/// Lists the sessions of the study, from the names of the files in its folder. Hidden files are ignored.
///
/// \throws recordings::Error if the folder cannot be read, or a session of the study file does not exist.
SKEIGIOT_API StudyPlan planStudy(const Study& study);

/// Which part of the sessions one machine plays.
struct SKEIGIOT_API StudyShard
{
  std::size_t number = 1;  ///< from 1 to `count`
  std::size_t count = 1;   ///< how many parts there are

  /// Returns whether a session belongs to this part: the first 8 bytes of the SHA-256 of its name, read as a number
  /// with the highest byte first, have the remainder `number` - 1 by `count`.
  bool has(const std::string& session) const;
};

/// Reads "I/N", as in "3/16".
///
/// \throws std::invalid_argument if it is not two whole numbers with 1 <= I <= N <= 1000000.
SKEIGIOT_API StudyShard parseShard(const std::string& text);

/// Writes a study file for the recordings in a folder: finds names that repeat, and makes patterns of them.
///
/// \return the text of the study file
/// \throws recordings::Error if the folder cannot be read or has no recording.
SKEIGIOT_API std::string draftStudy(const std::string& folder);

}  // namespace KV::session
