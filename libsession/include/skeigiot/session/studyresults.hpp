#pragma once

#include <skeigiot/api.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// The results of a study: one file, or those of several shards read as one.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API StudyResults
{
public:
  /// Opens result files. Several are copied to a temporary database, on the disk where it is large.
  ///
  /// \throws recordings::Error if one cannot be read or is not a result file, if two belong to different studies or
  ///   have different options, or if two have the same session.
  explicit StudyResults(const std::vector<std::string>& paths);
  ~StudyResults();
  StudyResults(const StudyResults&) = delete;
  StudyResults& operator=(const StudyResults&) = delete;

  /// Returns the names of all tables, in the order in which they are documented.
  static const std::vector<std::string>& tables();

  /// Writes a table as CSV, in the order of its key: a header, then a line for each row. Missing values are empty.
  ///
  /// \throws recordings::Error if a column of numbers holds a text, or a number that is not finite.
  /// \throws std::invalid_argument "there is no table '<name>'; expected one of ..." for any other name.
  void writeCsv(const std::string& name, std::ostream& stream) const;

private:
  friend class ResultsReader;  // other readers of the tables
  struct Private;
  std::unique_ptr<Private> _p;
};

}  // namespace KV::session
