#pragma once

#include "qv/io/OutputStream.h"
#include "qv/io/detail/Wrapped.h"

namespace qv::io {

/// A stream that hands every operation to the one it wraps: the base for those that change one of
/// them.
class QV_API FilterOutputStream : public OutputStream {
public:
    /// Owns: one reference to `out`. A null one is accepted, and every operation then throws
    /// IllegalStateException.
    explicit FilterOutputStream(OutputStream* out);

    using OutputStream::write;
    void write(const signed char* bytes, std::int32_t length) override;
    void write(signed char byte) override;
    void flush() override;
    void close() override;

protected:
    detail::Wrapped<OutputStream> out_;
};

} // namespace qv::io
