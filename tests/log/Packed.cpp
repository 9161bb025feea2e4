#include "Packed.h"

#include <zlib.h>
#include <zstd.h>

#include <stdexcept>

Bytes gzipped(const Bytes& content)
{
    z_stream stream = {};
    if (deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("deflateInit2");
    Bytes packed(deflateBound(&stream, static_cast<uLong>(content.size())));
    stream.next_in = const_cast<Bytef*>(content.data());
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END)
        throw std::runtime_error("deflate");
    return packed;
}

Bytes zstdFrame(const Bytes& content)
{
    Bytes packed(ZSTD_compressBound(content.size()));
    const size_t size =
        ZSTD_compress(packed.data(), packed.size(), content.data(), content.size(), 3);
    if (ZSTD_isError(size) != 0)
        throw std::runtime_error("ZSTD_compress");
    packed.resize(size);
    return packed;
}
