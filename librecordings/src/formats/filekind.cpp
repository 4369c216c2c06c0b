#include "formats/filekind.hpp"

#include "csv/csvheader.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <vector>

namespace KV::recordings
{
namespace
{
using namespace std::string_view_literals;

/// The bytes that identify a kind of file.
struct Signature
{
  std::size_t offset;
  std::string_view bytes;
  const char* kind;
};

constexpr const char* video = "a video: run a front end such as OpenFace on it, and give its output";
constexpr const char* sound = "a sound recording, without faces";
constexpr const char* picture = "a picture: run a front end such as OpenFace on it, and give its output";
constexpr const char* packed = "a packed file: unpack it first; only gzip and zstd are read as they are";
constexpr const char* utf16 = "text in UTF-16: save it as UTF-8";

// The first that fits. Those of a container come before the container.
constexpr std::array<Signature, 37> signatures = {{
    {0, "\xFF\xFE"sv, utf16},
    {0, "\xFE\xFF"sv, utf16},
    {0, "#ROSBAG V"sv, "a bag of ROS 1: convert it to ROS 2 with 'rosbags-convert'"},
    {0, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, "a document of Excel or Word, older than 2007: save it as CSV"},
    {30, "mimetypeapplication/vnd.oasis.opendocument.spreadsheet"sv, "a spreadsheet of LibreOffice: save it as CSV"},
    {30, "[Content_Types].xml"sv, "a spreadsheet of Excel or another document of Office: save it as CSV"},
    {30, "xl/"sv, "a spreadsheet of Excel: save it as CSV"},
    {0, "PK\x03\x04"sv, "a ZIP archive: unpack it first"},
    {4, "ftyp"sv, video},
    {4, "moov"sv, video},
    {0, "\x1A\x45\xDF\xA3"sv, video},
    {8, "AVI "sv, video},
    {0, "\x00\x00\x01\xBA"sv, video},
    {0, "\x00\x00\x01\xB3"sv, video},
    {0, "FLV\x01"sv, video},
    {0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, video},
    {8, "WAVE"sv, sound},
    {0, "ID3"sv, sound},
    {0, "\xFF\xFB"sv, sound},
    {0, "fLaC"sv, sound},
    {0, "OggS"sv, sound},
    {0, "\x89PNG\r\n"sv, picture},
    {0, "\xFF\xD8\xFF"sv, picture},
    {0, "GIF8"sv, picture},
    {0, "%PDF-"sv, "a PDF document"},
    {0, "\x89HDF\r\n"sv, "an HDF5 file: save its table as CSV, as pandas.read_hdf() and to_csv() do"},
    {0, "PAR1\x15"sv, "a Parquet file: save it as CSV, as pandas.read_parquet() and to_csv() do"},
    {0, "ARROW1"sv, "an Arrow or Feather file: save it as CSV, as pandas.read_feather() and to_csv() do"},
    {0, "\x93NUMPY"sv, "an array of NumPy: save it as CSV with names of columns"},
    {0, "MATLAB "sv, "a file of MATLAB: save its table as CSV"},
    {0,
     "\xFD"
     "7zXZ"sv,
     packed},
    {0, "BZh"sv, packed},
    {0, "7z\xBC\xAF\x27\x1C"sv, packed},
    {257, "ustar"sv, "a tar archive: unpack it first"},
    {0,
     "\x7F"
     "ELF"sv,
     "a program"},
    {0, "<?xml"sv, "an XML document; labels of ELAN are read by 'agree', not as a recording"},
    {0, "<"sv, "an HTML or XML document"},
}};

bool has(const std::string& head, const Signature& signature)
{
  return head.compare(signature.offset <= head.size() ? signature.offset : head.size(), signature.bytes.size(),
                      signature.bytes) == 0;
}

/// Text in UTF-16 without a mark: every second byte is 0.
bool isUnmarkedUtf16(const std::string& head)
{
  constexpr std::size_t looked = 64;
  const std::size_t pairs = std::min(head.size(), looked) / 2;
  std::size_t first = 0;
  std::size_t second = 0;
  for (std::size_t i = 0; i < pairs; ++i)
  {
    first += head[2 * i] == '\0' ? 1 : 0;
    second += head[2 * i + 1] == '\0' ? 1 : 0;
  }
  return pairs > 1 && ((first == pairs && second == 0) || (second == pairs && first == 0));
}

bool isBinary(const std::string& head)
{
  return head.find('\0') != std::string::npos;
}

std::string bytesOf(const std::string& head)
{
  std::string text;
  for (const char character : head.substr(0, 8))
  {
    std::array<char, 4> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x",
                  static_cast<unsigned int>(static_cast<unsigned char>(character)));
    text += (text.empty() ? "" : " ") + std::string(digits.data());
  }
  return text;
}

/// Describes a text by its first line.
std::string textKind(const std::string& head)
{
  constexpr std::size_t mostNamed = 6;
  const std::string_view line = headerLineOf(head);
  if (!line.empty() && line.front() == '[')
    return "JSON; expected an object on each line, or results of MediaPipe";
  const std::vector<std::string> names = namesIn(line, ",;\t|");
  if (names.size() < 2)
    return "a text that begins with " + quote(line);
  std::string text;
  for (std::size_t i = 0; i < std::min(names.size(), mostNamed); ++i)
    text += (i > 0 ? ", " : "") + quote(names[i]);
  return "a table with the columns " + text + (names.size() > mostNamed ? ", ..." : "");
}

}  // namespace

std::string fileKind(const std::string& head)
{
  const auto* const found = std::find_if(signatures.begin(), signatures.end(),
                                         [&head](const Signature& signature) { return has(head, signature); });
  if (found != signatures.end())
    return found->kind;
  if (isUnmarkedUtf16(head))
    return utf16;
  return isBinary(head) ? "no text; its first bytes are " + bytesOf(head) : textKind(head);
}

}  // namespace KV::recordings
