#include "module.hpp"

#include <skeigiot/isfinite.hpp>

namespace py = pybind11;

namespace binding
{

namespace
{

template <typename Reading>
void bindIsFinite(py::module_& module)
{
  module.def(
      "isFinite", [](const Reading& reading) { return KV::isFinite(reading); }, py::arg("reading"),
      "Returns whether every number of a reading, or of all readings of an observation, is finite: neither NaN nor "
      "beyond "
      "greatestReading. An observation without any reading is.");
}

}  // namespace

void bindFinite(py::module_& module)
{
  module.attr("greatestReading") = KV::greatestReading;
  bindIsFinite<KV::Gaze>(module);
  bindIsFinite<KV::HeadPosture>(module);
  bindIsFinite<KV::RobotHeadPosture>(module);
  bindIsFinite<KV::Smile>(module);
  bindIsFinite<KV::Expressions>(module);
  bindIsFinite<KV::FacialPoints>(module);
  bindIsFinite<KV::ContextEmotion>(module);
  bindIsFinite<KV::PersonObservation>(module);
  module.def(
      "leaveOutNonFinite", &KV::leaveOutNonFinite, py::arg("observation"),
      "Takes the readings that are not finite out of the observation, and returns how many they were; the others "
      "stay.");
}

}  // namespace binding
