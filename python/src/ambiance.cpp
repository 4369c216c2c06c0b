#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"
#include "unlocked.hpp"
#include "written.hpp"

#include <skeigiot/ambiancestate.hpp>

namespace py = pybind11;

namespace binding
{

void bindAmbiance(py::module_& module)
{
  using KV::AmbianceState;
  py::class_<AmbianceState>(module, "AmbianceState",
                            "How agitated or calm the room is: a smoothed activity measure, raised by the movements "
                            "counted between updates. str() shows activity and calm, a line each.")
      .def(py::init<>(), "Makes a state with all values 0; the calm level is not 1 before the first update.")
      .def("updateAmbiance", &AmbianceState::updateAmbiance, py::arg("activity"), Unlocked(),
           "Makes one step of exponential smoothing towards ten times the activity, and consumes the counted "
           "movements.\n\n"
           "    agitation' = ((10 activity - agitation) * 0.2 + agitation) + (movements / 5) * 0.2, held in [0, 1]\n"
           "    calm'      = 1 - agitation'\n\n"
           "A result that is NaN becomes 0.")
      .def("_setAmbientActivityLevel", &AmbianceState::_setAmbientActivityLevel, py::arg("level"),
           "Sets the agitation, held in [0, 1], and the calm to 1 minus it; the count of movements stays.")
      .def("ambientActivityLevel", &AmbianceState::ambientActivityLevel, py::arg("description"),
           "Returns the agitation or the calm level.\n\n"
           "Raises ValueError \"Unknown emotional expression descriptor <description>\" for any other description.")
      .def("excitationState", &AmbianceState::excitationState, Unlocked(),
           "Returns AmbianceExcited if the agitation has reached the boundary, else AmbianceNotExcited.")
      .def("incrementMovementDetected", &AmbianceState::incrementMovementDetected, Unlocked(),
           "Counts one movement for the next update.")
      .def_static("setBinaryBoundaryExcited", &AmbianceState::setBinaryBoundaryExcited, py::arg("boundary"), Unlocked(),
                  "Sets the process-wide excitation boundary (0.4 by default) if it lies strictly between 0 and 1.\n\n"
                  "Any other value, NaN included, changes nothing and is reported by a warning of the logger "
                  "\"kvmood.ambiance\".")
      .def_static("getBinaryBoundaryExcited", &AmbianceState::getBinaryBoundaryExcited, Unlocked(),
                  "Returns the process-wide excitation boundary.")
      .def_readwrite("agitationLevel", &AmbianceState::agitationLevel, "smoothed activity, in [0, 1]")
      .def_readwrite("calmLevel", &AmbianceState::calmLevel,
                     "1 - agitationLevel after the first update or set, 0 before")
      .def_readwrite("movementCount", &AmbianceState::movementCount, "movements counted since the last update")
      .def("__copy__", [](const AmbianceState& self) { return AmbianceState(self); })
      .def(
          "__deepcopy__", [](const AmbianceState& self, const py::dict&) { return AmbianceState(self); },
          py::arg("memo"))
      .def("__repr__",
           [](const py::object& self) {
             return "<" + representation(self, {"agitationLevel", "calmLevel", "movementCount"}) + ">";
           })
      .def("__str__", &written<AmbianceState>);
}

}  // namespace binding
