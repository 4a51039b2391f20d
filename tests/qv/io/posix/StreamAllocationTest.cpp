// Streams for which there is no memory. On this system only: here the library allocates by the test
// program's operator new.

#include "qv/io/BufferedReader.h"

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/BufferedInputStream.h"
#include "qv/io/InputStreamReader.h"
#include "tests/support/Allocations.h"
#include "tests/support/Streams.h"

#include <exception>
#include <gtest/gtest.h>

namespace {

using namespace qv;

constexpr int length = 120;

/// A source that fails at its piece number `pieces`.
template <class Slow, class Unit>
Reference<Slow> failingSource(const std::vector<Unit>& units, int pieces) {
    const auto source = make<Slow>(units, 7);
    source->tellsAvailable = true;
    source->piecesBeforeFailures = pieces;
    source->failures = 1;
    source->requests.reserve(1000);
    return source;
}

/// True if `work` fails, while its allocation of that number does.
template <class Work>
bool failsWithout(std::size_t allocation, Work work) {
    const support::Allocations allocations(allocation);
    try {
        work();
    } catch (...) {
        return true;
    }
    return false;
}

/// Opens a stream over a source that gives `all` for each piece at which that may fail and for each
/// allocation that may, and expects that what the failed read had handed out comes again.
template <class Unit, class Open>
void expectNothingIsLost(const std::vector<Unit>& all, Open open, std::int32_t asked) {
    for (int pieces = 0; pieces < 12; ++pieces) {
        for (std::size_t allocation = 0; allocation < 6; ++allocation) {
            const auto in = open(pieces);
            std::vector<Unit> text(1000);
            std::int32_t read = in->read(text.data(), 4);
            failsWithout(allocation, [&] { read += in->read(text.data() + read, asked); });
            for (bool failed = true; failed;) {
                failed = failsWithout(0, [&] {
                    for (std::int32_t count = 0; count != -1; read += std::max(count, 0)) {
                        count = in->read(text.data() + read, 9);
                    }
                });
            }
            text.resize(static_cast<std::size_t>(read));
            ASSERT_EQ(text, all) << asked << " units, " << pieces << " pieces, allocation "
                                 << allocation;
        }
    }
}

TEST(StreamAllocationTest, ABufferedReadThatFailsWithoutMemoryLosesNothing) {
    for (std::int32_t asked = 12; asked < 40; ++asked) {
        const std::vector<signed char> all = support::sequence<signed char>(length);
        expectNothingIsLost(
            all,
            [&](int pieces) {
                return make<io::BufferedInputStream>(
                    failingSource<support::SlowInputStream>(all, pieces + 1), 16);
            },
            asked);
    }
}

TEST(StreamAllocationTest, ADecodingReadThatFailsWithoutMemoryLosesNothing) {
    for (const std::int32_t asked : {12, 100}) {
        expectNothingIsLost(
            support::sequence<char16_t>(length),
            [](int pieces) {
                return make<io::InputStreamReader>(
                    failingSource<support::SlowInputStream>(support::sequence<signed char>(length),
                                                            pieces + 1),
                    u"UTF-8", 8);
            },
            asked);
    }
}

/// A bad byte is two units for its decoder, which says that a byte is one at most.
TEST(StreamAllocationTest, ADecodingReadOfBadBytesThatFailsWithoutMemoryLosesNothing) {
    const std::vector<signed char> bad(length, static_cast<signed char>(0x80));
    for (const std::int32_t asked : {12, 100}) {
        expectNothingIsLost(
            std::vector<char16_t>(2 * length, u'\uFFFD'),
            [&](int pieces) {
                return make<io::InputStreamReader>(
                    failingSource<support::SlowInputStream>(bad, pieces + 1), u"AMP-7", 8);
            },
            asked);
    }
}

/// The allocations of a read that gives that many units.
std::size_t allocationsOf(io::Reader& in, std::int32_t units) {
    std::vector<char16_t> text(static_cast<std::size_t>(units));
    const support::Allocations allocations;
    EXPECT_EQ(in.read(text.data(), units), units);
    return allocations.count();
}

TEST(StreamAllocationTest, ADecoderKeepsTheRoomOfAnOrdinaryReadAndNotThatOfALongOne) {
    const auto source = make<support::SlowInputStream>(support::sequence<signed char>(10'000));
    source->tellsAvailable = true;
    source->requests.reserve(10'000);
    io::InputStreamReader in(source, u"UTF-8", 16);
    allocationsOf(in, 16);
    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(allocationsOf(in, 16), 0u);
    }
    EXPECT_GT(allocationsOf(in, 1000), 0u);
    EXPECT_GT(allocationsOf(in, 1000), 0u) << "the room of the first is gone";
    allocationsOf(in, 16);
    EXPECT_EQ(allocationsOf(in, 16), 0u);
}

TEST(StreamAllocationTest, ALineThatFailsWithoutMemoryLosesNothing) {
    std::vector<char16_t> text = support::sequence<char16_t>(length);
    text[100] = u'\r';
    for (int pieces = 0; pieces < 18; ++pieces) {
        for (std::size_t allocation = 0; allocation < 14; ++allocation) {
            const auto source = make<support::SlowReader>(text, 7);
            source->piecesBeforeFailures = pieces;
            source->failures = 1;
            source->requests.reserve(1000);
            io::BufferedReader in(source, 16);
            String line;
            for (bool failed = failsWithout(allocation, [&] { in.readLine(line); }); failed;) {
                failed = failsWithout(0, [&] { in.readLine(line); });
            }
            ASSERT_EQ(line, String(text.data(), 100)) << pieces << " pieces, " << allocation;
            for (bool failed = true; failed;) {
                failed = failsWithout(0, [&] { in.readLine(line); });
            }
            ASSERT_EQ(line, String(text.data() + 101, length - 101))
                << pieces << ", " << allocation;
        }
    }
}

} // namespace
