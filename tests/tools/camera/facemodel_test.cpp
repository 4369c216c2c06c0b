#include "camera/facemodel.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace
{

using KV::tools::FaceModel;
using KV::tools::readFaceModel;

const std::string beginOfZip("PK\x03\x04", 4);
constexpr std::uintmax_t largest = std::uintmax_t{64} << 20U;

/// Returns why the file is refused, without its path.
std::string refusalOf(const std::string& path)
{
  try
  {
    readFaceModel(path);
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_EQ(path, error.place().file);
    return std::string(error.what()).substr(path.size());
  }
  return "";
}

TEST(FaceModel, HasTheBytesOfTheFileAndItsName)
{
  const replaytests::TemporaryFolder folder;
  const std::string content = beginOfZip + std::string("\0\n\xff", 3);
  const FaceModel model = readFaceModel(folder.write("face_landmarker.task", content));
  EXPECT_EQ("face_landmarker.task", model.name);
  EXPECT_EQ(content, model.content);
}

TEST(FaceModel, IsRefusedIfItCannotBeRead)
{
  const replaytests::TemporaryFolder folder;
  EXPECT_EQ(": cannot be opened: No such file or directory", refusalOf(folder.path("nowhere.task")));
  EXPECT_EQ(": cannot be opened: Not a directory", refusalOf(folder.write("file", "") + "/model.task"));
  EXPECT_EQ(": is no regular file, which a model must be", refusalOf(folder.path("")));
  EXPECT_EQ(": is no regular file, which a model must be", refusalOf("/dev/zero"));
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
  EXPECT_EQ(": is no regular file, which a model must be", refusalOf(pipe)) << "and nobody waits for a writer";
}

TEST(FaceModel, IsRefusedUnlessItBeginsAsAnArchive)
{
  const replaytests::TemporaryFolder folder;
  const std::string refusal = ": is no model: a file such as face_landmarker.task begins as a ZIP archive does";
  for (const std::string& content : {std::string(), std::string("PK"), std::string("PK\x05\x06"), std::string("<html>"),
                                     std::string("version of a large file"), "x" + beginOfZip})
    EXPECT_EQ(refusal, refusalOf(folder.write("model.task", content))) << content;
}

TEST(FaceModel, IsRefusedAbove64MebibytesBeforeItIsRead)
{
  const replaytests::TemporaryFolder folder;
  const std::string path = folder.write("model.task", beginOfZip);
  std::filesystem::resize_file(path, largest);
  EXPECT_EQ(largest, readFaceModel(path).content.size());
  std::filesystem::resize_file(path, largest + 1);
  EXPECT_EQ(": has more than 64 MiB, which no model of faces has", refusalOf(path));
}

}  // namespace
