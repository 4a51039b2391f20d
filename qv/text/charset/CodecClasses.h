#pragma once

#include "qv/Class.h"

namespace qv::text::charset {

/// The two run-time classes that serve one encoding: a row of the codec manager.
///
/// Thread safety: immutable.
class QV_API CodecClasses : public ComObject {
public:
    /// Borrows: both records, which live as long as the library.
    CodecClasses(const Class* encoder, const Class* decoder) noexcept
        : encoder_(encoder), decoder_(decoder) {}

    const Class* getEncoder() const noexcept { return encoder_; }
    const Class* getDecoder() const noexcept { return decoder_; }

private:
    const Class* encoder_;
    const Class* decoder_;
};

} // namespace qv::text::charset
