#pragma once

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace rostests
{

/// Plays the part of rosbridge for one client, on a port of this machine. Everything happens in the calls of the test,
/// which wait for 20 seconds at most.
class RosbridgeServer
{
public:
  /// Listens on a free port, or on this one.
  explicit RosbridgeServer(unsigned short port = 0);
  ~RosbridgeServer();
  RosbridgeServer(const RosbridgeServer&) = delete;
  RosbridgeServer& operator=(const RosbridgeServer&) = delete;

  unsigned short port() const;

  /// Waits for the client. \throws std::runtime_error if none comes.
  void accept();

  /// Waits for a client, and answers with something that is no WebSocket.
  void acceptWithoutWebSocket();

  /// Waits for the next operation of the client; null if the client ended the connection.
  nlohmann::json read();

  /// Waits for an operation of this kind on this topic, past others; null as above.
  nlohmann::json readUntil(const std::string& operation, const std::string& topic);

  void send(const std::string& text);
  void publish(const std::string& topic, const nlohmann::json& message);

  /// Ends the connection without a word.
  void hangUp();

private:
  struct Record;

  std::unique_ptr<Record> _p;
};

}  // namespace rostests
