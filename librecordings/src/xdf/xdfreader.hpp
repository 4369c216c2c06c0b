#pragma once

#include "recording/xdfmapping.hpp"
#include "tidy/tidyreader.hpp"
#include "xdf/xdffile.hpp"
#include "xdf/xdftable.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <memory>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether the file begins as a recording of the Lab Streaming Layer.
bool looksLikeXdf(const std::string& head);

/// A recording of the Lab Streaming Layer: channels that the mapping names are readings, markers are scopes.
class XdfReader : public Reader
{
public:
  /// Reads all of the file.
  ///
  /// \throws Error if something is wrong in the file or in the mapping.
  XdfReader(InputFile file, const ReadingOptions& options);

  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;
  std::vector<std::string> takeWarnings() override;
  bool isDated() const override { return false; }
  Columns columns() const override;
  double progress() const override;

private:
  XdfMapping _mapping;
  XdfFile _file;
  std::unique_ptr<TidyReader> _rows;  // null if no channel is read
  bool _saidDamage = false;
  std::vector<std::string> _warnings;
};

}  // namespace KV::recordings
