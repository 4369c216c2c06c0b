#include "serve/pageserver.hpp"
#include "libsession/entries.hpp"
#include "support/httpexchange.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace
{

using namespace livetests;
using KV::tools::EventLog;
using KV::tools::OrderAnswer;
using KV::tools::PageServer;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int notFound = 404;
constexpr int notAllowed = 405;
constexpr int tooLarge = 413;
constexpr int wrongForm = 415;
constexpr int failed = 500;
constexpr int busy = 503;

class PageServerTest : public ::testing::Test
{
protected:
  PageServerTest() { start(PageServer::Options()); }
  ~PageServerTest() override { log.close(); }

  void start(const PageServer::Options& options)
  {
    server.reset();
    server = std::make_unique<PageServer>(
        options, log,
        KV::tools::ServedSession{"<script nonce=\"{nonce}\">page</script>",
                                 [this](const std::string& json) {
                                   ++orders;
                                   lastOrder = json;
                                   return OrderAnswer();
                                 },
                                 [this] { return broken ? *broken : recording.part(); },
                                 []() -> std::string { throw std::runtime_error("Nothing has come in yet."); }});
  }

  std::string host() const { return "127.0.0.1:" + std::to_string(server->port()); }
  std::string withToken(const std::string& path) const { return path + "?token=" + server->token(); }

  /// Returns a request with these headers besides Host, each with its line end.
  std::string request(const std::string& method, const std::string& target, const std::string& headers = "",
                      const std::string& body = "") const
  {
    return method + " " + target + " HTTP/1.1\r\nHost: " + host() + "\r\n" + headers +
           (body.empty() ? "" : "Content-Length: " + std::to_string(body.size()) + "\r\n") + "\r\n" + body;
  }

  std::string get(const std::string& path, const std::string& headers = "") const
  {
    return exchange(server->port(), request("GET", withToken(path), headers));
  }

  std::string post(const std::string& body, const std::string& headers = "") const
  {
    return exchange(server->port(), request("POST", withToken("/order"), headers, body));
  }

  /// Asks until a place is free.
  template <typename Ask>
  static bool isServedAgain(Ask&& ask)
  {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < end)
      if (statusOf(ask()) == ok)
        return true;
    return false;
  }

  EventLog log;
  KV::session::LiveRecording recording{::testing::TempDir()};
  std::optional<KV::session::LiveRecording::Part> broken;  // served in place of the recording
  std::atomic<int> orders = 0;
  std::string lastOrder;
  std::unique_ptr<PageServer> server;
};

TEST_F(PageServerTest, ServesThePageWithANumberForItsOwnScriptAlone)
{
  const std::string answer = get("/");
  EXPECT_EQ(ok, statusOf(answer));
  const std::size_t begin = bodyOf(answer).find('"') + 1;
  const std::string nonce = bodyOf(answer).substr(begin, 32);
  EXPECT_THAT(answer, HasSubstr("script-src 'nonce-" + nonce + "'"));
  EXPECT_THAT(answer, HasSubstr("default-src 'none'"));
  EXPECT_THAT(answer, Not(HasSubstr("unsafe")));
  EXPECT_THAT(bodyOf(get("/")), Not(HasSubstr(nonce))) << "each page has a number of its own";
}

/// A server of a page with a camera, whose files lie in a folder for a test.
class PageServerWithACamera : public PageServerTest
{
protected:
  PageServerWithACamera()
  {
    std::ofstream(folder.path("face_mesh.js")) << "mesh";
    std::ofstream(folder.path("secret.txt")) << "secret";
    std::ofstream(folder.path("video"), std::ios::binary) << "0123456789";
    serve(nullptr);
  }

  void serve(std::shared_ptr<const KV::tools::FaceModel> model)
  {
    server.reset();
    KV::tools::ServedCamera camera;
    camera.folder = folder.path("");
    camera.model = std::move(model);
    camera.video = folder.path("video");
    camera.rate = 12.5;
    camera.frame = [](const std::string& json) {
      return json == "{}" ? OrderAnswer{ok, "{\"time\":1}"} : OrderAnswer{badRequest, "page: is missing"};
    };
    server = std::make_unique<PageServer>(
        PageServer::Options(), log,
        KV::tools::ServedSession{"<html data-camera=\"{camera}\" data-model=\"{model}\">",
                                 [](const std::string&) { return OrderAnswer(); }, [this] { return recording.part(); },
                                 []() -> std::string { return ""; }, camera});
  }

  std::string postFrame(const std::string& body) const
  {
    return exchange(server->port(), request("POST", withToken("/frame"), "", body));
  }

  const replaytests::TemporaryFolder folder;
};

TEST_F(PageServerWithACamera, LetsItsOwnScriptsAndWebAssemblyRunOnly)
{
  const std::string answer = get("/");
  EXPECT_THAT(bodyOf(answer), HasSubstr("data-camera=\"video 12.5\""));
  EXPECT_THAT(answer, HasSubstr("script-src 'self' 'wasm-unsafe-eval' 'nonce-"));
  EXPECT_THAT(answer, HasSubstr("connect-src 'self'; media-src 'self'; "));
  EXPECT_THAT(answer, Not(HasSubstr("'unsafe-eval'")));
}

TEST_F(PageServerWithACamera, ServesTheFilesOfTheCameraAndNoOthers)
{
  EXPECT_EQ("mesh", bodyOf(get("/camera/face_mesh.js")));
  EXPECT_THAT(get("/camera/face_mesh.js"), HasSubstr("Content-Type: text/javascript"));
  EXPECT_EQ(failed, statusOf(get("/camera/camera.js"))) << "is not there";
  for (const std::string path :
       {"/camera/secret.txt", "/camera/../secret.txt", "/camera/%2e%2e/secret.txt", "/camera/..%2fsecret.txt",
        "/camera/", "/camera/.", "/camera/..", "/camera//etc/passwd", "/camera/face_mesh.js%00.txt", "/secret.txt"})
    EXPECT_THAT(get(path), AllOf(HasSubstr(" 404 "), Not(HasSubstr("secret\n")))) << path;
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", "/camera/face_mesh.js"))));
}

TEST_F(PageServerWithACamera, ServesPartsOfTheVideo)
{
  EXPECT_EQ("0123456789", bodyOf(get("/video")));
  EXPECT_EQ("234", bodyOf(get("/video", "Range: bytes=2-4\r\n")));
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", "/video"))));
}

TEST_F(PageServerWithACamera, HasNoModelUnlessThereIsOne)
{
  EXPECT_THAT(bodyOf(get("/")), HasSubstr("data-model=\"\""));
  EXPECT_EQ(notFound, statusOf(get("/camera/model")));
}

TEST_F(PageServerWithACamera, ServesTheModelOfTheUserAndItsName)
{
  KV::tools::FaceModel model{"a \"<b>\" & {nonce}.task", std::string(200'000, 'm')};
  model.content += "the end";
  serve(std::make_shared<const KV::tools::FaceModel>(model));
  EXPECT_THAT(bodyOf(get("/")), HasSubstr("data-model=\"a &quot;&lt;b&gt;&quot; &amp; {nonce}.task\""));
  EXPECT_THAT(get("/camera/model"), HasSubstr("Content-Type: application/octet-stream"));
  EXPECT_EQ(model.content, bodyOf(get("/camera/model")));
  EXPECT_EQ("end", bodyOf(get("/camera/model", "Range: bytes=200004-200006\r\n")));
  EXPECT_EQ("mesh", bodyOf(get("/camera/face_mesh.js")));
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", "/camera/model"))));
  EXPECT_EQ(forbidden, statusOf(get("/camera/model", "Origin: http://evil.example\r\n")));
}

TEST_F(PageServerWithACamera, TakesFrames)
{
  EXPECT_EQ("{\"time\":1}", bodyOf(postFrame("{}")));
  EXPECT_EQ(badRequest, statusOf(postFrame("[]")));
  EXPECT_EQ("page: is missing\n", bodyOf(postFrame("[]")));
  EXPECT_EQ(tooLarge, statusOf(postFrame(std::string(70'000, '1'))));
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("POST", "/frame", "", "{}"))));
}

TEST_F(PageServerTest, HasNoCameraUnlessItIsAskedFor)
{
  for (const std::string path : {"/camera/face_mesh.js", "/video"})
    EXPECT_EQ(notFound, statusOf(get(path))) << path;
  EXPECT_EQ(notFound, statusOf(exchange(server->port(), request("POST", withToken("/frame"), "", "{}"))));
}

TEST_F(PageServerTest, LetsNoOtherPageReadShowOrFrameIt)
{
  for (const std::string path : {"/", "/recording.jsonl", "/nothing"})
  {
    const std::string answer = get(path);
    EXPECT_THAT(answer, Not(HasSubstr("Access-Control-Allow"))) << path;
    EXPECT_THAT(answer, HasSubstr("Content-Security-Policy: default-src 'none'")) << path;
    EXPECT_THAT(answer, HasSubstr("frame-ancestors 'none'")) << path;
    EXPECT_THAT(answer, HasSubstr("Cross-Origin-Resource-Policy: same-origin")) << path;
    EXPECT_THAT(answer, HasSubstr("Referrer-Policy: no-referrer")) << path;
    EXPECT_THAT(answer, HasSubstr("Cache-Control: no-store")) << path;
  }
}

TEST_F(PageServerTest, IsBoundToThisMachine)
{
  EXPECT_THAT(server->address(), HasSubstr("http://127.0.0.1:"));
  EXPECT_EQ(32U, server->token().size());
}

TEST_F(PageServerTest, SendsNothingWithoutTheToken)
{
  for (const std::string path : {"/", "/events", "/recording.jsonl", "/report.html", "/nothing", "/favicon.ico"})
  {
    EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", path)))) << path;
    EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", path + "?token=")))) << path;
    EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", path + "?token=" + std::string(32, '0')))));
  }
  const std::string cut = withToken("/").substr(0, withToken("/").size() - 1);
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", cut))));
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("POST", "/order", "", "{}"))));
  EXPECT_EQ(0, orders);
}

TEST_F(PageServerTest, RefusesForeignHosts)
{
  const std::string port = std::to_string(server->port());
  for (const std::string foreign : {"evil.example", "evil.example:", "127.0.0.1", "127.0.0.1:1", "evil.example:",
                                    "192.168.1.1:", "127.0.0.1.evil.example:", "localhost.evil.example:", "[::2]:",
                                    "127.0.0.1@evil.example:", "2130706433:", "0x7f.1:", ""})
  {
    const std::string name = !foreign.empty() && foreign.back() == ':' ? foreign + port : foreign;
    const std::string text = "GET " + withToken("/") + " HTTP/1.1\r\nHost: " + name + "\r\n\r\n";
    EXPECT_EQ(forbidden, statusOf(exchange(server->port(), text))) << name;
  }
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), "GET " + withToken("/") + " HTTP/1.1\r\n\r\n")));
  EXPECT_EQ(forbidden, statusOf(get("/", "Host: evil.example\r\n"))) << "two hosts";
}

TEST_F(PageServerTest, TakesItsOwnNames)
{
  const std::string port = std::to_string(server->port());
  for (const std::string name : {"127.0.0.1:", "localhost:", "[::1]:"})
  {
    const std::string text = "GET " + withToken("/") + " HTTP/1.1\r\nHost: " + name + port + "\r\n\r\n";
    EXPECT_EQ(ok, statusOf(exchange(server->port(), text))) << name;
  }
}

TEST_F(PageServerTest, RefusesForeignOrigins)
{
  for (const std::string& origin :
       {std::string("http://evil.example"), std::string("null"), std::string("http://127.0.0.1:1"),
        std::string("file://"), "https://" + host(), "http://" + host() + ".evil.example",
        "http://localhost:" + std::to_string(server->port())})
  {
    const std::string header = "Origin: " + origin + "\r\n";
    EXPECT_EQ(forbidden, statusOf(get("/events", header))) << origin;
    EXPECT_EQ(forbidden, statusOf(post("{}", header + "Origin: http://" + host() + "\r\n"))) << "two origins";
  }
  EXPECT_EQ(0, orders);
  EXPECT_EQ(ok, statusOf(post("{}", "Origin: http://" + host() + "\r\n")));
  EXPECT_EQ(1, orders);
}

TEST_F(PageServerTest, PassesOrdersOn)
{
  EXPECT_EQ(ok, statusOf(post(R"({"putBack":true})")));
  EXPECT_EQ(R"({"putBack":true})", lastOrder);
}

TEST_F(PageServerTest, RefusesOtherMethodsAndForms)
{
  for (const std::string method : {"PUT", "DELETE", "PATCH", "OPTIONS"})
    EXPECT_EQ(notAllowed, statusOf(exchange(server->port(), request(method, withToken("/"), "", "x")))) << method;
  EXPECT_EQ(badRequest, statusOf(exchange(server->port(), request("TRACE2", withToken("/")))));
  EXPECT_EQ(wrongForm, statusOf(post("x", "Content-Encoding: gzip\r\n"))) << "it may unpack to anything";
  EXPECT_EQ(wrongForm, statusOf(post("x", "Content-Type: multipart/form-data; boundary=x\r\n")));
  EXPECT_EQ(notFound, statusOf(exchange(server->port(), request("GET", withToken("/order")))));
  EXPECT_EQ(0, orders);
}

TEST_F(PageServerTest, RefusesABodyThatIsTooLarge)
{
  EXPECT_EQ(ok, statusOf(post(std::string(60'000, 'x'))));
  EXPECT_EQ(tooLarge, statusOf(post(std::string(70'000, 'x'))));
  EXPECT_EQ(tooLarge, statusOf(exchange(server->port(),
                                        request("POST", withToken("/order"), "Content-Length: 99999999999999\r\n"))));
  const std::string chunked = request("POST", withToken("/order"), "Transfer-Encoding: chunked\r\n");
  std::string chunks;
  for (int i = 0; i < 1000; ++i)
    chunks += "400\r\n" + std::string(1024, 'x') + "\r\n";
  EXPECT_NE(ok, statusOf(exchange(server->port(), chunked + chunks)));
  EXPECT_EQ(1, orders);
}

TEST_F(PageServerTest, EndsAHeadThatIsTooLarge)
{
  std::string headers;
  for (int i = 0; i < 100'000; ++i)
    headers += "X-" + std::to_string(i) + ": " + std::string(50, 'x') + "\r\n";
  EXPECT_NE(ok, statusOf(get("/", headers)));
  EXPECT_NE(ok, statusOf(get("/", "X: " + std::string(1 << 20, 'x') + "\r\n")));
  EXPECT_NE(ok, statusOf(get("/" + std::string(1 << 20, 'x'))));
  EXPECT_EQ(ok, statusOf(get("/")));
}

TEST_F(PageServerTest, SurvivesLongRanges)
{
  std::string ranges = "Range: bytes=0-0";
  while (ranges.size() < 7900)
    ranges += ",0-0";
  get("/", ranges + "\r\n");
  get("/", "Range: bytes=" + std::string(7900, '9') + "-\r\n");
  EXPECT_EQ(ok, statusOf(get("/")));
}

TEST_F(PageServerTest, KnowsNoFiles)
{
  for (const std::string path :
       {"/../../../../etc/passwd", "/..%2f..%2f..%2fetc%2fpasswd", "/%2e%2e/%2e%2e/etc/passwd", "//etc/passwd", "/.",
        "/recording.jsonl/..", "/etc/passwd%00.html", "/order/", "/events%00", "/ROOT", "\\..\\etc"})
  {
    const int status = statusOf(get(path));
    EXPECT_TRUE(status == notFound || status == badRequest) << path << ": " << status;
  }
}

TEST_F(PageServerTest, SurvivesWhatIsNotHttp)
{
  for (const std::string& text : {std::string("\r\n\r\n"), std::string("GET\r\n\r\n"), std::string(3000, '\0'),
                                  std::string("\x16\x03\x01\x02"), std::string("GET / HTTP/9.9\r\n\r\n"),
                                  std::string("GET / HTTP/1.1\nHost\n\n"), std::string("PRI * HTTP/2.0\r\n\r\n")})
  {
    RawConnection connection(server->port());
    connection.send(text);
    connection.readUntil("\r\n\r\n", std::chrono::milliseconds(100));
  }
  EXPECT_EQ(ok, statusOf(get("/")));
}

TEST_F(PageServerTest, SendsFactsAndThenEvents)
{
  log.setFacts(R"({"scopes":[]})");
  log.publish("first", EventLog::Clock::now());
  RawConnection client(server->port());
  client.send(request("GET", withToken("/events")));
  EXPECT_THAT(client.readUntil("first"), HasSubstr("event: facts\ndata: {\"scopes\":[]}\n\nid: 1\ndata: first\n\n"));
  log.publish("second", EventLog::Clock::now());
  EXPECT_THAT(client.readUntil("second"), HasSubstr("id: 2\ndata: second\n\n"));
  log.close();
  EXPECT_THAT(client.readAll(), HasSubstr("event: end\n"));
}

TEST_F(PageServerTest, GoesOnBehindTheEventThatAClientReadLast)
{
  for (const char* const text : {"first", "second", "third"})
    log.publish(text, EventLog::Clock::now());
  RawConnection client(server->port());
  client.send(request("GET", withToken("/events"), "Last-Event-ID: 2\r\n"));
  const std::string answer = client.readUntil("third");
  EXPECT_THAT(answer, HasSubstr("id: 3\ndata: third"));
  EXPECT_THAT(answer, Not(HasSubstr("second")));
}

TEST_F(PageServerTest, DropsAClientThatDoesNotRead)
{
  PageServer::Options options;
  options.reading = std::chrono::milliseconds(100);
  options.streams = 1;
  start(options);
  const std::string large(1 << 20, 'x');
  RawConnection slow(server->port());
  slow.send(request("GET", withToken("/events")));
  slow.readUntil("facts");
  for (int i = 0; i < 64; ++i)
    log.publish(large, EventLog::Clock::now());

  EXPECT_TRUE(isServedAgain([this] {
    RawConnection other(server->port());
    other.send(request("GET", withToken("/events")));
    return other.readUntil("\r\n\r\n");
  })) << "the place of the client that does not read becomes free";
}

TEST_F(PageServerTest, DropsAClientThatSendsSlowly)
{
  PageServer::Options options;
  options.sending = std::chrono::milliseconds(100);
  options.connections = 1;
  start(options);
  RawConnection slow(server->port());
  slow.send("GET / HTTP/1.1\r\nX: ");
  EXPECT_EQ(badRequest, statusOf(slow.readAll())) << "the server ends the connection";
  EXPECT_TRUE(isServedAgain([this] { return get("/"); }));
}

TEST_F(PageServerTest, TurnsAwayStreamsThatAreTooMany)
{
  PageServer::Options options;
  options.streams = 2;
  start(options);
  std::vector<std::unique_ptr<RawConnection>> streams;
  for (int i = 0; i < 2; ++i)
  {
    streams.push_back(std::make_unique<RawConnection>(server->port()));
    streams.back()->send(request("GET", withToken("/events")));
    EXPECT_EQ(ok, statusOf(streams.back()->readUntil("facts")));
  }
  EXPECT_EQ(busy, statusOf(get("/events")));
  EXPECT_EQ(ok, statusOf(get("/"))) << "the page itself is still served";
}

TEST_F(PageServerTest, SurvivesAThousandConnections)
{
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  const rlimit before = std::exchange(files, {files.rlim_max, files.rlim_max});
  setrlimit(RLIMIT_NOFILE, &files);
  std::vector<std::unique_ptr<RawConnection>> idle;
  for (int i = 0; i < 1000; ++i)
    idle.push_back(std::make_unique<RawConnection>(server->port()));
  EXPECT_EQ(busy, statusOf(idle.back()->readAll())) << "those that are too many are turned away at once";
  idle.clear();
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_TRUE(isServedAgain([this] { return get("/"); }));
}

TEST_F(PageServerTest, SendsTheRecordingSoFar)
{
  EXPECT_EQ("", bodyOf(get("/recording.jsonl")));
  recording.stepBegins(replaytests::seenAt(0., 3));
  const std::string answer = get("/recording.jsonl");
  EXPECT_THAT(answer, HasSubstr("Content-Disposition: attachment"));
  EXPECT_THAT(bodyOf(answer), HasSubstr("\"person\":3"));
  recording.stepBegins(replaytests::seenAt(1., 4));
  EXPECT_THAT(bodyOf(get("/recording.jsonl")), HasSubstr("\"person\":4"));
}

/// Makes the files of recordings, which have no name any more, unreadable.
void makeRecordingsUnreadable()
{
  std::vector<int> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
  {
    std::error_code error;
    const std::string file = std::filesystem::read_symlink(entry, error).string();
    if (!error && file.find("/skeigiot-") != std::string::npos && file.find(" (deleted)") != std::string::npos)
      found.push_back(std::stoi(entry.path().filename()));
  }
  const int unreadable = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  for (const int descriptor : found)
    ::dup3(unreadable, descriptor, O_CLOEXEC);
  ::close(unreadable);
  EXPECT_FALSE(found.empty());
}

TEST_F(PageServerTest, SurvivesARecordingThatCannotBeRead)
{
  recording.stepBegins(replaytests::seenAt(0., 3));
  broken = recording.part();
  makeRecordingsUnreadable();
  EXPECT_EQ("", bodyOf(get("/recording.jsonl")));
  EXPECT_EQ(ok, statusOf(get("/")));
}

TEST_F(PageServerTest, SaysWhyThereIsNoReport)
{
  const std::string answer = get("/report.html");
  EXPECT_EQ(failed, statusOf(answer));
  EXPECT_EQ("Nothing has come in yet.\n", bodyOf(answer));
}

TEST_F(PageServerTest, SaysWhereItCannotListen)
{
  PageServer::Options options;
  options.address = "192.0.2.1";
  EXPECT_THROW(PageServer(options, log, {}), std::runtime_error);
}

TEST_F(PageServerTest, TakesNumbersOfOtherMachinesWhereItListensToAll)
{
  PageServer::Options options;
  options.address = "0.0.0.0";
  start(options);
  const std::string port = std::to_string(server->port());
  const std::string target = "GET " + withToken("/") + " HTTP/1.1\r\nHost: ";
  EXPECT_EQ(ok, statusOf(exchange(server->port(), target + "192.168.1.5:" + port + "\r\n\r\n")));
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), target + "evil.example:" + port + "\r\n\r\n")));
  EXPECT_EQ(forbidden, statusOf(exchange(server->port(), request("GET", "/"))));
}

}  // namespace
