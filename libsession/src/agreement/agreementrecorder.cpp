#include <skeigiot/session/agreementrecorder.hpp>

namespace KV::session
{

Agreement AgreementRecorder::compare(const std::vector<recordings::Labels>& labels, const AgreementOptions& options)
{
  for (auto& [person, course] : _courses)
    course.finish();
  return compareWithLabels(_courses, labels, options);
}

}  // namespace KV::session
