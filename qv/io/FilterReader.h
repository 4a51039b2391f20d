#pragma once

#include "qv/io/Reader.h"
#include "qv/io/detail/Wrapped.h"

namespace qv::io {

/// A reader that hands every operation to the one it wraps: the base for those that change one of
/// them.
class QV_API FilterReader : public Reader {
public:
    /// Owns: one reference to `in`. A null one is accepted, and every operation then throws
    /// IllegalStateException.
    explicit FilterReader(Reader* in);

    std::int32_t read(char16_t* destination, std::int32_t length) override;
    int read() override;
    std::int32_t skip(std::int32_t count) override;
    std::int32_t available() override;
    void close() override;
    bool markSupported() override;
    void mark(std::int32_t limit) override;
    void reset() override;

protected:
    detail::Wrapped<Reader> in_;
};

} // namespace qv::io
