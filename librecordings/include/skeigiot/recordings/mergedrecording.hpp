#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <ko/systemclock.hpp>

#include <boost/chrono/duration.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KV::recordings
{

/// One of the files of a session.
struct SKEIGIOT_API RecordingInput
{
  std::string path;                     ///< of the file, for messages
  std::unique_ptr<Reader> reader;       ///< what reads it; never null
  ko::SystemClock::duration offset{0};  ///< added to all its times
};

/// Reads several recordings of one session as one: their steps in the order of their times, those of one time in the
/// order of the inputs.
///
/// Each update lets every remembered reading act again. So that a program which updates with each step does not update
/// once for each input, a reading of another input waits for the next step of the first about the same person,
/// for longestWait at most, and becomes part of it; every reading keeps its own time. Readings of two inputs that are
/// of one kind, or for which no such step comes, make steps of their own. Two inputs with the same reading of a
/// person at the same time do not belong to one session: they are recordings of two persons.
///
/// Persons of two inputs are the same if they have the same name, or the same number where an input has no names.
///
/// Holds no more than the steps of longestWait.
class SKEIGIOT_API MergedRecording : public Reader
{
public:
  /// How long a step of another input waits for the next step of the first one about the same person.
  static constexpr ko::SystemClock::duration longestWait = boost::chrono::milliseconds(200);

  /// The first steps of two inputs may not be further apart: one that counts from its start and one that counts since
  /// 1970 do not fit together.
  static constexpr ko::SystemClock::duration greatestDistance = boost::chrono::hours(24);

  /// Takes two inputs or more.
  explicit MergedRecording(std::vector<RecordingInput> inputs);

  /// \throws Error as well if the inputs begin at times that do not fit together, an offset moves one to before 1970,
  ///   or two of them have the same reading of a person at the same time.
  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;
  std::vector<std::string> describeLearned() const override;
  std::vector<std::string> takeWarnings() override;
  /// Returns whether all inputs have dates, or offsets of more than greatestDistance, which move them to a date.
  bool isDated() const override;
  double progress() const override;

private:
  using TimePoint = ko::SystemClock::time_point;

  /// A step of an input, or what is wrong in its place.
  struct Item
  {
    TimePoint time;
    std::size_t input = 0;
    Step entry;
    std::exception_ptr error;

    bool isOf(const boost::optional<std::int32_t>& person) const { return !error && entry.person == person; }
  };

  struct Input
  {
    RecordingInput from;
    std::optional<Item> ahead;
    TimePoint last = TimePoint::min();
    bool ended = false;
    std::set<std::int32_t> persons;
  };

  void _fetch(std::size_t number);
  void _unifyPerson(Step& entry);
  void _fetchFirst();
  bool _readOne();
  void _readUntil(TimePoint time);
  void _refuseSameReading(const Item& item);
  void _refuseSameReading(const Item& one, const Item& other) const;
  void _takeInSimultaneous(Step& entry);
  bool _isTakenInLater(const Item& item);
  void _warnOfLonelyPersons();

  std::vector<Input> _inputs;
  bool _begun = false;
  std::deque<Item> _read;                        // what is read, and not returned yet
  TimePoint _reached = TimePoint::min();         // of what was read last
  std::map<std::string, std::int32_t> _numbers;  // of persons with a name
  std::map<std::int32_t, std::string> _names;    // of all persons; empty: none
  std::vector<std::string> _warnings;
};

}  // namespace KV::recordings
