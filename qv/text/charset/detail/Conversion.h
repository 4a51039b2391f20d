#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::text::charset::detail {

/// The two ranges of one call of `convert`, as pointers that move. The caller's positions stay as
/// they are until `commit`, so that they keep their values when an exception leaves.
template <class In, class Out>
class Conversion {
public:
    Conversion(const In* src, std::int32_t* srcPos, std::int32_t srcEnd, Out* dst,
               std::int32_t* dstPos, std::int32_t dstEnd) noexcept
        : in(src + *srcPos), inEnd(src + srcEnd), out(dst + *dstPos), outEnd(dst + dstEnd),
          src_(src), srcPos_(srcPos), dst_(dst), dstPos_(dstPos) {}

    /// Units not yet read; negative where the caller's range is.
    std::ptrdiff_t available() const noexcept { return inEnd - in; }
    /// Units not yet written; negative where the caller's range is.
    std::ptrdiff_t room() const noexcept { return outEnd - out; }

    /// Takes over how far a copy has come. Loops work on a copy: unlike an object that others may
    /// see, it stays in registers.
    void follow(const Conversion& copy) noexcept {
        in = copy.in;
        out = copy.out;
    }

    /// Writes the positions back. @return units written since the call began.
    std::int32_t commit() noexcept {
        const auto written = static_cast<std::int32_t>(out - dst_) - *dstPos_;
        *srcPos_ = static_cast<std::int32_t>(in - src_);
        *dstPos_ = static_cast<std::int32_t>(out - dst_);
        return written;
    }

    const In* in;
    const In* const inEnd;
    Out* out;
    Out* const outEnd;

private:
    const In* src_;
    std::int32_t* srcPos_;
    Out* dst_;
    std::int32_t* dstPos_;
};

/// Bytes to UTF-16 units.
using Decoding = Conversion<signed char, char16_t>;
/// UTF-16 units to bytes.
using Encoding = Conversion<char16_t, signed char>;

} // namespace qv::text::charset::detail
