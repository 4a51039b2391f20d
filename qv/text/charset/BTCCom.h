#pragma once

#include "qv/Reference.h"
#include "qv/text/charset/BTCMultiByte.h"
#include "qv/text/charset/IQVCharCodec.h"

namespace qv::text::charset {

/// A decoder over a codec that a module outside the library serves.
///
/// Thread safety: one thread at a time.
class QV_API BTCCom : public BTCMultiByte {
public:
    /// Takes a reference to the codec, and its name and bounds.
    /// @throws ResultException with the result of the operation that fails.
    explicit BTCCom(IQVCharCodec* codec);

protected:
    /// Kept: what the codec returns is not looked at; a codec that fails without writing a code
    /// point has given U+FFFD.
    unsigned int convertBytes(const signed char* bytes, int& length) override;

private:
    Reference<IQVCharCodec> codec_;
};

} // namespace qv::text::charset
