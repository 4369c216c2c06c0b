#include "module.hpp"
#include "representation.hpp"
#include "timestamped.hpp"
#include "unlocked.hpp"
#include "valueconfidence.hpp"

#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/readings.hpp>
#include <skeigiot/shorttermmemory.hpp>

#include <boost/thread/lock_guard.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace binding
{

namespace
{

/// A ShortTermMemory of readings of any kind.
class AnyMemory
{
public:
  AnyMemory() = default;
  AnyMemory(const AnyMemory&) = delete;
  AnyMemory& operator=(const AnyMemory&) = delete;
  virtual ~AnyMemory() = default;

  virtual void record(const py::object& reading) = 0;
  virtual py::object youngest() = 0;
  virtual py::list records() const = 0;
  virtual void forgetOld() = 0;
  virtual bool isTooOld(const py::object& reading) const = 0;
  virtual boost::chrono::milliseconds horizon() const = 0;
  virtual std::unique_ptr<AnyMemory> copy() const = 0;
};

template <typename T>
class MemoryOf : public AnyMemory
{
public:
  explicit MemoryOf(boost::chrono::milliseconds horizon) : _memory(horizon) {}

  void record(const py::object& reading) override
  {
    const KV::Timestamped<T> typed = _typed(reading);
    unlocked([&] { _memory.record(typed); });
  }

  py::object youngest() override
  {
    // The library's youngest() returns a reference, which another thread may end: so the copy is made under the lock.
    return objectOf(unlocked([&] {
      const boost::lock_guard<boost::mutex> lock(_memory.mutex());
      _memory._forgetOld();
      if (_memory.records().empty())
        throw std::range_error("The ShortTermMemory is empty.");
      return KV::Timestamped<T>(*_memory.records().begin());
    }));
  }

  py::list records() const override
  {
    const auto copies = unlocked([&] { return _copies(); });
    py::list list;
    for (const auto& copy : copies)
      list.append(objectOf(copy));
    return list;
  }

  void forgetOld() override
  {
    unlocked([&] {
      const boost::lock_guard<boost::mutex> lock(_memory.mutex());
      _memory._forgetOld();
    });
  }

  bool isTooOld(const py::object& reading) const override { return _memory._isTooOld(_typed(reading)); }

  boost::chrono::milliseconds horizon() const override { return _memory.horizon(); }

  std::unique_ptr<AnyMemory> copy() const override
  {
    auto made = std::make_unique<MemoryOf>(_memory.horizon());
    unlocked([&] {
      for (const KV::Timestamped<T>& record : _copies())
        made->_memory.record(record);
    });
    return made;
  }

private:
  std::vector<KV::Timestamped<T>> _copies() const
  {
    const boost::lock_guard<boost::mutex> lock(_memory.mutex());
    return {_memory.records().begin(), _memory.records().end()};
  }

  static KV::Timestamped<T> _typed(const py::object& reading)
  {
    return readingFrom<T>(reading, ko::SystemClock::now(), "a reading of this memory");
  }

  KV::ShortTermMemory<T> _memory;
};

template <typename T>
std::unique_ptr<AnyMemory> memoryOf(boost::chrono::milliseconds horizon)
{
  return std::make_unique<MemoryOf<T>>(horizon);
}

/// The Python name of a kind of readings, and the function that makes its memory.
struct Kind
{
  py::object type;
  std::unique_ptr<AnyMemory> (*make)(boost::chrono::milliseconds);
};

std::vector<Kind> kinds()
{
  const py::object valueConfidence = py::type::of<AnyValueConfidence>();
  const py::object boolean = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&PyBool_Type));
  const py::object integer = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&PyLong_Type));
  const py::object number = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&PyFloat_Type));
  return {{py::type::of<KV::HeadPosture>(), &memoryOf<KV::HeadPosture>},
          {number, &memoryOf<float>},
          {boolean, &memoryOf<bool>},
          {py::type::of<KV::Smile>(), &memoryOf<KV::Smile>},
          {py::type::of<KV::Gaze>(), &memoryOf<KV::Gaze>},
          {py::type::of<KV::Expressions>(), &memoryOf<KV::Expressions>},
          {valueConfidence[boolean], &memoryOf<KV::ValueConfidence<bool>>},
          {valueConfidence[integer], &memoryOf<KV::ValueConfidence<unsigned int>>},
          {py::type::of<KV::FacialPoints>(), &memoryOf<KV::FacialPoints>},
          {integer, &memoryOf<std::int32_t>},
          {py::type::of<KV::ContextEmotion>(), &memoryOf<KV::ContextEmotion>},
          {py::type::of<KV::RobotHeadPosture>(), &memoryOf<KV::RobotHeadPosture>}};
}

boost::chrono::milliseconds wholeMilliseconds(const py::object& duration)
{
  const boost::chrono::nanoseconds exact = durationFrom(duration);
  const auto whole = boost::chrono::duration_cast<boost::chrono::milliseconds>(exact);
  if (whole != exact)
    throw py::value_error("a horizon is counted in whole milliseconds");
  return whole;
}

std::unique_ptr<AnyMemory> make(const py::object& kind, const py::object& horizon)
{
  for (const Kind& known : kinds())
    if (kind.equal(known.type))
      return known.make(wholeMilliseconds(horizon));
  throw py::type_error("there is no memory of " + representation(kind));
}

void bindShortTermMemory(py::module_& module)
{
  py::class_<AnyMemory> memory(
      module, "ShortTermMemory",
      "Keeps the readings of one kind that were seen during a sliding window of time, newest first.\n\n"
      "Readings older than the horizon are forgotten whenever the memory is written, or read through youngest(); never "
      "by themselves. There is no other limit on their number. No two records share a time. Safe from any thread.");
  memory
      .def(py::init(&make), py::arg("kind"), py::arg("horizon"),
           "Makes an empty memory.\n\n"
           "kind: what is remembered, one of HeadPosture, float, bool, Smile, Gaze, Expressions, "
           "ValueConfidence[bool], ValueConfidence[int], FacialPoints, int, ContextEmotion and RobotHeadPosture.\n"
           "horizon: a timedelta, or an int of nanoseconds, of whole milliseconds.\n\n"
           "Raises TypeError for another kind, ValueError for a horizon with less than a millisecond in it.")
      .def("record", &AnyMemory::record, py::arg("reading"),
           "Remembers a reading at its place in time, then forgets old records.\n\n"
           "The reading is a Timestamped, a pair (time, value), or a value of the current time. One with exactly the "
           "time of a remembered one is discarded: the first writer wins. One older than the horizon is forgotten at "
           "once.")
      .def("youngest", &AnyMemory::youngest,
           "Returns the remembered record with the greatest time, after old ones were forgotten.\n\n"
           "Raises LookupError \"The ShortTermMemory is empty.\" if no record is left.")
      .def("records", &AnyMemory::records, "Returns the records, newest first. Nothing is forgotten.")
      .def("_forgetOld", &AnyMemory::forgetOld,
           "Removes every record that _isTooOld() judges too old.\n\n"
           "An exception of the clock is written to standard output; the memory then holds what it held before.")
      .def("_isTooOld", &AnyMemory::isTooOld, py::arg("reading"),
           "Returns whether the age of the reading, in whole milliseconds (truncated), is strictly greater than the "
           "horizon. One from the future never is.")
      .def(
          "horizon", [](const AnyMemory& self) { return timedeltaOf(self.horizon()); },
          "Returns for how long a record is kept, as a timedelta.")
      .def(
          "__copy__", [](const AnyMemory& self) { return self.copy(); },
          "Returns a memory of its own with the same records; old ones are forgotten.")
      .def(
          "__deepcopy__", [](const AnyMemory& self, const py::dict&) { return self.copy(); }, py::arg("memo"));
  refuseCopies(memory, "a ShortTermMemory cannot be pickled, since it forgets by the clock; pickle its records()");
  allowTypeParameter(memory);
}

/// The readings of a memory, each in its Python form.
struct AnyRemembered
{
  std::size_t count = 0;
  py::object youngest = py::none();
};

AnyRemembered remembered(const KV::PersonMemory& memory, const std::string& reading)
{
  AnyRemembered result;
  bool isReading = false;
  KV::forEachReading([&](const auto& known) {
    if (reading != known.name)
      return;
    isReading = true;
    const auto found = unlocked([&] { return memory.remembered(known.field); });
    result.count = found.count;
    if (found.youngest)
      result.youngest = objectOf(*found.youngest);
  });
  if (!isReading)
    throw py::value_error("there is no reading " + std::string(py::repr(py::str(reading))));
  return result;
}

void bindRemembered(py::module_& module)
{
  py::class_<AnyRemembered> record(module, "Remembered",
                                   "What a memory holds of one reading: a copy, see PersonMemory.remembered(). "
                                   "Cannot be changed.");
  record
      .def(py::init([](std::size_t count, py::object youngest) {
             return AnyRemembered{count, std::move(youngest)};
           }),
           py::arg("count"), py::arg("youngest"))
      .def_readonly("count", &AnyRemembered::count, "how many records are remembered")
      .def_readonly("youngest", &AnyRemembered::youngest,
                    "the record with the greatest time, a Timestamped; None if there are no records");
  describeRecord(record, {"count", "youngest"});
}

}  // namespace

void bindMemory(py::module_& module)
{
  bindShortTermMemory(module);
  bindRemembered(module);
  py::class_<KV::PersonMemory> memory(module, "PersonMemory",
                                      "The short-term memories of one person, one for each kind of reading.\n\n"
                                      "A handle: the memories of a person and of its copies are the same.");
  memory.def(py::init<>(), "Makes empty memories of its own.")
      .def("__copy__", [](const KV::PersonMemory& self) { return KV::PersonMemory(self); })
      .def("add", &KV::PersonMemory::add, py::arg("observation"), Unlocked(),
           "Files each reading of the observation into its memory, under the reading's own time.\n\n"
           "headHeight and voiceEmotion are not remembered. A reading that is absent leaves its memory untouched.")
      .def("remembered", &remembered, py::arg("reading"),
           "Returns how many records of a reading are remembered, and the youngest of them: "
           "memory.remembered(\"age\").youngest.\n\n"
           "Records older than the horizon, 7 s or for a context emotion 20 s, do not count. Nothing is forgotten or "
           "changed. headHeight and voiceEmotion are never remembered, so their count is 0. May be called in a force "
           "callback, and beside an update on another thread.\n\n"
           "Raises ValueError if there is no reading of that name.");
  refuseCopies(memory,
               "a PersonMemory is a handle: copy.copy() gives another on the same memories, and there is no deep copy "
               "and no pickle of them");
}

}  // namespace binding
