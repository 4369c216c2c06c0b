#pragma once

#include "face/frametimes.hpp"
#include "recording/lookahead.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace KV::recordings
{

/// One face in one frame of a file, or a frame without a face.
struct FaceRow
{
  std::size_t line = 0;
  Frame frame;
  bool tracked = false;   ///< the face was found, and so surely that its readings count
  std::int32_t face = 0;  ///< whose; read only of a tracked face
  Face told;              ///< what is told of it; empty unless tracked
};

/// The rows of a file of a face analyser: what differs from format to format.
class FaceRows
{
public:
  /// Names of columns or members, for messages; empty where there is none.
  struct Fields
  {
    std::string frame;
    std::string timestamp;
    std::string face;
  };

  virtual ~FaceRows() = default;

  /// Returns the next row, or nothing at the end.
  ///
  /// \throws BadLine for a row that cannot be used; the next call goes on behind it.
  /// \throws Error where the rest of the file cannot be read.
  virtual std::optional<FaceRow> next() = 0;

  /// Returns what makes readings of its faces.
  virtual const FaceAdapter& adapter() const = 0;

  virtual const std::string& path() const = 0;
  virtual std::size_t lineNumber() const = 0;
  virtual double progress() const = 0;
  virtual Fields fields() const = 0;

  /// Says what it means if there is not one row.
  virtual std::string nothingToRead() const { return "there is no row below the header"; }

  /// Returns the rate that is assumed if nobody gives one and there are no time stamps.
  virtual AssumedRate assumedRate() const { return {}; }

  /// Says in a line how signs and units are read.
  virtual std::string describeReadings() const = 0;

  /// Says who the persons are, when a face is tracked, and what the file does not tell.
  virtual std::string describePersons() const = 0;

  /// Returns what the file calls the person with this number, in UTF-8; empty if they have no name.
  virtual std::string nameOf(std::int32_t /*person*/) const { return {}; }

  virtual std::vector<std::string> takeWarnings() { return {}; }

  /// Returns which columns are read, if the format has any and tells.
  virtual Columns columns() const { return {}; }
};

/// How many rows are looked at before the first is handed out: enough to tell the rate, and what time stamps are worth.
constexpr std::size_t rowsAhead = 300;

/// Where these rows show fewer frames than that, since a frame has many faces, more rows are looked at.
constexpr std::size_t framesAhead = 10;
constexpr std::size_t mostRowsAhead = 10'000;

/// Reads rows ahead, until they show enough frames to tell the rate.
///
/// \param frameOf returns what tells the frame of a row: rows that follow each other with the same are of one frame
template <typename Row, typename FrameOf>
void fetchFrames(LookAhead<Row>& ahead, const FrameOf& frameOf)
{
  for (std::size_t count = rowsAhead;; count = std::min(2 * count, mostRowsAhead))
  {
    ahead.fetch(count);
    std::size_t frames = 0;
    std::optional<decltype(frameOf(std::declval<Row>()))> last;
    ahead.forEach([&](const Row& row) {
      const auto frame = frameOf(row);
      frames += last && *last == frame ? 0 : 1;
      last = frame;
    });
    if (frames >= framesAhead || ahead.size() < count || count == mostRowsAhead)
      return;
  }
}

}  // namespace KV::recordings
