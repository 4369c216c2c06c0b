#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KV::ros2
{

/// Decides which topics to read where nobody says which are there: those of the ids that lists of ids have.
///
/// The topics of an id are read until no list had it for a while: an id that flickers does not cost a subscription each
/// time. Of too many topics, those of ids that came later are left out.
///
/// Not synchronised.
class ListedTopics
{
public:
  static constexpr std::int64_t patience = 10'000'000'000;  ///< [ns] for which an id may be in no list

  /// Topics that are to be read from now on, and no more.
  struct Changes
  {
    std::vector<std::string> begun;
    std::vector<std::string> ended;
  };

  /// \param patterns  the topics, with "*" for the id, if they have one
  /// \param lists     the topics of lists of ids, each beside the topics of its ids, such as "/humans/faces/tracked"
  /// \param isRead    whether the topic with an id is read; ids may hold any characters
  ListedTopics(const std::vector<std::string>& patterns, const std::vector<std::string>& lists,
               std::function<bool(const std::string& topic)> isRead, std::size_t mostTopics);

  /// Returns the topics without an id that are read, other than the lists.
  const std::vector<std::string>& fixed() const { return _fixed; }

  /// Returns the topics of the lists.
  std::vector<std::string> lists() const;

  /// Takes the ids of a list, which replace those that it had.
  void take(const std::string& list, const std::vector<std::string>& ids);

  /// Returns the changes since the last call. `now` is a time [ns].
  Changes follow(std::int64_t now);

  /// Returns all topics that are read now: those without an id, the lists, and those of ids.
  std::vector<std::string> all() const;

  /// Returns whether topics were left out since there are too many.
  bool areTooMany() const { return _areTooMany; }

private:
  struct Group
  {
    std::vector<std::string> suffixes;                   // of its topics, behind the id
    std::map<std::string, std::set<std::string>> lists;  // ids, by the topic of the list
    std::map<std::string, std::int64_t> listed;          // when each id whose topics are read was listed last
  };

  std::vector<std::string> _topicsOf(const std::string& prefix, const Group& group, const std::string& id) const;

  std::function<bool(const std::string& topic)> _isRead;
  std::size_t _mostTopics;
  std::vector<std::string> _fixed;
  std::map<std::string, Group> _groups;  // by the beginning of their topics, such as "/humans/faces/"
  std::size_t _count = 0;                // of topics with an id that are read
  bool _areTooMany = false;
};

}  // namespace KV::ros2
