#include "messagequeue.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace
{

using KV::ros2::BusMessage;
using KV::ros2::MessageQueue;

constexpr std::size_t plenty = 1'000'000;

KV::ros2::Bus::Clock countingClock()
{
  return [time = std::int64_t{0}]() mutable { return ++time; };
}

BusMessage messageOf(const std::string& topic, std::size_t size = 4)
{
  BusMessage message;
  message.topic = topic;
  message.data.resize(size);
  return message;
}

TEST(MessageQueue, HandsOverMessagesInTheOrderInWhichTheyCameIn)
{
  MessageQueue queue(10, plenty, countingClock());
  queue.add(messageOf("/a"));
  queue.add(messageOf("/b"));
  EXPECT_EQ(2U, queue.size());

  const std::vector<BusMessage> taken = queue.takeAll();

  ASSERT_EQ(2U, taken.size());
  EXPECT_EQ("/a", taken[0].topic);
  EXPECT_EQ("/b", taken[1].topic);
  EXPECT_LT(taken[0].received, taken[1].received);
  EXPECT_EQ(0U, queue.size());
  EXPECT_TRUE(queue.takeAll().empty());
}

TEST(MessageQueue, DropsTheOldestOfTooManyMessagesAndCountsThem)
{
  MessageQueue queue(3, plenty, countingClock());
  for (const char* const topic : {"/1", "/2", "/3", "/4", "/5"})
    queue.add(messageOf(topic));

  const std::vector<BusMessage> taken = queue.takeAll();

  ASSERT_EQ(3U, taken.size());
  EXPECT_EQ("/3", taken.front().topic);
  EXPECT_EQ("/5", taken.back().topic);
  EXPECT_EQ(5U, queue.added());
  EXPECT_EQ(2U, queue.dropped());
}

TEST(MessageQueue, DropsTheOldestOfTooManyBytes)
{
  MessageQueue queue(1000, 5000, countingClock());
  for (int i = 0; i < 10; ++i)
    queue.add(messageOf("/" + std::to_string(i), 2000));

  const std::vector<BusMessage> taken = queue.takeAll();

  ASSERT_EQ(2U, taken.size());
  EXPECT_EQ("/9", taken.back().topic);
  EXPECT_EQ(8U, queue.dropped());
}

TEST(MessageQueue, LosesNothingBetweenThreads)
{
  constexpr int each = 5000;
  MessageQueue queue(2 * each, plenty * 100, countingClock());
  const auto addAll = [&queue] {
    for (int i = 0; i < each; ++i)
      queue.add(messageOf("/t"));
  };
  std::thread first(addAll);
  std::thread second(addAll);
  std::vector<BusMessage> all;
  std::int64_t last = 0;
  bool rises = true;
  const auto take = [&] {
    for (BusMessage& message : queue.takeAll())
    {
      rises = rises && message.received > last;
      last = message.received;
      all.push_back(message);
    }
  };
  for (int i = 0; i < 100; ++i)
    take();
  first.join();
  second.join();
  take();

  EXPECT_EQ(2U * each, all.size());
  EXPECT_TRUE(rises);
  EXPECT_EQ(0U, queue.dropped());
}

}  // namespace
