#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>

namespace KV::session
{

/// Keeps the steps of a live session as a recording in the own format, JSON Lines, in a file without a name.
///
/// A replay of the recording updates each person as the live session did, to the last bit. Boundaries are not part of a
/// recording. A person who comes back after leaving is somebody new, and so gets a number that nobody had before.
///
/// Memory grows by a number for each person who comes back. The file is on the disk, and gone with the object, however
/// the program ends.
///
/// \par Thread safety
///   Not synchronised; but each Part may be used on a thread of its own, while the recording grows.
class SKEIGIOT_API LiveRecording : public SessionObserver
{
public:
  /// The recording up to a moment.
  class SKEIGIOT_API Part
  {
  public:
    /// Returns how many bytes it has.
    std::size_t size() const { return _size; }

    /// Reads bytes from a place on; returns how many it read, 0 at the end.
    ///
    /// \throws WriteError if the file cannot be read.
    std::size_t read(std::size_t from, char* bytes, std::size_t count) const;

    /// Returns its bytes as a stream, which keeps what it needs.
    std::unique_ptr<std::istream> open() const;

  private:
    friend class LiveRecording;
    struct File;

    std::shared_ptr<const File> _file;
    std::size_t _size = 0;
  };

  /// Begins an empty recording; its file will be on the disk of that folder.
  ///
  /// \throws WriteError if the file cannot be made.
  explicit LiveRecording(const std::string& folder);
  ~LiveRecording() override;

  /// Keeps the step. Where that fails, nothing is kept from then on: see error().
  void stepBegins(const recordings::Step& step) override;

  /// Says that the person left: who comes back under that number is somebody new.
  void remove(std::int32_t person);

  /// Returns what was kept so far.
  Part part();

  /// Returns why nothing is kept any more; empty as long as all is well.
  const std::string& error() const;

private:
  struct Record;

  std::unique_ptr<Record> _record;
};

}  // namespace KV::session
