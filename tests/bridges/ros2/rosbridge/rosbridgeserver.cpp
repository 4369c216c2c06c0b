#include "bridges/ros2/rosbridge/rosbridgeserver.hpp"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <utility>

namespace rostests
{
namespace
{
namespace asio = boost::asio;
namespace beast = boost::beast;
using Error = boost::system::error_code;
using Tcp = asio::ip::tcp;

constexpr std::chrono::seconds longestWait(20);
}  // namespace

struct RosbridgeServer::Record
{
  /// Begins an operation, and waits for its end.
  template <typename Begin>
  Error wait(const Begin& begin)
  {
    std::optional<Error> result;
    begin([&result](const Error& error, auto&&...) { result = error; });
    context.restart();
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (!result && context.run_one_until(end) > 0)
    {}
    if (!result)
      throw std::runtime_error("the client does not do what is expected");
    return *result;
  }

  asio::io_context context{1};
  Tcp::acceptor acceptor{context};
  std::optional<beast::websocket::stream<Tcp::socket>> stream;
  beast::flat_buffer buffer;
};

RosbridgeServer::RosbridgeServer(unsigned short port) : _p(std::make_unique<Record>())
{
  const Tcp::endpoint place(asio::ip::address_v4::loopback(), port);
  _p->acceptor.open(place.protocol());
  _p->acceptor.set_option(asio::socket_base::reuse_address(true));
  _p->acceptor.bind(place);
  _p->acceptor.listen();
}

RosbridgeServer::~RosbridgeServer() = default;

unsigned short RosbridgeServer::port() const
{
  return _p->acceptor.local_endpoint().port();
}

void RosbridgeServer::accept()
{
  Tcp::socket socket(_p->context);
  const Error error = _p->wait([&](auto done) { _p->acceptor.async_accept(socket, done); });
  if (error)
    throw std::runtime_error(error.message());
  _p->buffer.clear();
  _p->stream.emplace(std::move(socket));
  const Error handshake = _p->wait([&](auto done) { _p->stream->async_accept(done); });
  if (handshake)
    throw std::runtime_error(handshake.message());
}

void RosbridgeServer::acceptWithoutWebSocket()
{
  Tcp::socket socket(_p->context);
  _p->wait([&](auto done) { _p->acceptor.async_accept(socket, done); });
  const std::string answer = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";
  _p->wait([&](auto done) { asio::async_write(socket, asio::buffer(answer), done); });
}

nlohmann::json RosbridgeServer::read()
{
  if (_p->wait([&](auto done) { _p->stream->async_read(_p->buffer, done); }))
    return nullptr;
  const std::string text = beast::buffers_to_string(_p->buffer.data());
  _p->buffer.consume(_p->buffer.size());
  return nlohmann::json::parse(text);
}

nlohmann::json RosbridgeServer::readUntil(const std::string& operation, const std::string& topic)
{
  for (;;)
  {
    nlohmann::json found = read();
    if (found.is_null() || (found["op"] == operation && found["topic"] == topic))
      return found;
  }
}

void RosbridgeServer::send(const std::string& text)
{
  _p->wait([&](auto done) { _p->stream->async_write(asio::buffer(text), done); });
}

void RosbridgeServer::publish(const std::string& topic, const nlohmann::json& message)
{
  send(nlohmann::json{{"op", "publish"}, {"topic", topic}, {"msg", message}}.dump());
}

void RosbridgeServer::hangUp()
{
  _p->stream.reset();
}

}  // namespace rostests
