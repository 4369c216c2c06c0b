#include <skeigiot/session/report.hpp>

#include "libsession/entries.hpp"

#include <skeigiot/session/session.hpp>

#include <gmock/gmock.h>

#include <sstream>
#include <string>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Report, IsAPageOfTheSessionThatItWatched)
{
  if (!KV::session::Report::isAvailable())
    GTEST_SKIP() << "built without the page of the report";
  KV::session::Report report;
  {
    KV::session::Session session({{"greeting", KV::session::Duration(0), boost::none}}, {&report});
    session.play(seenAt(0., 7));
    session.finish();
  }
  std::ostringstream page;
  report.write(page, {"face.csv"}, {"a note"});
  EXPECT_THAT(page.str(), StartsWith("<!doctype html>"));
  EXPECT_THAT(page.str(), HasSubstr("\"inputs\":[\"face.csv\"],\"notes\":[\"a note\"]"));
  EXPECT_THAT(page.str(), HasSubstr("\"name\":\"greeting\""));
  EXPECT_THAT(page.str(), HasSubstr("\"id\":7"));
  EXPECT_THAT(page.str(), HasSubstr("\"sources\":[\"")) << "it watches the forces";
}

}  // namespace
