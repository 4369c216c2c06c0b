#pragma once

#include <skeigiot/session/updateexport.hpp>

#include <ostream>
#include <string>

namespace KV::session
{

/// Writes every update as a JSON object on a line of its own.
///
/// Floats have the shortest text that reads back as the same number; what is no number becomes null.
class JsonlExport : public UpdateExport
{
public:
  /// The stream must outlive the export.
  explicit JsonlExport(std::ostream& stream) : _stream(stream) {}

  void personUpdated(const Snapshot& snapshot) override;

private:
  std::ostream& _stream;
  std::string _line;  // kept for its memory
};

}  // namespace KV::session
