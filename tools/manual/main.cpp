// Writes the manual pages and the completion of the command from its help.
//
// usage: skeigiot-manual FOLDER_OF_PAGES FOLDER_OF_COMPLETION

#include "commands/commandline.hpp"
#include "manual/completion.hpp"
#include "manual/manualpage.hpp"

#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace
{

void write(const std::string& path, const std::string& text)
{
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file)
    throw std::runtime_error("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc != 3)
  {
    std::cerr << "usage: skeigiot-manual FOLDER_OF_PAGES FOLDER_OF_COMPLETION\n";
    return 2;
  }
  try
  {
    KV::tools::ExitStatus unused = KV::tools::Success;
    const auto app = KV::tools::commandLine(unused);
    for (const KV::tools::ManualPage& page : KV::tools::manualPages(*app))
      write(std::string(argv[1]) + "/" + page.file, page.text);
    write(std::string(argv[2]) + "/skeigiot.bash", KV::tools::bashCompletion(*app));
    write(std::string(argv[2]) + "/skeigiot.fish", KV::tools::fishCompletion(*app));
    return 0;
  }
  catch (const std::exception& error)
  {
    std::cerr << "skeigiot-manual: " << error.what() << '\n';
    return 1;
  }
}
