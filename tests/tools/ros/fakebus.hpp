#pragma once

#include <skeigiot/ros2/bus.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace rostests
{

/// A bus whose messages the test makes, and which keeps what is published.
class FakeBus : public KV::ros2::Bus
{
public:
  int descriptor() const override { return -1; }
  std::vector<KV::ros2::BusMessage> take() override { return std::exchange(waiting, {}); }
  std::vector<std::string> takeNotes() override { return std::exchange(notes, {}); }
  void publish(const std::string& topic, const KV::ros2::EngagementMessage& message) override
  {
    engagements[topic].push_back(message);
  }
  void publish(const std::string& topic, const KV::ros2::ExpressionMessage& message) override
  {
    expressions[topic].push_back(message);
  }
  void publish(const std::string& topic, const KV::ros2::GazeMessage& message) override
  {
    gazes[topic].push_back(message);
  }
  void publish(const std::string& topic, const KV::ros2::DiagnosticMessage& message) override
  {
    diagnostics[topic].push_back(message);
  }
  void publish(const std::string& topic, const KV::ros2::TextMessage& message) override
  {
    texts[topic].push_back(message.text);
  }
  void announceTexts(const std::string& topic) override { announced.push_back(topic); }
  void withdraw(const std::string& topic) override { withdrawn.push_back(topic); }
  KV::ros2::BusCounts counts() const override { return {}; }

  void add(const std::string& topic, const std::string& cdr, std::int64_t received, std::int64_t written = 0)
  {
    waiting.push_back({topic, received, written, {cdr.begin(), cdr.end()}});
  }

  std::vector<KV::ros2::BusMessage> waiting;
  std::vector<std::string> notes;
  std::vector<std::string> withdrawn;
  std::vector<std::string> announced;
  std::map<std::string, std::vector<std::string>> texts;
  std::map<std::string, std::vector<KV::ros2::EngagementMessage>> engagements;
  std::map<std::string, std::vector<KV::ros2::ExpressionMessage>> expressions;
  std::map<std::string, std::vector<KV::ros2::GazeMessage>> gazes;
  std::map<std::string, std::vector<KV::ros2::DiagnosticMessage>> diagnostics;
};

}  // namespace rostests
