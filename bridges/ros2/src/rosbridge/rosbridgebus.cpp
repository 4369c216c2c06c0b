#include <skeigiot/ros2/rosbridge.hpp>

#include "event.hpp"
#include "messagequeue.hpp"
#include "rosbridge/fragments.hpp"
#include "rosbridge/listedtopics.hpp"
#include "rosbridge/reconnection.hpp"
#include "rosbridge/rosbridgeoperations.hpp"
#include "rosbridge/rosjson.hpp"
#include "rosbridge/websocketclient.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <boost/optional/optional.hpp>

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

namespace KV::ros2
{
namespace
{

constexpr std::size_t mostNoted = 1000;  // topics and texts of rosbridge that are remembered
constexpr int keptTexts = 10;            // for readers that come later
const char* const listType = "hri_msgs/msg/IdsList";

/// Notes for the user, of which some are added once only.
///
/// \par Thread safety
///   Each function takes the object's mutex.
class Notes
{
public:
  /// Adds a note; of the same key, the first one only.
  void addOnce(const std::string& key, const std::string& note)
  {
    const std::lock_guard lock(_mutex);
    if (_added.size() < mostNoted && _added.insert(key).second)
      _notes.push_back(note);
  }

  void add(const std::string& note)
  {
    const std::lock_guard lock(_mutex);
    _notes.push_back(note);
  }

  std::vector<std::string> take()
  {
    const std::lock_guard lock(_mutex);
    return std::exchange(_notes, {});
  }

private:
  std::mutex _mutex;
  // Guarded by _mutex
  std::set<std::string> _added;
  std::vector<std::string> _notes;
};

class RosbridgeBus : public Bus
{
public:
  RosbridgeBus(const RosbridgeOptions& options, TypeOf typeOf, Clock clock);
  ~RosbridgeBus() override;
  RosbridgeBus(const RosbridgeBus&) = delete;
  RosbridgeBus& operator=(const RosbridgeBus&) = delete;

  int descriptor() const override { return _event.descriptor(); }
  std::vector<BusMessage> take() override;
  std::vector<std::string> takeNotes() override { return _notes.take(); }
  void publish(const std::string& topic, const EngagementMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const ExpressionMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const GazeMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const DiagnosticMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const TextMessage& message) override { _publish(topic, message); }
  void announceTexts(const std::string& topic) override { _announce(topic, {TextMessage::type, true}); }
  void withdraw(const std::string& topic) override;
  BusCounts counts() const override;

private:
  /// News from the thread of the client, which take() follows.
  struct Heard
  {
    bool isOpened = false;
    boost::optional<std::string> whyClosed;
    std::map<std::string, std::vector<std::string>> lists;  // ids, by the topic of the list
  };

  /// How a topic is published.
  struct Published
  {
    std::string type;
    bool isLatched = false;  // readers that come later get the last messages
  };

  // The thread of the client calls these.
  void _takeText(const std::string& text);
  void _takeWhole(const RosbridgeText& text);
  void _takeFragment(RosbridgeFragment fragment);
  void _takeMessage(const RosbridgeText& text);
  void _leaveOut(const std::string& why);
  void _refuse(const std::string& key, const std::string& note);

  void _followConnection(const Heard& heard);
  void _followLists(const Heard& heard);
  void _begin();
  void _noteLoss(const std::string& why, std::chrono::seconds wait);
  void _subscribe(const std::string& topic);
  std::string _typeOfOwn(const std::string& topic) const;
  void _announce(const std::string& topic, const Published& published);
  void _advertise(const std::string& topic, const Published& published);
  template <typename Message>
  void _publish(const std::string& topic, const Message& message);

  const RosbridgeOptions _options;
  const TypeOf _typeOf;
  const Clock _clock;
  const std::string _name;                    // in notes
  std::map<std::string, std::string> _lists;  // topics of lists, by their names for others
  MessageQueue _queue;
  Event _event;
  Notes _notes;
  std::atomic<std::uint64_t> _refused{0};
  ListedTopics _topics;
  Reconnection _reconnection;
  bool _isConnecting = false;
  bool _isOpen = false;
  std::string _lastReason;                      // for which there was no connection
  std::map<std::string, Published> _published;  // by topic

  Fragments _fragments{WebSocketClient::longestText};  // of the thread of the client

  std::mutex _mutex;
  Heard _heard;  // guarded by _mutex

  WebSocketClient _client;  // ends first
};

RosbridgeBus::RosbridgeBus(const RosbridgeOptions& options, TypeOf typeOf, Clock clock)
  : _options(options),
    _typeOf(std::move(typeOf)),
    _clock(clock),
    _name("rosbridge at " + textOf(options.address)),
    _queue(options.mostMessages, options.mostBytes, std::move(clock)),
    _topics(
        options.topics, options.lists, [this](const std::string& topic) { return !_typeOfOwn(topic).empty(); },
        options.mostReaders),
    _client(options.address, {[this] {
                                _fragments.clear();
                                const std::lock_guard lock(_mutex);
                                _heard.isOpened = true;
                                _event.set();
                              },
                              [this](const std::string& text) { _takeText(text); },
                              [this](const std::string& why) {
                                const std::lock_guard lock(_mutex);
                                _heard.whyClosed = why;
                                _event.set();
                              }})
{
  for (const std::string& list : _topics.lists())
    _lists.emplace(_options.nameOf(list), list);
}

RosbridgeBus::~RosbridgeBus()
{
  for (const auto& published : _published)
    _client.send(unadvertiseOperation(published.first));
}

std::vector<BusMessage> RosbridgeBus::take()
{
  _event.reset();
  Heard heard;
  {
    const std::lock_guard lock(_mutex);
    heard = std::exchange(_heard, {});
  }
  _followConnection(heard);
  _followLists(heard);
  return _queue.takeAll();
}

// A connection may open and close between two calls.
void RosbridgeBus::_followConnection(const Heard& heard)
{
  const auto now = _options.steadyClock();
  if (heard.isOpened)
  {
    _isOpen = true;
    _reconnection.connected(now);
    if (!_lastReason.empty())
      _notes.add(_name + " is there again");
    _lastReason.clear();
    _begin();
  }
  if (heard.whyClosed)
  {
    _isOpen = false;
    _isConnecting = false;
    _noteLoss(*heard.whyClosed, _reconnection.lost(now));
  }
  if (_isConnecting || !_reconnection.isDue(now))
    return;
  _isConnecting = true;
  _client.open();
}

void RosbridgeBus::_noteLoss(const std::string& why, std::chrono::seconds wait)
{
  if (std::exchange(_lastReason, why) != why)
    _notes.add("there is no connection with " + _name + ": " + why + "; it is tried again in " +
               std::to_string(wait.count()) + " s, and then less often");
}

// Says what is read and published to a rosbridge that knows nothing of it.
void RosbridgeBus::_begin()
{
  for (const std::string& topic : _topics.all())
    _subscribe(topic);
  for (const auto& [topic, published] : _published)
    _advertise(topic, published);
}

void RosbridgeBus::_followLists(const Heard& heard)
{
  for (const auto& [topic, ids] : heard.lists)
    _topics.take(_lists.at(topic), ids);
  if (!_isOpen)
    return;  // the lists are as old as the connection
  const ListedTopics::Changes changes = _topics.follow(_clock());
  for (const std::string& topic : changes.ended)
    _client.send(unsubscribeOperation(_options.nameOf(topic)));
  for (const std::string& topic : changes.begun)
    _subscribe(topic);
  if (_topics.areTooMany())
    _notes.addOnce("too many topics", "there are more than " + std::to_string(_options.mostReaders) +
                                          " topics to read: those of ids that came later are left out");
}

void RosbridgeBus::_subscribe(const std::string& topic)
{
  const std::string type = _typeOfOwn(topic);
  _client.send(subscribeOperation(_options.nameOf(topic), type.empty() ? listType : type));
}

// Of a topic by the name that it has for us.
std::string RosbridgeBus::_typeOfOwn(const std::string& topic) const
{
  return _typeOf(_options.nameOf(topic));
}

void RosbridgeBus::_takeText(const std::string& text)
{
  RosbridgeText read = readRosbridgeText(text);
  if (read.kind == RosbridgeText::Kind::Fragment)
    _takeFragment(std::move(read.fragment));
  else
    _takeWhole(read);
}

void RosbridgeBus::_takeFragment(RosbridgeFragment fragment)
{
  try
  {
    if (const auto whole = _fragments.take(std::move(fragment)))
      _takeWhole(readRosbridgeText(*whole));
  }
  catch (const std::invalid_argument& error)
  {
    _leaveOut(error.what());
  }
}

void RosbridgeBus::_takeWhole(const RosbridgeText& text)
{
  switch (text.kind)
  {
    case RosbridgeText::Kind::Message:
      return _takeMessage(text);
    case RosbridgeText::Kind::Status:
      return _notes.addOnce("status " + text.words, _name + " says: " + text.words);
    case RosbridgeText::Kind::Information:
      return;
    case RosbridgeText::Kind::Fragment:
      return _leaveOut("its fragments make a fragment");
    case RosbridgeText::Kind::Invalid:
      return _leaveOut(text.words);
  }
}

void RosbridgeBus::_takeMessage(const RosbridgeText& text)
{
  const bool isList = _lists.count(text.topic) > 0;
  if (isList)
  {
    const std::lock_guard lock(_mutex);
    _heard.lists[text.topic] = idsIn(text.message);
    _event.set();
  }
  const std::string type = _typeOf(text.topic);
  if (type.empty())
  {
    if (!isList)
      _refuse("other topic", "a message of " + _name + " is left out: its topic was not asked for");
    return;
  }
  try
  {
    BusMessage message;
    message.topic = text.topic;
    message.data = cdrOfJson(text.message, type);
    message.data.resize(std::min(message.data.size(), std::size_t{recordings::limits::largestMessage} + 1));
    _queue.add(std::move(message));
    _event.set();
  }
  catch (const RosJsonError& error)
  {
    _refuse("topic " + text.topic, "a message on the topic " + text.topic + " is left out: " + error.what());
  }
}

void RosbridgeBus::_leaveOut(const std::string& why)
{
  _refuse(why, "a text of " + _name + " is left out: " + why);
}

void RosbridgeBus::_refuse(const std::string& key, const std::string& note)
{
  ++_refused;
  _notes.addOnce(key, note);
}

void RosbridgeBus::_announce(const std::string& topic, const Published& published)
{
  if (_published.emplace(topic, published).second && _isOpen)
    _advertise(topic, published);
}

void RosbridgeBus::_advertise(const std::string& topic, const Published& published)
{
  _client.send(published.isLatched ? advertiseLatchedOperation(topic, published.type, keptTexts)
                                   : advertiseOperation(topic, published.type));
}

template <typename Message>
void RosbridgeBus::_publish(const std::string& topic, const Message& message)
{
  _announce(topic, {Message::type, false});
  if (_isOpen)
    _client.send(publishOperation(topic, jsonOf(message)));
}

void RosbridgeBus::withdraw(const std::string& topic)
{
  if (_published.erase(topic) > 0 && _isOpen)
    _client.send(unadvertiseOperation(topic));
}

BusCounts RosbridgeBus::counts() const
{
  BusCounts counts;
  counts.refused = _refused;
  counts.received = _queue.added() + counts.refused;
  counts.dropped = _queue.dropped();
  counts.waiting = _queue.size();
  counts.readers = _isOpen ? _topics.all().size() : 0;
  counts.writers = _isOpen ? _published.size() : 0;
  return counts;
}

}  // namespace

std::string textOf(const RosbridgeAddress& address)
{
  const bool isIpv6 = address.host.find(':') != std::string::npos;
  return "ws://" + (isIpv6 ? "[" + address.host + "]" : address.host) + ":" + address.port +
         (address.path == "/" ? "" : address.path);
}

std::unique_ptr<Bus> openRosbridgeBus(const RosbridgeOptions& options, Bus::TypeOf typeOf, Bus::Clock clock)
{
  return std::make_unique<RosbridgeBus>(options, std::move(typeOf), std::move(clock));
}

}  // namespace KV::ros2
