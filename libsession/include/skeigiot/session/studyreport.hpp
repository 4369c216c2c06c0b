#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/studyresults.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// The figures of a study, as one HTML page: each session as a small picture, groups side by side, labels and verdicts,
/// and sessions that are left out.
///
/// The same results give the same bytes. The page is bounded: see the limits below. It says which limits it reached.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API StudyReport
{
public:
  static constexpr std::size_t mostSessions = 20000;      ///< that are listed, with a picture or without
  static constexpr std::size_t mostPictures = 10000;      ///< persons of sessions that have a picture
  static constexpr std::size_t mostNumbers = 600000;      ///< of all curves together
  static constexpr std::size_t mostPoints = 60;           ///< of one curve; also scopes of one picture
  static constexpr std::size_t mostScopes = 12;           ///< that are compared; those that most sessions have
  static constexpr std::size_t mostGroups = 24;           ///< of one comparison
  static constexpr std::size_t mostDots = 300000;         ///< of all comparisons together
  static constexpr std::size_t mostFactors = 4;           ///< placeholders besides the condition
  static constexpr std::size_t mostTroubles = 1000;       ///< sessions with an error that are listed, and warnings
  static constexpr std::size_t mostPersonsOfSession = 4;  ///< that have a picture

  /// Returns whether the library was built with the page.
  static bool isAvailable();

  /// Reads the results, and computes what the page shows.
  ///
  /// \param files  names of the result files, for the page
  /// \throws recordings::Error if the results have no session, or if a column of numbers holds a text or a number that
  ///   is not finite.
  StudyReport(const StudyResults& results, const std::vector<std::string>& files);

  /// Returns what the page shows, as JSON without "<". docs/study.md lists the members.
  const std::string& data() const { return _data; }

  /// Writes the page.
  ///
  /// \throws std::logic_error if the library was built without the page.
  void write(std::ostream& stream) const;

private:
  std::string _data;
};

}  // namespace KV::session
