// gzip through zlib. Setting a deflate stream up allocates about 256 KiB, far more work than
// compressing a small buffer, so each thread keeps one stream per direction and resets it.

#include "vorn/storage/crypto/Gzip.hpp"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>

#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {

constexpr int kInflateWindowBits = 47;  // 15 + 32: gzip or zlib header, detected
constexpr int kDeflateWindowBits = 31;  // 15 + 16: gzip wrapper
constexpr int kMemoryLevel = 8;
constexpr std::size_t kChunk = 16384;

// A thread's zlib stream; `ready` says whether init succeeded and end is owed.
struct Stream {
  z_stream z{};
  bool ready = false;
  bool deflating = false;

  ~Stream() {
    if (ready)
      deflating ? deflateEnd(&z) : inflateEnd(&z);
  }
};

// This thread's deflate stream, reset; null after logging when zlib cannot set one up.
z_stream* deflateStream() {
  thread_local Stream stream;
  if (stream.ready)
    return deflateReset(&stream.z) == Z_OK ? &stream.z : nullptr;
  const int status = deflateInit2(&stream.z, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kDeflateWindowBits,
                                  kMemoryLevel, Z_DEFAULT_STRATEGY);
  if (status != Z_OK) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Cannot initialize zlib deflate: " + std::to_string(status) + ")");
    return nullptr;
  }
  stream.ready = true;
  stream.deflating = true;
  return &stream.z;
}

z_stream* inflateStream() {
  thread_local Stream stream;
  if (stream.ready)
    return inflateReset(&stream.z) == Z_OK ? &stream.z : nullptr;
  if (inflateInit2(&stream.z, kInflateWindowBits) != Z_OK)
    return nullptr;
  stream.ready = true;
  return &stream.z;
}

void setInput(z_stream* z, ByteView data) {
  z->next_in = const_cast<Bytef*>(data.data());
  z->avail_in = static_cast<uInt>(data.size());
}

// Gives the stream the free tail of `out`, growing it by one chunk first when it is full, but
// never past `limit` bytes.
void provideOutput(z_stream* z, Bytes& out, std::size_t limit = SIZE_MAX) {
  if (z->total_out >= out.size())
    out.resize(std::min(out.size() + kChunk, limit));
  z->next_out = out.data() + z->total_out;
  z->avail_out = static_cast<uInt>(out.size() - z->total_out);
}

}  // namespace

std::optional<Bytes> gzipDeflate(ByteView data) {
  if (data.empty())
    return Bytes{};
  if (data.size() > UINT_MAX)
    return std::nullopt;
  z_stream* z = deflateStream();
  if (!z)
    return std::nullopt;
  setInput(z, data);
  Bytes out(kChunk);
  int status = Z_OK;
  do {
    provideOutput(z, out);
    status = deflate(z, Z_FINISH);
  } while (status == Z_OK);
  if (status != Z_STREAM_END) {
    VORN_LOG_ERROR(LoggerCategory::encryption, "Couldn't compress input: zlib error " +
                                                   std::to_string(status) + ": " +
                                                   (z->msg ? z->msg : ""));
    return std::nullopt;
  }
  out.resize(z->total_out);
  return out;
}

std::optional<Bytes> gzipInflate(ByteView data, std::size_t maxOutput) {
  if (data.empty())
    return Bytes{};
  if (data.size() > UINT_MAX)
    return std::nullopt;
  z_stream* z = inflateStream();
  if (!z)
    return std::nullopt;
  setInput(z, data);
  // One byte beyond the bound tells a stream that fits exactly from one that does not.
  const std::size_t limit = maxOutput == SIZE_MAX ? maxOutput : maxOutput + 1;
  Bytes out(std::min(data.size() * 2, limit));
  int status = Z_OK;
  do {
    provideOutput(z, out, limit);
    status = inflate(z, Z_SYNC_FLUSH);
  } while (z->total_out <= maxOutput &&
           (status == Z_OK || (status == Z_BUF_ERROR && z->avail_out == 0)));
  if (z->total_out > maxOutput) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Couldn't decompress input: more than " + std::to_string(maxOutput) + " bytes");
    return std::nullopt;
  }
  if (status != Z_STREAM_END)
    return std::nullopt;
  out.resize(z->total_out);
  return out;
}

}  // namespace vorn
