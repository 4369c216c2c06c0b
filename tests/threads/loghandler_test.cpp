// A log handler that wants to use the graph, while the graph runs the callback that logs.

#include "support/clocktest.hpp"
#include "support/heldmutex.hpp"
#include "support/revealedmutex.hpp"

#include <skeigiot/socialgraph.hpp>

#include <ko/log.hpp>

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace support
{

boost::mutex& mutexOf(KV::SocialGraph& object);
template struct RevealedMutex<KV::SocialGraph, &KV::SocialGraph::_mutex>;

}  // namespace support

namespace
{

/// Keeps the records for later; its lock is never held while anything else is called.
class Inbox
{
public:
  Inbox() : _handler(ko::log::addHandler([this](const ko::log::Record& record) { _keep(record); })) {}
  ~Inbox() { ko::log::removeHandler(_handler); }
  Inbox(const Inbox&) = delete;
  Inbox& operator=(const Inbox&) = delete;

  std::vector<ko::log::Record> take()
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    return std::exchange(_records, {});
  }

private:
  void _keep(const ko::log::Record& record)
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    _records.push_back(record);
  }

  std::mutex _mutex;
  std::vector<ko::log::Record> _records;
  ko::log::HandlerId _handler;  // last: it may be called at once
};

class LogHandlerOfAGraph : public support::ClockTest
{
protected:
  /// Updates the person with a voice so old that the update warns of it.
  void updateWithAnOldVoice()
  {
    KV::PersonObservation observation;
    observation.voiceEmotion.emplace(ko::SystemClock::now() - support::seconds(5), KV::VoiceEmotion());
    graph.updateOrCreate(7, [&observation](KV::Person& person) { person.update(observation); });
  }

  KV::SocialGraph graph;
};

TEST_F(LogHandlerOfAGraph, RunsUnderTheMutexOfTheGraph)
{
  bool wasFree = true;
  const auto id =
      ko::log::addHandler([&](const ko::log::Record&) { wasFree = support::isFree(support::mutexOf(graph)); });
  updateWithAnOldVoice();
  ko::log::removeHandler(id);

  EXPECT_FALSE(wasFree) << "so a handler that called the graph would wait for ever";
}

// The pattern of docs/threads-and-locks.md.
TEST_F(LogHandlerOfAGraph, KeepsTheRecordAndLeavesTheGraphToTheLoop)
{
  Inbox inbox;
  std::vector<std::string> handled;
  for (int cycle = 0; cycle < 2; ++cycle)
  {
    updateWithAnOldVoice();
    for (const ko::log::Record& record : inbox.take())
    {
      handled.push_back(record.message);
      graph.remove(7);
    }
    EXPECT_FALSE(graph.find(7));
  }

  EXPECT_EQ(std::vector<std::string>(2, "Processing old observation from 5 s ago of Voice Emotion"), handled);
}

}  // namespace
