#include "input/unpacker.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <lz4frame.h>
#include <zlib.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <limits>
#include <new>
#include <string>

namespace KV::recordings
{
namespace
{
// The power of two of limits::largestWindow.
constexpr int windowLog = 26;
static_assert(limits::largestWindow == std::size_t{1} << windowLog);

uInt countOf(std::size_t count)
{
  constexpr std::size_t most = std::numeric_limits<uInt>::max();
  return static_cast<uInt>(count < most ? count : most);
}

class GzipUnpacker : public Unpacker
{
public:
  GzipUnpacker()
  {
    if (inflateInit2(&_stream, 15 + 16) != Z_OK)
      throw std::bad_alloc();
  }
  GzipUnpacker(const GzipUnpacker&) = delete;
  GzipUnpacker& operator=(const GzipUnpacker&) = delete;
  ~GzipUnpacker() override { inflateEnd(&_stream); }

  Progress unpack(std::string_view packed, char* bytes, std::size_t room) override
  {
    // zlib asks for a pointer to non-const bytes, and does not write to them.
    _stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    _stream.avail_in = countOf(packed.size());
    _stream.next_out = reinterpret_cast<Bytef*>(bytes);
    _stream.avail_out = countOf(room);
    const uInt offered = _stream.avail_in;
    const uInt free = _stream.avail_out;
    const int result = inflate(&_stream, Z_NO_FLUSH);
    if (result == Z_MEM_ERROR)
      throw std::bad_alloc();
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
      throw UnpackError(_stream.msg != nullptr ? _stream.msg : "no gzip");
    return {offered - _stream.avail_in, free - _stream.avail_out, result == Z_STREAM_END};
  }

  void restart() override { inflateReset(&_stream); }

private:
  z_stream _stream{};
};

class ZstdUnpacker : public Unpacker
{
public:
  ZstdUnpacker() : _context(ZSTD_createDCtx())
  {
    if (_context == nullptr)
      throw std::bad_alloc();
    ZSTD_DCtx_setParameter(_context, ZSTD_d_windowLogMax, windowLog);
  }
  ZstdUnpacker(const ZstdUnpacker&) = delete;
  ZstdUnpacker& operator=(const ZstdUnpacker&) = delete;
  ~ZstdUnpacker() override { ZSTD_freeDCtx(_context); }

  Progress unpack(std::string_view packed, char* bytes, std::size_t room) override
  {
    ZSTD_inBuffer in{packed.data(), packed.size(), 0};
    ZSTD_outBuffer out{bytes, room, 0};
    const std::size_t result = ZSTD_decompressStream(_context, &out, &in);
    if (ZSTD_isError(result) != 0)
      _refuse(result);
    return {in.pos, out.pos, result == 0};
  }

  void restart() override { ZSTD_DCtx_reset(_context, ZSTD_reset_session_only); }

private:
  [[noreturn]] static void _refuse(std::size_t result)
  {
    const ZSTD_ErrorCode code = ZSTD_getErrorCode(result);
    if (code == ZSTD_error_memory_allocation)
      throw std::bad_alloc();
    if (code == ZSTD_error_frameParameter_windowTooLarge)
      throw UnpackError("they need more than " + std::to_string(limits::largestWindow / limits::mebibyte) +
                        " MiB of memory at once: if you trust them, unpack them yourself");
    throw UnpackError(ZSTD_getErrorName(result));
  }

  ZSTD_DCtx* _context;
};

class Lz4Unpacker : public Unpacker
{
public:
  Lz4Unpacker()
  {
    if (LZ4F_isError(LZ4F_createDecompressionContext(&_context, LZ4F_VERSION)) != 0)
      throw std::bad_alloc();
  }
  Lz4Unpacker(const Lz4Unpacker&) = delete;
  Lz4Unpacker& operator=(const Lz4Unpacker&) = delete;
  ~Lz4Unpacker() override { LZ4F_freeDecompressionContext(_context); }

  Progress unpack(std::string_view packed, char* bytes, std::size_t room) override
  {
    std::size_t taken = packed.size();
    std::size_t made = room;
    const std::size_t result = LZ4F_decompress(_context, bytes, &made, packed.data(), &taken, nullptr);
    if (LZ4F_isError(result) != 0)
      _refuse(LZ4F_getErrorName(result));
    return {taken, made, result == 0};
  }

  void restart() override { LZ4F_resetDecompressionContext(_context); }

private:
  // The errors of LZ4 have public names, but no public numbers.
  [[noreturn]] static void _refuse(const std::string& error)
  {
    if (error == "ERROR_allocation_failed")
      throw std::bad_alloc();
    throw UnpackError(error);
  }

  LZ4F_dctx* _context = nullptr;
};

}  // namespace

std::unique_ptr<Unpacker> gzipUnpacker()
{
  return std::make_unique<GzipUnpacker>();
}

std::unique_ptr<Unpacker> zstdUnpacker()
{
  return std::make_unique<ZstdUnpacker>();
}

std::unique_ptr<Unpacker> lz4Unpacker()
{
  return std::make_unique<Lz4Unpacker>();
}

}  // namespace KV::recordings
