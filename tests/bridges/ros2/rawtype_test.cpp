#include "rawtype.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

using eprosima::fastrtps::rtps::SerializedPayload_t;
using KV::ros2::RawMessage;
using KV::ros2::RawType;

TEST(RawType, CarriesTheBytesOfAMessageAsTheyAre)
{
  RawType type("std_msgs::msg::dds_::String_");
  RawMessage message{{0, 1, 0, 0, 'h', 'i'}};
  SerializedPayload_t payload(6);
  ASSERT_TRUE(type.serialize(&message, &payload));
  EXPECT_EQ(6U, payload.length);
  EXPECT_EQ(1U, payload.encapsulation);
  EXPECT_EQ(6U, type.getSerializedSizeProvider(&message)());
  RawMessage read;
  ASSERT_TRUE(type.deserialize(&payload, &read));
  EXPECT_EQ(message.data, read.data);
}

TEST(RawType, RefusesAMessageWithoutAHeaderOrWithoutRoom)
{
  RawType type("std_msgs::msg::dds_::String_");
  SerializedPayload_t payload(5);
  RawMessage tooShort{{0, 1, 0}};
  EXPECT_FALSE(type.serialize(&tooShort, &payload));
  RawMessage tooLong{{0, 1, 0, 0, 'h', 'i'}};
  EXPECT_FALSE(type.serialize(&tooLong, &payload));
}

TEST(RawType, HasNoKey)
{
  RawType type("std_msgs::msg::dds_::String_");
  RawMessage message{{0, 1, 0, 0}};
  eprosima::fastrtps::rtps::InstanceHandle_t key;
  EXPECT_FALSE(type.m_isGetKeyDefined);
  EXPECT_FALSE(type.getKey(&message, &key, false));
}

TEST(RawType, PassesOnOneByteMoreThanTheReaderTakes)
{
  RawType type("std_msgs::msg::dds_::String_");
  SerializedPayload_t payload(RawType::largestMessage + 10);
  std::fill_n(payload.data, payload.max_size, static_cast<eprosima::fastrtps::rtps::octet>(0));
  payload.length = payload.max_size;
  RawMessage read;
  ASSERT_TRUE(type.deserialize(&payload, &read));
  EXPECT_EQ(RawType::largestMessage + 1, read.data.size());
}

}  // namespace
