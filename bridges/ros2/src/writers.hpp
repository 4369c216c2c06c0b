#pragma once

#include <skeigiot/ros2/bus.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KV::ros2
{

/// A writer of others, as discovery describes it.
struct FoundWriter
{
  std::string id;  ///< unique, any bytes
  std::string topic;
  std::string type;  ///< name in ROS
  std::string hash;  ///< type hash; empty: the writer has none
  bool isReliable = false;
  bool isTransientLocal = false;
};

/// The quality of service with which a topic is read.
struct ReadingQuality
{
  bool isReliable = false;
  bool isTransientLocal = false;

  bool operator==(const ReadingQuality& other) const
  {
    return isReliable == other.isReliable && isTransientLocal == other.isTransientLocal;
  }
};

/// Knows the writers of the topics that are read, and decides which of them fit.
///
/// A participant may announce any number of writers. Of too many, those that came later are left out: nothing is kept
/// of them, no topic is read because of them, and their messages are refused. A note says so, once.
///
/// Not synchronised.
class Writers
{
public:
  Writers(Bus::TypeOf typeOf, std::size_t mostWriters) : _typeOf(std::move(typeOf)), _mostWriters(mostWriters) {}

  /// Returns the type that the topic must have; empty if it is not read.
  std::string typeOf(const std::string& topic) const { return _typeOf(topic); }

  /// A writer came, or changed. Returns the topic if it is one that is read; empty if not.
  std::string add(const FoundWriter& writer);

  /// A writer went. Returns its topic; empty if that is not read.
  std::string remove(const std::string& id);

  /// Returns whether messages of this writer must not be taken.
  bool isRefused(const std::string& id) const
  {
    return _refused.count(id) > 0 || (_areSomeLeftOut && _writers.count(id) == 0);
  }

  /// Returns how to read a topic so that all writers that fit are heard; none if no writer fits.
  boost::optional<ReadingQuality> qualityOf(const std::string& topic) const;

  /// Takes a note for each topic of which a writer was refused for the first time, and one of too many writers.
  std::vector<std::string> takeNotes();

private:
  std::string _fault(const FoundWriter& writer, const std::string& type) const;

  Bus::TypeOf _typeOf;
  std::size_t _mostWriters;
  bool _areSomeLeftOut = false;
  std::map<std::string, FoundWriter> _writers;            // of topics that are read, by id
  std::map<std::string, std::set<std::string>> _fitting;  // ids, by topic
  std::set<std::string> _refused;                         // ids
  std::set<std::string> _noted;                           // topics
  std::vector<std::string> _notes;
};

}  // namespace KV::ros2
