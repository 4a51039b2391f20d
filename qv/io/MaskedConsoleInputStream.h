#pragma once

#include "qv/io/InputStream.h"

namespace qv::io {

/// Reads keys from the console without any echo, as for a password.
class QV_API MaskedConsoleInputStream : public InputStream {
public:
    using InputStream::read;
    /// Reads keys until Enter, which is stored as a line feed, Ctrl-Z, or `length` bytes. Backspace
    /// takes the last byte back. The bytes are not terminated.
    /// @return bytes stored, 0 for a `length` below 1, -1 where none was stored.
    /// @throws UserAbortException for Ctrl-C; ResultException with the platform's result.
    std::int32_t read(signed char* destination, std::int32_t length) override;
};

} // namespace qv::io
