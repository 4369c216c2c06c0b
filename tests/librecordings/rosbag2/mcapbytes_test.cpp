#include "rosbag2/mcapbytes.hpp"
#include "librecordings/support.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

namespace
{
using KV::recordings::Error;
using KV::recordings::McapInput;

class McapInputTest : public ::testing::Test
{
protected:
  support::TemporaryFolder folder;
  std::array<char, 8> bytes{};
};

TEST_F(McapInputTest, IsReadFromAnyPlace)
{
  const McapInput input(folder.write("bag.mcap", "0123456789"), "the bag");
  EXPECT_EQ(10U, input.size());
  ASSERT_EQ(3U, input.readAt(7, bytes.data(), bytes.size()));
  EXPECT_EQ("789", std::string(bytes.data(), 3));
}

TEST_F(McapInputTest, SaysByItsNameThatItCannotBeOpened)
{
  EXPECT_EQ("the bag: cannot be opened: No such file or directory",
            support::textThrownBy<Error>([this] { McapInput(folder.path("bag.mcap"), "the bag"); }));
}

TEST_F(McapInputTest, SaysByItsNameThatItCannotBeRead)
{
  const McapInput input(folder.path(), "the bag");
  EXPECT_EQ("the bag: cannot be read: Is a directory",
            support::textThrownBy<Error>([&] { input.readAt(0, bytes.data(), bytes.size()); }));
}

TEST_F(McapInputTest, SaysThatItHasBecomeShorter)
{
  const std::string path = folder.write("bag.mcap", "0123456789");
  const McapInput input(path, "the bag");
  std::filesystem::resize_file(path, 7);
  EXPECT_EQ(1U, input.readAt(6, bytes.data(), bytes.size()));
  EXPECT_EQ("the bag: has become shorter while it was read",
            support::textThrownBy<Error>([&] { input.readAt(7, bytes.data(), bytes.size()); }));
}

}  // namespace
