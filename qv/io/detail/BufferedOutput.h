#pragma once

#include "qv/io/OutputStream.h"
#include "qv/io/Writer.h"
#include "qv/io/detail/StreamClosed.h"
#include "qv/io/detail/Wrapped.h"

#include <memory>

namespace qv::io::detail {

/// Collecting of small writes: what the buffered stream of bytes and the buffered writer share.
/// `Sink` is OutputStream or Writer, `Unit` its unit.
///
/// A write of at least the buffer's size goes straight to the sink, behind what was collected. What
/// the sink throws passes through and leaves the collected units as they were.
///
/// Kept: neither `close` nor the destructor hands on what is collected; callers `flush` first.
template <class Sink, class Unit>
class QV_API_TEMPLATE BufferedOutput : public Sink {
public:
    /// Owns: one reference to `out`. The buffer has at least 16 units.
    BufferedOutput(Sink* out, std::int32_t size);

    // All but `close` throw IoException "stream closed" behind a `close`.

    using Sink::write;
    void write(const Unit* units, std::int32_t length) override;
    void write(Unit unit) override;
    void flush() override;
    /// Lets the buffer go, with what it holds, and closes the sink, each time it is called.
    void close() override;

private:
    void ensureOpen() const {
        if (buffer_ == nullptr) [[unlikely]] {
            throwStreamClosed();
        }
    }
    void flushBuffer();

    Wrapped<Sink> out_;
    std::int32_t bufferSize_;
    std::unique_ptr<Unit[]> buffer_; ///< null behind a close
    std::int32_t count_ = 0;
};

QV_EXTERN_INSTANCE(BufferedOutput<OutputStream, signed char>);
QV_EXTERN_INSTANCE(BufferedOutput<Writer, char16_t>);

} // namespace qv::io::detail
