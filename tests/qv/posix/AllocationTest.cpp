// Where the strings promise not to allocate, they do not; where an allocation fails, nothing is
// lost. On this system only: a Windows module has operators of its own, which a program cannot take
// the place of.

#include "qv/Exceptions.h"
#include "qv/Str1HashMap.h"
#include "qv/String.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printing.h"

#include <gtest/gtest.h>

using namespace qv;
using support::Allocations;

namespace {

TEST(StringAllocationTest, EmptyStringsAndCopiesCostNone) {
    const String text(u"text");
    const Allocations allocations;
    const String empty;
    const String cleared(u"");
    const String copy(text);
    const String moved{String(copy)};
    const String shared(String::ACQUIRE_SHARE, text, 0);
    EXPECT_TRUE(copy.equals(text));
    EXPECT_EQ(text.indexOf(u"x"), 1 + 1);
    EXPECT_EQ(text.substring(2, 2).getLength(), 0);
    EXPECT_NE(text.hashCode(), 0u);
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(StringAllocationTest, LiteralCostsOneSmallObject) {
    using namespace qv::literals;
    const Allocations allocations;
    const String text(u"a literal of any length costs the same"_lit);
    EXPECT_EQ(allocations.count(), 1u);
}

TEST(Str1AllocationTest, FixedStorageCostsNoneWhileTheTextFits) {
    const Str1Copy other(u"other text");
    const Allocations allocations;
    Str1Fixed<128> text;
    text.append(u'x', 100);
    text.copy(u"short");
    text.append(other).toUpper();
    const Str1 view = text.substring(2, 5);
    const Str1 copy(other);
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(Str1AllocationTest, FixedStorageTakesItsOwnTextOnceMore) {
    Str1Fixed<128> text;
    text.append(u"own ");
    const Allocations allocations;
    text.append(text).append(text, 2, 1).copy(text);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(text.toQVString(), u"own own wn");
}

TEST(Str1AllocationTest, LocalStorageCostsNoneWhileTheTextFits) {
    char16_t memory[64];
    const Allocations allocations;
    Str1Local text(memory, 0, 64);
    text.append(u'x', 60).append(u"1234");
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(Str1AllocationTest, LowerCaseTextIsNotCopied) {
    Str1 text = Str1Copy(u"lower");
    const Str1 sharer(text);
    const Allocations allocations;
    text.toLower();
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(Str1AllocationTest, UpperCaseTextIsNotCopied) {
    Str1 text = Str1Copy(u"UPPER");
    const Str1 sharer(text);
    const Allocations allocations;
    text.toUpper();
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(text.getData1(), sharer.getData1());
}

TEST(Str1AllocationTest, StoreAndHeaderAreOneAllocation) {
    const Allocations allocations;
    const Str1Copy text(u"a text");
    EXPECT_EQ(allocations.count(), 1u);
}

/// Runs `work` with its first, second and so on allocation failing, until it needs no more. `check`
/// says that nothing is broken after each failure.
template <class Work, class Check>
void failEach(Work work, Check check) {
    for (std::size_t failing = 1;; ++failing) {
        ASSERT_LT(failing, 100u);
        try {
            const Allocations allocations(failing);
            work();
            break;
        } catch (const std::bad_alloc&) {
            check();
        } catch (const ResultException& failure) { // where it came through a buffer's locks
            EXPECT_EQ(failure.getResult(), QV_E_OUTOFMEMORY);
            check();
        }
    }
}

TEST(StringAllocationTest, FailureAtEveryAllocationLosesNothing) {
    String text(u"text");
    const String sharer(text);
    failEach([&] { text.append(u" and more"); },
             [&] {
                 EXPECT_EQ(text, u"text");
                 EXPECT_EQ(sharer, u"text");
             });
    EXPECT_EQ(text, u"text and more");
    failEach([&] { static_cast<void>(text.getBytes(u"UTF-16LE")); },
             [&] { EXPECT_EQ(text, u"text and more"); });
    failEach([&] { text.format(u"{0}-{1}", -1, u"a", u"b"); },
             [&] { EXPECT_EQ(text, u"text and more"); });
    EXPECT_EQ(text, u"a-b");
    failEach([&] { text.setTo("narrow", -1, u"UTF-8"); }, [&] { EXPECT_EQ(text, u"a-b"); });
    EXPECT_EQ(text, u"narrow");
}

TEST(StringAllocationTest, FailureOnTheComponentFaceIsItsResult) {
    String text(u"text");
    const String sharer(text);
    char16_t* units = nullptr;
    {
        const Allocations allocations(1);
        EXPECT_EQ(static_cast<util::ICharBuffer&>(text).GetWriteLock(4, &units), QV_E_OUTOFMEMORY);
    }
    EXPECT_EQ(units, nullptr);
    EXPECT_EQ(text, u"text");
}

TEST(Str1AllocationTest, FailureAtEveryAllocationLosesNothing) {
    Str1 text = Str1Copy(u"text");
    const Str1 sharer(text);
    failEach([&] { text.append(u" and more"); }, [&] { EXPECT_EQ(text, u"text"); });
    EXPECT_EQ(text, u"text and more");
    EXPECT_EQ(sharer, u"text");
}

TEST(Str1HashMapAllocationTest, FailureAtEveryAllocationBreaksNothing) {
    Str1HashMap<Str1> map(1, 1.0f);
    map.put(Str1Copy(u"a"), Str1());
    const Str1Copy key(u"b");
    failEach([&] { map.put(key, Str1()); },
             [&] {
                 EXPECT_EQ(map.getSize(), 1);
                 EXPECT_TRUE(map.containsKey(Str1Copy(u"a")));
             });
    EXPECT_EQ(map.getSize(), 2);
    EXPECT_EQ(map.getCapacity(), 3);
}

} // namespace
