#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/outputcheck.hpp>

#include <memory>
#include <string>
#include <vector>

namespace KV::session
{

/// The files that sessions are exported to. None is in its place before commit(): until then a file of that name stays
/// as it is.
///
/// The files have the sessions in the order of their numbers. One that is played before its turn, on another thread, is
/// spilled to temporary files and appended when its turn comes.
class SKEIGIOT_API Exports
{
public:
  /// A session that is exported before its turn.
  class SKEIGIOT_API Spilled
  {
  public:
    ~Spilled();
    Spilled(const Spilled&) = delete;
    Spilled& operator=(const Spilled&) = delete;

    /// Returns the observers of the session.
    std::vector<SessionObserver*> observers() const;

    /// Says that the session has ended, see Exporter::endSession().
    void endSession(const std::string& error);

  private:
    friend class Exports;
    struct File;

    Spilled();

    std::vector<File> _files;  // as those of Exports
  };

  /// Makes an object without a target.
  Exports();
  ~Exports();
  Exports(const Exports&) = delete;
  Exports& operator=(const Exports&) = delete;

  /// Exports to one more file; "-" is standard output.
  ///
  /// \throws std::invalid_argument if there is no format with this name.
  /// \throws OutputRefused if the check refuses the file.
  /// \throws WriteError if the file cannot be made.
  void add(const std::string& format, const std::string& target, OutputCheck& check);

  /// As above, in a format that exportFormats() need not list, such as one of labelExport().
  void add(const ExportFormat& format, const std::string& target, OutputCheck& check);

  /// Returns whether nothing is exported.
  bool empty() const;

  /// Says which session is the next for observers().
  void beginSession(const SessionName& session);

  /// Returns the observers that write directly to the files; one session after the other.
  std::vector<SessionObserver*> observers() const;

  /// Says that the session of observers() has ended, see Exporter::endSession().
  void endSession(const std::string& error);

  /// Begins to export a session to memory and, where that is not enough, temporary files; may be called from several
  /// threads.
  std::unique_ptr<Spilled> spill(const SessionName& session) const;

  /// Writes a spilled session to the files.
  ///
  /// \throws WriteError if that fails.
  void append(Spilled& spilled);

  /// Puts all files in their places.
  ///
  /// \throws WriteError if that fails.
  void commit();

private:
  struct File;

  std::vector<File> _files;
};

}  // namespace KV::session
