#include "libsession/entries.hpp"

#include <skeigiot/session/exportformat.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace
{

using namespace replaytests;

const char* const header =
    "recording,person,time,clock,seen,valence,valence_confidence,valence_binary,unsmoothed_valence_binary,"
    "unsmoothed_valence_confidence,attention,attention_confidence,zone,pleasure,ease,ease_confidence,"
    "valence_known,attention_known,name,file\n";

TEST(CsvExport, HasAHeader)
{
  std::ostringstream file;
  KV::session::exportFormat("csv").make(file)->writeHeader();
  EXPECT_EQ(header, file.str());
}

TEST(CsvExport, HasALineForEachUpdate)
{
  std::ostringstream file;
  const auto csv = KV::session::exportFormat("csv").make(file);
  KV::session::Snapshot snapshot = snapshotAt(1.25, 0.1f, 0.7f);
  snapshot.person = -3;
  snapshot.seen = false;
  snapshot.valenceBinary = {-1, 0.5f};
  snapshot.unsmoothedValenceBinary = {1, 0.25f};
  snapshot.zone = ko::human::AttentionState::LookingUpLeft;
  snapshot.pleasure = KV::PleasureNegative;
  snapshot.ease = {-0.5f, 0.5f};
  csv->beginSession({2, "second.csv"});
  csv->personUpdated(snapshot);
  csv->personUpdated(snapshotAt(2.));
  EXPECT_EQ(
      "2,-3,1.25,1577836801.25,0,0.1,1,-1,1,0.25,0.7,1,LookingUpLeft,negative,-0.5,0.5,1,1,,second.csv\n"
      "2,0,2,1577836802,1,0,1,0,0,0,0,1,Unknown,neutral,0,0,1,1,,second.csv\n",
      file.str());
}

TEST(CsvExport, HasNoClockWhereTheRecordingHasNoDate)
{
  std::ostringstream file;
  const auto csv = KV::session::exportFormat("csv").make(file);
  KV::session::Snapshot snapshot = snapshotAt(1.25);
  snapshot.isDated = false;
  csv->personUpdated(snapshot);
  EXPECT_EQ("1,0,1.25,,1,0,1,0,0,0,0,1,Unknown,neutral,0,0,1,1,,\n", file.str());
}

TEST(CsvExport, KeepsTheNumbersOfUnknownEstimatesAndSaysThatTheyAre)
{
  std::ostringstream file;
  const auto csv = KV::session::exportFormat("csv").make(file);
  KV::session::Snapshot snapshot = snapshotAt(0., 0.5f, 0.25f);
  snapshot.hadValenceEvidence = false;
  snapshot.attention.confidence = 0.f;
  csv->personUpdated(snapshot);
  EXPECT_EQ("1,0,0,1577836800,1,0.5,1,0,0,0,0.25,0,Unknown,neutral,0,0,0,0,,\n", file.str());
}

TEST(CsvExport, QuotesNamesThatNeedIt)
{
  std::ostringstream file;
  const auto csv = KV::session::exportFormat("csv").make(file);
  csv->beginSession({1, "one, \"two\"\n.csv"});
  KV::session::Snapshot snapshot = snapshotAt(0.);
  snapshot.name = "Doe, J";
  csv->personUpdated(snapshot);
  EXPECT_NE(std::string::npos, file.str().find(",0,0,1,1,\"Doe, J\",\"one, \"\"two\"\"\n.csv\"\n"));
}

TEST(CsvExport, NamesWhatIsNoNumber)
{
  std::ostringstream file;
  const auto csv = KV::session::exportFormat("csv").make(file);
  csv->personUpdated(snapshotAt(0., std::numeric_limits<float>::quiet_NaN()));
  EXPECT_NE(std::string::npos, file.str().find("1,0,0,1577836800,1,nan,1,"));
}

}  // namespace
