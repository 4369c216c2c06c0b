#pragma once

#include <string>
#include <vector>

namespace KV::tools
{

/// The names of the node and of its topics for the other nodes, as rules of ROS change them.
///
/// As in ROS, a rule for a topic is for this topic alone. Names are absolute, or relative to the namespace "/"; "~" at
/// the begin is the node.
///
/// Beyond ROS, a rule may be for a root, which has topics below it but is not a topic: "/humans", the groups in it, and
/// "/skeigiot". It counts for all topics below it: with "/humans:=/robot1/humans", the topic "/humans/faces/tracked" is
/// "/robot1/humans/faces/tracked". So topics have other names whatever ids they hold. A rule for a topic counts before
/// those for its roots, and the rule for a longer root before that for a shorter one.
///
/// \par Thread safety
///   Not synchronised; any number of threads may use an object that nobody changes.
class RosNames
{
public:
  /// Adds a rule "FROM:=TO" for a topic or a root, or "__node:=NAME" for the node.
  ///
  /// "~" in front of FROM is "/skeigiot". In front of TO, it is the node by its name, also if the name changes later.
  ///
  /// \throws std::invalid_argument for a rule that cannot be used; the text says why. Nothing changes then.
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
    std::string given;  // the other name, as the rule has it
    std::string to;     // the other name, absolute
    bool isForRoot;
  };

  void _renameNode(const std::string& name);
  void _add(const std::string& from, const std::string& to);
  void _expand();

  std::string _node = "skeigiot";
  bool _hasRuleForNode = false;
  std::vector<Rule> _rules;  // those for topics first, then those for longer roots
};

}  // namespace KV::tools
