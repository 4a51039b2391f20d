#pragma once

#include "qv/io/detail/BufferedInput.h"

namespace qv {
class String;
}

namespace qv::io {

/// A buffer in front of a reader, with marks and whole lines.
class QV_API BufferedReader : public detail::BufferedInput<Reader, char16_t> {
public:
    /// Owns: one reference to `in`; a null one is accepted, and what needs it then throws
    /// IllegalStateException. A `size` below 16 units gives 16.
    explicit BufferedReader(Reader* in, std::int32_t size = 16384);

    using detail::BufferedInput<Reader, char16_t>::read;
    /// @return the next unit as 0 to 65535, or -1 at the end.
    int read() override;

    // Slot order is contract from here on.

    /// Reads one line into `line`, in place of what it holds. A line ends with LF, CR, CR LF, which
    /// do not come with it, or the end of the input. A CR that is the last buffered unit makes this
    /// read on for the LF that may belong to it, and wait for that where the source does.
    /// @return the line's length, 0 for an empty line, and -1 at the end of the input.
    /// @throws what the source throws; the whole line comes again with the next call then, and
    /// `line` holds a part of it.
    virtual std::int32_t readLine(String& line);

private:
    std::int32_t takeLine(String& line, Room& room);
    void refillBehind(std::int32_t total, Room& room);
    void skipLineFeed(std::int32_t total, Room& room);
};

} // namespace qv::io
