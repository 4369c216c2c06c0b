#include "libsession/entries.hpp"

#include <skeigiot/session/exportformat.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <sstream>

namespace
{

using namespace replaytests;

TEST(JsonlExport, HasAnObjectForEachUpdate)
{
  std::ostringstream file;
  const auto jsonl = KV::session::exportFormat("jsonl").make(file);
  KV::session::Snapshot snapshot = snapshotAt(1.25, 0.1f, 0.7f);
  snapshot.seen = false;
  snapshot.zone = ko::human::AttentionState::LookingAtRobot;
  jsonl->beginSession({1, "face.csv"});
  jsonl->personUpdated(snapshot);
  EXPECT_EQ(
      "{\"recording\":1,\"person\":0,\"time\":1.25,\"clock\":1577836801.25,\"seen\":false,\"valence\":0.1,"
      "\"valence_confidence\":1,\"valence_binary\":0,\"unsmoothed_valence_binary\":0,"
      "\"unsmoothed_valence_confidence\":0,\"attention\":0.7,\"attention_confidence\":1,\"zone\":\"LookingAtRobot\","
      "\"pleasure\":\"neutral\",\"ease\":0,\"ease_confidence\":0,"
      "\"valence_known\":true,\"attention_known\":true,\"file\":\"face.csv\"}\n",
      file.str());
}

TEST(JsonlExport, HasNoClockWhereTheRecordingHasNoDate)
{
  std::ostringstream file;
  const auto jsonl = KV::session::exportFormat("jsonl").make(file);
  KV::session::Snapshot snapshot = snapshotAt(1.25);
  snapshot.isDated = false;
  jsonl->personUpdated(snapshot);
  EXPECT_TRUE(nlohmann::json::parse(file.str()).at("clock").is_null());
}

TEST(JsonlExport, IsJsonEvenForWhatIsNoNumber)
{
  std::ostringstream file;
  const auto jsonl = KV::session::exportFormat("jsonl").make(file);
  jsonl->beginSession({3, ""});
  jsonl->personUpdated(
      snapshotAt(0., std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::infinity()));
  const nlohmann::json object = nlohmann::json::parse(file.str());
  EXPECT_TRUE(object.at("valence").is_null());
  EXPECT_TRUE(object.at("attention").is_null());
  EXPECT_EQ(3, object.at("recording"));
}

TEST(JsonlExport, HasTheNameOfAPersonWhoHasOne)
{
  std::ostringstream file;
  const auto jsonl = KV::session::exportFormat("jsonl").make(file);
  jsonl->beginSession({1, "caf\xe9.csv"});  // no UTF-8
  KV::session::Snapshot snapshot = snapshotAt(0.);
  snapshot.name = "Zo\xc3\xab \"Z\"";
  jsonl->personUpdated(snapshot);
  const nlohmann::json object = nlohmann::json::parse(file.str());
  EXPECT_EQ("Zo\xc3\xab \"Z\"", object.at("name"));
  EXPECT_EQ("caf\xef\xbf\xbd.csv", object.at("file"));
}

}  // namespace
