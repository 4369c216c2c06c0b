#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/personstate.hpp>

#include <cstdint>
#include <iosfwd>
#include <utility>

namespace KV
{

/// One tracked person: an identifier, the estimated state, and the memories that it is estimated from.
///
/// State and memory are handles, so copies of a person share both records.
///
/// \par Thread safety
///   Not synchronised: update one person, through whichever copy, from one thread at a time. SocialGraph does.
class SKEIGIOT_API Person
{
public:
  /// Makes person 0 with a new state and new memories.
  Person();
  /// Makes person `id` with a new state and new memories.
  explicit Person(std::int32_t id);

  /// Takes one perception cycle in: files the observation into the memories, then estimates body language and state.
  ///
  /// The estimate is made for 5 to 15 updates a second. Weights are by update, and angles are compared with those of
  /// the previous update: at a camera's 30 Hz a head that turns away slowly never counts as turned. Call updateMemory()
  /// for what is observed in between, or leave both to KV::session::Pacer, which updates 10 times a second.
  ///
  /// A new voice emotion that is more than 3 s old acts in full. The library also logs a warning about it in the
  /// category "kvmood.emotionalstate". Inside a callback of a SocialGraph, log handlers then run under the graph's
  /// mutex.
  ///
  /// Equivalent to updateMemory() followed by _updateOnlineModels(). An exception of a step, such as std::bad_alloc or
  /// one of the clock, passes to the caller; what the steps before it did stays done: readings that were filed stay
  /// filed, and one whose time the state has seen does not act again when the observation is given a second time. No
  /// lock stays held, the estimates stay in their ranges, and the next update goes on from there.
  void update(const PersonObservation& observation);

  /// Files the observation into the memories, and estimates nothing.
  void updateMemory(const PersonObservation& observation);

  /// Estimates body language and state, without filing the observation.
  void _updateOnlineModels(const PersonObservation& observation);

  /// Ages the state by one cycle in which the person was not seen, see PersonState::decreaseSinceNotSeen().
  void decreaseSinceNotSeen();

  /// Changes the identifier and nothing else; a social graph goes on finding the person under its former one.
  void setUserSessionID(std::int32_t id);

  void setFrequencyGaze(float hz);  ///< see PersonState::setFrequencyGaze()
  void setFrequencyFace(float hz);  ///< see PersonState::setFrequencyFace()

  /// Returns the pleasure state and the attention zone.
  std::pair<PleasureState, ko::human::AttentionState> personDescriptor() const;

  std::int32_t personID = 0;  ///< identifier of the person in the robot's user session
  PersonState personState;    ///< the estimate; a handle
  PersonMemory personMemory;  ///< the recent readings of the person; a handle
};

/// Writes "Person (US#<id>) ", without a line end.
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const Person& person);

}  // namespace KV
