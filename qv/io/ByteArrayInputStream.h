#pragma once

#include "qv/io/InputStream.h"

#include <memory>

namespace qv::io {

/// A stream over a copy of some bytes. It has the defaults of InputStream for everything but
/// reading: no marks, and `available` is 0 also with bytes left.
class QV_API ByteArrayInputStream : public InputStream {
public:
    /// Copies the bytes.
    ByteArrayInputStream(const signed char* bytes, std::int32_t length);

    using InputStream::read;
    /// Kept: at the end of the bytes this is -1 also for a `length` of 0, before it 0.
    std::int32_t read(signed char* destination, std::int32_t length) override;

private:
    std::unique_ptr<signed char[]> data_;
    std::int32_t size_;
    std::int32_t pos_ = 0;
};

} // namespace qv::io
