#include "cost.hpp"
#include "target.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

/// Runs each file of folders once, without libFuzzer: `replay TARGET FOLDER...`.
/// `replay --list` writes the names of all targets.

namespace
{

std::string contentOf(const std::filesystem::path& path)
{
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns how many files there are.
int replay(const fuzz::Target& target, const std::filesystem::path& folder)
{
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
  {
    std::cout << entry.path().filename().string() << std::endl;  // visible even if the next line ends the program
    fuzz::runWithinBudget(target, contentOf(entry.path()));
    ++files;
  }
  std::cout << files << " files of " << folder.string() << " replayed\n";
  return files;
}

}  // namespace

int main(int argc, char** argv)
{
  const auto& all = fuzz::targets();
  if (argc == 2 && std::string(argv[1]) == "--list")
  {
    for (const fuzz::Target& target : all)
      std::cout << target.name << '\n';
    return 0;
  }
  const auto isNamed = [&](const fuzz::Target& target) { return argc > 2 && target.name == argv[1]; };
  const auto found = std::find_if(all.begin(), all.end(), isNamed);
  if (found == all.end())
  {
    std::cerr << "usage: " << argv[0] << " TARGET FOLDER...\n       " << argv[0] << " --list\n";
    return 2;
  }
  const std::vector<std::filesystem::path> folders(argv + 2, argv + argc);
  const auto isEmpty = [&](const std::filesystem::path& folder) { return replay(*found, folder) == 0; };
  return std::count_if(folders.begin(), folders.end(), isEmpty) == 0 ? 0 : 1;
}
