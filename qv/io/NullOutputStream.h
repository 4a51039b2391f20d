#pragma once

#include "qv/io/OutputStream.h"

namespace qv::io {

/// A sink that discards everything.
class QV_API NullOutputStream : public OutputStream {
public:
    using OutputStream::write;
    void write(const signed char* bytes, std::int32_t length) override;
    void write(signed char byte) override;
};

} // namespace qv::io
