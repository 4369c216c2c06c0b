#include "rosbag2/packedmessage.hpp"

#include "input/unpacker.hpp"

#include <algorithm>
#include <string>
#include <string_view>

namespace KV::recordings
{
namespace
{
constexpr std::size_t pieceSize = std::size_t{16} << 10U;
}

void unpackMessage(std::vector<char>& data, std::size_t most)
{
  std::string_view packed(data.data(), data.size());
  if (packed.substr(0, zstdMagic.size()) != zstdMagic)
    return;
  const std::unique_ptr<Unpacker> unpacker = zstdUnpacker();
  std::vector<char> unpacked;
  for (;;)
  {
    const std::size_t size = unpacked.size();
    unpacked.resize(size + pieceSize);
    const Unpacker::Progress progress = unpacker->unpack(packed, unpacked.data() + size, pieceSize);
    packed.remove_prefix(progress.taken);
    unpacked.resize(size + progress.made);
    if (unpacked.size() > most)
      throw UnpackError("they unpack to more than " + std::to_string(most) + " bytes");
    if (progress.ended)
      break;
    if (progress.taken + progress.made == 0)
      throw UnpackError("they end too early");
  }
  data = std::move(unpacked);
}

}  // namespace KV::recordings
