#include "module.hpp"
#include "unlocked.hpp"

#include <skeigiot/socialgraph.hpp>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <type_traits>

namespace py = pybind11;

namespace binding
{

namespace
{

/// Puts a callback's changed copy of a person back into the graph, also if the callback raises.
class WriteBack
{
public:
  WriteBack(KV::Person& stored, const py::object& seen) : _stored(stored), _seen(seen.cast<const KV::Person&>()) {}
  WriteBack(const WriteBack&) = delete;
  WriteBack& operator=(const WriteBack&) = delete;
  ~WriteBack() { _stored = _seen; }

private:
  KV::Person& _stored;
  const KV::Person& _seen;
};

/// Remembers on which thread a callback runs.
class Running
{
public:
  explicit Running(std::atomic<std::thread::id>& thread) : _thread(thread)
  {
    _thread.store(std::this_thread::get_id());
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { _thread.store(std::thread::id()); }

private:
  std::atomic<std::thread::id>& _thread;
};

/// A graph whose callbacks are Python's; it refuses calls that would never return: those from inside a callback.
///
/// A callback holds the interpreter lock for its own run only. It gets a copy of the person, a handle on the same
/// records: Python may keep the copy for longer than the graph keeps its own.
class Graph
{
public:
  void add(int id)
  {
    _run([&] { _graph.add(id); });
  }

  void remove(int id)
  {
    _run([&] { _graph.remove(id); });
  }

  py::list persons() const
  {
    py::list list;
    for (const KV::Person& person : _run([&] { return _graph.persons(); }))
      list.append(py::cast(person));
    return list;
  }

  py::object find(int id) const
  {
    const boost::optional<KV::Person> found = _run([&] { return _graph.find(id); });
    return found ? py::cast(*found) : py::none();
  }

  void updateOrCreate(int id, const py::function& f)
  {
    _run([&] { _graph.updateOrCreate(id, [&](KV::Person& person) { _change(person, f); }); });
  }

  void update(int id, const py::function& f)
  {
    _run([&] { _graph.update(id, [&](KV::Person& person) { _change(person, f); }); });
  }

  void read(int id, const py::function& f) const
  {
    _run([&] { _graph.read(id, [&](const KV::Person& person) { _show(person, f); }); });
  }

private:
  template <typename Operation>
  std::invoke_result_t<Operation> _run(Operation operation) const
  {
    if (_callbackThread.load() == std::this_thread::get_id())
      throw std::runtime_error("a callback of a SocialGraph cannot use that graph: it would wait for itself");
    return unlocked(operation);
  }

  void _change(KV::Person& person, const py::function& f) const
  {
    const Running running(_callbackThread);
    locked([&] {
      const py::object seen = py::cast(person);
      const WriteBack writeBack(person, seen);
      callPython(f, py::make_tuple(seen));
    });
  }

  void _show(const KV::Person& person, const py::function& f) const
  {
    const Running running(_callbackThread);
    locked([&] { callPython(f, py::make_tuple(person)); });
  }

  KV::SocialGraph _graph;
  mutable std::atomic<std::thread::id> _callbackThread{};
};

}  // namespace

void bindGraph(py::module_& module)
{
  py::class_<Graph>(
      module, "SocialGraph",
      "The persons whom the robot currently knows, by identifier.\n\n"
      "Safe from any thread: every operation holds the graph's one mutex for its whole run, callbacks "
      "included. A callback that uses the same graph would wait for itself, so that raises "
      "RuntimeError; nor may it wait for another thread that does. What a callback raises passes to the "
      "caller, and the graph stays usable. Do not fork while another thread uses a graph: in the child it "
      "may stay locked for ever. Persons returned by persons() and find(), and those that a "
      "callback keeps, share their records with the stored ones and are not protected by the graph.")
      .def(py::init<>(), "Makes an empty graph.")
      .def("add", &Graph::add, py::arg("id"), "Adds a person; one who is already there stays as they are.")
      .def("remove", &Graph::remove, py::arg("id"),
           "Removes a person, if there; their records live on with the last copy.")
      .def("persons", &Graph::persons,
           "Returns a copy of every person, in ascending order of the identifiers they were added under.")
      .def("find", &Graph::find, py::arg("id"), "Returns a copy of a person, or None.")
      .def("updateOrCreate", &Graph::updateOrCreate, py::arg("id"), py::arg("f"),
           "Calls f on a person, who is added first if absent.\n\n"
           "What f raises passes to the caller; a person just added stays.")
      .def("update", &Graph::update, py::arg("id"), py::arg("f"), "Calls f on a person, if there.")
      .def("read", &Graph::read, py::arg("id"), py::arg("f"),
           "Calls f on a person, if there, for reading only.\n\n"
           "What f assigns to the fields of the person does not reach the graph.");
}

}  // namespace binding
