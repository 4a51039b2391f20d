#pragma once

#include "qv/io/InputStream.h"
#include "qv/io/detail/Wrapped.h"

namespace qv::io {

/// A stream that hands every operation to the one it wraps: the base for those that change one of
/// them.
class QV_API FilterInputStream : public InputStream {
public:
    /// Owns: one reference to `in`. A null one is accepted, and every operation then throws
    /// IllegalStateException.
    explicit FilterInputStream(InputStream* in);

    using InputStream::read;
    std::int32_t read(signed char* destination, std::int32_t length) override;
    int read() override;
    std::int32_t skip(std::int32_t count) override;
    std::int32_t available() override;
    void close() override;
    bool markSupported() override;
    void mark(std::int32_t limit) override;
    void reset() override;

protected:
    detail::Wrapped<InputStream> in_;
};

} // namespace qv::io
