#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"
#include "unlocked.hpp"
#include "written.hpp"

#include <skeigiot/person.hpp>

#include <pybind11/stl.h>

namespace py = pybind11;

namespace binding
{

void bindPerson(py::module_& module)
{
  using KV::Person;
  py::class_<Person> class_(module, "Person",
                            "One tracked person: an identifier, the estimated state, and the memories that it is "
                            "estimated from. str() is \"Person (US#<id>) \".\n\n"
                            "State and memory are handles, so copies of a person share both. Not synchronised: update "
                            "one person, through whichever copy, from one thread at a time; SocialGraph does.");
  class_.def(py::init<std::int32_t>(), py::arg("id") = 0, "Makes a person with a new state and new memories.")
      .def("update", &Person::update, py::arg("observation"), Unlocked(),
           "Takes one perception cycle in: files the observation into the memories, then estimates body language and "
           "state.\n\n"
           "The estimate is made for 5 to 15 updates a second: at a camera's 30 Hz a head that turns away slowly never "
           "counts as turned. A Pacer updates 10 times a second, and remembers what is observed in between.\n\n"
           "An exception of a step, such as one of a clock or a force observer in Python, passes to the caller; what "
           "the steps before it did stays done.")
      .def("updateMemory", &Person::updateMemory, py::arg("observation"), Unlocked(),
           "Files the observation into the memories, and estimates nothing.")
      .def("_updateOnlineModels", &Person::_updateOnlineModels, py::arg("observation"), Unlocked(),
           "Estimates body language and state, without filing the observation.")
      .def("decreaseSinceNotSeen", &Person::decreaseSinceNotSeen, Unlocked(),
           "Ages the state by one cycle in which the person was not seen: valence and attention move 26 % of the way "
           "to 0, their confidences 70 %.")
      .def("setUserSessionID", &Person::setUserSessionID, py::arg("id"),
           "Changes the identifier and nothing else; a social graph goes on finding the person under its former one.")
      .def("setFrequencyGaze", &Person::setFrequencyGaze, py::arg("hz"),
           "Stores the rate of the channel, in observations per second; the estimate does not depend on it.")
      .def("setFrequencyFace", &Person::setFrequencyFace, py::arg("hz"),
           "Stores the rate of the channel, in observations per second; the estimate does not depend on it.")
      .def("personDescriptor", &Person::personDescriptor, Unlocked(),
           "Returns the pleasure state and the attention zone.")
      .def_readwrite("personID", &Person::personID, "identifier of the person in the robot's user session")
      .def_property(
          "personState", [](const Person& self) { return self.personState; },
          [](Person& self, const KV::PersonState& state) { self.personState = state; }, "a handle on the state")
      .def_property(
          "personMemory", [](const Person& self) { return self.personMemory; },
          [](Person& self, const KV::PersonMemory& memory) { self.personMemory = memory; }, "a handle on the memories")
      .def("__copy__", [](const Person& self) { return Person(self); })
      .def("__repr__",
           [](const Person& self) {
             return "<Person " + std::to_string(self.personID) + ": " +
                    std::string(py::repr(py::cast(self.personState))) + ">";
           })
      .def("__str__", &written<Person>);
  refuseCopies(class_,
               "a Person holds handles: copy.copy() gives another person on the same state and memories, and there is "
               "no deep copy and no pickle of them");
}

}  // namespace binding
