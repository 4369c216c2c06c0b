#include <skeigiot/recordings/roscontent.hpp>

#include "ros4hri/rosmessages.hpp"

namespace KV::recordings
{

std::int64_t rosClockIn(std::vector<char>& data)
{
  return readClock(data);
}

std::string rosTextIn(std::vector<char>& data)
{
  return readString(data);
}

}  // namespace KV::recordings
