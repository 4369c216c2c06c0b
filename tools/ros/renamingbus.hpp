#pragma once

#include "ros/rosnames.hpp"

#include <skeigiot/ros2/bus.hpp>

#include <memory>
#include <utility>

namespace KV::tools
{

/// A bus whose topics have other names for the other nodes.
///
/// \par Thread safety
///   That of the bus.
class RenamingBus : public ros2::Bus
{
public:
  RenamingBus(std::unique_ptr<ros2::Bus> bus, RosNames names) : _bus(std::move(bus)), _names(std::move(names)) {}

  int descriptor() const override { return _bus->descriptor(); }
  std::vector<ros2::BusMessage> take() override
  {
    std::vector<ros2::BusMessage> messages = _bus->take();
    for (ros2::BusMessage& message : messages)
      message.topic = _names.inside(message.topic);
    return messages;
  }
  std::vector<std::string> takeNotes() override { return _bus->takeNotes(); }
  void publish(const std::string& topic, const ros2::EngagementMessage& message) override
  {
    _bus->publish(_names.outside(topic), message);
  }
  void publish(const std::string& topic, const ros2::ExpressionMessage& message) override
  {
    _bus->publish(_names.outside(topic), message);
  }
  void publish(const std::string& topic, const ros2::GazeMessage& message) override
  {
    _bus->publish(_names.outside(topic), message);
  }
  void publish(const std::string& topic, const ros2::DiagnosticMessage& message) override
  {
    _bus->publish(_names.outside(topic), message);
  }
  void publish(const std::string& topic, const ros2::TextMessage& message) override
  {
    _bus->publish(_names.outside(topic), message);
  }
  void announceTexts(const std::string& topic) override { _bus->announceTexts(_names.outside(topic)); }
  void withdraw(const std::string& topic) override { _bus->withdraw(_names.outside(topic)); }
  ros2::BusCounts counts() const override { return _bus->counts(); }

private:
  std::unique_ptr<ros2::Bus> _bus;
  RosNames _names;
};

}  // namespace KV::tools
