#include <skeigiot/session/exportformat.hpp>

#include <algorithm>
#include <stdexcept>

namespace KV::session
{

// Each format has a file of its own, and an entry here; no other list exists.
ExportFormat audacityExport();
ExportFormat csvExport();
ExportFormat elanExport();
ExportFormat jsonlExport();
ExportFormat recordingExport();
ExportFormat summaryExport();

const std::vector<ExportFormat>& exportFormats()
{
  static const std::vector<ExportFormat> all = {csvExport(),       jsonlExport(), summaryExport(),
                                                recordingExport(), elanExport(),  audacityExport()};
  return all;
}

const ExportFormat& exportFormat(const std::string& name)
{
  const std::vector<ExportFormat>& all = exportFormats();
  const auto found =
      std::find_if(all.begin(), all.end(), [&name](const ExportFormat& format) { return format.name == name; });
  if (found == all.end())
    throw std::invalid_argument("there is no export format '" + name + "'");
  return *found;
}

}  // namespace KV::session
