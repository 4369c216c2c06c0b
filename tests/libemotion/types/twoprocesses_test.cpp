#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/systemclock.hpp>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <sstream>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{

using Bytes = std::vector<std::uint8_t>;

struct Pipe
{
  Pipe() { EXPECT_EQ(0, ::pipe(ends.data())); }
  ~Pipe()
  {
    closeRead();
    closeWrite();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int readEnd() const { return ends[0]; }
  int writeEnd() const { return ends[1]; }
  void closeRead() { close(ends[0]); }
  void closeWrite() { close(ends[1]); }

private:
  static void close(int& end)
  {
    if (end >= 0)
      ::close(end);
    end = -1;
  }

  std::array<int, 2> ends = {-1, -1};
};

struct Outcome
{
  int status;
  std::string output;  ///< standard output and error
};

std::string readAll(int descriptor)
{
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
    text.append(buffer.data(), static_cast<std::size_t>(count));
  return text;
}

/// Runs the reader in a process of its own and sends it the bytes; they have to fit into a pipe (64 KiB).
Outcome readElsewhere(const std::string& className, const Bytes& bytes)
{
  Pipe input;
  Pipe output;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.readEnd(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.writeEnd(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.writeEnd(), STDERR_FILENO);
  for (const int end : {input.readEnd(), input.writeEnd(), output.readEnd(), output.writeEnd()})
    posix_spawn_file_actions_addclose(&actions, end);

  std::string program = RECORD_READER;
  std::string argument = className;
  std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
  pid_t process = 0;
  const int error = ::posix_spawn(&process, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0)
    return {-1, "cannot start " + program};

  input.closeRead();
  output.closeWrite();
  EXPECT_EQ(static_cast<ssize_t>(bytes.size()), ::write(input.writeEnd(), bytes.data(), bytes.size()));
  input.closeWrite();
  const std::string text = readAll(output.readEnd());
  int status = 0;
  EXPECT_EQ(process, ::waitpid(process, &status, 0));
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

std::string line(const std::string& path, float number)
{
  return path + ' ' + ko::json::encode(ko::Value::from(number)) + '\n';
}

std::string lines(const std::string& path, const KV::ValueConfidence<float>& value)
{
  return line(path + ".value", value.value) + line(path + ".confidence", value.confidence);
}

/// The text that the reader must print of a state, made by the state's own queries.
std::string expectedLines(const KV::PersonState& state)
{
  const KV::BodyLanguageEase ease = state.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription);
  const KV::Expressions expressions = state.expressions();
  return lines("valence", state.personValence()) + lines("attention", state.personAttention()) +
         line("bodyLanguageState.ease.level", ease.level) + line("bodyLanguageState.ease.confidence", ease.confidence) +
         lines("smile", state.smile().smile()) + lines("expressions.calm", expressions.calm) +
         lines("expressions.anger", expressions.anger) + lines("expressions.joy", expressions.joy) +
         lines("expressions.sorrow", expressions.sorrow) + lines("expressions.laughter", expressions.laughter) +
         lines("expressions.excitement", expressions.excitement) + lines("expressions.surprise", expressions.surprise);
}

/// Returns a person who was seen smiling, with the head held up.
KV::Person observedPerson()
{
  ko::ManualClock clock(ko::SystemClock::time_point(boost::chrono::seconds(1700000000)));
  const ko::ScopedClockSource scope(clock);
  KV::Expressions expressions;
  expressions.joy = {0.75f, 0.5f};
  KV::PersonObservation observation;
  observation.smile = KV::Timestamped<KV::Smile>(clock.now(), KV::Smile(0.8f, 0.9f));
  observation.headPosture = KV::Timestamped<KV::HeadPosture>(clock.now(), KV::HeadPosture(0.f, 10.f, 0.f));
  observation.expressions = KV::Timestamped<KV::Expressions>(clock.now(), expressions);
  KV::Person person(7);
  person.update(observation);
  return person;
}

TEST(TwoProcesses, ShareAStateByItsClassNameAlone)
{
  const KV::Person person = observedPerson();
  ASSERT_EQ(0.8f, person.personState.smile().value);
  ASSERT_NE(0.f, person.personState.personValence().value);

  const Outcome outcome = readElsewhere("::KV::PersonState", ko::cbor::encode(ko::Value::from(person.personState)));
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(expectedLines(person.personState), outcome.output);
}

TEST(TwoProcesses, ReportAnotherRecord)
{
  const Outcome outcome = readElsewhere("KV::Gaze", ko::cbor::encode(ko::Value::from(KV::Smile(0.5f, 1.f))));
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("::KV::Gaze has the members (yaw, pitch), the other side has (confidence, value)\n", outcome.output);
}

}  // namespace
