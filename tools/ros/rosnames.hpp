#pragma once

#include <string>
#include <vector>

namespace KV::tools
{

/// The names of the node and of its topics for the other nodes, as rules of ROS change them.
///
/// A rule for a topic counts for all topics below it, too: with "/humans:=/robot1/humans", the topic
/// "/humans/faces/tracked" is "/robot1/humans/faces/tracked". Of several rules, the one for the longest name counts.
///
/// \par Thread safety
///   Not synchronised; any number of threads may use an object that nobody changes.
class RosNames
{
public:
  /// Adds a rule "FROM:=TO" for a topic, or "__node:=NAME" for the node.
  ///
  /// \throws std::invalid_argument for a rule that cannot be used; the text says why.
  void addRule(const std::string& rule);

  /// Returns the name of the node: "skeigiot" without a rule.
  const std::string& node() const { return _node; }

  /// Returns whether a rule changes topics.
  bool changeTopics() const { return !_rules.empty(); }

  /// Returns the name that the topic of ours has for other nodes.
  std::string outside(const std::string& topic) const;

  /// Returns the topic of ours that has this name for other nodes; empty if none has: a rule gave it another name.
  std::string inside(const std::string& name) const;

private:
  struct Rule
  {
    std::string from;
    std::string to;
  };

  std::string _node = "skeigiot";
  std::vector<Rule> _rules;  // those for longer names first
};

}  // namespace KV::tools
