#include "cycle.hpp"
#include "module.hpp"
#include "times.hpp"
#include "unlocked.hpp"

#include <skeigiot/session/pacer.hpp>

namespace py = pybind11;

namespace binding
{

void bindPacer(py::module_& module)
{
  using KV::session::Pacer;
  py::class_<Pacer>(
      module, "Pacer",
      "Updates persons once a cycle, however often they are observed.\n\n"
      "Give it each observation of each person, instead of calling Person.update(). It remembers every "
      "reading at its own time, and updates the person when the cycle is over. Every gaze, head posture, "
      "facial point, word, touch, context and posture of the robot's head counts; of smile, expressions, "
      "voice, distance and head height the newest of a cycle counts.\n\n"
      "The first observation of a person updates at once, and so does the first one after a pause of a "
      "cycle or more. A person who is seen at any time of a cycle is seen in this cycle. The "
      "personID identifies a person, and each person has a grid of their own. Time comes from ko.SystemClock. Not "
      "synchronised: use a pacer from one thread at a time.")
      .def(py::init([](const py::object& cycle) { return Pacer(cycleFrom(cycle)); }), py::arg("cycle") = 10.,
           "cycle: updates in a second, above 0 and up to 1000, or \"recorded\": update with each observation. Raises "
           "ValueError for another one.")
      .def("take", &Pacer::take, py::arg("person"), py::arg("observation"), Unlocked(),
           "Takes an observation of a person; returns whether it updated the person. Otherwise it is remembered, and "
           "the "
           "next update uses it.")
      .def("takeNotSeen", &Pacer::takeNotSeen, py::arg("person"), Unlocked(),
           "Takes that a person is there and was not observed just now; returns whether that updated or aged the "
           "person.")
      .def("finish", &Pacer::finish, py::arg("person"), Unlocked(),
           "Updates a person now with the observations that wait; returns whether there were any. Call it when no more "
           "observations come.")
      .def("isWaiting", &Pacer::isWaiting, py::arg("person"),
           "Returns whether observations of the person with this number wait for an update.")
      .def(
          "firstWaiting",
          [](const Pacer& self) -> py::object {
            const auto waiting = self.firstWaiting();
            if (!waiting)
              return py::none();
            return py::make_tuple(waiting->person, waiting->latest);
          },
          "Returns who has waited longest, as the number of the person and the time at which to finish() them if no "
          "observation comes before; None if nobody waits.")
      .def(
          "restart", &Pacer::restart, py::arg("person"),
          "Lets the next observation of the person with this number update at once, as for a clock that does not move.")
      .def("forget", &Pacer::forget, py::arg("person"),
           "Forgets the person with this number: drops what waits, and the next observation updates at once.");
}

}  // namespace binding
