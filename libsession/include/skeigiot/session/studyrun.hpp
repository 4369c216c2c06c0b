#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/studycheck.hpp>
#include <skeigiot/session/studyplan.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Which sessions of a study are played, and to which file.
struct SKEIGIOT_API StudyTarget
{
  std::string results;  ///< SQLite file; made if it does not exist
  std::string version;  ///< of the program, which the results note
  StudyShard shard;     ///< only the sessions of this part are played
  bool anew = false;    ///< forget the results that the file has
};

/// How a run of a study went.
struct SKEIGIOT_API StudyOutcome
{
  std::size_t played = 0;     ///< sessions that were played in this run, without an error
  std::size_t unchanged = 0;  ///< sessions whose results were there, and whose inputs are the same
  std::size_t removed = 0;    ///< sessions that had results and are no longer in the study
  std::size_t leftOut = 0;    ///< sessions that the study file leaves out
  std::vector<std::pair<std::string, std::string>> failed;  ///< sessions with an error, in their order, and the error
};

/// Plays the sessions of a study whose results are missing, and writes the results.
///
/// Each session is one transaction, and the results do not depend on the number of jobs or on the order in which
/// sessions are done. So a run that is killed and started again leaves the same contents as one that was not killed. A
/// session that cannot be read, or not to its end, is a row with its error.
///
/// Memory does not grow with the length of the sessions; of each session, names and digests are kept. Rows wait in
/// temporary tables of SQLite, on the disk where they are many.
///
/// The boundaries of the library are those of the study during the run, and afterwards as before.
///
/// \throws recordings::Error if the file holds other data, or results with other options, unless `anew`.
/// \throws std::runtime_error if the results cannot be written.
SKEIGIOT_API StudyOutcome runStudy(const Study& study, const StudyPlan& plan, const StudyTarget& target,
                                   const StudyWork& work);

}  // namespace KV::session
