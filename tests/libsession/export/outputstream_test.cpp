#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/outputstream.hpp>

#include <gtest/gtest.h>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using KV::session::OutputStream;
using KV::session::WriteError;
using replaytests::TemporaryFolder;

/// A file descriptor that is closed at the end of a test.
class Descriptor
{
public:
  explicit Descriptor(int number) : _number(number) {}
  ~Descriptor() { close(_number); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return _number; }

private:
  int _number;
};

TEST(OutputStream, WritesAllThatIsFlushed)
{
  const TemporaryFolder folder;
  const Descriptor file(open(folder.path("file").c_str(), O_WRONLY | O_CREAT, 0600));
  const std::string large(200'000, 'x');
  OutputStream stream(file.number(), "file");
  stream << "a" << large << 12 << std::flush;
  EXPECT_EQ("a" + large + "12", folder.read("file"));
}

TEST(OutputStream, SaysWhyItCannotWrite)
{
  const Descriptor full(open("/dev/full", O_WRONLY));
  OutputStream stream(full.number(), "export.csv");
  stream << "text";
  EXPECT_EQ("export.csv: No space left on device",
            support::textThrownBy<WriteError>([&stream] { stream << std::flush; }));
}

TEST(OutputStream, SaysSoAsSoonAsItsBufferIsFull)
{
  const Descriptor full(open("/dev/full", O_WRONLY));
  OutputStream stream(full.number(), "export.csv");
  EXPECT_THROW(stream << std::string(200'000, 'x'), WriteError);
}

TEST(OutputStream, DistinguishesAClosedPipeFromAFault)
{
  const auto former = std::signal(SIGPIPE, SIG_IGN);
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  close(ends[0]);
  const Descriptor writing(ends[1]);
  OutputStream stream(writing.number(), "pipe");
  try
  {
    stream << "text" << std::flush;
    ADD_FAILURE() << "no exception";
  }
  catch (const WriteError& error)
  {
    EXPECT_TRUE(error.pipeClosed());
  }
  std::signal(SIGPIPE, former);
}

}  // namespace
