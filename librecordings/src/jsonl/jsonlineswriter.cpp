#include "jsonlineswriter.hpp"

#include "observationjson.hpp"

#include <ostream>

namespace tools
{

void JsonLinesWriter::write(const RecordingEntry& entry)
{
  _stream << entryToJson(entry) << '\n';
}

}  // namespace tools
