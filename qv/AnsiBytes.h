#pragma once

#include "qv/String.h"
#include "qv/util/RWBuffer.h"

namespace qv {

/// One narrow rendering of a string, and the encoding that it is in.
class QV_API String::AnsiBytes : public util::RWByteBuffer {
public:
    /// Owns: a copy of the name. Null is the default encoding.
    explicit AnsiBytes(const char16_t* encoding);
    AnsiBytes(const AnsiBytes&) = delete;
    AnsiBytes& operator=(const AnsiBytes&) = delete;
    ~AnsiBytes() noexcept override;

    /// True for the same name, where only the case of ASCII letters may differ; null equals null
    /// alone.
    bool encodingEquals(const char16_t* encoding) const noexcept;

private:
    char16_t* encoding_;
};

} // namespace qv
