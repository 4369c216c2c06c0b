#include "formats/filekind.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>

#include <string>

namespace
{
using KV::recordings::fileKind;
using ::testing::StartsWith;
using namespace std::string_literals;

struct KindCase
{
  const char* name;
  std::string head;
  const char* kind;
};

class FileKind : public ::testing::TestWithParam<KindCase>
{};

TEST_P(FileKind, IsDetectedByTheFirstBytes)
{
  EXPECT_THAT(fileKind(GetParam().head), StartsWith(GetParam().kind));
}

std::string zip(const std::string& first)
{
  return "PK\x03\x04"s + std::string(26, '\0') + first;
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FileKind,
    ::testing::Values(
        KindCase{"Utf16WithAMark", "\xFF\xFEt\0i\0"s, "text in UTF-16: save it as UTF-8"},
        KindCase{"Utf16OfTheOtherOrder", "\xFE\xFF\0t\0i"s, "text in UTF-16"},
        KindCase{"Utf16WithoutAMark", "t\0i\0m\0e\0,\0"s, "text in UTF-16"},
        KindCase{"Utf16WithoutAMarkOfTheOtherOrder", "\0t\0i\0m\0e"s, "text in UTF-16"},
        KindCase{"Ros1", "#ROSBAG V2.0\n", "a bag of ROS 1"},
        KindCase{"Xlsx", zip("[Content_Types].xml"), "a spreadsheet of Excel"},
        KindCase{"Ods", zip("mimetypeapplication/vnd.oasis.opendocument.spreadsheet"),
                 "a spreadsheet of LibreOffice: save it as CSV"},
        KindCase{"OldExcel", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1\0"s, "a document of Excel or Word"},
        KindCase{"Zip", zip("a.csv"), "a ZIP archive: unpack it first"},
        KindCase{"Mp4",
                 "\0\0\0\x20"
                 "ftypisom"s,
                 "a video: run a front end"},
        KindCase{"Matroska", "\x1A\x45\xDF\xA3\x01"s, "a video"},
        KindCase{"Avi",
                 "RIFF\x01\x02\x03\x04"
                 "AVI LIST"s,
                 "a video"},
        KindCase{"Wave", "RIFF\x01\x02\x03\x04WAVEfmt "s, "a sound recording"},
        KindCase{"Png", "\x89PNG\r\n\x1A\n"s, "a picture"}, KindCase{"Pdf", "%PDF-1.7", "a PDF document"},
        KindCase{"Hdf5", "\x89HDF\r\n\x1A\n"s, "an HDF5 file"}, KindCase{"Parquet", "PAR1\x15\x04"s, "a Parquet file"},
        KindCase{"NumPy", "\x93NUMPY\x01"s, "an array of NumPy"},
        KindCase{"Bzip2", "BZh91AY"s, "a packed file: unpack it first; only gzip and zstd are read as they are"},
        KindCase{"Tar", std::string(257, 'x') + "ustar", "a tar archive"},
        KindCase{"Html", "<!doctype html>", "an HTML or XML document"},
        KindCase{"OtherBytes", "\x01\0\xC3\x07\x05\x05"s, "no text; its first bytes are 01 00 c3 07 05 05"},
        KindCase{"ATable", "when;who;joy\n1;2;3\n", "a table with the columns 'when', 'who', 'joy'"},
        KindCase{"AWideTable", "a,b,c,d,e,f,g\n", "a table with the columns 'a', 'b', 'c', 'd', 'e', 'f', ..."},
        KindCase{"ATableWhoseNamesLookLikeSignatures", "PAR1,GIF\n", "a table with the columns 'PAR1'"},
        KindCase{"AnArray", "[1, 2]\n", "JSON; expected an object on each line"},
        KindCase{"ATableWithQuotes", "\"a\",\"b\"\n", "a table with the columns 'a', 'b'"},
        KindCase{"AText", "Dear diary\n", "a text that begins with 'Dear diary'"},
        KindCase{"ATextWithEscapes", "\x1B[2J\n", "a text that begins with '?[2J'"},
        KindCase{"OneByte", "x", "a text that begins with 'x'"}),
    support::RowName());

}  // namespace
