#include "module.hpp"
#include "representation.hpp"
#include "timestamped.hpp"
#include "valueconfidence.hpp"

#include <skeigiot/readings.hpp>

#include <boost/none.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <tuple>
#include <utility>

namespace py = pybind11;

namespace binding
{

namespace
{

/// One reading of an observation, with the functions that get and set it in Python.
struct Reading
{
  const char* name;
  std::string doc;
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

template <std::size_t Number>
Reading makeReading()
{
  static constexpr auto known = std::get<Number>(KV::readings);
  const std::string unit = known.scale.unit;
  return {known.name, (unit.empty() ? "" : "[" + unit + "] ") + known.about,
          [](const KV::PersonObservation& self) { return readingOrNone(known.in(self)); },
          [](KV::PersonObservation& self, py::handle source, ko::SystemClock::time_point now, const char* name) {
            assign(known.in(self), source, now, name);
          }};
}

template <std::size_t... Numbers>
std::array<Reading, KV::readingCount> makeReadings(std::index_sequence<Numbers...>)
{
  return {makeReading<Numbers>()...};
}

const std::array<Reading, KV::readingCount>& readings()
{
  static const auto all = makeReadings(std::make_index_sequence<KV::readingCount>());
  return all;
}

using Observation = KV::PersonObservation;

const Reading& readingNamed(const std::string& name)
{
  for (const Reading& known : readings())
    if (name == known.name)
      return known;
  py::list names;
  for (const Reading& known : readings())
    names.append(known.name);
  const py::list near = py::module_::import("difflib").attr("get_close_matches")(name, names, 1);
  throw py::type_error("PersonObservation() got an unexpected keyword argument '" + name + "'" +
                       (near.empty() ? "" : "; do you mean '" + near[0].cast<std::string>() + "'?"));
}

Observation make(const py::dict& named)
{
  const ko::SystemClock::time_point now = ko::SystemClock::now();  // one time for all readings that are made together
  Observation made;
  for (const auto& [name, value] : named)
  {
    const Reading& known = readingNamed(name.cast<std::string>());
    known.set(made, value, now, known.name);
  }
  return made;
}

/// The readings that exist, as keyword arguments.
py::dict readingsIn(const Observation& self)
{
  py::dict there;
  for (const Reading& known : readings())
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
  for (const Reading& known : readings())
    record.def_property(
        known.name, [known](const Observation& self) { return known.get(self); },
        [known](Observation& self, const py::object& source) {
          known.set(self, source, ko::SystemClock::now(), known.name);
        },
        known.doc.c_str());
  record.def("__repr__", &shown)
      .def(
          "__eq__",
          [](const Observation& self, const Observation& other) { return readingsIn(self).equal(readingsIn(other)); },
          py::is_operator(), py::arg("other"))
      .def(py::pickle([](const Observation& self) { return readingsIn(self); }, &make));
}

}  // namespace binding
