#pragma once

#include "qv/io/Writer.h"
#include "qv/io/detail/Wrapped.h"

namespace qv::io {

/// A writer that hands every operation to the one it wraps: the base for those that change one of
/// them.
class QV_API FilterWriter : public Writer {
public:
    /// Owns: one reference to `out`. A null one is accepted, and every operation then throws
    /// IllegalStateException.
    explicit FilterWriter(Writer* out);

    void write(const String& text) override;
    void write(const char16_t* text) override;
    void write(const char16_t* text, std::int32_t length) override;
    void write(char16_t unit) override;
    void flush() override;
    void close() override;

protected:
    detail::Wrapped<Writer> out_;
};

} // namespace qv::io
