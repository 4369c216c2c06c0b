#include "module.hpp"
#include "signalcheck.hpp"
#include "unlocked.hpp"

#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/session/studycomparison.hpp>
#include <skeigiot/session/studyreport.hpp>
#include <skeigiot/session/studyresults.hpp>

#include <pybind11/stl.h>

#include <functional>
#include <string>
#include <vector>

namespace py = pybind11;

namespace binding
{

namespace
{

using Paths = std::vector<std::string>;

/// Returns the groups: value, role, mean, ends of the interval, and the persons with their values.
py::list compareStudy(const Paths& paths, const std::string& quantity, const std::string& scope, const std::string& by)
{
  SignalCheck check;
  const KV::session::StudyComparison comparison = unlocked([&] {
    const KV::recordings::InterruptionCheck whileReading(std::ref(check));
    return KV::session::compareGroups(KV::session::StudyResults(paths), {quantity, scope, by});
  });
  py::list groups;
  for (const KV::session::StudyGroup& group : comparison.groups)
  {
    py::list persons;
    for (const KV::session::StudyGroup::Person& person : group.persons)
      persons.append(py::make_tuple(person.participant, person.value, person.rows));
    const bool hasInterval = group.interval.has_value();
    groups.append(py::make_tuple(group.value, group.role, group.mean,
                                 hasInterval ? py::object(py::float_(group.interval->first)) : py::none(),
                                 hasInterval ? py::object(py::float_(group.interval->second)) : py::none(), persons));
  }
  return groups;
}

/// Returns the data of the page of a study, as JSON.
std::string studyData(const Paths& paths, const std::vector<std::string>& files)
{
  SignalCheck check;
  return unlocked([&] {
    const KV::recordings::InterruptionCheck whileReading(std::ref(check));
    return KV::session::StudyReport(KV::session::StudyResults(paths), files).data();
  });
}

}  // namespace

void bindStudy(py::module_& module)
{
  module.def("_compareStudy", &compareStudy, py::arg("paths"), py::arg("quantity"), py::arg("scope"), py::arg("by"));
  module.def("_studyData", &studyData, py::arg("paths"), py::arg("files"));
}

}  // namespace binding
