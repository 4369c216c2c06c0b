#include "elfsize.hpp"

#include <elf.h>

#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace benchmarks
{

namespace
{

std::vector<char> contentsOf(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  if (!file)
    throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Copies a structure out of the file, where it may be at any address.
template <typename T>
T structureAt(const std::vector<char>& contents, std::uint64_t offset)
{
  if (contents.size() < sizeof(T) || offset > contents.size() - sizeof(T))
    throw std::runtime_error("not a whole ELF file");
  T structure{};
  std::memcpy(&structure, contents.data() + offset, sizeof structure);
  return structure;
}

void count(ElfSize& size, const Elf64_Shdr& section)
{
  if ((section.sh_flags & SHF_ALLOC) == 0)
    size.stripped -= section.sh_type == SHT_NOBITS ? 0 : section.sh_size;
  else if (section.sh_type == SHT_NOBITS)
    size.zeros += section.sh_size;
  else
    ((section.sh_flags & SHF_WRITE) != 0 ? size.data : size.text) += section.sh_size;
}

}  // namespace

ElfSize elfSizeOf(const std::string& path)
{
  const std::vector<char> contents = contentsOf(path);
  const auto header = structureAt<Elf64_Ehdr>(contents, 0);
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64)
    throw std::runtime_error(path + " is not a 64-bit ELF file");

  ElfSize size;
  size.file = contents.size();
  size.stripped = contents.size();
  for (std::size_t i = 0; i < header.e_shnum; ++i)
    count(size, structureAt<Elf64_Shdr>(contents, header.e_shoff + i * header.e_shentsize));
  return size;
}

}  // namespace benchmarks
