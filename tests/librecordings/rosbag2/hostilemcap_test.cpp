#include "librecordings/limitedchild.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "librecordings/rosbag2/mcapwriter.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>
#include <string>

/// Files of MCAP made to do harm, or damaged: each is refused with a message, in little memory.

namespace
{
using namespace support;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

namespace limits = KV::recordings::limits;

constexpr std::size_t enoughMemory = 100 * limits::mebibyte;  // of address space
constexpr std::size_t anyFile = 1024 * limits::mebibyte;
constexpr std::int64_t begin = 1700000000000000000;  // [ns] since 1970
constexpr std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();

struct Ended
{};

class HostileMcap : public ::testing::Test
{
protected:
  std::string path() const { return folder.path("bag.mcap"); }

  static std::string tf(std::int64_t time = begin)
  {
    return mcapMessage(1, time, tfMessage({faceFrame("a", {0., 0., 2.})}));
  }

  Contents read(const std::string& records, const std::string& end = mcapDataEnd() + mcapFooter())
  {
    folder.write("bag.mcap", std::string(mcapMagic) + mcapSchema(1, "tf2_msgs/msg/TFMessage") +
                                 mcapChannel(1, 1, "/tf") + records + end);
    return contentsOf(path());
  }

  /// Reads such a file in a process of its own with little memory; checks the end of its message.
  void expectRefused(const std::string& records, const std::string& message)
  {
    const std::string fatal = read(records).fatal;
    EXPECT_THAT(fatal, EndsWith(message));
    const auto isRefused = [&] { return contentsOf(path()).fatal == fatal; };
    EXPECT_EXIT(runLimited(enoughMemory, anyFile, isRefused), testing::ExitedWithCode(0), "");
  }

  /// The same, about the record after the channel.
  void expectDamaged(const std::string& records, const std::string& message)
  {
    const std::size_t place =
        mcapMagic.size() + mcapSchema(1, "tf2_msgs/msg/TFMessage").size() + mcapChannel(1, 1, "/tf").size();
    expectRefused(records, "bag.mcap: the record at byte " + std::to_string(place) + " is damaged: " + message);
  }

  TemporaryFolder folder;
};

TEST_F(HostileMcap, IsRefusedIfAChecksumIsAnotherOne)
{
  for (const std::string compression : {"", "lz4", "zstd"})
  {
    const std::string packed = compression == "lz4"  ? packedByLz4(tf())
                               : compression.empty() ? tf()
                                                     : packedByZstd(tf());
    expectDamaged(mcapChunk(packed, compression, tf().size(), checksumOf(tf()) + 1), "its checksum is another one");
    EXPECT_THAT(read(mcapChunk(packed, compression, tf().size(), 0)).entries, SizeIs(1)) << "0 means none";
  }
  EXPECT_EQ(path() + ": the data are damaged: their checksum is another one",
            read(tf(), mcapDataEnd(1) + mcapFooter()).fatal);
}

TEST_F(HostileMcap, IsRefusedIfAChunkIsDamaged)
{
  for (const std::string compression : {"lz4", "zstd"})
  {
    std::string packed = compression == "lz4" ? packedByLz4(tf()) : packedByZstd(tf());
    expectDamaged(mcapChunk(packed.substr(0, packed.size() / 2), compression, tf().size(), 0),
                  "unpacks to fewer bytes than it says");
    packed[packed.size() / 2] = static_cast<char>(packed[packed.size() / 2] ^ 0x55);
    packed[4] = '\x7f';
    EXPECT_THAT(read(mcapChunk(packed, compression, tf().size(), checksumOf(tf()))).fatal, HasSubstr(" is damaged: "));
    expectDamaged(mcapChunk("no such thing", compression, 100, 0),
                  compression == "lz4" ? "its compressed data are damaged: ERROR_frameType_unknown"
                                       : "its compressed data are damaged: Unknown frame descriptor");
  }
}

TEST_F(HostileMcap, IsRefusedIfAChunkLiesAboutItsSizes)
{
  expectDamaged(mcapChunk(packedByZstd(tf()), "zstd", tf().size() - 1, 0),
                "holds a record that is longer than what is left of it");
  expectDamaged(mcapChunk(packedByZstd(tf() + tf()), "zstd", tf().size(), 0), "unpacks to more bytes than it says");
  expectDamaged(mcapChunk(packedByZstd(tf()), "zstd", tf().size() + 1, 0), "unpacks to fewer bytes than it says");
  expectDamaged(mcapChunk(tf(), "", tf().size() + 1, 0), "is not compressed, and has two sizes");
  expectDamaged(mcapChunk(tf(), "bz2", tf().size(), 0), "is compressed by 'bz2', expected lz4 or zstd");
  const std::string chunk = mcapChunk(tf(), "", tf().size(), 0);
  expectDamaged(mcapRecord(6, chunk.substr(9, chunk.size() - 10)), "its records are longer than the chunk");
  expectDamaged(mcapRecord(6, ""), "a field is longer than its record");
}

TEST_F(HostileMcap, IsRefusedIfChunksUnpackToMuchMoreThanTheFile)
{
  const std::size_t large = 40 * limits::mebibyte;
  const std::string bomb = mcapChunk(packedByZstd(mcapRecord(0x80, std::string(large - 9, '\0'))), "zstd", large, 0);
  const Contents once = read(bomb + tf());
  EXPECT_EQ("", once.fatal);
  EXPECT_THAT(once.entries, SizeIs(1));
  expectRefused(
      bomb + bomb + tf(),
      " MiB, which is 100 times the size of the file and 64 MiB: if you trust it, unpack it yourself, as 'mcap "
      "decompress' does");
  expectRefused(mcapChunk(packedByZstd(tf()), "zstd", huge, 0),
                ": if you trust it, unpack it yourself, as 'mcap decompress' does");
}

TEST_F(HostileMcap, IsReadInLittleMemoryOverMuchThatIsNotRead)
{
  const std::string large(30 * limits::mebibyte, 'x');
  const std::string image = mcapChannel(2, 0, "/image", "cdr") + mcapMessage(2, begin, large);
  read(image + mcapChunk(image + tf(), "zstd") + mcapChunk(image + tf(begin + 1000000000), "") +
       tf(begin + 2000000000));
  const auto isRead = [&] { return contentsOf(path()).entries.size() == 3; };
  EXPECT_EXIT(runLimited(20 * limits::mebibyte, anyFile, isRead), testing::ExitedWithCode(0), "");
}

TEST_F(HostileMcap, RefusesMessagesThatAreTooLongOneByOne)
{
  const Contents contents =
      read(tf() + mcapMessage(1, begin + 1, std::string(2 * limits::mebibyte, 'x')) + tf(-5) + tf(begin + 1000000000));
  EXPECT_THAT(contents.entries, SizeIs(2));
  EXPECT_THAT(contents.badLines, ElementsAre(HasSubstr("/tf: message 3: its time is no count of nanoseconds"),
                                             HasSubstr("/tf: message 2: has 2097152 bytes, too many for its type")));
}

TEST_F(HostileMcap, IsRefusedIfItsOrderNeedsTooMuchMemory)
{
  // Each chunk begins with an early message, so that all of them are read at once.
  const std::string data(100000, 'x');
  std::string chunks;
  for (int i = 0; i < 150; ++i)
  {
    std::string records = mcapMessage(1, begin, data);
    for (int j = 0; j < 10; ++j)
      records += mcapMessage(1, begin + 1000000000LL * i + j, data);
    chunks += mcapChunk(records, "");
  }
  const Contents contents = read(chunks);
  EXPECT_EQ(path() + ": its messages are out of order over more than 128 MiB: sort them first, as 'mcap sort' does",
            contents.fatal);
}

TEST_F(HostileMcap, IsRefusedIfOneOfItsChunksNeedsTooMuchMemory)
{
  std::string records;
  for (int i = 0; i < 129; ++i)
    records += mcapMessage(1, begin + i, std::string(limits::mebibyte, 'x'));
  const std::string fatal = read(mcapChunk(records, "")).fatal;
  EXPECT_THAT(fatal, HasSubstr(": the chunk at byte "));
  EXPECT_THAT(fatal, EndsWith(" holds more than 128 MiB of messages that are read: write the bag in smaller chunks"));
}

TEST_F(HostileMcap, IsRefusedIfItsTopicsContradictEachOther)
{
  expectDamaged(mcapSchema(0, "x"), "a type has the number 0, which means none");
  expectDamaged(mcapSchema(1, "x"), "the type 1 has two names");
  expectDamaged(mcapChannel(2, 7, "/tf"), "the topic '/tf' has the type 7, which is not declared before it");
  expectDamaged(mcapChannel(1, 1, "/other"), "the channel 1 is declared twice, with different topics");
  expectDamaged(mcapMessage(9, begin, ""), "a message is of the channel 9, which is not declared before it");
  expectDamaged(mcapRecord(5, "short"), "a field is longer than its record");
  expectDamaged(mcapSchema(2, std::string(1025, 'x')), "the name of a type is longer than 1024 bytes");
  expectDamaged(mcapChannel(2, 1, std::string(1025, 'x')), "the name of a topic is longer than 1024 bytes");
  expectDamaged(mcapRecord(3, mcapNumber(std::uint16_t{2}) + mcapNumber(std::uint32_t{1000}) + "x"),
                "a field is longer than its record");
}

TEST_F(HostileMcap, IsRefusedIfItHasTooManyTopics)
{
  std::string channels;
  for (int i = 2; i <= 10001; ++i)
    channels += mcapChannel(static_cast<std::uint16_t>(i), 1, "/t" + std::to_string(i));
  expectRefused(channels, ": has more than 10000 topics");
  std::string schemas;
  for (int i = 2; i <= 10001; ++i)
    schemas += mcapSchema(static_cast<std::uint16_t>(i), "t");
  expectRefused(schemas, ": has more than 10000 types");
}

TEST_F(HostileMcap, TakesARecordThatIsLongerThanTheFileForACut)
{
  for (const std::uint64_t length : {huge, huge - 1, std::uint64_t{1} << 63U, std::uint64_t{1000}})
    for (const char opcode : {'\3', '\4', '\5', '\6', '\x0f', '\x10'})
    {
      const Contents contents = read(tf() + std::string(1, opcode) + mcapNumber(length) + "abc", "");
      EXPECT_EQ("", contents.fatal);
      EXPECT_THAT(contents.entries, SizeIs(1));
      EXPECT_THAT(contents.warnings, testing::Contains(HasSubstr("ends early")));
    }
}

TEST_F(HostileMcap, CanBeInterrupted)
{
  std::string chunks;
  for (int i = 0; i < 300; ++i)
    chunks += mcapChunk(tf(begin + i), "zstd");
  read(chunks);
  for (const int most : {1, 10, 100, 400})
  {
    int asked = 0;
    const KV::recordings::InterruptionCheck check([&] {
      if (++asked == most)
        throw Ended();
    });
    EXPECT_THROW(contentsOf(path()), Ended);
    EXPECT_EQ(most, asked);
  }
}

TEST_F(HostileMcap, NeedsNoLargeWindow)
{
  // A part of zstd that asks for a window of 128 MiB: the descriptor is 17 << 3.
  const std::string window = "\x28\xB5\x2F\xFD" + std::string(1, '\0') + "\x88" + "\1\0\0";
  expectDamaged(
      mcapChunk(window, "zstd", 10, 0),
      "its compressed data are damaged: they need more than 64 MiB of memory at once: if you trust them, unpack "
      "them yourself");
}

}  // namespace
