#pragma once

#include "qv/Exceptions.h"
#include "qv/Reference.h"

namespace qv::io::detail {

/// The stream that a filter wraps. It may be null: then the first use fails, not the constructor.
///
/// Owns: one reference.
template <class Stream>
class Wrapped {
public:
    explicit Wrapped(Stream* stream) noexcept : stream_(stream) {}

    /// @throws IllegalStateException for a null stream.
    Stream* operator->() const {
        if (stream_.get() == nullptr) {
            throw IllegalStateException();
        }
        return stream_.get();
    }

private:
    Reference<Stream> stream_;
};

} // namespace qv::io::detail
