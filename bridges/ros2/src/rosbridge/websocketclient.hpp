#pragma once

#include <skeigiot/ros2/rosbridge.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace KV::ros2
{

/// Hears of the connection of a WebSocketClient, in the client's thread. The functions must not throw.
struct WebSocketListener
{
  std::function<void()> opened;                        ///< the connection is there
  std::function<void(const std::string& text)> taken;  ///< a text came in
  std::function<void(const std::string& why)> closed;  ///< the connection is lost, or could not be made
};

/// A client of a server that speaks WebSocket, without encryption. Connects once for each call of open().
///
/// A server that does not answer for 20 seconds, also to a ping, is lost.
///
/// \par Thread safety
///   Any thread may call any function at any time. A thread of the client does the work.
class WebSocketClient
{
public:
  static constexpr std::size_t longestText = std::size_t{4} << 20U;   ///< [bytes] a longer one ends the connection
  static constexpr std::size_t mostWaiting = std::size_t{16} << 20U;  ///< [bytes] to be sent; more end the connection

  /// \throws std::system_error without a descriptor or a thread.
  WebSocketClient(RosbridgeAddress address, WebSocketListener listener);

  /// Closes the connection. The texts that wait to be sent have up to a second.
  ~WebSocketClient();
  WebSocketClient(const WebSocketClient&) = delete;
  WebSocketClient& operator=(const WebSocketClient&) = delete;

  /// Begins to connect. `opened` or `closed` says how that went; until `closed`, it must not be called again.
  void open();

  /// Sends a text; without a connection, does nothing.
  void send(std::string text);

private:
  class Worker;

  std::unique_ptr<Worker> _worker;
};

}  // namespace KV::ros2
