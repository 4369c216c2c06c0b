#include "faults/repeatedfailure.hpp"

#include "librecordings/support.hpp"
#include "support/tablename.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/labelwriter.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace
{

using KV::recordings::Labels;
using KV::recordings::LabelSpan;
using KV::recordings::LabelWriter;

std::string fromCorpus(const std::string& file)
{
  return SKEIGIOT_FUZZ_CORPUS "/labels/" + file;
}

using Span = std::tuple<double, double, std::string, std::string, std::string, std::string>;

std::vector<Span> spansOf(const Labels& labels)
{
  std::vector<Span> all;
  for (const LabelSpan& span : labels.spans)
    all.emplace_back(span.from, span.to, span.label, span.person, span.coder, span.tier);
  return all;
}

std::vector<std::tuple<std::string, std::size_t, double>> tracksOf(const Labels& labels)
{
  std::vector<std::tuple<std::string, std::size_t, double>> all;
  for (const auto& track : labels.tracks)
  {
    double sum = 0.;
    for (const auto& sample : track.samples)
      sum += sample.time + 10. * sample.value;
    all.emplace_back(track.person + "/" + track.coder + "/" + track.tier, track.samples.size(), sum);
  }
  return all;
}

struct LabelCase
{
  std::string name;
  std::string file;
};

class LabelsWithoutMemory : public ::testing::TestWithParam<LabelCase>
{};

TEST_P(LabelsWithoutMemory, AreReadWholeOrNotAtAll)
{
  const std::string path = fromCorpus(GetParam().file);
  const Labels whole = KV::recordings::readLabels(path);
  ASSERT_FALSE(whole.spans.empty() && whole.tracks.empty());
  const std::size_t thrown =
      faults::failRepeatedly([] { return std::optional<Labels>(); },
                             [&path](std::optional<Labels>& labels) { labels = KV::recordings::readLabels(path); },
                             [&whole](const std::optional<Labels>& labels, bool threw) {
                               ASSERT_EQ(threw, !labels.has_value());
                               if (threw)
                                 return;
                               EXPECT_EQ(whole.format, labels->format);
                               EXPECT_EQ(spansOf(whole), spansOf(*labels));
                               EXPECT_EQ(tracksOf(whole), tracksOf(*labels));
                               EXPECT_EQ(whole.warnings, labels->warnings);
                             });
  EXPECT_GT(thrown, 10U);
}

TEST_P(LabelsWithoutMemory, AreKeptBesideOthersWholeOrNotAtAll)
{
  const std::string path = fromCorpus(GetParam().file);
  const std::vector<LabelSpan> spans{{0., 1.5, "at the robot, for a long while", "anna of the house", "coder", "zone"},
                                     {1., 2.5, "positive", "anna of the house", "coder", "zone"},
                                     {3., 3., "left", "ben", "", "pleasure"}};
  for (const std::string format : {"elan", "audacity"})
  {
    const auto write = [&](std::string& text) {
      std::ostringstream stream;
      stream.exceptions(std::ios::badbit);  // else the stream would hide the shortage
      LabelWriter writer(format);
      writer.keep(path);
      writer.write(stream, spans);
      text = stream.str();
    };
    std::string whole;
    write(whole);
    const std::size_t thrown =
        faults::failRepeatedly([] { return std::string(); }, write,
                               [&whole](const std::string& text, bool threw) { EXPECT_EQ(threw ? "" : whole, text); });
    EXPECT_GT(thrown, 10U);
  }
}

INSTANTIATE_TEST_SUITE_P(Of, LabelsWithoutMemory,
                         ::testing::Values(LabelCase{"Elan", "elan.eaf"}, LabelCase{"PraatLong", "long.TextGrid"},
                                           LabelCase{"PraatShort", "short.TextGrid"},
                                           LabelCase{"BorisAggregated", "aggregated.boris.tsv"},
                                           LabelCase{"BorisTabular", "tabular.boris.csv"},
                                           LabelCase{"Bids", "bids.tsv"}, LabelCase{"Audacity", "audacity.txt"},
                                           LabelCase{"CsvSpans", "spans.csv"}, LabelCase{"CsvValues", "values.csv"}),
                         support::RowName());

TEST(WrongLabelsWithoutMemory, AreStillRefused)
{
  const support::TemporaryFolder folder;
  const std::string path = folder.write("labels.csv", "start,end,value\n0,1,calm\n2,x,calm\n");
  int refused = 0;
  faults::failRepeatedly([] { return 0; },
                         [&](int) {
                           try
                           {
                             KV::recordings::readLabels(path);
                             ADD_FAILURE() << "accepted";
                           }
                           catch (const KV::recordings::Error&)
                           {
                             ++refused;
                           }
                         },
                         [](int, bool) {});
  EXPECT_GT(refused, 0);
}

}  // namespace
