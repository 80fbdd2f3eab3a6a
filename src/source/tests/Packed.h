#pragma once

#include "source/Unpacker.h"

#include <bzlib.h>
#include <lzma.h>
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace tavix::source {

/// The text as one compressed part, with a checksum.
inline std::string packed(Packing packing, const std::string& text) {
    std::string out(text.size() + text.size() / 50 + 1000, '\0');
    std::size_t size = 0;
    bool isDone = false;
    switch (packing) {
    case Packing::None:
        return text;
    case Packing::Gzip: {
        z_stream stream{};
        ::deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, MAX_WBITS + 16, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY);
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
        stream.avail_in = static_cast<uInt>(text.size());
        stream.next_out = reinterpret_cast<Bytef*>(out.data());
        stream.avail_out = static_cast<uInt>(out.size());
        isDone = ::deflate(&stream, Z_FINISH) == Z_STREAM_END;
        size = stream.total_out;
        ::deflateEnd(&stream);
        break;
    }
    case Packing::Bzip2: {
        auto room = static_cast<unsigned>(out.size());
        isDone = ::BZ2_bzBuffToBuffCompress(out.data(), &room, const_cast<char*>(text.data()),
                                            static_cast<unsigned>(text.size()), 1, 0, 0) == BZ_OK;
        size = room;
        break;
    }
    case Packing::Xz:
        isDone = ::lzma_easy_buffer_encode(1, LZMA_CHECK_CRC64, nullptr,
                                           reinterpret_cast<const std::uint8_t*>(text.data()), text.size(),
                                           reinterpret_cast<std::uint8_t*>(out.data()), &size, out.size()) == LZMA_OK;
        break;
    case Packing::Zstd: {
        ZSTD_CCtx* context = ::ZSTD_createCCtx();
        ::ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
        size = ::ZSTD_compress2(context, out.data(), out.size(), text.data(), text.size());
        isDone = ::ZSTD_isError(size) == 0;
        ::ZSTD_freeCCtx(context);
        break;
    }
    }
    if (!isDone)
        throw std::runtime_error("the text was not compressed");
    out.resize(size);
    return out;
}

} // namespace tavix::source
