#pragma once

#include "smallrecording.hpp"

#include "support/temporaryfolder.hpp"

#include <filesystem>

namespace faults
{

/// Writes the folder "study" with a study of three sessions.
inline void writeStudy(const replaytests::TemporaryFolder& folder)
{
  for (const std::string participant : {"a", "b", "c"})
  {
    std::filesystem::create_directories(folder.path("study/" + participant));
    folder.write("study/" + participant + "/robot.jsonl", recordingOf(40 + participant.front() % 7));
  }
  folder.write("study/study.toml",
               "[study]\nversion = 1\nname = \"small\"\n\n[[files]]\npattern = \"{participant}/robot.jsonl\"\n\n"
               "[results]\nupdates = true\nforces = true\n");
}

}  // namespace faults
