#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/updateexport.hpp>

#include <memory>
#include <ostream>
#include <vector>

namespace KV::session
{

/// What a replay exports, on streams that must outlive it.
class SKEIGIOT_API ExportWriters
{
public:
  enum class Header
  {
    Written,
    LeftOut
  };

  /// Exports every update as comma-separated values.
  void addCsv(std::ostream& stream, Header header);
  /// Exports every update as JSON Lines.
  void addJsonl(std::ostream& stream);
  /// Writes the recording itself, in the own format.
  void addRecording(std::ostream& stream);

  /// Lets somebody else watch, who must outlive the writers.
  void add(SessionObserver& observer) { _others.push_back(&observer); }

  bool empty() const { return _updates.empty() && _recordings.empty(); }

  void beginRecording(int number);

  /// Returns what is to watch the sessions.
  std::vector<SessionObserver*> observers() const;

private:
  std::vector<std::unique_ptr<UpdateExport>> _updates;
  std::vector<std::unique_ptr<SessionObserver>> _recordings;
  std::vector<SessionObserver*> _others;
};

}  // namespace KV::session
