#include "rosbridge/listedtopics.hpp"

#include <algorithm>
#include <utility>

namespace KV::ros2
{

ListedTopics::ListedTopics(const std::vector<std::string>& patterns, const std::vector<std::string>& lists,
                           std::function<bool(const std::string& topic)> isRead, std::size_t mostTopics)
  : _isRead(std::move(isRead)), _mostTopics(mostTopics)
{
  for (const std::string& list : lists)
    _groups[list.substr(0, list.rfind('/') + 1)].lists[list];
  for (const std::string& pattern : patterns)
    if (const std::size_t star = pattern.find('*'); star != std::string::npos)
      _groups[pattern.substr(0, star)].suffixes.push_back(pattern.substr(star + 1));
    else if (std::find(lists.begin(), lists.end(), pattern) == lists.end())
      _fixed.push_back(pattern);
}

std::vector<std::string> ListedTopics::lists() const
{
  std::vector<std::string> topics;
  for (const auto& [prefix, group] : _groups)
    for (const auto& [topic, ids] : group.lists)
      topics.push_back(topic);
  return topics;
}

void ListedTopics::take(const std::string& list, const std::vector<std::string>& ids)
{
  for (auto& [prefix, group] : _groups)
    if (const auto known = group.lists.find(list); known != group.lists.end())
    {
      known->second.clear();
      for (const std::string& id : ids)
        if (known->second.size() < _mostTopics)
          known->second.insert(id);
        else
          _areTooMany = true;
    }
}

ListedTopics::Changes ListedTopics::follow(std::int64_t now)
{
  Changes changes;
  for (auto& [prefix, group] : _groups)
  {
    for (const auto& [topic, ids] : group.lists)
      for (const std::string& id : ids)
        if (const auto known = group.listed.find(id); known != group.listed.end())
          known->second = now;
    for (auto known = group.listed.begin(); known != group.listed.end();)
    {
      if (now - known->second < patience)
      {
        ++known;
        continue;
      }
      for (std::string& topic : _topicsOf(prefix, group, known->first))
        changes.ended.push_back(std::move(topic));
      known = group.listed.erase(known);
    }
  }
  _count -= changes.ended.size();
  for (auto& [prefix, group] : _groups)
    for (const auto& [list, ids] : group.lists)
      for (const std::string& id : ids)
      {
        if (group.listed.count(id) > 0)
          continue;
        const std::vector<std::string> topics = _topicsOf(prefix, group, id);
        if (topics.empty())
          continue;
        if (_count + topics.size() > _mostTopics)
        {
          _areTooMany = true;
          continue;
        }
        _count += topics.size();
        group.listed.emplace(id, now);
        changes.begun.insert(changes.begun.end(), topics.begin(), topics.end());
      }
  return changes;
}

std::vector<std::string> ListedTopics::all() const
{
  std::vector<std::string> topics = _fixed;
  for (const std::string& list : lists())
    topics.push_back(list);
  for (const auto& [prefix, group] : _groups)
    for (const auto& [id, listed] : group.listed)
      for (std::string& topic : _topicsOf(prefix, group, id))
        topics.push_back(std::move(topic));
  return topics;
}

std::vector<std::string> ListedTopics::_topicsOf(const std::string& prefix, const Group& group,
                                                 const std::string& id) const
{
  std::vector<std::string> topics;
  for (const std::string& suffix : group.suffixes)
  {
    std::string topic = prefix;
    topic.append(id).append(suffix);
    if (_isRead(topic))
      topics.push_back(std::move(topic));
  }
  return topics;
}

}  // namespace KV::ros2
