#pragma once

#include <skeigiot/recordings/tidytable.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace binding
{

/// One column of a frame: numbers, of which NaN is none, or texts, of which the empty one is none.
struct FrameColumn
{
  std::string name;
  const double* numbers = nullptr;  ///< null: texts
  std::vector<std::string> texts;
};

/// Columns of one length, which whoever made them keeps alive.
struct Frame
{
  std::string name;  ///< for messages
  std::size_t rows = 0;
  std::vector<FrameColumn> columns;
  const std::int64_t* moments = nullptr;  ///< [ns] since 1970, instead of a column "time" in seconds
};

/// Returns the frame as a table with one reading in each row: what it is if it has a column "reading".
///
/// Otherwise it has a column for each value: "gaze.yaw" is the field yaw of the reading gaze, and "smile" the value of
/// the reading smile. Then all readings of a row become rows; a row about a person without a reading says that the
/// person was seen.
///
/// \throws Error if there is no time or no reading.
std::unique_ptr<KV::recordings::TidyTable> tableOf(const Frame& frame);

}  // namespace binding
