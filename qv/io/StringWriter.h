#pragma once

#include "qv/String.h"
#include "qv/io/Writer.h"

namespace qv::io {

/// Collects characters in a string.
class QV_API StringWriter : public Writer {
public:
    /// Makes room for `capacity` units.
    explicit StringWriter(int capacity = 0);

    using Writer::write;
    void write(const char16_t* text, std::int32_t length) override;
    /// What was written so far.
    String toString() const override;

private:
    String text_;
};

} // namespace qv::io
