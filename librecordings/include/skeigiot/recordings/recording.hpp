#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// What only the skeigiot command needs.
namespace KV::recordings
{

/// The start of a scope: a named stretch of a recording that is judged when it ends.
struct SKEIGIOT_API ScopeStart
{
  std::string name;
  std::int32_t samples = -1;  ///< how many updates of each person it takes; negative is without limit
};

/// One step of a recording. Every part is optional; they take effect in the order of the members.
struct SKEIGIOT_API Step
{
  ko::SystemClock::time_point time;  ///< what the clock shows during the step; never before that of the step before

  std::vector<ScopeStart> scopeStarts;

  int movements = 0;                        ///< movements detected in the room
  boost::optional<float> ambianceActivity;  ///< activity of the room, if it was measured

  boost::optional<std::int32_t> person;  ///< whom the step is about
  bool seen = true;                      ///< false: the person was not observed in this cycle, and ages
  KV::PersonObservation observation;

  std::vector<std::string> scopeStops;
};

/// Input that cannot be read: says where, and what was expected.
class SKEIGIOT_API Error : public std::runtime_error
{
public:
  /// Where in the input; 0 and an empty field where that says nothing.
  struct Place
  {
    std::string file;
    std::size_t line = 0;  ///< physical line, from 1
    std::string field;     ///< column or member
  };

  /// Makes an error that reads "<file>:<line>: <field>: <message>".
  Error(const Place& place, const std::string& message);

  const Place& place() const { return _place; }

private:
  Place _place;
};

/// One line of the input cannot be used; the reader can go on with the next.
class SKEIGIOT_API BadLine : public Error
{
public:
  using Error::Error;
};

/// How a recording is to be read, where the file leaves it open.
struct SKEIGIOT_API ReadingOptions
{
  boost::optional<double> framesPerSecond;  ///< instead of the file's own time stamps
  bool mirrored = false;                    ///< the video is a mirror image: left and right are exchanged
  bool lineOfSight = true;              ///< angles relative to the line from face to camera, where a position is known
  boost::optional<float> cameraHeight;  ///< [m] above the floor; without it head heights are unknown
  float minimalConfidence = 0.7f;       ///< below this a face counts as not tracked
  float actionUnitFullScale = 5.f;      ///< action-unit intensity that counts as 1
  std::string mapping;                  ///< file that says how scores become readings; empty is the built-in tables
  std::string personColumn;             ///< column of a CSV file that names the person; empty is the format's own
};

/// The columns of a table, by their names, in their order.
struct SKEIGIOT_API Columns
{
  std::vector<std::string> used;
  std::vector<std::string> ignored;
};

/// Reads one recording, step by step and in constant memory.
class SKEIGIOT_API Reader
{
public:
  virtual ~Reader() = default;

  /// Returns the next step, or nothing at the end.
  ///
  /// \throws BadLine for a line that cannot be used; the next call goes on behind it.
  /// \throws Error where the rest of the file cannot be used either.
  virtual boost::optional<Step> next() = 0;

  /// Says in two lines how signs, units and rate are read, so that a wrong guess is seen.
  virtual std::vector<std::string> describe() const = 0;

  /// Returns the warnings that came up since the last call.
  virtual std::vector<std::string> takeWarnings() { return {}; }

  /// Returns which columns are read; nothing if there are none, or the format does not tell.
  virtual Columns columns() const { return {}; }

  /// Returns how far the file was read, in [0, 1].
  virtual double progress() const = 0;
};

/// One format of recordings.
struct SKEIGIOT_API Format
{
  std::string name;         ///< as --format takes it
  std::string description;  ///< one line for the help

  /// Tells from the first bytes of the file (decompressed) whether it is of this format.
  bool (*detect)(const std::string& head);

  /// Opens the file.
  ///
  /// \throws Error if it cannot be read.
  std::unique_ptr<Reader> (*open)(const std::string& path, const ReadingOptions& options);
};

/// Returns all formats; detection asks them in this order.
SKEIGIOT_API const std::vector<Format>& recordingFormats();

/// Tells whether a file is of one of the formats; one that cannot be read counts as one, so that it is not lost.
SKEIGIOT_API bool isRecording(const std::string& path);

/// Returns the name of the format of a file.
///
/// \throws Error if the file cannot be read or no format fits.
SKEIGIOT_API std::string formatNameOf(const std::string& path);

/// Opens a recording of the format with this name, or, if the name is empty, of the first format that detects it.
///
/// \throws Error if the file cannot be read or no format fits.
SKEIGIOT_API std::unique_ptr<Reader> openRecording(const std::string& path, const std::string& format,
                                                   const ReadingOptions& options);

}  // namespace KV::recordings
