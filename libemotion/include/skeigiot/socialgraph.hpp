#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/person.hpp>

#include <boost/container/flat_map.hpp>
#include <boost/function.hpp>
#include <boost/optional/optional.hpp>
#include <boost/thread/mutex.hpp>

#include <vector>

namespace KV
{

/// The persons whom the robot currently knows, by identifier.
///
/// \par Thread safety
///   Every operation holds the graph's one mutex for its whole run, callbacks included. The mutex is not recursive: a
///   callback that calls back into the same graph blocks for ever. So does a log handler that calls the graph, if the
///   warning is logged inside a callback, as Person::update() does: see ko::log::addHandler(). Persons returned by
///   persons() and find() share their records with the stored ones and are not protected by the graph.
/// \par Failures
///   An operation that throws, since memory has run out or a callback threw, leaves the graph unlocked; the persons in
///   it are the same as before, except for one whom updateOrCreate() added before the callback.
class SKEIGIOT_API SocialGraph
{
public:
  /// Makes an empty graph.
  SocialGraph() = default;
  SocialGraph(const SocialGraph&) = delete;
  SocialGraph& operator=(const SocialGraph&) = delete;

  /// Adds person `id`; one who is already there stays as they are.
  ///
  /// Deliberate: the new person is built before the look-up and dropped if not needed.
  ///
  /// \par Complexity
  ///   Linear in the number of persons with a greater identifier.
  void add(int id);

  /// Removes person `id`, if there; their records live on with the last copy.
  ///
  /// \par Complexity
  ///   Linear in the number of persons with a greater identifier.
  void remove(int id);

  /// Returns a copy of every person, in ascending order of the identifiers they were added under.
  std::vector<Person> persons() const;

  /// Returns a copy of person `id`, or nothing.
  ///
  /// \par Complexity
  ///   Logarithmic in the number of persons.
  boost::optional<Person> find(int id) const;

  /// Calls `f` on person `id`, who is added first if absent; an empty `f` is not called.
  ///
  /// An exception of `f` passes to the caller; a person just added stays.
  void updateOrCreate(int id, boost::function<void(Person&)> f);

  /// Calls `f` on person `id`, if there.
  ///
  /// \throws boost::bad_function_call "call to empty boost::function" if the person is there and `f` is empty.
  /// \par Complexity
  ///   Logarithmic in the number of persons.
  void update(int id, boost::function<void(Person&)> f);

  /// Calls `f` on person `id`, if there, for reading only.
  ///
  /// \throws boost::bad_function_call "call to empty boost::function" if the person is there and `f` is empty.
  /// \par Complexity
  ///   Logarithmic in the number of persons.
  void read(int id, boost::function<void(const Person&)> f) const;

private:
  // Guarded by _mutex
  boost::container::flat_map<int, Person> _persons;

  mutable boost::mutex _mutex;
};

}  // namespace KV
