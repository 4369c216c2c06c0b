#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"
#include "threadscopes.hpp"
#include "times.hpp"
#include "unlocked.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/session/forcenames.hpp>

#include <string>

namespace py = pybind11;

namespace binding
{

namespace
{

using Scopes = ThreadScopes<KV::ScopedForceObserver>;

/// A force whose source outlives the callback.
struct Force
{
  KV::Quantity quantity;
  float target;
  float weight;
  float before;
  float after;
  std::string source;
  ko::SystemClock::time_point time;
};

/// Calls `callback` with the interpreter lock held for its run.
template <typename Event>
void call(const py::object& callback, const Event& event)
{
  locked([&] { callPython(callback, py::make_tuple(event)); });
}

/// The callbacks of an observer; the library's own scope lives only between enter and exit.
struct Observer
{
  py::object onForce;
  py::object onZoneChange;

  KV::ScopedForceObserver::OnForce forceCallback() const
  {
    if (onForce.is_none())
      return {};
    return [this](const KV::Force& force) {
      call(onForce, Force{force.quantity, force.target, force.weight, force.before, force.after,
                          std::string(force.source), force.time});
    };
  }

  KV::ScopedForceObserver::OnZoneChange zoneCallback() const
  {
    if (onZoneChange.is_none())
      return {};
    return [this](const KV::ZoneChange& change) { call(onZoneChange, change); };
  }
};

void refuseWhatIsNoCallback(const py::object& callback)
{
  if (!callback.is_none() && !PyCallable_Check(callback.ptr()))
    throw py::type_error("a callback is a callable or None, not " + representation(callback));
}

Observer makeObserver(const py::object& onForce, const py::object& onZoneChange)
{
  refuseWhatIsNoCallback(onForce);
  refuseWhatIsNoCallback(onZoneChange);
  return {onForce, onZoneChange};
}

void bindForce(py::module_& module)
{
  py::class_<Force> force(module, "Force",
                          "One pull at one quantity of one person: it went from before to after, which is "
                          "before + weight * (target - before) in single precision, held in the range of the "
                          "quantity.");
  force
      .def(py::init([](KV::Quantity quantity, float target, float weight, float before, float after, std::string source,
                       ko::SystemClock::time_point time) {
             return Force{quantity, target, weight, before, after, std::move(source), time};
           }),
           py::arg("quantity") = KV::ValenceQuantity, py::arg("target") = 0.f, py::arg("weight") = 0.f,
           py::arg("before") = 0.f, py::arg("after") = 0.f, py::arg("source") = "",
           py::arg("time") = ko::SystemClock::time_point())
      .def_readwrite("quantity", &Force::quantity)
      .def_readwrite("target", &Force::target, "where the source pulled to; may lie outside the range of the quantity")
      .def_readwrite("weight", &Force::weight, "share of the way to the target")
      .def_readwrite("before", &Force::before)
      .def_readwrite("after", &Force::after)
      .def_readwrite("source", &Force::source, "what pulled, such as \"Touch emotion\" or \"Not visible\"")
      .def_property_readonly(
          "source_name", [](const Force& self) { return KV::session::sourceName(self.source); },
          "the source in plain words, such as \"Touch\" or \"Not being visible\"")
      .def_readwrite("time", &Force::time, "nanoseconds since the Unix epoch")
      .def_property_readonly(
          "datetime", [](const Force& self) { return datetimeOf(self.time); }, "the time as an aware datetime in UTC");
  describeRecord(force, {"quantity", "target", "weight", "before", "after", "source", "time"});
}

void bindZoneChange(py::module_& module)
{
  using KV::ZoneChange;
  using Zone = ko::human::AttentionState;
  py::class_<ZoneChange> change(module, "ZoneChange",
                                "A change of the attention zone. The zone before is from_: \"from\" is a word of "
                                "Python.");
  change
      .def(py::init([](Zone from, Zone to, KV::ZoneEvidence evidence, ko::SystemClock::time_point time) {
             return ZoneChange{from, to, evidence, time};
           }),
           py::arg("from_") = Zone::Unknown, py::arg("to") = Zone::Unknown,
           py::arg("evidence") = KV::NoAttentionEvidence, py::arg("time") = ko::SystemClock::time_point())
      .def_readwrite("from_", &ZoneChange::from)
      .def_readwrite("to", &ZoneChange::to)
      .def_readwrite("evidence", &ZoneChange::evidence, "what decided")
      .def_readwrite("time", &ZoneChange::time, "nanoseconds since the Unix epoch")
      .def_property_readonly(
          "datetime", [](const ZoneChange& self) { return datetimeOf(self.time); },
          "the time as an aware datetime in UTC");
  describeRecord(change, {"from_", "to", "evidence", "time"});
}

void bindObserver(py::module_& module)
{
  py::class_<Observer>(
      module, "ScopedForceObserver",
      "In a with statement, every force that an estimate is moved by on this thread is shown to a callback, in order: "
      "so an estimate can be explained, or rebuilt to the last bit from the one before.\n\n"
      "Scopes nest: the innermost one counts, and its end brings the one around it back. Leaving one on another "
      "thread, or before those inside it, raises RuntimeError.\n\n"
      "A callback runs after the force has acted. It may read the person's state, and read and write the person's "
      "memories; it must not update the person. An exception of the callback reaches the caller of the "
      "update; earlier forces of that update stay applied.")
      .def(py::init(&makeObserver), py::arg("onForce"), py::arg("onZoneChange") = py::none(),
           "Either callback may be None. Raises TypeError if one is neither None nor callable.")
      .def("__enter__",
           [](const py::object& self) {
             const auto& observer = self.cast<const Observer&>();
             Scopes::enter(self, observer.forceCallback(), observer.zoneCallback());
             return self;
           })
      .def("__exit__", [](const py::object& self, const py::args&) { Scopes::leave(self); });
}

}  // namespace

void bindForces(py::module_& module)
{
  bindForce(module);
  bindZoneChange(module);
  bindObserver(module);
}

}  // namespace binding
