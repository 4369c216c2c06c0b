#include <skeigiot/recordings/jsonlineswriter.hpp>

#include <skeigiot/recordings/observationjson.hpp>

#include <ostream>

namespace KV::recordings
{

void JsonLinesWriter::write(const Step& entry)
{
  _stream << stepToJson(entry) << '\n';
}

}  // namespace KV::recordings
