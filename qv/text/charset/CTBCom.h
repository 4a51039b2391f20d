#pragma once

#include "qv/Reference.h"
#include "qv/text/charset/CTBMultiByte.h"
#include "qv/text/charset/IQVCharCodec.h"

namespace qv::text::charset {

/// An encoder over a codec that a module outside the library serves.
///
/// Thread safety: one thread at a time.
class QV_API CTBCom : public CTBMultiByte {
public:
    /// Takes a reference to the codec, and its name and bounds.
    /// @throws ResultException with the result of the operation that fails.
    explicit CTBCom(IQVCharCodec* codec);

protected:
    /// @return the bytes written; -1 where the codec fails; 0 for a length that cannot be used.
    /// @throws ResultException where the buffer that the codec filled cannot be locked.
    int convertChar(unsigned int codePoint, signed char* out, int max) override;

private:
    Reference<IQVCharCodec> codec_;
};

} // namespace qv::text::charset
