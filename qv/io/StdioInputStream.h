#pragma once

#include "qv/io/InputStream.h"

#include <cstdio>

namespace qv::io {

/// Reads the runtime library's standard input, line by line.
///
/// Kept: a block read ends behind a line feed, and a byte of value 0 in the input cuts it. For
/// binary input there is FileInputStream::standardInput.
class QV_API StdioInputStream : public InputStream {
public:
    StdioInputStream();

    using InputStream::read;
    /// @throws IoException "stream read error", here and in the block read.
    int read() override;
    /// Reads at most `length` - 1 bytes of one line, and a terminating 0 byte behind them.
    std::int32_t read(signed char* destination, std::int32_t length) override;
    /// Moves the position; where the input has none, nothing is skipped.
    /// @throws IoException "stream seek error".
    std::int32_t skip(std::int32_t count) override;

private:
    std::FILE* file_;
};

} // namespace qv::io
