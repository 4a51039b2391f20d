#pragma once

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/InputStream.h"
#include "qv/io/OutputStream.h"

#include <optional>

namespace tool {

/// The file at a path; without one standard input.
qv::Reference<qv::io::InputStream> openInput(const std::optional<qv::String>& path);
/// The file at a path, emptied; without one standard output.
qv::Reference<qv::io::OutputStream> openOutput(const std::optional<qv::String>& path);

/// A command that streams cannot read what it writes. Whatever the two are called: a link is the
/// file that it leads to.
/// @throws qv::Exception "input and output are the same file".
void refuseSameFile(const std::optional<qv::String>& in, const std::optional<qv::String>& out);

/// Bytes that a command that streams takes at once.
inline constexpr std::int32_t pieceSize = 1 << 16;

/// Hands a stream on piece by piece, up to its end: each to `use(bytes, count)`.
template <class Use>
void forEachPiece(qv::io::InputStream& in, Use use) {
    signed char piece[pieceSize];
    for (;;) {
        const std::int32_t count = in.read(piece, pieceSize);
        if (count < 0) {
            return;
        }
        use(piece, count);
    }
}

} // namespace tool
