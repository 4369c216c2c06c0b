#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/studyplan.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace KV::session
{

/// How a long work on a study goes on, and how it can be ended.
struct SKEIGIOT_API StudyWork
{
  std::size_t jobs = 1;         ///< how many sessions are worked on at a time
  std::function<void()> check;  ///< called often, from several threads; ends the work by throwing; may be empty
  /// Called now and then from the calling thread, with the sessions that are done, those that there are, and the share
  /// of the work that is done, by bytes; may be empty.
  std::function<void(std::size_t done, std::size_t all, double share)> progress;
};

/// Reads all files of the study without estimating anything, and returns the problems, those of a session together.
///
/// Memory does not grow with the recordings.
SKEIGIOT_API std::vector<StudyProblem> checkStudy(const Study& study, const StudyPlan& plan, const StudyWork& work);

}  // namespace KV::session
