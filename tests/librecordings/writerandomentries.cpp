// Writes random steps of a recording as JSON Lines: writerandomentries SEED COUNT
#include "librecordings/randomentries.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>

#include <iostream>
#include <string>

int main(int argc, char** argv)
{
  if (argc != 3)
    return 2;
  support::RandomEntries random(static_cast<std::uint32_t>(std::stoul(argv[1])));
  KV::recordings::JsonLinesWriter writer(std::cout);
  for (int count = std::stoi(argv[2]); count > 0; --count)
    writer.write(random.next());
  return std::cout.flush() ? 0 : 1;
}
