#include "libsession/entries.hpp"

#include <skeigiot/recordings/observationjson.hpp>

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

// The command in a terminal of the test's own: what it draws is looked for as text between the marks of the terminal.

namespace
{

using namespace replaytests;
using testing::HasSubstr;

constexpr int patience = 20'000;  // [ms] no test takes that long: it is for a program that hangs
const std::string leavesThePage = "\033[?1049l";

class WatchProcess : public ::testing::Test
{
protected:
  WatchProcess()
  {
    std::array<int, 2> ends{};
    EXPECT_EQ(0, pipe2(ends.data(), O_CLOEXEC));
    winsize size{24, 120, 0, 0};
    _process = forkpty(&_terminal, nullptr, nullptr, &size);
    if (_process == 0)
    {
      dup2(ends[0], STDIN_FILENO);
      execle(SKEIGIOT_COMMAND, "skeigiot", "watch", "--times", "lines", nullptr, environment());
      _exit(127);
    }
    close(ends[0]);
    _input = ends[1];
    tcgetattr(_terminal, &_before);
  }

  ~WatchProcess() override
  {
    closeInput();
    if (_process != 0)
    {
      kill(_process, SIGKILL);
      waitpid(_process, nullptr, 0);
    }
    close(_terminal);
  }

  void write(const std::string& text) const
  {
    EXPECT_EQ(static_cast<ssize_t>(text.size()), ::write(_input, text.data(), text.size()));
  }
  void press(char key) const { EXPECT_EQ(1, ::write(_terminal, &key, 1)); }
  void signal(int number) const { kill(_process, number); }

  void closeInput()
  {
    if (_input >= 0)
      close(_input);
    _input = -1;
  }

  void resize(unsigned short columns) const
  {
    const winsize size{24, columns, 0, 0};
    ioctl(_terminal, TIOCSWINSZ, &size);
  }

  /// Waits until the text was drawn since the last call, and returns whether it was.
  bool sees(const std::string& text)
  {
    while (_drawn.find(text) == std::string::npos)
    {
      pollfd descriptor{_terminal, POLLIN, 0};
      std::array<char, 4096> piece{};
      if (poll(&descriptor, 1, patience) <= 0)
        return false;
      const ssize_t count = read(_terminal, piece.data(), piece.size());
      if (count <= 0)
        return false;
      _drawn.append(piece.data(), static_cast<std::size_t>(count));
    }
    _drawn.erase(0, _drawn.find(text) + text.size());
    return true;
  }

  /// Waits for its end; returns its exit status, or minus the signal that ended it.
  int status()
  {
    int waited = 0;
    waitpid(_process, &waited, 0);
    _process = 0;
    return WIFSIGNALED(waited) ? -WTERMSIG(waited) : WEXITSTATUS(waited);
  }

  /// Tells whether the terminal echoes and edits lines again as it did before.
  bool isRestored()
  {
    termios now{};
    tcgetattr(_terminal, &now);
    return now.c_lflag == _before.c_lflag && now.c_iflag == _before.c_iflag && now.c_oflag == _before.c_oflag;
  }

private:
  static char* const* environment()
  {
    static std::array<char, 11> term{"TERM=xterm"};
    static std::array<char*, 2> variables{term.data(), nullptr};
    return variables.data();
  }

  pid_t _process = 0;
  int _terminal = -1;
  int _input = -1;
  termios _before{};
  std::string _drawn;
};

std::string lineAbout(std::int32_t person)
{
  return KV::recordings::stepToJson(seenAt(0., person)) + "\n";
}

TEST_F(WatchProcess, ShowsARowForEachPersonUntilItIsQuit)
{
  ASSERT_TRUE(sees("q quits"));
  write(lineAbout(12) + lineAbout(345));
  EXPECT_TRUE(sees("12"));
  EXPECT_TRUE(sees("LookingAtRobot"));
  EXPECT_TRUE(sees("345"));
  EXPECT_TRUE(sees("LookingAtRobot"));
  press('q');
  EXPECT_TRUE(sees(leavesThePage));
  EXPECT_EQ(0, status());
  EXPECT_TRUE(isRestored());
}

TEST_F(WatchProcess, ShowsWhatMovedAPersonMost)
{
  resize(200);
  write(lineAbout(12));
  EXPECT_TRUE(sees(", valence +"));
  EXPECT_TRUE(sees(" by face characteristics"));
  press('q');
  EXPECT_EQ(0, status());
}

TEST_F(WatchProcess, ShowsWhatIsWrongWithALine)
{
  write("{\"person\":\"Ada\"}\n");
  EXPECT_TRUE(sees("line 1: time: is missing"));
  press('q');
  EXPECT_EQ(0, status());
}

TEST_F(WatchProcess, SaysAtItsEndWhatItLeftOut)
{
  KV::recordings::Step entry = seenAt(0., 12);
  entry.observation.smile->value.value = std::numeric_limits<float>::quiet_NaN();
  write(KV::recordings::stepToJson(entry) + "\n");
  ASSERT_TRUE(sees("LookingAtRobot"));
  press('q');
  EXPECT_TRUE(sees(leavesThePage));
  EXPECT_TRUE(sees("left out 1 reading with numbers that are not finite"));
  EXPECT_EQ(0, status());
}

TEST_F(WatchProcess, StaysWhenItsInputEnds)
{
  write(lineAbout(12));
  closeInput();
  EXPECT_TRUE(sees("the input has ended"));
  press('q');
  EXPECT_TRUE(sees(leavesThePage));
  EXPECT_EQ(0, status());
}

TEST_F(WatchProcess, DrawsThePageAnewInAnotherSize)
{
  write(lineAbout(12));
  ASSERT_TRUE(sees("LookingAtRobot"));
  resize(200);
  EXPECT_TRUE(sees("LookingAtRobot")) << "on a wide terminal the zone stands further to the right";
  press('q');
  EXPECT_EQ(0, status());
}

TEST_F(WatchProcess, GivesTheTerminalBackWhenItIsTerminated)
{
  ASSERT_TRUE(sees("q quits"));
  signal(SIGTERM);
  EXPECT_TRUE(sees(leavesThePage));
  EXPECT_EQ(-SIGTERM, status());
  EXPECT_TRUE(isRestored());
}

TEST_F(WatchProcess, GivesTheTerminalBackWhenItIsInterruptedByAKey)
{
  ASSERT_TRUE(sees("q quits"));
  press('\003');
  EXPECT_TRUE(sees(leavesThePage));
  EXPECT_EQ(-SIGINT, status());
  EXPECT_TRUE(isRestored());
}

}  // namespace
