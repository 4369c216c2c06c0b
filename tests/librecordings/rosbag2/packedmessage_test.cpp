#include "rosbag2/packedmessage.hpp"

#include "input/unpacker.hpp"
#include "librecordings/rosbag2/mcapwriter.hpp"
#include "support/thrown.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace
{
using KV::recordings::unpackMessage;

constexpr std::size_t size = 40000;  // several pieces

std::vector<char> packed()
{
  const std::string bytes = support::packedByZstd(std::string(size, 'x'));
  return {bytes.begin(), bytes.end()};
}

TEST(PackedMessage, IsUnpackedUpToTheMostBytes)
{
  std::vector<char> data = packed();
  unpackMessage(data, size);
  EXPECT_EQ(std::vector<char>(size, 'x'), data);
}

TEST(PackedMessage, IsRefusedBeyondTheMostBytes)
{
  std::vector<char> data = packed();
  EXPECT_EQ("they unpack to more than 39999 bytes",
            support::textThrownBy<KV::recordings::UnpackError>([&] { unpackMessage(data, size - 1); }));
}

TEST(PackedMessage, MayBeUnpacked)
{
  std::vector<char> data = {'a', 'b'};
  unpackMessage(data, size);
  EXPECT_EQ((std::vector<char>{'a', 'b'}), data);
}

}  // namespace
