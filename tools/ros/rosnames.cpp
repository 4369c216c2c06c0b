#include "ros/rosnames.hpp"

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/ros4hriinput.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace KV::tools
{

namespace
{

// The name of a topic has at most 247 characters in ROS. The rest of a name needs up to 159.
constexpr std::size_t longestName = 80;
constexpr std::string_view sign = ":=";
constexpr std::array<std::string_view, 7> topics = {"/tf",          "/tf_static", "/joint_states", "/clock",
                                                    "/diagnostics", "/skeigiot",  "/humans"};
constexpr std::array<std::string_view, 5> groups = {"/humans/faces", "/humans/persons", "/humans/voices",
                                                    "/humans/interactions", "/skeigiot"};

bool isDigit(char character)
{
  return character >= '0' && character <= '9';
}

/// Returns whether ROS allows the text between two slashes of a name.
bool isPart(std::string_view text)
{
  return !text.empty() && !isDigit(text.front()) &&
         std::all_of(text.begin(), text.end(), recordings::Ros4hriInput::mayBeInId);
}

/// Returns whether the name is absolute, and all of its parts are allowed.
bool isName(std::string_view name)
{
  if (name.empty() || name.front() != '/')
    return false;
  while (!name.empty())
  {
    name.remove_prefix(1);
    const std::string_view part = name.substr(0, name.find('/'));
    if (!isPart(part))
      return false;
    name.remove_prefix(part.size());
  }
  return true;
}

/// Returns whether the topic is this one, or below it.
bool isBelow(std::string_view topic, std::string_view above)
{
  return topic.substr(0, above.size()) == above && (topic.size() == above.size() || topic[above.size()] == '/');
}

/// Returns whether topics of the node are there with this name, or below it.
bool areTopics(std::string_view topic)
{
  const auto isAmong = [topic](std::string_view other) { return topic == other; };
  const auto isAbove = [topic](std::string_view group) { return isBelow(topic, group); };
  return isName(topic) &&
         (std::any_of(topics.begin(), topics.end(), isAmong) || std::any_of(groups.begin(), groups.end(), isAbove));
}

std::string absolute(const std::string& name)
{
  return name.empty() || name.front() == '/' ? name : "/" + name;
}

}  // namespace

void RosNames::addRule(const std::string& rule)
{
  const std::size_t middle = rule.find(sign);
  if (middle == std::string::npos || middle == 0 || middle + sign.size() == rule.size())
    throw std::invalid_argument("expected FROM:=TO, found " + recordings::quote(rule));
  const std::string from = rule.substr(0, middle);
  const std::string to = rule.substr(middle + sign.size());
  if (from == "__node" || from == "__name")
  {
    if (!isPart(to) || to.size() > longestName)
      throw std::invalid_argument("expected a name of the node with up to 80 letters, digits and '_', found " +
                                  recordings::quote(to));
    _node = to;
    return;
  }
  if (from == "__ns")
    throw std::invalid_argument(
        "the node has no namespace: give its topics other names, such as /humans:=" + absolute(to) + "/humans");

  const Rule added{absolute(from), absolute(to)};
  if (!areTopics(added.from))
    throw std::invalid_argument(
        "expected /tf, /tf_static, /joint_states, /clock, /diagnostics, /skeigiot, /humans, or a topic below one of "
        "the last two, found " +
        recordings::quote(from));
  if (!isName(added.to) || added.to.size() > longestName)
    throw std::invalid_argument(
        "expected a name with up to 80 letters, digits, '_' and '/', such as /robot1/humans, "
        "found " +
        recordings::quote(to));
  for (const Rule& other : _rules)
  {
    if (other.from == added.from)
      throw std::invalid_argument("there are two rules for " + added.from);
    if (other.to == added.to)
      throw std::invalid_argument(other.from + " and " + added.from + " would both be " + added.to);
  }
  const auto isLonger = [&added](const Rule& other) { return other.from.size() > added.from.size(); };
  _rules.insert(std::find_if_not(_rules.begin(), _rules.end(), isLonger), added);
}

std::string RosNames::outside(const std::string& topic) const
{
  for (const Rule& rule : _rules)
    if (isBelow(topic, rule.from))
      return rule.to + topic.substr(rule.from.size());
  return topic;
}

std::string RosNames::inside(const std::string& name) const
{
  for (const Rule& rule : _rules)
  {
    if (!isBelow(name, rule.to))
      continue;
    std::string topic = rule.from + name.substr(rule.to.size());
    if (outside(topic) == name)
      return topic;
  }
  return outside(name) == name ? name : std::string();
}

}  // namespace KV::tools
