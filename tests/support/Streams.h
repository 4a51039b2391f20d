#pragma once

#include "qv/Exceptions.h"
#include "qv/io/InputStream.h"
#include "qv/io/OutputStream.h"
#include "qv/io/Reader.h"
#include "qv/io/Writer.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

/// Sources and sinks that tests look into.
namespace support {

/// The units of an ASCII text.
template <class Unit>
std::vector<Unit> unitsOf(std::string_view text) {
    return {text.begin(), text.end()};
}

/// `count` units that tell their place.
template <class Unit>
std::vector<Unit> sequence(int count) {
    std::vector<Unit> units;
    for (int i = 0; i < count; ++i) {
        units.push_back(static_cast<Unit>('A' + i % 50));
    }
    return units;
}

/// A source that gives its units in pieces and writes down what it was asked for.
template <class Source, class Unit>
class SlowSource : public Source {
public:
    explicit SlowSource(std::vector<Unit> units,
                        std::int32_t longestPiece = std::numeric_limits<std::int32_t>::max())
        : units_(std::move(units)), longestPiece_(longestPiece) {}

    using Source::read;
    std::int32_t read(Unit* destination, std::int32_t length) override {
        requests.push_back(length);
        if (failures > 0 && piecesBeforeFailures == 0) {
            --failures;
            std::fill_n(destination, length, Unit{'#'}); // what a failed read leaves is rubbish
            throw qv::io::IoException(u"the source failed");
        }
        if (emptyReads > 0) {
            --emptyReads;
            return 0;
        }
        if (left() == 0) {
            return -1;
        }
        piecesBeforeFailures -= piecesBeforeFailures > 0 ? 1 : 0;
        const std::int32_t count = std::min({length, longestPiece_, left()});
        std::copy_n(units_.data() + pos_, count, destination);
        pos_ += count;
        return count;
    }
    std::int32_t skip(std::int32_t count) override {
        ++skips;
        return Source::skip(count);
    }
    std::int32_t available() override { return tellsAvailable ? left() : 0; }
    void close() override { ++closes; }

    /// The lengths of the block reads so far.
    std::vector<std::int32_t> requests;
    int closes = 0;
    int skips = 0;
    /// Reads to come that throw, and that give nothing. Some pieces may come before the former.
    int failures = 0;
    int piecesBeforeFailures = 0;
    int emptyReads = 0;
    bool tellsAvailable = false;

private:
    std::int32_t left() const { return static_cast<std::int32_t>(units_.size()) - pos_; }

    std::vector<Unit> units_;
    std::int32_t longestPiece_;
    std::int32_t pos_ = 0;
};

/// A sink that keeps every block that it was given.
template <class Sink, class Unit>
class BlockSink : public Sink {
public:
    using Sink::write;
    void write(const Unit* units, std::int32_t length) override {
        if (failures > 0) {
            --failures;
            throw qv::io::IoException(u"the sink failed");
        }
        blocks.emplace_back(units, units + length);
    }
    void flush() override { ++flushes; }
    void close() override { ++closes; }

    /// All blocks, one behind the other.
    std::vector<Unit> all() const {
        std::vector<Unit> units;
        for (const std::vector<Unit>& block : blocks) {
            units.insert(units.end(), block.begin(), block.end());
        }
        return units;
    }

    std::vector<std::vector<Unit>> blocks;
    int flushes = 0;
    int closes = 0;
    /// Writes to come that throw.
    int failures = 0;
};

/// A source or sink that cannot be closed.
template <class Stream>
class Unclosable : public Stream {
public:
    using Stream::Stream;
    void close() override {
        Stream::close();
        throw qv::io::IoException(u"not closed");
    }
};

using SlowInputStream = SlowSource<qv::io::InputStream, signed char>;
using SlowReader = SlowSource<qv::io::Reader, char16_t>;
using BlockOutputStream = BlockSink<qv::io::OutputStream, signed char>;
using BlockWriter = BlockSink<qv::io::Writer, char16_t>;

} // namespace support
