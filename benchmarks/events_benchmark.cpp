#include "serve/pageserver.hpp"

#include <benchmark/benchmark.h>

#include <httplib.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

/// How many events a second the server of the live page sends to a client that only reads, compared with the same
/// bytes through a plain socket. A client that gets more than that for long is dropped as too slow.

namespace
{

using KV::tools::EventLog;
using KV::tools::PageServer;

constexpr std::size_t bytesOfPerson = 900;  // of an update of a person with forces and readings
constexpr std::int64_t eventsOfRun = 2000;
constexpr std::size_t mostBytesAhead = std::size_t{4} << 20U;  // a quarter of what the log keeps for a slow client

/// A client that counts the events of the server on a thread of its own.
class Client
{
public:
  explicit Client(const PageServer& server)
    : _client("127.0.0.1", server.port()), _thread([this, path = "/events?token=" + server.token()] {
        _client.Get(path, [this](const char* data, std::size_t size) {
          _events += std::count(data, data + size, '}');
          return true;
        });
        _hasEnded = true;
      })
  {}
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() { _thread.join(); }

  std::int64_t events() const { return _events; }

  /// Returns whether the server dropped the client.
  bool hasEnded() const { return _hasEnded; }

private:
  httplib::Client _client;
  std::atomic<std::int64_t> _events{0};
  std::atomic<bool> _hasEnded{false};
  std::thread _thread;
};

std::string eventOf(std::int64_t persons)
{
  return '"' + std::string(bytesOfPerson * static_cast<std::size_t>(persons), 'x') + "\"}";
}

void sendsEvents(benchmark::State& state)
{
  const std::string event = eventOf(state.range(0));
  const auto mostAhead = static_cast<std::int64_t>(mostBytesAhead / event.size());
  EventLog log;
  log.setFacts("{}");
  const PageServer server({}, log, {"", {}, {}, {}});
  {
    const Client client(server);
    std::int64_t sent = 1;  // the facts
    const auto waitUntilWithin = [&](std::int64_t ahead) {
      while (sent - client.events() > ahead && !client.hasEnded())
        std::this_thread::yield();
    };
    waitUntilWithin(0);
    for ([[maybe_unused]] auto _ : state)
    {
      for (std::int64_t i = 0; i < eventsOfRun; ++i)
      {
        log.publish(event, EventLog::Clock::now());
        ++sent;
        waitUntilWithin(mostAhead);
      }
      waitUntilWithin(0);
      if (client.hasEnded())
        state.SkipWithError("the server dropped the client");
    }
    log.close();
  }
  state.SetItemsProcessed(state.iterations() * eventsOfRun);
}

/// Returns whether all of the text was written.
bool writeAll(int descriptor, const std::string& text)
{
  for (std::size_t written = 0; written < text.size();)
  {
    const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
    if (count <= 0)
      return false;
    written += static_cast<std::size_t>(count);
  }
  return true;
}

void passesThemThroughASocket(benchmark::State& state)
{
  const std::string event = eventOf(state.range(0));
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
  {
    state.SkipWithError("there is no socket");
    return;
  }
  std::atomic<std::size_t> received{0};
  std::thread reader([&] {
    std::array<char, 65536> piece{};
    for (ssize_t count = 0; (count = ::read(ends[1], piece.data(), piece.size())) > 0;)
      received += static_cast<std::size_t>(count);
  });
  std::size_t sent = 0;
  for ([[maybe_unused]] auto _ : state)
  {
    bool isWritten = true;
    for (std::int64_t i = 0; i < eventsOfRun && isWritten; ++i)
      isWritten = writeAll(ends[0], event);
    if (!isWritten)
    {
      state.SkipWithError("the socket cannot be written");
      break;
    }
    sent += event.size() * static_cast<std::size_t>(eventsOfRun);
    while (received < sent)
      std::this_thread::yield();
  }
  ::close(ends[0]);
  reader.join();
  ::close(ends[1]);
  state.SetItemsProcessed(state.iterations() * eventsOfRun);
}

BENCHMARK(sendsEvents)->ArgName("persons")->Arg(1)->Arg(30)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(passesThemThroughASocket)->ArgName("persons")->Arg(1)->Arg(30)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
