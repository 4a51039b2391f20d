// A text of nearly as many units as there can be, in memory that is only there where it is touched.

#include "qv/String.h"

#include <gtest/gtest.h>
#include <limits>
#include <sys/mman.h>

using namespace qv;

namespace {

constexpr int greatestLength = std::numeric_limits<int>::max() - 2;

/// Zero units, which the system brings as they are read or written.
class LazyUnits {
public:
    LazyUnits()
        : memory_(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
    LazyUnits(const LazyUnits&) = delete;
    LazyUnits& operator=(const LazyUnits&) = delete;
    ~LazyUnits() {
        if (isThere()) {
            munmap(memory_, size);
        }
    }
    bool isThere() const { return memory_ != MAP_FAILED; }
    char16_t* get() const { return static_cast<char16_t*>(memory_); }

private:
    static constexpr std::size_t size = (std::size_t{greatestLength} + 1) * sizeof(char16_t);
    void* memory_;
};

TEST(GreatTextTest, HashEndsWithTheText) {
    const LazyUnits units;
    if (!units.isThere()) {
        GTEST_SKIP() << "the system gives no address range of 4 GB";
    }
    constexpr std::int64_t step = (std::int64_t{greatestLength} - 32) / 32 + 1;
    std::uint32_t expected = 0;
    for (std::int64_t i = 0; i < greatestLength; i += step) {
        const auto unit = static_cast<char16_t>(u'A' + i / step % 26);
        units.get()[i] = unit;
        expected = expected * 37 + unit;
    }
    const String text(String::ACQUIRE_WRAP, units.get(), greatestLength);
    EXPECT_EQ(text.getLength(), greatestLength);
    EXPECT_EQ(text.hashCode(), expected);
    EXPECT_NE(text.hashCode(true), expected);
}

} // namespace
