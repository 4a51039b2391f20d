#pragma once

#include "qv/detail/Exactly.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/ByteBufferInputStream.h"
#include "qv/io/ByteBufferOutputStream.h"

#include <optional>

/// Bytes by the one-byte calls of a wrapped stream, which are what a format stream does to it: a
/// stream class of the user's own sees each of them. Where the wrapped stream is exactly one of the
/// library's own over memory nobody sees how it is called, and a block takes their place.
namespace qv::io::detail {

/// Reads a block from a stream over memory. @return bytes read or -1 at the end; nothing for any
/// other stream, which is not touched.
inline std::optional<std::int32_t> readFromMemory(InputStream* in, void* bytes,
                                                  std::int32_t count) {
    auto* const block = static_cast<signed char*>(bytes);
    if (auto* const array = qv::detail::exactly<ByteArrayInputStream>(in)) {
        return array->ByteArrayInputStream::read(block, count);
    }
    if (auto* const buffer = qv::detail::exactly<ByteBufferInputStream>(in)) {
        return buffer->ByteBufferInputStream::read(block, count);
    }
    return std::nullopt;
}

inline bool isOverMemory(OutputStream* out) noexcept {
    return qv::detail::exactly<ByteArrayOutputStream>(out) != nullptr ||
           qv::detail::exactly<ByteBufferOutputStream>(out) != nullptr;
}

/// Writes a block to a stream over memory. @return false for any other, which is not touched.
inline bool writeToMemory(OutputStream* out, const void* bytes, std::int32_t count) {
    const auto* const block = static_cast<const signed char*>(bytes);
    if (auto* const array = qv::detail::exactly<ByteArrayOutputStream>(out)) {
        array->ByteArrayOutputStream::write(block, count);
        return true;
    }
    if (auto* const buffer = qv::detail::exactly<ByteBufferOutputStream>(out)) {
        buffer->ByteBufferOutputStream::write(block, count);
        return true;
    }
    return false;
}

/// Runs `work` with a function that gives the next byte, or a negative value at the end, as the
/// stream's `read` does.
template <class Work>
auto withNextByte(InputStream* in, Work work) {
    if (auto* const stream = qv::detail::exactly<ByteBufferInputStream>(in)) {
        return work([buffer = stream->getBuffer()]() -> int {
            const bool isUsedUp = buffer->getPosition() >= buffer->getLimit();
            return isUsedUp ? -1 : static_cast<unsigned char>(buffer->get());
        });
    }
    if (auto* const array = qv::detail::exactly<ByteArrayInputStream>(in)) {
        return work([array]() -> int {
            signed char byte = 0;
            const std::int32_t read = array->ByteArrayInputStream::read(&byte, 1);
            return read > 0 ? static_cast<unsigned char>(byte) : -1;
        });
    }
    return work([in] { return in->read(); });
}

inline int nextByte(InputStream* in) {
    return withNextByte(in, [](auto next) { return next(); });
}

/// Takes exactly `count` bytes, also when one of them is missing already.
/// @return false if one was missing.
inline bool nextBytes(InputStream* in, unsigned char* bytes, std::int32_t count) {
    if (const auto read = readFromMemory(in, bytes, count)) {
        return *read == count;
    }
    bool allThere = true;
    for (std::int32_t i = 0; i < count; ++i) {
        const int byte = in->read();
        allThere = allThere && byte >= 0;
        bytes[i] = static_cast<unsigned char>(byte);
    }
    return allThere;
}

/// Writes the bytes one by one.
inline void putBytes(OutputStream* out, const unsigned char* bytes, std::int32_t count) {
    if (writeToMemory(out, bytes, count)) {
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        out->write(static_cast<signed char>(bytes[i]));
    }
}

} // namespace qv::io::detail
