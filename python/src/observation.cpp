#include "module.hpp"
#include "representation.hpp"
#include "timestamped.hpp"
#include "valueconfidence.hpp"

#include <skeigiot/personobservation.hpp>

#include <boost/none.hpp>

#include <array>

namespace py = pybind11;

namespace binding
{

namespace
{

/// One reading of an observation, as Python gets and sets it.
struct Reading
{
  const char* name;
  const char* doc;
  py::object (*get)(const KV::PersonObservation&);
  void (*set)(KV::PersonObservation&, py::handle, ko::SystemClock::time_point now, const char* name);
};

template <typename T>
void assign(boost::optional<KV::Timestamped<T>>& reading, py::handle source, ko::SystemClock::time_point now,
            const char* name)
{
  if (source.is_none())
    reading = boost::none;
  else
    reading = readingFrom<T>(source, now, name);
}

template <typename T>
py::object readingOrNone(const boost::optional<KV::Timestamped<T>>& reading)
{
  return reading ? objectOf(*reading) : py::none();
}

template <auto member>
constexpr Reading reading(const char* name, const char* doc)
{
  return {name, doc, [](const KV::PersonObservation& self) { return readingOrNone(self.*member); },
          [](KV::PersonObservation& self, py::handle source, ko::SystemClock::time_point now, const char* what) {
            assign(self.*member, source, now, what);
          }};
}

using Observation = KV::PersonObservation;

constexpr std::array readings = {
    reading<&Observation::lookingAtRobot>("lookingAtRobot", "whether the person looks at the robot"),
    reading<&Observation::headHeight>("headHeight", "[m] above the floor; kept in the state, never remembered"),
    reading<&Observation::distance>("distance", "[m] from the robot"),
    reading<&Observation::gaze>("gaze", "direction of the gaze"),
    reading<&Observation::smile>("smile", "how much the person smiles"),
    reading<&Observation::expressions>("expressions", "facial expressions"),
    reading<&Observation::headPosture>("headPosture", "orientation of the head"),
    reading<&Observation::gender>("gender", "a bool with a confidence"),
    reading<&Observation::age>("age", "[years], with a confidence"),
    reading<&Observation::faceDetected>("faceDetected", "whether a face is seen"),
    reading<&Observation::facialPoints>("facialPoints", "landmarks of the face"),
    reading<&Observation::voiceEmotion>("voiceEmotion", "acts once per time stamp, never remembered"),
    reading<&Observation::asrEmotion>("asrEmotion", "valence of the recognised speech; only its sign counts"),
    reading<&Observation::touchEmotion>("touchEmotion",
                                        "above 0 is a pleasant touch, everything else an unpleasant one"),
    reading<&Observation::contextEmotion>("contextEmotion", "an emotion that the context imposes"),
    reading<&Observation::speaking>("speaking", "whether the person speaks"),
    reading<&Observation::robotHeadPosture>("robotHeadPosture", "orientation of the robot's own head")};

const Reading& readingNamed(const std::string& name)
{
  for (const Reading& known : readings)
    if (name == known.name)
      return known;
  throw py::type_error("PersonObservation() got an unexpected keyword argument '" + name + "'");
}

Observation make(const py::dict& named)
{
  const ko::SystemClock::time_point now = ko::SystemClock::now();  // one for all that are made together
  Observation made;
  for (const auto& [name, value] : named)
  {
    const Reading& known = readingNamed(name.cast<std::string>());
    known.set(made, value, now, known.name);
  }
  return made;
}

/// The readings that are there, as keyword arguments.
py::dict readingsIn(const Observation& self)
{
  py::dict there;
  for (const Reading& known : readings)
    if (const py::object value = known.get(self); !value.is_none())
      there[known.name] = value;
  return there;
}

std::string shown(const Observation& self)
{
  std::string text = "PersonObservation(";
  const char* separator = "";
  for (const auto& [name, value] : readingsIn(self))
  {
    text += separator + name.cast<std::string>() + "=" + representation(value);
    separator = ", ";
  }
  return text + ")";
}

}  // namespace

void bindObservation(py::module_& module)
{
  py::class_<Observation> record(
      module, "PersonObservation",
      "What one perception cycle knows of one person: independent readings, each optional and with its own time.\n\n"
      "A reading is None, or a Timestamped. It is set to None, to a value, which is stamped with the current time "
      "(SystemClock.now()), or to a Timestamped or a pair (time, value), which keeps its own. The library never "
      "modifies an observation and never assumes that a reading is there; one without any reading is valid.\n\n"
      "Raises TypeError for an unknown name or a value of another type, ValueError for a time without a time zone.");
  record.def(py::init([](const py::kwargs& named) { return make(named); }));
  for (const Reading& known : readings)
    record.def_property(
        known.name, [known](const Observation& self) { return known.get(self); },
        [known](Observation& self, const py::object& source) {
          known.set(self, source, ko::SystemClock::now(), known.name);
        },
        known.doc);
  record.def("__repr__", &shown)
      .def(
          "__eq__",
          [](const Observation& self, const Observation& other) { return readingsIn(self).equal(readingsIn(other)); },
          py::is_operator(), py::arg("other"))
      .def(py::pickle([](const Observation& self) { return readingsIn(self); }, &make));
}

}  // namespace binding
