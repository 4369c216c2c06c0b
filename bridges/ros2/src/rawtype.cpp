#include "rawtype.hpp"

#include <algorithm>

namespace KV::ros2
{
namespace
{
constexpr std::uint32_t usualSize = 512;  // [bytes] that are reserved; longer messages take more
constexpr std::size_t shortestMessage = 4;
}  // namespace

RawType::RawType(const std::string& ddsName)
{
  setName(ddsName.c_str());
  m_typeSize = usualSize;
  m_isGetKeyDefined = false;
  auto_fill_type_object(false);
  auto_fill_type_information(false);
}

bool RawType::serialize(void* data, eprosima::fastrtps::rtps::SerializedPayload_t* payload)
{
  const std::vector<char>& bytes = static_cast<const RawMessage*>(data)->data;
  if (bytes.size() < shortestMessage || bytes.size() > payload->max_size)
    return false;
  std::copy(bytes.begin(), bytes.end(), payload->data);
  payload->length = static_cast<std::uint32_t>(bytes.size());
  payload->encapsulation = static_cast<std::uint16_t>(bytes[1]);
  return true;
}

bool RawType::deserialize(eprosima::fastrtps::rtps::SerializedPayload_t* payload, void* data)
{
  const std::uint32_t length = std::min(payload->length, largestMessage + 1);
  static_cast<RawMessage*>(data)->data.assign(payload->data, payload->data + length);
  return true;
}

std::function<std::uint32_t()> RawType::getSerializedSizeProvider(void* data)
{
  return [data] { return static_cast<std::uint32_t>(static_cast<const RawMessage*>(data)->data.size()); };
}

void* RawType::createData()
{
  return new RawMessage;  // NOLINT(cppcoreguidelines-owning-memory): deleteData() is its counterpart
}

void RawType::deleteData(void* data)
{
  delete static_cast<RawMessage*>(data);  // NOLINT(cppcoreguidelines-owning-memory): createData() made it
}

bool RawType::getKey(void*, eprosima::fastrtps::rtps::InstanceHandle_t*, bool)
{
  return false;
}

}  // namespace KV::ros2
