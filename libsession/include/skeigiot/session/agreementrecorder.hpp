#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/agreement.hpp>
#include <skeigiot/session/personcourse.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace KV::session
{

/// Keeps the course of each person of a session, to be compared with labels. Memory grows with the number of updates,
/// by some 40 bytes each.
class SKEIGIOT_API AgreementRecorder : public SessionObserver
{
public:
  void personUpdated(const Snapshot& snapshot) override { _courses[snapshot.person].add(snapshot); }

  /// Ends the courses, and compares them with the labels; call it once, after the session was finished.
  ///
  /// \throws std::invalid_argument as compareWithLabels()
  Agreement compare(const std::vector<recordings::Labels>& labels, const AgreementOptions& options);

private:
  std::map<std::int32_t, PersonCourse> _courses;
};

}  // namespace KV::session
