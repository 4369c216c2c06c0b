#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/session/cycle.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <map>
#include <set>
#include <utility>

namespace KV::session
{

/// Updates persons once a cycle, however often they are observed.
///
/// Give it each observation of each person, instead of calling Person::update(). It remembers every reading at its own
/// time (Person::updateMemory()), and updates the person when the cycle is over. The estimate reads gaze, head posture,
/// facial points, speaking, words, touch, context and the robot's head from the memories: each of these readings
/// counts. It reads smile, expressions, voice, distance and head height from the observation of the update: of these
/// the newest of a cycle counts.
///
/// - The first observation of a person updates at once. So does the first one after a pause of a cycle or more.
/// - The updates of a person lie on a grid. So observations at 12 or 25 Hz give 10 updates a second, not 6 or 8.
///   An observation counts as on time up to a twentieth of a cycle before its time: time stamps are often rounded.
/// - Each person has a grid of their own.
/// - A person who is seen at any time of a cycle is seen in this cycle.
/// - If the clock was set back, the next observation updates.
///
/// Person::personID identifies a person. Time comes from ko::SystemClock, so ko::ManualClock works as elsewhere.
///
/// \code
///   KV::session::Pacer pacer;  // 10 updates a second
///   graph.updateOrCreate(id, [&](KV::Person& person) {
///     if (pacer.take(person, observation))
///       show(person.personState);
///   });
/// \endcode
///
/// \par Memory
///   Some hundred bytes for each person, until forget().
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API Pacer
{
public:
  /// A person who waits for an update, and the latest time of the update.
  struct SKEIGIOT_API Waiting
  {
    ko::SystemClock::time_point latest;  ///< a cycle after the update was due
    std::int32_t person = 0;             ///< Person::personID
  };

  /// \throws std::invalid_argument "a cycle has a rate above 0, up to 1000 Hz" for another one.
  explicit Pacer(Cycle cycle = Cycle());

  /// Takes what was observed of a person; returns whether that updated the person.
  ///
  /// Otherwise the readings are remembered, and the next update takes them in. With Cycle::recorded() this is
  /// `person.update(observation)` and nothing else. Otherwise it reads ko::SystemClock once more than that.
  ///
  /// An exception of the update passes to the caller; what waited for the update then waits for the next one.
  ///
  /// \par Complexity
  ///   That of Person::update() or Person::updateMemory(), and logarithmic in the number of persons.
  bool take(KV::Person& person, const KV::PersonObservation& observation);

  /// Takes that a person is there and was not observed just now; returns whether that updated or aged the person.
  ///
  /// When the cycle is over, a person who was observed in it is updated, and one who was not is aged by
  /// Person::decreaseSinceNotSeen(). With Cycle::recorded() this is `person.decreaseSinceNotSeen()` and nothing else.
  bool takeNotSeen(KV::Person& person);

  /// Updates a person now with the observations that wait; returns whether there were any.
  ///
  /// Call it when no more observations come. It leaves the grid of the person as it is.
  bool finish(KV::Person& person);

  /// Returns whether observations of this person wait for an update.
  bool isWaiting(std::int32_t person) const;

  /// Returns who has waited longest, if anybody waits.
  ///
  /// If no observation comes in the cycle after an update was due, it may never come: finish() the person at
  /// Waiting::latest, when the readings are still new.
  boost::optional<Waiting> firstWaiting() const;

  /// Lets the next observation of a person update at once, as after a pause; what waits goes on waiting until then.
  ///
  /// For a clock that does not move: cycles would never end.
  void restart(std::int32_t person);

  /// Forgets a person: drops what waits, and the next observation under this number updates at once.
  void forget(std::int32_t person);

private:
  using TimePoint = ko::SystemClock::time_point;

  /// The grid of one person, and what waits.
  struct Pace
  {
    bool begun = false;
    TimePoint last;  // update
    TimePoint next;  // update is due; never before `last`
    boost::optional<KV::PersonObservation> waiting;
  };

  bool _isDue(const Pace& pace, TimePoint now) const;
  void _step(Pace& pace, TimePoint now) const;
  void _update(KV::Person& person, Pace& pace);

  ko::SystemClock::duration _period{0};  // 0: each observation updates
  std::map<std::int32_t, Pace> _paces;
  std::set<std::pair<TimePoint, std::int32_t>> _waiting;  // by Waiting::latest
};

/// Takes each reading over into `target` that `target` lacks, or that is not older than the one in `target`.
SKEIGIOT_API void takeNewest(KV::PersonObservation& target, const KV::PersonObservation& other);

}  // namespace KV::session
