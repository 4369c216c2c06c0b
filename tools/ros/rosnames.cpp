#include "ros/rosnames.hpp"

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/ros4hriinput.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace KV::tools
{

namespace
{

// The name of a topic has at most 247 characters in ROS. The rest of a name needs up to 159.
constexpr std::size_t longestName = 80;
constexpr std::string_view sign = ":=";
constexpr std::string_view ownName = "/skeigiot";  // of the node and of its topics, without a rule

// The topics that are not those of Ros4hriInput.
constexpr std::array<std::string_view, 5> otherTopics = {"/clock", "/skeigiot/scopes", "/skeigiot/verdicts",
                                                         "/humans/interactions/gazing", "/diagnostics"};
constexpr std::string_view persons = "/humans/persons/";
constexpr std::array<std::string_view, 2> answersOfPersons = {"engagement_status", "affect"};
constexpr std::array<std::string_view, 6> roots = {"/humans",        "/humans/faces",        "/humans/persons",
                                                   "/humans/voices", "/humans/interactions", ownName};

template <typename Names>
bool isAmong(std::string_view name, const Names& names)
{
  return std::find(names.begin(), names.end(), name) != names.end();
}

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

/// Returns whether the node publishes such a topic about a person.
bool isAnswerOfPerson(std::string_view topic)
{
  if (topic.substr(0, persons.size()) != persons)
    return false;
  topic.remove_prefix(persons.size());
  const std::size_t slash = topic.find('/');
  return slash != std::string_view::npos && isAmong(topic.substr(slash + 1), answersOfPersons);
}

/// Returns whether the node reads or publishes the topic, with some options at least.
bool isTopic(const std::string& name)
{
  return isAmong(name, otherTopics) || isAmong(name, recordings::Ros4hriInput::lists()) || isAnswerOfPerson(name) ||
         !recordings::Ros4hriInput::typeOf(name).empty();
}

/// Returns the full name. "~" in it becomes the name of the node.
std::string absolute(const std::string& name, std::string_view node)
{
  if (name == "~" || name.rfind("~/", 0) == 0)
    return std::string(node) + name.substr(1);
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
  RosNames changed = *this;
  if (from == "__node" || from == "__name")
    changed._renameNode(to);
  else if (from == "__ns")
    throw std::invalid_argument("the node has no namespace: give its topics other names, such as /humans:=" +
                                absolute(to, ownName) + "/humans");
  else
    changed._add(from, to);
  changed._expand();
  *this = std::move(changed);
}

void RosNames::_renameNode(const std::string& name)
{
  if (!isPart(name) || name.size() > longestName)
    throw std::invalid_argument("expected a name of the node with up to 80 letters, digits and '_', found " +
                                recordings::quote(name));
  if (_hasRuleForNode)
    throw std::invalid_argument("there are two rules for the name of the node");
  _node = name;
  _hasRuleForNode = true;
}

void RosNames::_add(const std::string& from, const std::string& to)
{
  Rule added{absolute(from, ownName), to, {}, false};
  added.isForRoot = isAmong(added.from, roots);
  if (!isName(added.from) || !(added.isForRoot || isTopic(added.from)))
    throw std::invalid_argument(
        "expected a topic that the node reads or publishes, such as /tf, or one of the roots /humans, /humans/faces, "
        "/humans/persons, /humans/voices, /humans/interactions and /skeigiot, found " +
        recordings::quote(from));
  const auto isSame = [&added](const Rule& other) { return other.from == added.from; };
  if (std::any_of(_rules.begin(), _rules.end(), isSame))
    throw std::invalid_argument("there are two rules for " + added.from);
  const auto isBefore = [&added](const Rule& other) {
    return other.isForRoot == added.isForRoot ? other.from.size() > added.from.size() : added.isForRoot;
  };
  _rules.insert(std::find_if_not(_rules.begin(), _rules.end(), isBefore), added);
}

/// Finds the other names of all rules in full.
void RosNames::_expand()
{
  std::map<std::string, std::string> taken;  // what each name is for
  for (Rule& rule : _rules)
  {
    rule.to = absolute(rule.given, "/" + _node);
    if (!isName(rule.to) || rule.to.size() > longestName)
      throw std::invalid_argument(
          "expected a name with up to 80 letters, digits, '_' and '/', such as /robot1/humans, found " +
          recordings::quote(rule.given));
    const auto [other, isNew] = taken.emplace(rule.to, rule.from);
    if (!isNew)
      throw std::invalid_argument(other->second + " and " + rule.from + " would both be " + rule.to);
  }
}

std::string RosNames::outside(const std::string& topic) const
{
  for (const Rule& rule : _rules)
    if (topic == rule.from || (rule.isForRoot && isBelow(topic, rule.from)))
      return rule.to + topic.substr(rule.from.size());
  return topic;
}

std::string RosNames::inside(const std::string& name) const
{
  for (const Rule& rule : _rules)
  {
    if (name != rule.to && !(rule.isForRoot && isBelow(name, rule.to)))
      continue;
    std::string topic = rule.from + name.substr(rule.to.size());
    if (outside(topic) == name)
      return topic;
  }
  return outside(name) == name ? name : std::string();
}

}  // namespace KV::tools
