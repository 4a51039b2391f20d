// Fresh identifiers where the system's random source gives little, is interrupted, or fails. The
// program's own function stands in front of the system's.

#include "qvcore/Guid.h"

#include "qv/Results.h"
#include "qv/util/Guid.h"
#include "tests/support/Throws.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum class Source { system, ones, stingy, interrupted, failing };
Source source = Source::system;
int calls = 0;

} // namespace

extern "C" ssize_t getrandom(void* memory, size_t size, unsigned flags) {
    ++calls;
    switch (source) {
    case Source::failing:
        errno = ENOSYS;
        return -1;
    case Source::interrupted:
        if (calls % 2 == 1) {
            errno = EINTR;
            return -1;
        }
        [[fallthrough]];
    case Source::stingy:
        size = 1;
        [[fallthrough]];
    case Source::ones:
        std::memset(memory, 0xFF, size);
        return static_cast<ssize_t>(size);
    case Source::system:
        break;
    }
    return syscall(SYS_getrandom, memory, size, flags);
}

namespace {

/// Lets the identifiers of a scope come from another source.
class SourceScope {
public:
    explicit SourceScope(Source other) {
        source = other;
        calls = 0;
    }
    ~SourceScope() { source = Source::system; }
    SourceScope(const SourceScope&) = delete;
    SourceScope& operator=(const SourceScope&) = delete;
};

constexpr GUID allOnes = {
    0xFFFFFFFF, 0xFFFF, 0x4FFF, {0xBF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};

TEST(GuidSourceTest, AllBitsButThoseOfTheVersionAreRandom) {
    const SourceScope scope(Source::ones);
    GUID guid = {};
    EXPECT_EQ(QVComGenerateGUID(&guid), qv::QV_S_OK);
    EXPECT_EQ(QVComCompareGUID(&guid, &allOnes), 0);
    EXPECT_EQ(calls, 1);
}

TEST(GuidSourceTest, ASourceThatGivesByteByByteIsAskedUntilAllAreThere) {
    const SourceScope scope(Source::stingy);
    GUID guid = {};
    EXPECT_EQ(QVComGenerateGUID(&guid), qv::QV_S_OK);
    EXPECT_EQ(QVComCompareGUID(&guid, &allOnes), 0);
    EXPECT_EQ(calls, 16);
}

TEST(GuidSourceTest, AnInterruptedSourceIsAskedAgain) {
    const SourceScope scope(Source::interrupted);
    GUID guid = {};
    EXPECT_EQ(QVComGenerateGUID(&guid), qv::QV_S_OK);
    EXPECT_EQ(QVComCompareGUID(&guid, &allOnes), 0);
}

TEST(GuidSourceTest, AFailureIsAResultAndNoWeakValue) {
    const SourceScope scope(Source::failing);
    GUID guid = allOnes;
    EXPECT_EQ(QVComGenerateGUID(&guid), qv::detail::result(0x80070032u));
    EXPECT_EQ(QVComCompareGUID(&guid, &allOnes), 0) << "untouched";
    EXPECT_EQ(support::thrownResult([] { qv::util::Guid::Generate(); }),
              qv::detail::result(0x80070032u));
}

} // namespace
