#include "libsession/entries.hpp"
#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/exports.hpp>
#include <skeigiot/session/session.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::ExportFormat;
using KV::session::Exports;
using KV::session::Session;

/// A session of two updates of this person.
void play(const std::vector<KV::session::SessionObserver*>& observers, std::int32_t person)
{
  Session session({}, observers);
  session.play(seenAt(0., person));
  session.play(seenAt(1., person));
  session.finish();
}

class ExportsTest : public ::testing::Test
{
protected:
  /// Exports to one file of each format.
  void addAll(Exports& exports)
  {
    KV::session::OutputCheck check(true);
    for (const ExportFormat& format : KV::session::exportFormats())
      exports.add(format.name, folder.path(format.name), check);
  }

  /// Returns all files, by the names of their formats.
  std::map<std::string, std::string> written() const
  {
    std::map<std::string, std::string> texts;
    for (const ExportFormat& format : KV::session::exportFormats())
      texts[format.name] = folder.read(format.name);
    return texts;
  }

  TemporaryFolder folder;
};

TEST_F(ExportsTest, HaveFormatsOfDifferentNamesEachWithADescription)
{
  std::set<std::string> names;
  for (const ExportFormat& format : KV::session::exportFormats())
  {
    EXPECT_TRUE(names.insert(format.name).second) << format.name;
    EXPECT_EQ(format.name, KV::session::exportFormat(format.name).name);
    EXPECT_FALSE(format.description.empty()) << format.name;
  }
}

TEST_F(ExportsTest, RefuseAFormatThatIsNotThere)
{
  Exports exports;
  KV::session::OutputCheck check;
  EXPECT_EQ("there is no export format 'xml'",
            support::textThrownBy<std::invalid_argument>([&] { exports.add("xml", folder.path("file"), check); }));
  EXPECT_TRUE(exports.empty());
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(ExportsTest, WriteSomethingInEachFormat)
{
  for (const ExportFormat& format : KV::session::exportFormats())
  {
    std::ostringstream stream;
    const auto exporter = format.make(stream);
    exporter->writeHeader();
    const std::size_t header = stream.str().size();
    play({exporter.get()}, 1);
    exporter->endSession("");
    EXPECT_LT(header, stream.str().size()) << format.name;
  }
}

TEST_F(ExportsTest, AreInTheirPlacesOnlyWhenTheyAreCommitted)
{
  folder.write("csv", "old");
  {
    Exports dropped;
    KV::session::OutputCheck check(true);
    dropped.add("csv", folder.path("csv"), check);
    play(dropped.observers(), 1);
  }
  EXPECT_EQ("old", folder.read("csv"));
  EXPECT_EQ((std::set<std::string>{"csv"}), folder.names());

  Exports exports;
  KV::session::OutputCheck check(true);
  exports.add("csv", folder.path("csv"), check);
  play(exports.observers(), 1);
  EXPECT_EQ("old", folder.read("csv"));
  exports.commit();
  EXPECT_EQ(0U, folder.read("csv").find("recording,person,"));
}

TEST_F(ExportsTest, HoldTheSameBytesWhicheverSessionIsPlayedFirst)
{
  {
    Exports inOrder;
    addAll(inOrder);
    for (int number = 1; number <= 3; ++number)
    {
      inOrder.beginSession({number, "file"});
      play(inOrder.observers(), number);
      inOrder.endSession("");
    }
    inOrder.commit();
  }
  const auto expected = written();

  Exports spilled;
  addAll(spilled);
  std::map<int, std::unique_ptr<Exports::Spilled>> parts;
  for (const int number : {3, 1, 2})
  {
    parts[number] = spilled.spill({number, "file"});
    play(parts[number]->observers(), number);
    parts[number]->endSession("");
  }
  for (const auto& [number, part] : parts)
    spilled.append(*part);
  spilled.commit();
  EXPECT_EQ(expected, written());
  EXPECT_EQ(7, std::count(expected.at("csv").begin(), expected.at("csv").end(), '\n')) << "one header, six updates";
  EXPECT_EQ(4, std::count(expected.at("summary").begin(), expected.at("summary").end(), '\n')) << "three persons";
}

}  // namespace
