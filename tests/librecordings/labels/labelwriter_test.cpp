#include "librecordings/support.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/labelwriter.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <gmock/gmock.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace
{
using KV::recordings::Labels;
using KV::recordings::LabelSpan;
using KV::recordings::LabelWriter;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

LabelSpan span(double from, double to, const std::string& label, const std::string& tier = "zone",
               const std::string& person = "anna")
{
  return {from, to, label, person, "skeigiot", tier};
}

using Whole = std::tuple<double, double, std::string, std::string, std::string, std::string>;

std::vector<Whole> allOf(const std::vector<LabelSpan>& spans)
{
  std::vector<Whole> all;
  for (const LabelSpan& one : spans)
    all.emplace_back(one.from, one.to, one.label, one.person, one.coder, one.tier);
  return all;
}

class WrittenLabels : public ::testing::Test
{
protected:
  std::string written(const LabelWriter& writer, const std::vector<LabelSpan>& spans)
  {
    std::ostringstream stream;
    writer.write(stream, spans);
    return stream.str();
  }

  Labels readAgain(const std::string& text) { return KV::recordings::readLabels(folder.write("written", text)); }

  std::vector<std::string> wordsOf(const std::string& text)
  {
    std::vector<std::string> words;
    for (const LabelSpan& one : readAgain(text).spans)
    {
      std::ostringstream line;
      line << one.from << ".." << one.to << ' ' << one.label << " [" << one.person << "] {" << one.tier << '}';
      words.push_back(line.str());
    }
    return words;
  }

  support::TemporaryFolder folder;
};

/// Checks what readers of ELAN rely on: identifiers are unique, references lead somewhere, slots are in the order of
/// their times, and elements in that of the schema.
void expectSoundElan(const std::string& text)
{
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(text.c_str()));
  const pugi::xml_node root = document.child("ANNOTATION_DOCUMENT");
  std::set<std::string> slots;
  double latest = 0.;
  for (const pugi::xml_node slot : root.child("TIME_ORDER").children("TIME_SLOT"))
  {
    EXPECT_TRUE(slots.insert(slot.attribute("TIME_SLOT_ID").value()).second);
    if (slot.attribute("TIME_VALUE"))
    {
      EXPECT_LE(latest, slot.attribute("TIME_VALUE").as_double());
      latest = slot.attribute("TIME_VALUE").as_double();
    }
  }
  std::set<std::string> types;
  for (const pugi::xml_node type : root.children("LINGUISTIC_TYPE"))
    EXPECT_TRUE(types.insert(type.attribute("LINGUISTIC_TYPE_ID").value()).second);
  std::set<std::string> tiers;
  std::set<std::string> annotations;
  for (const pugi::xml_node tier : root.children("TIER"))
  {
    EXPECT_TRUE(tiers.insert(tier.attribute("TIER_ID").value()).second);
    EXPECT_EQ(1U, types.count(tier.attribute("LINGUISTIC_TYPE_REF").value()));
    for (const pugi::xml_node annotation : tier.children("ANNOTATION"))
    {
      const pugi::xml_node node = annotation.first_child();
      EXPECT_TRUE(annotations.insert(node.attribute("ANNOTATION_ID").value()).second);
      for (const char* end : {"TIME_SLOT_REF1", "TIME_SLOT_REF2"})
        if (node.name() == std::string("ALIGNABLE_ANNOTATION"))
        {
          EXPECT_EQ(1U, slots.count(node.attribute(end).value()));
        }
    }
  }
  const std::vector<std::string> order = {"LICENSE",     "HEADER",          "TIME_ORDER",
                                          "TIER",        "LINGUISTIC_TYPE", "LOCALE",
                                          "LANGUAGE",    "CONSTRAINT",      "CONTROLLED_VOCABULARY",
                                          "EXTERNAL_REF"};
  std::size_t at = 0;
  for (const pugi::xml_node node : root.children())
  {
    const auto place = static_cast<std::size_t>(std::find(order.begin(), order.end(), node.name()) - order.begin());
    EXPECT_LE(at, place) << node.name();
    at = place;
  }
}

TEST_F(WrittenLabels, OfElanAreReadAgainAsTheyWere)
{
  const std::vector<LabelSpan> spans = {span(0., 1.25, "LookingUp"), span(1.25, 3., "a <&> \"b\" \xC3\xA4"),
                                        span(0.5, 2., "positive", "pleasure", "3")};
  const std::string text = written(LabelWriter("elan"), spans);
  expectSoundElan(text);
  const Labels labels = readAgain(text);
  EXPECT_EQ("elan", labels.format);
  EXPECT_EQ(allOf(spans), allOf(labels.spans));
}

TEST_F(WrittenLabels, OfElanWithoutASpanAreADocument)
{
  const std::string text = written(LabelWriter("elan"), {});
  expectSoundElan(text);
  EXPECT_THAT(readAgain(text).spans, IsEmpty());
}

TEST_F(WrittenLabels, OfElanThatOverlapAreSpreadOverTiers)
{
  const std::string text = written(LabelWriter("elan"), {span(0., 3., "a"), span(1., 2., "b"), span(2., 4., "c"),
                                                         span(1.5, 5., "d"), span(3., 4., "e")});
  expectSoundElan(text);
  EXPECT_THAT(wordsOf(text), ElementsAre("0..3 a [anna] {zone}", "3..4 e [anna] {zone}", "1..2 b [anna] {zone (2)}",
                                         "2..4 c [anna] {zone (2)}", "1.5..5 d [anna] {zone (3)}"));
}

TEST_F(WrittenLabels, OfElanHaveWholeMillisecondsFromZeroOn)
{
  EXPECT_THAT(wordsOf(written(LabelWriter("elan"), {span(-1., 0.0014, "early"), span(2., 2., "point")})),
              ElementsAre("0..0.001 early [anna] {zone}", "2..2.001 point [anna] {zone}"));
}

TEST_F(WrittenLabels, OfElanReplaceCharactersThatXmlForbids)
{
  EXPECT_THAT(wordsOf(written(LabelWriter("elan"), {span(0., 1., std::string("a\x01\x1B") + "b", "t\x02")})),
              ElementsAre("0..1 a\xEF\xBF\xBD\xEF\xBF\xBD"
                          "b [anna] {t\xEF\xBF\xBD}"));
}

const char* const codersElan = R"(<?xml version="1.0" encoding="UTF-16"?>
<!-- by hand -->
<ANNOTATION_DOCUMENT AUTHOR="ben" DATE="2020-01-01T00:00:00+00:00" FORMAT="3.0" VERSION="3.0">
<HEADER TIME_UNITS="milliseconds"><MEDIA_DESCRIPTOR MEDIA_URL="file:///a.mp4" MIME_TYPE="video/mp4"/>
<PROPERTY NAME="lastUsedAnnotationId">7</PROPERTY></HEADER>
<TIME_ORDER><TIME_SLOT TIME_SLOT_ID="ts1" TIME_VALUE="0"/><TIME_SLOT TIME_SLOT_ID="ts2"/>
<TIME_SLOT TIME_SLOT_ID="ts3" TIME_VALUE="2000"/></TIME_ORDER>
<TIER LINGUISTIC_TYPE_REF="utterance" TIER_ID="zone" PARTICIPANT="Ben" ANNOTATOR="bea">
<ANNOTATION><ALIGNABLE_ANNOTATION ANNOTATION_ID="a2" TIME_SLOT_REF1="ts1" TIME_SLOT_REF2="ts2"><ANNOTATION_VALUE>smiles</ANNOTATION_VALUE></ALIGNABLE_ANNOTATION></ANNOTATION>
<ANNOTATION><ALIGNABLE_ANNOTATION ANNOTATION_ID="a5" TIME_SLOT_REF1="ts2" TIME_SLOT_REF2="ts3"><ANNOTATION_VALUE>frowns</ANNOTATION_VALUE></ALIGNABLE_ANNOTATION></ANNOTATION>
</TIER>
<LINGUISTIC_TYPE GRAPHIC_REFERENCES="false" LINGUISTIC_TYPE_ID="utterance" TIME_ALIGNABLE="true"/>
<CONSTRAINT DESCRIPTION="d" STEREOTYPE="Included_In"/>
</ANNOTATION_DOCUMENT>)";

TEST_F(WrittenLabels, OfElanKeepTheTiersOfTheCoder)
{
  LabelWriter writer("elan");
  writer.keep(folder.write("coder.eaf", codersElan));
  const std::string text = written(writer, {span(0.5, 1.5, "LookingUp")});
  expectSoundElan(text);
  EXPECT_THAT(wordsOf(text), ElementsAre("0..1 smiles [Ben] {zone}", "1..2 frowns [Ben] {zone}",
                                         "0.5..1.5 LookingUp [anna] {zone (2)}"));
  EXPECT_THAT(text, HasSubstr("<!-- by hand -->"));
  EXPECT_THAT(text, HasSubstr("MEDIA_URL=\"file:///a.mp4\""));
  EXPECT_THAT(text, HasSubstr("<PROPERTY NAME=\"lastUsedAnnotationId\">8</PROPERTY>"));
  EXPECT_THAT(text, HasSubstr("ANNOTATION_ID=\"a8\""));
  EXPECT_THAT(text, HasSubstr("encoding=\"UTF-8\""));
}

TEST_F(WrittenLabels, OfElanReplaceThoseThatWereWrittenBefore)
{
  LabelWriter first("elan");
  first.keep(folder.write("coder.eaf", codersElan));
  const std::string once = written(first, {span(0.5, 1.5, "LookingUp"), span(1.7, 1.8, "LookingDown")});
  LabelWriter second("elan");
  second.keep(folder.write("once.eaf", once));
  const std::string twice = written(second, {span(0.5, 1.5, "LookingUp")});
  expectSoundElan(twice);
  EXPECT_THAT(wordsOf(twice), ElementsAre("0..1 smiles [Ben] {zone}", "1..2 frowns [Ben] {zone}",
                                          "0.5..1.5 LookingUp [anna] {zone (2)}"));
  EXPECT_THAT(twice, Not(HasSubstr("1700"))) << "a slot without an annotation";
}

TEST_F(WrittenLabels, OfElanTakeInLabelsOfAnotherFormat)
{
  LabelWriter writer("elan");
  writer.keep(folder.write("ben.csv", "start,end,value,person\n0,1,smiles,3\n"));
  const std::string text = written(writer, {span(0., 1., "LookingUp")});
  expectSoundElan(text);
  EXPECT_THAT(wordsOf(text), ElementsAre("0..1 smiles [3] {ben}", "0..1 LookingUp [anna] {zone}"));
  LabelWriter again("elan");
  again.keep(folder.write("again.eaf", text));
  EXPECT_THAT(wordsOf(written(again, {})), ElementsAre("0..1 smiles [3] {ben}"));
}

TEST_F(WrittenLabels, OfElanNeedADocumentThatIsNotDeep)
{
  const auto errorOf = [this](const std::string& text) -> std::string {
    LabelWriter writer("elan");
    const std::string path = folder.write("deep.eaf", text);
    try
    {
      writer.keep(path);
    }
    catch (const KV::recordings::Error& error)
    {
      return std::string(error.what()).substr(path.size());
    }
    return "no error";
  };
  const auto nested = [](std::size_t levels) {
    std::string text = "<ANNOTATION_DOCUMENT>";
    for (std::size_t i = 1; i < levels; ++i)
      text += "<a>";
    for (std::size_t i = 1; i < levels; ++i)
      text += "</a>";
    return text + "</ANNOTATION_DOCUMENT>";
  };
  EXPECT_EQ("no error", errorOf(nested(KV::recordings::limits::deepestXml + 1)));
  EXPECT_EQ(":1: is nested more than 100 levels deep", errorOf(nested(KV::recordings::limits::deepestXml + 2)));
  EXPECT_EQ(":1: is nested more than 100 levels deep", errorOf(nested(1'000'000)));
  EXPECT_THAT(errorOf("<ANNOTATION_DOCUMENT>\n<TIER></ANNOTATION_DOCUMENT>"),
              ::testing::StartsWith(":2: is damaged or cut: "));
  EXPECT_EQ(": has no element ANNOTATION_DOCUMENT at its top", errorOf("<!-- <ANNOTATION_DOCUMENT --><other/>"));
}

TEST_F(WrittenLabels, OfElanAreAddedToADocumentWithoutHeaderAndTimes)
{
  LabelWriter writer("elan");
  writer.keep(folder.write("bare.eaf", "<ANNOTATION_DOCUMENT/>"));
  const std::string text = written(writer, {span(0., 1., "LookingUp")});
  expectSoundElan(text);
  EXPECT_THAT(wordsOf(text), ElementsAre("0..1 LookingUp [anna] {zone}"));
}

TEST_F(WrittenLabels, OfAudacityAreReadAgainByTime)
{
  const std::string text = written(
      LabelWriter("audacity"), {span(1., 2.5, "LookingUp"), span(0., 1., "a\tb\nc", "pleasure"), span(3., 3., "", "")});
  EXPECT_EQ("0.000000\t1.000000\tpleasure: a b c\n1.000000\t2.500000\tzone: LookingUp\n3.000000\t3.000000\t\n", text);
  EXPECT_EQ("audacity", readAgain(text).format);
}

TEST_F(WrittenLabels, OfAudacityKeepTheLinesOfTheCoder)
{
  LabelWriter writer("audacity");
  writer.keep(folder.write("coder.txt", "0\t1\tsmiles\n\\\t100\t200\n2\t2\tbeep"));
  EXPECT_EQ("0\t1\tsmiles\n\\\t100\t200\n2\t2\tbeep\n0.500000\t1.000000\tzone: LookingUp\n",
            written(writer, {span(0.5, 1., "LookingUp")}));
}

TEST_F(WrittenLabels, OfAudacityTakeInLabelsOfAnotherFormat)
{
  LabelWriter writer("audacity");
  writer.keep(folder.write("coder.eaf", codersElan));
  EXPECT_EQ("0.000000\t1.000000\tzone: smiles\n0.500000\t0.600000\tzone: LookingUp\n1.000000\t2.000000\tzone: frowns\n",
            written(writer, {span(0.5, 0.6, "LookingUp")}));
}

TEST_F(WrittenLabels, KeepTheLastFileThatWasGiven)
{
  LabelWriter writer("audacity");
  writer.keep(folder.write("one.txt", "0\t1\tsmiles\n"));
  writer.keep(folder.write("ben.csv", "start,end,value\n0,1,frowns\n"));
  EXPECT_EQ("0.000000\t1.000000\tfrowns\n", written(writer, {}));
}

TEST_F(WrittenLabels, AreOfAFormatThatIsKnown)
{
  try
  {
    LabelWriter writer("praat");
    FAIL() << "no error";
  }
  catch (const std::invalid_argument& error)
  {
    EXPECT_STREQ("labels are not written as 'praat': expected elan or audacity", error.what());
  }
}

TEST_F(WrittenLabels, KeepRealTiersToTheLastLabel)
{
  for (const char* name : {"pympi_sample_2.8.eaf.gz", "pympi_sample_3.0.eaf.gz"})
  {
    const std::string path = std::string(SKEIGIOT_REAL_RECORDINGS) + "/coding/" + name;
    if (!std::filesystem::exists(path))
      GTEST_SKIP() << path << " is not at hand";
    std::vector<Whole> expected = allOf(KV::recordings::readLabels(path).spans);
    LabelWriter writer("elan");
    writer.keep(path);
    std::vector<LabelSpan> spans;
    for (int i = 0; i < 300; ++i)
      spans.push_back(span(0.125 * i, 0.125 * (i + 1), "LookingUp"));
    const std::string text = written(writer, spans);
    expectSoundElan(text);
    for (const Whole& one : allOf(spans))
      expected.push_back(one);
    std::vector<LabelSpan> found = readAgain(text).spans;
    for (LabelSpan& one : found)
      one.coder = one.coder == "written" ? std::filesystem::path(name).stem().stem().string() : one.coder;
    EXPECT_EQ(expected, allOf(found)) << name;
  }
}

}  // namespace
