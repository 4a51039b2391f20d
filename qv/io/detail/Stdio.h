#pragma once

#include "qv/Exceptions.h"
#include "qvcore/File.h"

#include <cstdio>

/// Writing to a runtime stream, the same for both streams over one. A closed stream is null.
namespace qv::io::detail {

inline void writeByte(std::FILE* file, signed char byte) {
    if (QVStreamPut(file, static_cast<std::uint8_t>(byte)) < 0) {
        throw IoException(u"stream write error");
    }
}

/// Kept: goes past the runtime stream's buffer, so that a block can overtake single bytes unless
/// `flush` is called between them.
inline void writeBlock(std::FILE* file, const signed char* bytes, std::int32_t length) {
    if (file == nullptr) {
        throw IoException(u"stream write error");
    }
    const std::int32_t result =
        length < 1 ? 0 : QVStreamWriteDirect(file, bytes, static_cast<std::uint32_t>(length));
    if (result < 0 || std::ferror(file) != 0) {
        throw IoException(u"stream write error");
    }
}

inline void flush(std::FILE* file) {
    if (QVStreamFlush(file) < 0) {
        throw IoException(u"stream flush error");
    }
}

} // namespace qv::io::detail
