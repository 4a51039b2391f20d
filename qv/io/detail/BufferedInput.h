#pragma once

#include "qv/io/InputStream.h"
#include "qv/io/Reader.h"
#include "qv/io/detail/StreamClosed.h"
#include "qv/io/detail/Wrapped.h"

#include <memory>

namespace qv::io::detail {

/// Reading ahead, with marks: what the buffered stream of bytes and the buffered reader share.
/// `Source` is InputStream or Reader, `Unit` its unit.
///
/// The buffer holds the units from 0 up to `count_`, of which those from `pos_` on are still to be
/// handed out. A mark is an index in the buffer. A refill keeps the units behind a live mark, and
/// the buffer grows to the mark's limit for that; a mark whose limit is used up is given up. What
/// the source throws passes through, and loses nothing: what the failed call had handed out comes
/// again with the next one, and the mark is as it was; but a mark that an earlier refill of that
/// call has given up stays given up. Only what a failed `skip` has passed stays passed.
///
/// A read of at least the buffer's size goes past the buffer while no mark is live. A read that has
/// units already does not wait for more: it ends where the source reports nothing available.
template <class Source, class Unit>
class QV_API_TEMPLATE BufferedInput : public Source {
public:
    /// Owns: one reference to `in`. The buffer has at least 16 units.
    BufferedInput(Source* in, std::int32_t size);

    // All but `close` and `markSupported` throw IoException "stream closed" behind a `close`.

    using Source::read;
    std::int32_t read(Unit* destination, std::int32_t length) override;
    /// Skips through the buffer; the source's own `skip` is not used.
    std::int32_t skip(std::int32_t count) override;
    /// What the source reports and what is buffered.
    std::int32_t available() override;
    /// Lets the buffer go and closes the source, each time it is called.
    void close() override;
    bool markSupported() override;
    void mark(std::int32_t limit) override;
    /// Goes back to the mark, which stays set.
    /// @throws IoException "stream not marked"; "mark invalid" for a mark given up.
    void reset() override;

protected:
    void ensureOpen() const {
        if (buffer_ == nullptr) [[unlikely]] {
            throwStreamClosed();
        }
    }
    /// The buffered units are used up.
    bool isUsedUp() const noexcept { return pos_ >= count_; }
    /// Reads on into the buffer; with nothing more to come it stays used up. Requires: isUsedUp().
    void fillBuffer();
    /// The next unit as its type extends it, or -1 at the end.
    int nextUnit() {
        ensureOpen();
        if (isUsedUp()) {
            fillBuffer();
        }
        return isUsedUp() ? -1 : buffer_.get()[pos_++];
    }

    const Unit* unread() const noexcept { return buffer_.get() + pos_; }
    std::int32_t unreadCount() const noexcept { return count_ - pos_; }
    void pass(std::int32_t count) noexcept { pos_ += count; }

    /// Room for what a call that the source fails has handed out: more of it than the buffer holds
    /// is put back there.
    struct Room {
        std::unique_ptr<Unit[]> units;
        std::size_t size = 0;
    };
    /// Takes room for the `count` units that a call has handed out, and for a buffer more. Called
    /// in front of the refill behind them, while they still fit in the buffer or in the room at
    /// hand: so that putting them back allocates nothing, and cannot fail.
    void provide(Room& room, std::int32_t count) const;
    /// Makes the units handed out last, `count` in all, the next to be handed out again: for a call
    /// that the source has failed. The buffer becomes the room if it has to grow.
    void takeBack(const Unit* units, std::int32_t count, Room& room) noexcept;

private:
    static constexpr std::int32_t noMark = -1;
    static constexpr std::int32_t markGivenUp = -2;

    void keepMarkedUnits();
    void fillFrom(std::int32_t offset);
    void refillGivingUpMark();
    void readBlock(Unit* destination, std::int32_t length, std::int32_t& total, Room& room);

    Wrapped<Source> in_;
    std::int32_t bufferSize_;
    std::unique_ptr<Unit[]> buffer_; ///< null behind a close
    std::int32_t pos_ = 0;
    std::int32_t count_ = 0;
    std::int32_t markLimit_ = 0;
    std::int32_t markPos_ = noMark; ///< or markGivenUp
};

QV_EXTERN_INSTANCE(BufferedInput<InputStream, signed char>);
QV_EXTERN_INSTANCE(BufferedInput<Reader, char16_t>);

} // namespace qv::io::detail
