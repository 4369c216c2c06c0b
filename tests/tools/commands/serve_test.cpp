#include "libsession/entries.hpp"
#include "serve/openbrowser.hpp"
#include "support/childprocess.hpp"
#include "support/httpexchange.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/session/player.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using namespace livetests;
using namespace replaytests;
using Json = nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

/// A run of `skeigiot serve`, and requests to it.
class Served
{
public:
  explicit Served(std::vector<std::string> arguments) : process(withCommand(std::move(arguments)))
  {
    const std::string address = process.readLine();
    const std::string begin = "http://127.0.0.1:";
    port = address.rfind(begin, 0) == 0 ? std::atoi(address.c_str() + begin.size()) : 0;
    token = address.substr(std::min(address.size(), address.find("token=") + 6));
  }

  std::string request(const std::string& method, const std::string& path, const std::string& body = "") const
  {
    return method + " " + path + "?token=" + token + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  }

  std::string get(const std::string& path) const { return livetests::exchange(port, request("GET", path)); }
  std::string order(const std::string& json) const
  {
    return livetests::exchange(port, request("POST", "/order", json));
  }

  /// Follows the events until the text comes, and returns them.
  std::vector<Json> newsUntil(const std::string& text) const
  {
    RawConnection connection(port);
    connection.send(request("GET", "/events"));
    std::istringstream lines(connection.readUntil(text));
    std::vector<Json> news;
    bool isFacts = false;
    for (std::string line; std::getline(lines, line); isFacts = line == "event: facts")
    {
      const Json event =
          line.rfind("data: ", 0) == 0 && !isFacts ? Json::parse(line.substr(6), nullptr, false) : Json();
      if (event.is_object())
        news.push_back(event);
    }
    return news;
  }

  int end() const
  {
    process.signal(SIGINT);
    return const_cast<ChildProcess&>(process).wait();
  }

  ChildProcess process;
  int port = 0;
  std::string token;

private:
  static std::vector<std::string> withCommand(std::vector<std::string> arguments)
  {
    arguments.insert(arguments.begin(), "serve");
    return arguments;
  }
};

std::string smile(std::int32_t person, float value)
{
  KV::recordings::Step step = seenAt(0., person, value);
  const std::string timed = KV::recordings::stepToJson(step);
  return "{" + timed.substr(timed.find(',') + 1) + "\n";
}

struct StateLog : KV::session::SessionObserver
{
  void personUpdated(const KV::session::Snapshot& snapshot) override
  {
    states[{snapshot.person, snapshot.sinceStart.count()}] = {snapshot.valence.value, snapshot.valence.confidence,
                                                              snapshot.attention.value, snapshot.attention.confidence};
  }
  std::map<std::pair<std::int32_t, std::int64_t>, std::vector<float>> states;
};

TEST(Serve, ShowsThePersonsOfLines)
{
  const Served served({"-"});
  ASSERT_NE(0, served.port);
  EXPECT_EQ(200, statusOf(served.get("/")));
  served.process.write(smile(12, 1.f));
  const std::vector<Json> news = served.newsUntil("\"id\":12");
  bool isTold = false;
  for (const Json& one : news)
    isTold = isTold || (one.contains("persons") && one["persons"][0]["id"] == 12);
  EXPECT_TRUE(isTold);
  EXPECT_EQ(0, served.end());
}

TEST(Serve, EndsWhileSomebodyFollowsTheEvents)
{
  const Served served({});
  RawConnection connection(served.port);
  connection.send(served.request("GET", "/events"));
  connection.readUntil("\"input\"");
  EXPECT_EQ(0, served.end());
  EXPECT_THAT(connection.readAll(), HasSubstr("event: end"));
}

TEST(Serve, StaysWhenTheInputHasEnded)
{
  Served served({"-"});
  served.process.write(smile(3, 1.f));
  served.process.closeInput();
  EXPECT_FALSE(served.newsUntil("\"ended\":true").empty());
  EXPECT_EQ(200, statusOf(served.get("/")));
  EXPECT_EQ(0, served.end());
}

TEST(Serve, ReportsWhatIsWrongWithALine)
{
  const Served served({"-"});
  served.process.write("{\"person\":\"Ada\"}\n");
  EXPECT_FALSE(served.newsUntil("line 1: person").empty());
  EXPECT_EQ(0, served.end());
}

TEST(Serve, ReportsHowOldReadingsAreWhenTheyArrive)
{
  const Served served({"-"});
  const auto now = std::chrono::system_clock::now() - std::chrono::milliseconds(500);
  const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(now.time_since_epoch()).count();
  served.process.write("{\"time\":" + std::to_string(nanoseconds) + "," + smile(3, 1.f).substr(1));
  double delay = 0.;
  for (const Json& news : served.newsUntil("\"delay\":0."))
    if (news.contains("input") && news["input"]["delay"].is_number())
      delay = news["input"]["delay"];
  EXPECT_GE(delay, 0.5);
  EXPECT_LT(delay, 10.);
  EXPECT_EQ(0, served.end());
}

TEST(Serve, JudgesScopesOfThePage)
{
  const Served served({"-"});
  EXPECT_EQ(200, statusOf(served.order(R"({"startScope":"greeting"})")));
  served.process.write(smile(3, 1.f));
  served.newsUntil("\"id\":3");
  EXPECT_EQ(200, statusOf(served.order(R"({"stopScope":"greeting"})")));
  Json verdicts;
  for (const Json& news : served.newsUntil("\"verdicts\":[{\"number\":1"))
    verdicts = news.value("verdicts", verdicts);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ("greeting", verdicts[0]["scope"]);
  EXPECT_EQ(3, verdicts[0]["persons"][0]["id"]);
  EXPECT_THAT(bodyOf(served.get("/recording.jsonl")), HasSubstr("\"stop\":[\"greeting\"]"));
  EXPECT_EQ(0, served.end());
}

TEST(Serve, RefusesScopesWhereNoTimeIsKnown)
{
  const Served served({"-", "--times", "lines"});
  const std::string answer = served.order(R"({"startScope":"greeting"})");
  EXPECT_EQ(409, statusOf(answer));
  EXPECT_THAT(bodyOf(answer), HasSubstr("no line has come in yet"));
  EXPECT_EQ(0, served.end());
}

TEST(Serve, SavesARecordingThatReplaysToTheStatesOfThePage)
{
  const Served served({"-"});
  std::vector<Json> news;
  std::thread sender([&] {
    for (int i = 0; i < 40; ++i)
    {
      served.process.write(smile(1, static_cast<float>(i % 7) / 7.f) + smile(2, static_cast<float>(i % 3) / 3.f));
      std::this_thread::sleep_for(std::chrono::milliseconds(20));  // arrival is by the wall clock
      if (i == 10)
        served.order(R"({"boundary":"boundary-positive","value":0.9})");
      if (i == 20)
        served.order(R"({"putBack":true})");
    }
    served.process.write(smile(99, 0.f));
  });
  news = served.newsUntil("\"id\":99");
  sender.join();

  StateLog log;
  std::istringstream saved(bodyOf(served.get("/recording.jsonl")));
  KV::session::Player({}).play([&] { return KV::recordings::openRecording(saved, "saved", "jsonl", {}); }, {&log});

  std::size_t compared = 0;
  for (const Json& one : news)
    for (const Json& person : one.value("persons", Json::array()))
    {
      const auto state = log.states.find({person["id"], person["time"]});
      ASSERT_NE(log.states.end(), state) << person;
      const std::vector<float> shown{person["valence"][0].get<float>(), person["valence"][1].get<float>(),
                                     person["attention"][0].get<float>(), person["attention"][1].get<float>()};
      EXPECT_EQ(state->second, shown) << person;
      ++compared;
    }
  EXPECT_GT(compared, 10U);
  EXPECT_EQ(0, served.end());
}

TEST(Serve, PlaysARecordingAtASpeedAndMakesAReportOfIt)
{
  const TemporaryFolder folder;
  std::string lines;
  for (int i = 0; i < 100; ++i)
    lines += KV::recordings::stepToJson(seenAt(0.1 * i, 5, 1.f)) + "\n";
  const Served served({folder.write("smile.jsonl", lines), "--speed", "100"});
  EXPECT_FALSE(served.newsUntil("\"ended\":true").empty());
  const std::string report = served.get("/report.html");
  EXPECT_EQ(200, statusOf(report));
  EXPECT_THAT(report, HasSubstr("filename=\"report.html\""));
  EXPECT_THAT(bodyOf(report), HasSubstr("smile.jsonl"));
  const std::string answer = served.order(R"({"startScope":"late"})");
  EXPECT_EQ(409, statusOf(answer));
  EXPECT_THAT(bodyOf(answer), HasSubstr("the recording has ended"));
  EXPECT_EQ(0, served.end());
}

TEST(Serve, SaysWhyThereIsNoReportYet)
{
  const Served served({"-"});
  EXPECT_EQ("Nothing has come in yet.\n", bodyOf(served.get("/report.html")));
  EXPECT_EQ(0, served.end());
}

TEST(OpenedBrowser, IsGivenAFileThatLeadsToThePageAndNoSecretOnItsCommandLine)
{
  const TemporaryFolder folder;
  const std::string script =
      folder.write("xdg-open", "#!/bin/sh\ncp \"$1\" " + folder.path("page") + "\ncut -d ' ' -f 6 /proc/$$/stat >" +
                                   folder.path("session") + "\necho \"$1\" >" + folder.path("opened") + "\n");
  ASSERT_EQ(0, mkfifo(folder.path("opened").c_str(), 0600));
  pollfd opened{::open(folder.path("opened").c_str(), O_RDWR | O_CLOEXEC), POLLIN,
                0};  // also written, so that it opens at once
  ASSERT_LE(0, opened.fd);
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  const std::string before = std::getenv("PATH");
  setenv("PATH", (folder.path("") + ":" + before).c_str(), 1);
  setenv("XDG_RUNTIME_DIR", folder.path("").c_str(), 1);
  std::string file;
  {
    const KV::tools::OpenedBrowser browser("http://127.0.0.1:1/?token=secret");
    ASSERT_EQ(1, ::poll(&opened, 1, 20'000)) << "the browser is not opened";
    std::array<char, 4096> line{};
    file.assign(line.data(),
                static_cast<std::size_t>(std::max<ssize_t>(::read(opened.fd, line.data(), line.size()), 1)));
    EXPECT_THAT(file, Not(HasSubstr("secret")));
    EXPECT_THAT(folder.read("page"), HasSubstr("url=http://127.0.0.1:1/?token=secret"));
    EXPECT_LT(0, std::atoi(folder.read("session").c_str()));
    EXPECT_NE(getsid(0), std::atoi(folder.read("session").c_str())) << "Ctrl-C would end the browser";
    file.pop_back();
    EXPECT_EQ(std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
              std::filesystem::status(file).permissions());
  }
  ::close(opened.fd);
  EXPECT_FALSE(std::filesystem::exists(file));
  setenv("PATH", before.c_str(), 1);
  unsetenv("XDG_RUNTIME_DIR");
  std::signal(SIGCHLD, SIG_DFL);  // other tests wait for their processes
}

}  // namespace
