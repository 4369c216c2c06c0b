#pragma once

#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

namespace support
{

/// One text for each entry: time in ms, person, and "+" for a person who was seen.
inline std::vector<std::string> stepsOf(const Contents& contents)
{
  std::vector<std::string> steps;
  for (const auto& entry : contents.entries)
    steps.push_back(std::to_string(std::lround(secondsOf(entry) * 1000.0)) + " " + std::to_string(*entry.person) +
                    (entry.seen ? "+" : "-"));
  return steps;
}

/// Returns options with which scores are used unchanged: action units out of 5, without subtracting a face at rest.
inline KV::recordings::ReadingOptions withoutRest(KV::recordings::ReadingOptions options = {})
{
  options.actionUnitFullScale = 5.f;
  options.rest.kind = KV::recordings::Rest::Kind::None;
  return options;
}

/// A test of the reader of a face analyser.
class FaceReaderTest : public RecordingTest
{
protected:
  /// Returns the entries of a recording that can be read without an error.
  Contents readWell(const std::string& text, const KV::recordings::ReadingOptions& options = {}) const
  {
    Contents contents = read(text, options);
    EXPECT_EQ("", contents.fatal);
    EXPECT_TRUE(contents.badLines.empty()) << contents.badLines.front();
    return contents;
  }

  std::vector<std::string> stepsIn(const std::string& text, const KV::recordings::ReadingOptions& options = {}) const
  {
    return stepsOf(readWell(text, options));
  }

  /// Returns the observation of the first entry.
  KV::PersonObservation observed(const std::string& text, const KV::recordings::ReadingOptions& options = {}) const
  {
    const Contents contents = readWell(text, options);
    EXPECT_FALSE(contents.entries.empty());
    return contents.entries.empty() ? KV::PersonObservation() : contents.entries.front().observation;
  }

  KV::recordings::ReadingOptions mappedBy(const std::string& json) const
  {
    KV::recordings::ReadingOptions options;
    options.mapping = folder.write("mapping.json", json);
    return options;
  }
};

/// Writes the entries in our own format, reads them again, and expects the same bits.
inline void expectSameBitsFromJsonLines(const Contents& contents)
{
  const TemporaryFolder folder;
  std::ofstream file(folder.path("own.jsonl"));
  KV::recordings::JsonLinesWriter writer(file);
  for (const auto& entry : contents.entries)
    writer.write(entry);
  file.close();

  const Contents again = contentsOf(folder.path("own.jsonl"), "jsonl");
  EXPECT_EQ("", again.fatal);
  EXPECT_TRUE(again.badLines.empty());
  ASSERT_EQ(contents.entries.size(), again.entries.size());
  for (std::size_t i = 0; i < contents.entries.size(); ++i)
    ASSERT_EQ(Bits::of(contents.entries[i]), Bits::of(again.entries[i])) << "in step " << i;
}

}  // namespace support
