#include "librecordings/face/facesteps.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/restingface.hpp>

#include <boost/chrono/duration.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using namespace KV::recordings;
using TimePoint = ko::SystemClock::time_point;

// Scores are intensities out of 1 here.
Face faceWith(const std::map<int, float>& scores)
{
  Face face;
  ActionUnits units;
  units.fullScale = 1.f;
  units.intensity.fill(0.f);
  for (const auto& [unit, score] : scores)
    units.intensity.at(static_cast<std::size_t>(unit)) = score;
  face.actionUnits = units;
  return face;
}

TimePoint at(double seconds)
{
  return TimePoint(boost::chrono::nanoseconds(std::llround(seconds * 1e9)));
}

// Typical faces out of 1: as in the table, at the table's own full scale.
ReadingOptions options(const std::string& rest = "learned")
{
  ReadingOptions result;
  result.rest = parseRest(rest);
  result.actionUnitFullScale = 3.f;
  return result;
}

// Out of 3, as in OpenFace.
Face openFaceWith(int unit, float intensity)
{
  Face face = faceWith({{unit, intensity}});
  face.actionUnits->fullScale.reset();
  return face;
}

float restOf(const RestingFace& face, const std::string& name, float typical)
{
  for (const LearnedScore& score : face.learned())
    if (score.name == name)
      return score.rest;
  return typical;
}

void show(const FaceAdapter& adapter, RestingFace& rest, const Face& face, double from, double to, double rate)
{
  for (int i = 0; i <= std::lround((to - from) * rate); ++i)
    adapter.read(face, at(from + i / rate), rest);
}

TEST(Rest, IsReadFromAText)
{
  EXPECT_EQ(Rest::Kind::Learned, parseRest("learned").kind);
  EXPECT_EQ(Rest::Kind::None, parseRest("none").kind);
  const Rest span = parseRest("2..7.5");
  EXPECT_EQ(Rest::Kind::Span, span.kind);
  EXPECT_EQ(boost::chrono::nanoseconds(2000000000), span.from);
  EXPECT_EQ(boost::chrono::nanoseconds(7500000000), span.to);
}

TEST(Rest, IsNotReadFromOtherTexts)
{
  for (const char* const text : {"", "learn", "2", "2..", "..3", "3..2", "2..2", "-1..2", "1..2..3", "1..inf", "a..b"})
    EXPECT_THROW(parseRest(text), std::invalid_argument) << text;
}

TEST(RestingFace, IsATypicalFaceAtFirst)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  EXPECT_FLOAT_EQ(0.5f - 0.2f, adapter.read(openFaceWith(12, 1.5f), at(0.), rest).smile->value);
  EXPECT_TRUE(rest.learned().empty());
  EXPECT_FLOAT_EQ(0.5f - 0.2f, adapter.read(openFaceWith(12, 1.5f)).smile->value) << "without any rest as well";
}

TEST(RestingFace, HardlyMovesInAnExpressionOfFourSeconds)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  show(adapter, rest, openFaceWith(4, 1.5f), 0., 4., 30.);
  EXPECT_NEAR(0.15f + 0.008f, restOf(rest, "AU04", 0.15f), 1e-5f);
}

TEST(RestingFace, IsTheSameAtAnyRate)
{
  std::array<float, 2> rests{};
  for (const int every : {1, 2})
  {
    const FaceAdapter adapter(options());
    RestingFace rest;
    for (int i = 0; i <= 1800; i += every)
      adapter.read(openFaceWith(4, 0.6f + 0.5f * static_cast<float>(std::sin(i / 30. * 0.7))), at(i / 30.), rest);
    rests.at(static_cast<std::size_t>(every) - 1) = restOf(rest, "AU04", 0.15f);
  }
  EXPECT_NE(0.15f, rests[0]);
  EXPECT_NEAR(rests[0], rests[1], 1e-3f);
}

TEST(RestingFace, FallsFasterThanItRises)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  show(adapter, rest, openFaceWith(4, 0.f), 0., 5., 30.);
  EXPECT_NEAR(0.15f - 0.06f, restOf(rest, "AU04", 0.15f), 1e-5f);
  show(adapter, rest, openFaceWith(4, 3.f), 5., 10., 30.);
  EXPECT_NEAR(0.15f - 0.06f + 0.01f, restOf(rest, "AU04", 0.15f), 1e-5f);
}

TEST(RestingFace, NeverTakesALastingSmileForRest)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  show(adapter, rest, openFaceWith(6, 3.f), 0., 200., 5.);
  EXPECT_FLOAT_EQ(0.2f, restOf(rest, "AU06", 0.05f));
}

TEST(RestingFace, IsNotMovedByUnknownScores)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  show(adapter, rest, openFaceWith(4, std::numeric_limits<float>::quiet_NaN()), 0., 10., 10.);
  EXPECT_FLOAT_EQ(0.15f, restOf(rest, "AU04", 0.15f));
}

TEST(RestingFace, CountsAGapAsHalfASecondAndTimesThatRunBackAsNothing)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  adapter.read(openFaceWith(4, 0.f), at(10.), rest);
  adapter.read(openFaceWith(4, 0.f), at(100.), rest);
  EXPECT_NEAR(0.15f - 0.006f, restOf(rest, "AU04", 0.15f), 1e-6f);
  adapter.read(openFaceWith(4, 0.f), at(50.), rest);
  EXPECT_NEAR(0.15f - 0.006f, restOf(rest, "AU04", 0.15f), 1e-6f);
}

TEST(RestingFace, TakesNothingOffIfThereIsToBeNoRest)
{
  const FaceAdapter adapter(options("none"));
  RestingFace rest;
  show(adapter, rest, openFaceWith(12, 1.5f), 0., 10., 10.);
  EXPECT_FLOAT_EQ(0.5f, adapter.read(openFaceWith(12, 1.5f), at(10.), rest).smile->value);
  EXPECT_TRUE(rest.learned().empty());
}

TEST(RestingFace, IsTheMedianOfASpanFromItsEndOn)
{
  const FaceAdapter adapter(options("1..3"));
  RestingFace rest;
  show(adapter, rest, openFaceWith(4, 0.9f), 0., 2.4, 20.);
  show(adapter, rest, openFaceWith(4, 2.7f), 2.45, 2.95, 20.);
  EXPECT_NEAR(0.15f + 0.0059f, restOf(rest, "AU04", 0.15f), 1e-4f) << "learned until then";
  show(adapter, rest, openFaceWith(4, 2.7f), 3., 60., 20.);
  EXPECT_NEAR(0.3f, restOf(rest, "AU04", 0.15f), 1.f / 255.f);
}

TEST(RestingFace, StaysLearnedForWhoWasNotThereInTheSpan)
{
  const FaceAdapter adapter(options("1..3"));
  RestingFace rest(at(0.));
  show(adapter, rest, openFaceWith(4, 0.f), 10., 15., 20.);
  EXPECT_NEAR(0.15f - 0.06f, restOf(rest, "AU04", 0.15f), 1e-5f);
}

TEST(RestingFace, MovesThoseScoresFirstThatMovedMost)
{
  const FaceAdapter adapter(options());
  RestingFace rest;
  show(adapter, rest, openFaceWith(12, 0.f), 0., 60., 10.);
  const auto learned = rest.learned();
  ASSERT_FALSE(learned.empty());
  EXPECT_EQ("AU12", learned.front().name);
  EXPECT_FLOAT_EQ(0.2f, learned.front().typical);
  EXPECT_FLOAT_EQ(0.f, learned.front().rest);
}

class RestInARecording : public support::FaceReaderTest
{
protected:
  // The steps of a recording must not depend on later rows.
  void expectNoFuture(const std::string& header, const std::vector<std::string>& rows) const
  {
    ReadingOptions reading;
    reading.framesPerSecond = 30.;
    std::string some = header;
    std::string all = header;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
      all += rows[i];
      if (i < rows.size() / 2)
        some += rows[i];
    }
    const auto first = readWell(some, reading).entries;
    const auto whole = readWell(all, reading).entries;
    ASSERT_GT(first.size(), 10U);
    ASSERT_GT(whole.size(), first.size());
    for (std::size_t i = 0; i < first.size(); ++i)
    {
      EXPECT_EQ(first[i].observation.smile->value.value, whole[i].observation.smile->value.value) << i;
      EXPECT_EQ(first[i].observation.expressions->value.calm.value, whole[i].observation.expressions->value.calm.value)
          << i;
    }
  }
};

TEST_F(RestInARecording, OfOpenFaceNeedsNoFuture)
{
  std::vector<std::string> rows;
  for (int i = 0; i < 400; ++i)
    rows.push_back(std::to_string(i + 1) + "," + std::to_string((i * 7) % 30 / 10.) + "," +
                   std::to_string((i * 11) % 30 / 10.) + "\n");
  expectNoFuture("frame,AU04_r,AU12_r\n", rows);
}

TEST_F(RestInARecording, OfPyFeatNeedsNoFuture)
{
  std::vector<std::string> rows;
  for (int i = 0; i < 700; ++i)
    rows.push_back(std::to_string(i) + ",0.9," + std::to_string((i * 7) % 30 / 30.) + "," +
                   std::to_string((i * 11) % 30 / 30.) + "\n");
  expectNoFuture("frame,FaceScore,AU04,AU12\n", rows);
}

TEST_F(RestInARecording, IsReported)
{
  std::string text = "frame,timestamp,face_id,AU04_r,AU12_r\n";
  for (int i = 0; i <= 100; ++i)
    text += std::to_string(i + 1) + "," + std::to_string(i * 0.1) + ",3,0,1.5\n";
  const auto reader = openRecording(folder.write("f", text), "", {});
  EXPECT_TRUE(reader->describeLearned().empty());
  while (reader->next())
  {}
  ASSERT_EQ(1U, reader->describeLearned().size());
  EXPECT_EQ("rest of person 3, in parts of the full scale: AU04 0.15 -> 0.03", reader->describeLearned().front());
}

TEST_F(RestInARecording, BelongsToEachPerson)
{
  std::string text = "frame,timestamp,face_id,AU12_r\n";
  for (int i = 0; i <= 50; ++i)
    for (const std::string face : {"1,0", "2,1.5"})
      text += std::to_string(i + 1) + "," + std::to_string(i * 0.1) + "," + face + "\n";
  const auto entries = readWell(text).entries;
  EXPECT_FLOAT_EQ(0.3f, entries.back().observation.smile->value.value);
  EXPECT_EQ(2, *entries.back().person);
}

TEST(RestingFace, IsTypicalWhereTheSpanHasNoScore)
{
  const FaceAdapter adapter(options("0..2"));
  RestingFace rest;
  show(adapter, rest, openFaceWith(4, std::numeric_limits<float>::quiet_NaN()), 0., 2., 10.);
  show(adapter, rest, openFaceWith(4, 1.f), 2.1, 2.1, 10.);
  EXPECT_NEAR(0.15f, restOf(rest, "AU04", 0.15f), 1e-3f);
}

}  // namespace
