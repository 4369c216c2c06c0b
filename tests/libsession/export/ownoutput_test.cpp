#include "export/ownoutput.hpp"
#include "libsession/entries.hpp"
#include "support/tablename.hpp"

#include <skeigiot/session/agreement.hpp>
#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/labelexport.hpp>
#include <skeigiot/session/report.hpp>
#include <skeigiot/session/session.hpp>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace
{

using namespace replaytests;
using KV::session::isOwnOutput;

/// A session of two updates, exported in this format.
std::string exported(const std::string& format)
{
  std::ostringstream stream;
  const auto exporter = KV::session::exportFormat(format).make(stream);
  exporter->writeHeader();
  KV::session::Session session({}, {exporter.get()});
  session.play(seenAt(0., 1));
  session.play(seenAt(1., 1));
  session.finish();
  exporter->endSession("");
  return stream.str();
}

TEST(OwnOutput, IsEveryExportButARecordingAndLabelsWhichPeopleEdit)
{
  for (const KV::session::ExportFormat& format : KV::session::exportFormats())
    EXPECT_EQ(format.name != "recording" && !KV::session::isLabelExport(format.name),
              isOwnOutput(exported(format.name)))
        << format.name;
}

TEST(OwnOutput, IsATableOfAgreement)
{
  std::ostringstream stream;
  KV::session::writeAsCsv(stream, KV::session::Agreement());
  EXPECT_TRUE(isOwnOutput(stream.str()));
}

TEST(OwnOutput, IsAPageOfTheReport)
{
  if (!KV::session::Report::isAvailable())
    GTEST_SKIP() << "built without the page of the report";
  std::ostringstream stream;
  KV::session::Report().write(stream, {}, {});
  EXPECT_TRUE(isOwnOutput(stream.str()));
}

TEST(OwnOutput, IsAnEmptyFile)
{
  EXPECT_TRUE(isOwnOutput(""));
}

TEST(OwnOutput, IsAnExportThatWasCut)
{
  const std::string csv = exported("csv");
  EXPECT_TRUE(isOwnOutput(csv.substr(0, csv.find('\n'))));
}

struct ForeignCase
{
  const char* name;
  std::string content;
};

class ForeignOutput : public ::testing::TestWithParam<ForeignCase>
{};

TEST_P(ForeignOutput, IsNotTakenForOurs)
{
  EXPECT_FALSE(isOwnOutput(GetParam().content));
}

INSTANTIATE_TEST_SUITE_P(
    OwnOutput, ForeignOutput,
    ::testing::Values(ForeignCase{"ARecordingInTheOwnFormat", "{\"time\":1,\"person\":1}\n"},
                      ForeignCase{"ATidyTable", "time,person,reading,value\n"},
                      ForeignCase{"AnExportWithAColumnOfSomebodyElse", "recording,person,time,clock,my_notes\n"},
                      ForeignCase{"AFewOfOurColumns", "person,time,valence\n"},
                      ForeignCase{"AnotherPage", "<!doctype html>\n<title>skeigiot report</title>\n"},
                      ForeignCase{"ATextAboutAPage", "see <meta name=\"generator\" content=\"skeigiot\">\n"},
                      ForeignCase{"AnotherObject",
                                  "{\"recording\":1,\"person\":1,\"time\":0,\"clock\":0,\"note\":\"\"}\n"},
                      ForeignCase{"AnEmptyObject", "{}\n"}, ForeignCase{"Text", "old\n"},
                      ForeignCase{"Bytes", std::string("\0\xff\0", 3)}, ForeignCase{"AnEmptyLine", "\n"}),
    support::RowName());

}  // namespace
