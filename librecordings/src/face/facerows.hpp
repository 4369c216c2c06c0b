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
  bool tracked = false;   ///< the face was found, and with enough confidence to use its readings
  std::int32_t face = 0;  ///< the person; read only of a tracked face
  Face detected;          ///< the known parts of the face; empty unless tracked
};

/// The rows of a file of a face analyser: the part that differs from format to format.
class FaceRows
{
public:
  /// Names of columns or members, for messages; empty if the format has no such name.
  struct Fields
  {
    std::string frame;
    std::string timestamp;
    std::string face;
  };

  virtual ~FaceRows() = default;

  /// Returns the next row, or nothing at the end.
  ///
  /// \throws BadLine for a row that cannot be used; the next call goes on after that row.
  /// \throws Error where the rest of the file cannot be read.
  virtual std::optional<FaceRow> next() = 0;

  /// Returns the adapter that makes readings of its faces.
  virtual const FaceAdapter& adapter() const = 0;

  virtual const std::string& path() const = 0;
  virtual std::size_t lineNumber() const = 0;
  virtual double progress() const = 0;
  virtual Fields fields() const = 0;

  /// Explains why a file without any row cannot be used.
  virtual std::string nothingToRead() const { return "there is no row below the header"; }

  /// Returns the rate that is assumed if the user gives no rate and there are no timestamps.
  virtual AssumedRate assumedRate() const { return {}; }

  /// Describes in a line how signs and units are read.
  virtual std::string describeReadings() const = 0;

  /// Describes who the persons are, when a face is tracked, and which readings the file does not have.
  virtual std::string describePersons() const = 0;

  /// Returns the name of this person in the file, in UTF-8; empty if they have no name.
  virtual std::string nameOf(std::int32_t /*person*/) const { return {}; }

  virtual std::vector<std::string> takeWarnings() { return {}; }

  /// Returns which columns are read, if the format has columns and reports them.
  virtual Columns columns() const { return {}; }
};

/// The number of rows read before the first is returned: enough for the rate, and to check the timestamps.
constexpr std::size_t rowsAhead = 300;

/// If these rows show fewer frames, since a frame has many faces, more rows are read ahead.
constexpr std::size_t framesAhead = 10;
constexpr std::size_t mostRowsAhead = 10'000;

/// Reads rows ahead, until they show enough frames to compute the rate.
///
/// \param frameOf returns the key of a row's frame: consecutive rows with the same key are of one frame
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
