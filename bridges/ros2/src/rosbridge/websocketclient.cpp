#include "rosbridge/websocketclient.hpp"

#include <boost/asio/buffer.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <chrono>
#include <deque>
#include <thread>
#include <utility>

namespace KV::ros2
{
namespace
{

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using Error = boost::system::error_code;

constexpr std::chrono::seconds longestHandshake(10);  // also of the connection
constexpr std::chrono::seconds longestSilence(20);
constexpr std::chrono::seconds longestEnd(1);
constexpr std::size_t mostReadAtOnce = 65536;  // [bytes]

/// Says in words why a connection ended.
std::string wordsOf(const Error& error)
{
  if (error == websocket::error::closed || error == asio::error::eof)
    return "it closed the connection";
  if (error == websocket::error::upgrade_declined)
    return "what listens there does not speak WebSocket";
  if (error == beast::error::timeout)
    return "it does not answer";
  return error.message();
}

/// One connection, from the search for the host to its end. It lives as long as something of it is under way.
class Connection : public std::enable_shared_from_this<Connection>
{
public:
  Connection(asio::io_context& context, const RosbridgeAddress& address, const WebSocketListener& listener)
    : _resolver(context), _stream(context), _address(address), _listener(listener)
  {}

  void open()
  {
    _resolver.async_resolve(_address.host, _address.port, [self = shared_from_this()](const Error& error, auto found) {
      if (error)
        return self->_fail("the host is not found: " + error.message());
      if (!self->_hasEnded)
        self->_connect(found);
    });
  }

  void send(std::string text)
  {
    if (!_isOpen || _hasEnded)
      return;
    _waitingBytes += text.size();
    _waiting.push_back(std::move(text));
    if (_waitingBytes > WebSocketClient::mostWaiting)
      return _fail("it does not take what is published");
    if (_waiting.size() == 1)
      _write();
  }

  /// Ends the connection after what waits was sent.
  void close()
  {
    _isClosing = true;
    if (!_isOpen)
      _end();
    else if (_waiting.empty())
      _closeNow();
  }

private:
  void _connect(const asio::ip::tcp::resolver::results_type& found)
  {
    beast::get_lowest_layer(_stream).expires_after(longestHandshake);
    beast::get_lowest_layer(_stream).async_connect(found, [self = shared_from_this()](const Error& error, const auto&) {
      if (error)
        return self->_fail(wordsOf(error));
      self->_shakeHands();
    });
  }

  void _shakeHands()
  {
    beast::get_lowest_layer(_stream).socket().set_option(asio::ip::tcp::no_delay(true));
    beast::get_lowest_layer(_stream).expires_never();  // the stream has its own times
    websocket::stream_base::timeout times{};
    times.handshake_timeout = longestHandshake;
    times.idle_timeout = longestSilence;
    times.keep_alive_pings = true;
    _stream.set_option(times);
    _stream.read_message_max(0);  // the stream would wait for a server that does not end the connection, too
    const bool isIpv6 = _address.host.find(':') != std::string::npos;
    const std::string host = (isIpv6 ? "[" + _address.host + "]" : _address.host) + ":" + _address.port;
    _stream.async_handshake(host, _address.path, [self = shared_from_this()](const Error& error) {
      if (error)
        return self->_fail(wordsOf(error));
      if (self->_hasEnded)
        return;
      self->_isOpen = true;
      self->_listener.opened();
      self->_read();
    });
  }

  void _read()
  {
    _stream.async_read_some(_buffer, mostReadAtOnce, [self = shared_from_this()](const Error& error, std::size_t) {
      if (error)
        return self->_fail(wordsOf(error));
      if (self->_hasEnded)
        return;
      if (self->_buffer.size() > WebSocketClient::longestText)
        return self->_fail("it sent a message of more than " + std::to_string(WebSocketClient::longestText) + " bytes");
      if (self->_stream.is_message_done())
      {
        self->_listener.taken(beast::buffers_to_string(self->_buffer.data()));
        self->_buffer.consume(self->_buffer.size());
      }
      self->_read();
    });
  }

  void _write()
  {
    _stream.async_write(asio::buffer(_waiting.front()), [self = shared_from_this()](const Error& error, std::size_t) {
      if (error)
        return self->_fail(wordsOf(error));
      self->_waitingBytes -= self->_waiting.front().size();
      self->_waiting.pop_front();
      if (!self->_waiting.empty())
        return self->_write();
      if (self->_isClosing)
        self->_closeNow();
    });
  }

  void _closeNow()
  {
    _stream.async_close(websocket::close_code::normal, [self = shared_from_this()](const Error&) {});
  }

  void _fail(const std::string& why)
  {
    if (_hasEnded)
      return;
    _end();
    _listener.closed(why);
  }

  void _end()
  {
    _hasEnded = true;
    _resolver.cancel();
    beast::get_lowest_layer(_stream).close();
  }

  asio::ip::tcp::resolver _resolver;
  websocket::stream<beast::tcp_stream> _stream;
  const RosbridgeAddress& _address;
  const WebSocketListener& _listener;
  beast::flat_buffer _buffer;
  std::deque<std::string> _waiting;  // the first one is being sent
  std::size_t _waitingBytes = 0;
  bool _isOpen = false;
  bool _isClosing = false;
  bool _hasEnded = false;
};

}  // namespace

/// Owns the thread in which everything happens.
class WebSocketClient::Worker
{
public:
  Worker(RosbridgeAddress address, WebSocketListener listener)
    : _address(std::move(address)),
      _listener(std::move(listener)),
      _work(asio::make_work_guard(_context)),
      _thread([this] { _run(); })
  {}

  ~Worker()
  {
    asio::post(_context, [this] {
      if (_connection)
        _connection->close();
      _connection.reset();
      _work.reset();
      _context.stop();
    });
    _thread.join();
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void open()
  {
    asio::post(_context, [this] {
      _connection = std::make_shared<Connection>(_context, _address, _listener);
      _connection->open();
    });
  }

  void send(std::string text)
  {
    asio::post(_context, [this, text = std::move(text)]() mutable {
      if (_connection)
        _connection->send(std::move(text));
    });
  }

private:
  void _run()
  {
    _context.run();
    _context.restart();
    _context.run_for(longestEnd);  // what waits is sent
  }

  const RosbridgeAddress _address;
  const WebSocketListener _listener;
  asio::io_context _context{1};
  asio::executor_work_guard<asio::io_context::executor_type> _work;
  std::shared_ptr<Connection> _connection;  // of the thread
  std::thread _thread;
};

WebSocketClient::WebSocketClient(RosbridgeAddress address, WebSocketListener listener)
  : _worker(std::make_unique<Worker>(std::move(address), std::move(listener)))
{}

WebSocketClient::~WebSocketClient() = default;

void WebSocketClient::open()
{
  _worker->open();
}

void WebSocketClient::send(std::string text)
{
  _worker->send(std::move(text));
}

}  // namespace KV::ros2
