#pragma once

#include "qv/Reference.h"
#include "qv/io/OutputStream.h"

#include <cstdio>

namespace qv::io {

/// Writes the runtime library's standard output: single bytes through its buffer, blocks past it.
///
/// Kept: a block overtakes single bytes written before it, unless `flush` is called between them.
class QV_API StdioOutputStream : public OutputStream {
public:
    StdioOutputStream();

    using OutputStream::write;
    /// @throws IoException "stream write error", as the block write.
    void write(signed char byte) override;
    void write(const signed char* bytes, std::int32_t length) override;
    /// @throws IoException "stream flush error".
    void flush() override;

    /// A new stream on standard error, which it does not own.
    static Reference<OutputStream> getStdErrorStream();

private:
    std::FILE* file_;
};

/// Writes a runtime stream; what StdioOutputStream says of blocks and bytes holds here too.
class QV_API StdioFileOutputStream : public OutputStream {
public:
    /// With `owned` the runtime stream is closed with this one.
    StdioFileOutputStream(std::FILE* file, bool owned);
    StdioFileOutputStream(const StdioFileOutputStream&) = delete;
    StdioFileOutputStream& operator=(const StdioFileOutputStream&) = delete;
    ~StdioFileOutputStream() noexcept override;

    using OutputStream::write;
    void write(signed char byte) override;
    void write(const signed char* bytes, std::int32_t length) override;
    void flush() override;
    void close() override;

private:
    std::FILE* file_;
    bool owned_;
};

} // namespace qv::io
