#pragma once

#include <fastdds/dds/topic/TopicDataType.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace KV::ros2
{

/// A message in CDR, with the four bytes in front that say its byte order.
struct RawMessage
{
  std::vector<char> data;
};

/// A type of DDS whose samples are handed over as the bytes they are, so that nothing is generated for a type, and one
/// decoder serves bags and the bus.
class RawType : public eprosima::fastdds::dds::TopicDataType
{
public:
  /// Of a longer message, one byte more than this is passed on, so that the reader refuses the message by its topic.
  static constexpr std::uint32_t largestMessage = 1U << 20U;

  explicit RawType(const std::string& ddsName);

  bool serialize(void* data, eprosima::fastrtps::rtps::SerializedPayload_t* payload) override;
  bool deserialize(eprosima::fastrtps::rtps::SerializedPayload_t* payload, void* data) override;
  std::function<std::uint32_t()> getSerializedSizeProvider(void* data) override;
  void* createData() override;
  void deleteData(void* data) override;
  bool getKey(void* data, eprosima::fastrtps::rtps::InstanceHandle_t* key, bool forceMd5) override;
};

}  // namespace KV::ros2
