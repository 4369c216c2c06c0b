#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/exporter.hpp>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// A format in which sessions are exported.
struct SKEIGIOT_API ExportFormat
{
  /// Makes an exporter; the stream must outlive it.
  using Make = std::function<std::unique_ptr<Exporter>(std::ostream& stream)>;

  std::string name;         ///< such as "csv"
  std::string description;  ///< what is written, such as "every update as JSON Lines"
  std::string oneSession;   ///< why a file takes one session only; empty if it takes several
  Make make;                ///< makes an exporter of this format
};

/// Returns all formats.
SKEIGIOT_API const std::vector<ExportFormat>& exportFormats();

/// Returns the format with this name.
///
/// \throws std::invalid_argument "there is no export format '<name>'" if no format has it.
SKEIGIOT_API const ExportFormat& exportFormat(const std::string& name);

}  // namespace KV::session
