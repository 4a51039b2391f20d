#pragma once

#include "qv/io/Writer.h"

namespace qv::io {

/// A sink of characters that discards everything.
class QV_API NullWriter : public Writer {
public:
    void write(const String& text) override;
    void write(const char16_t* text) override;
    void write(const char16_t* text, std::int32_t length) override;
    void write(char16_t unit) override;
};

} // namespace qv::io
