#include "qv/Str1.h"

#include "qv/ClassManager.h"
#include "qv/Exceptions.h"
#include "qv/Results.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/CodecManager.h"
#include "qvcore/Encoding.h"
#include "tests/support/ClosingCodec.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <utility>

using namespace qv;
using support::units;

namespace {

const signed char* bytesOf(const char* text) { return reinterpret_cast<const signed char*>(text); }

bool shares(const Str1& left, const Str1& right) { return left.getData1() == right.getData1(); }

/// The store of a light string, which it shows to its subclasses only.
StrBuf1* storeOf(const Str1& text) {
    struct Open : Str1 {
        static auto store() { return &Open::getBuffer; }
    };
    return (text.*Open::store())();
}

unsigned int capacityOf(const Str1& text) { return storeOf(text)->getBufCapacity(); }

/// Where the text begins in its store.
std::ptrdiff_t offsetOf(const Str1& text) { return text.getData0() - storeOf(text)->getData(); }

// --- The store ---

TEST(StrBuf1Test, CapacityIsNormalisedToSixteen) {
    EXPECT_EQ(StrBuf1::normalizeCapacity(0), 0u);
    EXPECT_EQ(StrBuf1::normalizeCapacity(1), 16u);
    EXPECT_EQ(StrBuf1::normalizeCapacity(16), 16u);
    EXPECT_EQ(StrBuf1::normalizeCapacity(17), 32u);
}

TEST(StrBuf1Test, HeapStoreLivesFromReferenceToReference) {
    StrBuf1* const store = StrBuf1::newStrBuf1Cap(10);
    EXPECT_EQ(store->getRefCount(), 0u);
    EXPECT_EQ(store->getBufCapacity(), 16u);
    store->AddRef();
    EXPECT_EQ(store->isPrivatelyHeld(0), 16u);
    store->AddRef();
    EXPECT_EQ(store->isPrivatelyHeld(0), 0u);
    store->Release();
    store->getData()[15] = u'x';
    store->Release();
    EXPECT_THROW(StrBuf1::newStrBuf1Cap(0xFFFFFF), std::bad_alloc);
}

TEST(StrBuf1Test, StaticInstanceHasAReferenceOfItsOwn) {
    char16_t units[20];
    StrBuf1Wrap store(units, 20);
    store.initStaticInstance(0);
    EXPECT_TRUE(store.isStaticInstance());
    EXPECT_EQ(store.getRefCount(), 1u);
    EXPECT_EQ(store.isPrivatelyHeld(1), 20u);
    store.AddRef();
    EXPECT_EQ(store.isPrivatelyHeld(0), 20u);
    EXPECT_EQ(store.isPrivatelyHeld(1), 0u);
    store.AddRef();
    EXPECT_EQ(store.isPrivatelyHeld(0), 0u);
    store.Release();
    store.Release();
    EXPECT_EQ(store.getRefCount(), 1u);
}

TEST(StrBuf1Test, NeverSharedInstanceIsAlwaysPrivate) {
    char16_t units[20];
    StrBuf1Wrap store(units, 20);
    store.initStaticInstance(1);
    for (int i = 0; i < 5; ++i) {
        store.AddRef();
    }
    EXPECT_EQ(store.isPrivatelyHeld(0), 20u);
}

TEST(StrBuf1Test, FieldsAreWrittenUnderTheirMasks) {
    StrBuf1Wrap store(u"", 0x7FFFFFF);
    EXPECT_EQ(store.getBufCapacity(), 0xFFFFFFu);
    store.setCapacityValue(0xFF000005);
    EXPECT_EQ(store.getBufCapacity(), 5u);
    store.setHeapBits(0xFFFFFFFF);
    EXPECT_EQ(store.getHeapBits(), 0x3000000u);
    EXPECT_EQ(store.getBufCapacity(), 5u);
    EXPECT_FALSE(store.isStaticInstance());
    store.setHeapBits(0x1000000);
    EXPECT_EQ(store.getHeapBits(), 0x1000000u);
}

TEST(StrBuf1Test, ReadOnlyStoreIsNeverPrivate) {
    StrBuf1Static store(u"text", 4);
    EXPECT_EQ(store.isPrivatelyHeld(0), 0u);
    EXPECT_EQ(store.isPrivatelyHeld(1), 0u);
    EXPECT_EQ(store.getBufCapacity(), 4u);
}

// --- Making and sharing ---

TEST(Str1Test, NewStringIsEmpty) {
    const Str1 text;
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.getData0(), nullptr);
    EXPECT_EQ(text.toQVString(), u"");
    EXPECT_EQ(Str1(20u).getLength(), 0);
    EXPECT_NE(Str1(20u).getData1(), nullptr);
}

TEST(Str1Test, CopiesShare) {
    const Str1Copy text(u"text");
    const Str1 copy(text);
    EXPECT_TRUE(shares(text, copy));
    Str1 assigned;
    assigned = text;
    EXPECT_TRUE(shares(text, assigned));
    auto& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned, text);
}

TEST(Str1Test, AppendToASharedViewLeavesTheSharers) {
    const Str1Copy text(u"text");
    Str1 view(text, 1, 3);
    EXPECT_EQ(units(view), u"ex");
    view.append(u"!");
    EXPECT_EQ(units(view), u"ex!");
    EXPECT_EQ(units(text), u"text");
    EXPECT_FALSE(shares(text, view));
}

TEST(Str1Test, SubstringIsAView) {
    const Str1Copy text(u"0123456789");
    EXPECT_EQ(text.substring(2, 5).getData1(), text.getData1() + 2);
    EXPECT_EQ(units(text.substring(2, 5)), u"234");
    EXPECT_EQ(units(text.substring(7)), u"789");
    EXPECT_EQ(units(text.substring(7, 99)), u"789");
    EXPECT_TRUE(text.substring(10).isEmpty());
    EXPECT_TRUE(text.substring(-1, 3).isEmpty());
    EXPECT_TRUE(text.substring(5, 5).isEmpty());
    EXPECT_TRUE(text.substring(6, 5).isEmpty());
    const Str1 view = text.substring(2).substring(3, 5);
    EXPECT_EQ(units(view), u"56");
}

TEST(Str1Test, NewReferenceIsTakenBeforeTheOldOneIsReleased) {
    Str1 text = Str1Copy(u"0123456789");
    ASSERT_EQ(storeOf(text)->getRefCount(), 1u);
    const char16_t* const data = text.getData1();
    EXPECT_EQ(&text.setTo(text), &text);
    EXPECT_EQ(text.getData1(), data);
    EXPECT_EQ(storeOf(text)->getRefCount(), 1u);
    EXPECT_EQ(units(text), u"0123456789");
    text.setTo(text.substring(4));
    EXPECT_EQ(storeOf(text)->getRefCount(), 1u);
    EXPECT_EQ(units(text), u"456789");
}

TEST(Str1Test, OnlyMinusOneMeasures) {
    char16_t memory[8] = u"abc";
    for (const int length : {-2, std::numeric_limits<int>::min()}) {
        Str1 text = Str1Copy(u"old");
        EXPECT_EQ(units(text.append(u"abc", length)), u"old");
        EXPECT_TRUE(text.startsWith(u"abc", length)) << "an empty text";
        EXPECT_EQ(units(text.copy(u"abc", length)), u"");
        EXPECT_EQ(text.appendA(bytesOf("abc"), length, u"UTF-8"), 0);
        EXPECT_EQ(units(text), u"");
        EXPECT_EQ(units(Str1Copy(u"abc", length)), u"");
        EXPECT_EQ(units(Str1Static(u"abc", length)), u"");
        EXPECT_EQ(units(Str1Wrap(memory, length, 8)), u"");
        EXPECT_EQ(units(Str1Local(memory, length, 8)), u"");
        EXPECT_EQ(units(Str1Fixed<128>(u"abc", length)), u"");
    }
}

TEST(Str1Test, OnlyMinusOneMeansTheRest) {
    const Str1Copy source(u"0123456789");
    for (const int negative : {-2, std::numeric_limits<int>::min()}) {
        EXPECT_TRUE(source.substring(0, negative).isEmpty());
        EXPECT_TRUE(source.substring(1, negative).isEmpty());
        for (const int start : {0, 1, 5}) {
            Str1 text = Str1Copy(u"-");
            EXPECT_EQ(units(text.append(source, negative, start)), u"-") << start;
            Str1 none;
            EXPECT_TRUE(none.append(source, negative, start).isEmpty()) << start;
        }
    }
}

TEST(Str1Test, CountOfNoneAppendsNothing) {
    const Str1Copy source(u"0123456789");
    for (const int start : {0, 3}) {
        Str1 text = Str1Copy(u"-");
        EXPECT_EQ(units(text.append(source, 0, start)), u"-");
        Str1 none;
        EXPECT_TRUE(none.append(source, 0, start).isEmpty());
    }
}

TEST(Str1Test, TextsAreCopiedInFromEverySource) {
    Str1 text;
    EXPECT_EQ(units(text.copy(u"units")), u"units");
    EXPECT_EQ(units(text.copy(u"units", 2)), u"un");
    EXPECT_EQ(units(text.copy(String(u"string"))), u"string");
    EXPECT_EQ(units(text.copy(Str1Copy(u"light"))), u"light");
    text = String(u"again");
    EXPECT_EQ(units(text), u"again");
    text = u"and again";
    EXPECT_EQ(units(text), u"and again");
    EXPECT_EQ(units(text.copy(text)), u"and again");
    EXPECT_EQ(units(Str1Copy(String(u"copy"))), u"copy");
}

TEST(Str1Test, CopyOfNothingKeepsTheStore) {
    Str1 text = Str1Copy(u"text");
    const char16_t* const data = text.getData1();
    text.copy(u"", 0);
    EXPECT_EQ(text.getLength(), 0);
    EXPECT_EQ(text.getData1(), data);
}

TEST(Str1Test, ClearKeepsTheOffsetAndCopiesOfNothingDoNot) {
    const Str1Copy text(u"0123456789");
    Str1 cleared = text.substring(3, 6);
    cleared.clear();
    EXPECT_EQ(cleared.getData1(), text.getData1() + 3);
    Str1 copied = text.substring(3, 6);
    copied.copy(u"", 0);
    EXPECT_TRUE(copied.isEmpty());
    EXPECT_EQ(copied.getData1(), text.getData1());
    Str1 decoded = text.substring(3, 6);
    EXPECT_EQ(decoded.copyA(bytesOf(""), 0, u"UTF-8"), 0);
    EXPECT_TRUE(decoded.isEmpty());
    EXPECT_EQ(decoded.getData1(), text.getData1());
    EXPECT_EQ(units(text), u"0123456789");
}

TEST(Str1Test, ClearKeepsAndResetGivesTheStoreBack) {
    Str1 text = Str1Copy(u"text");
    const char16_t* const data = text.getData1();
    text.clear();
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.getData1(), data);
    text.adjustLength(2);
    EXPECT_EQ(units(text), u"te");
    text.adjustLength(-1);
    EXPECT_EQ(units(text), u"t");
    text.reset();
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.getData0(), nullptr);
}

// --- Appending ---

TEST(Str1Test, AppendGrowsTheText) {
    Str1 text;
    text.append(u"abc").append(u"defg", 2).append(u'x').append(u'y', 3).append(String(u"z"));
    EXPECT_EQ(units(text), u"abcdexyyyz");
    text.append(u"", 0).append(u'q', 0).append(u'q', -1);
    EXPECT_EQ(units(text), u"abcdexyyyz");
    text += u"1";
    text += u'2';
    text += String(u"3");
    text += Str1Copy(u"4");
    EXPECT_EQ(units(text), u"abcdexyyyz1234");
}

TEST(Str1Test, AppendOfALightStringTakesARange) {
    const Str1Copy source(u"0123456789");
    Str1 text = Str1Copy(u"x");
    EXPECT_EQ(units(text.append(source, 3, 2)), u"x234");
    EXPECT_EQ(units(text.append(source, -1, 8)), u"x23489");
    EXPECT_EQ(units(text.append(text)), u"x23489x23489");
}

TEST(Str1Test, AppendToAStringWithoutAStoreIsAView) {
    const Str1Copy source(u"0123456789");
    Str1 text;
    text.append(source, 3, 2);
    EXPECT_EQ(units(text), u"234");
    EXPECT_EQ(text.getData1(), source.getData1() + 2);
}

TEST(Str1Test, GrowingTextGrowsByAQuarter) {
    struct Open : Str1 {
        unsigned int capacity() const { return getBuffer()->getBufCapacity(); }
    } text;
    text.copy(u"a");
    EXPECT_EQ(text.capacity(), 16u);
    text.append(u'b', 99); // 100 units wanted: 112 rounded, a quarter more: 140, and 144 rounded
    EXPECT_EQ(text.capacity(), 144u);
    text.append(u'c', 44);
    EXPECT_EQ(text.capacity(), 144u);
    text.append(u'd');
    EXPECT_EQ(text.capacity(), 208u); // 145 wanted: 160 rounded, 200, 208 rounded
    EXPECT_EQ(units(text),
              u"a" + std::u16string(99, u'b') + std::u16string(44, u'c') + std::u16string(1, u'd'));
}

TEST(Str1Test, ViewThatWalkedForwardReclaimsItsFront) {
    Str1 text(160u);
    text.append(u'x', 150);
    const char16_t* const front = text.getData1();
    text = text.substring(140);
    EXPECT_EQ(text.getData1(), front + 140);
    text.append(u'y', 100);
    EXPECT_EQ(text.getData1(), front) << "moved to the start of its own store";
    std::u16string expected(10, u'x');
    expected.append(100, u'y');
    EXPECT_EQ(units(text), expected);
}

TEST(Str1Test, LengthBeyondTheStoreIsOutOfMemory) {
    Str1 text = Str1Copy(u"abc");
    EXPECT_THROW(text.append(u'x', 0x1000000), std::bad_alloc);
    EXPECT_THROW(text.append(u'x', std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_EQ(units(text), u"abc");
}

TEST(Str1Test, FailedCopyLeavesTheText) {
    constexpr int tooLong = 0x1000000; // so that the source is not looked at
    const Str1 whole = Str1Copy(u"0123456789");
    Str1 view = whole.substring(4, 8); // shares the store
    EXPECT_THROW(view.copy(u"", tooLong), std::bad_alloc);
    EXPECT_EQ(units(view), u"4567");
    Str1 alone = Str1Copy(u"0123456789");
    alone.setTo(alone.substring(4, 8)); // holds a store by itself, from an offset on
    EXPECT_THROW(alone.copy(u"", tooLong), std::bad_alloc);
    EXPECT_EQ(units(alone), u"4567");
    Str1Fixed<128> home(u"home");
    EXPECT_THROW(home.copy(u"", tooLong), std::bad_alloc);
    EXPECT_EQ(units(home), u"home");
}

TEST(Str1Test, LongTextsGrowUnitByUnit) {
    Str1 text;
    for (int i = 0; i < 70000; ++i) {
        text += static_cast<char16_t>(u'a' + i % 26);
    }
    ASSERT_EQ(text.getLength(), 70000);
    EXPECT_EQ(text[69999], u'a' + 69999 % 26);
}

// --- Comparison, search, case ---

TEST(Str1Test, EqualityNeedsLengthAndUnits) {
    EXPECT_TRUE(Str1Copy(u"abc") == Str1Copy(u"abc"));
    EXPECT_FALSE(Str1Copy(u"abc") == Str1Copy(u"abd"));
    EXPECT_FALSE(Str1Copy(u"abc") == Str1Copy(u"ab"));
    EXPECT_TRUE(Str1() == Str1());
    EXPECT_TRUE(Str1Copy(u"abc") == u"abc");
    EXPECT_FALSE(Str1Copy(u"abc") == u"abcd");
    EXPECT_TRUE(Str1() == u"");
}

TEST(Str1Test, IndexOfLooksFromAPlaceInside) {
    const Str1Copy text(u"abcABC");
    EXPECT_EQ(text.indexOf(u'b'), 1);
    EXPECT_EQ(text.indexOf(u'b', 2), -1);
    EXPECT_EQ(text.indexOf(u'b', 2, true), 4);
    EXPECT_EQ(text.indexOf(u'C', 0, true), 2);
    EXPECT_EQ(text.indexOf(u'a', 6), -1);
    EXPECT_EQ(text.indexOf(u'a', -1), -1);
    EXPECT_EQ(Str1().indexOf(u'a'), -1);
}

TEST(Str1Test, StartsWith) {
    const Str1Copy text(u"Hello");
    EXPECT_TRUE(text.startsWith(u"Hel"));
    EXPECT_FALSE(text.startsWith(u"hel"));
    EXPECT_TRUE(text.startsWith(u"hel", -1, true));
    EXPECT_TRUE(text.startsWith(u""));
    EXPECT_FALSE(text.startsWith(u"Hello!"));
    EXPECT_TRUE(text.startsWith(Str1Copy(u"HE"), true));
    EXPECT_TRUE(text.startsWith(Str1()));
    EXPECT_TRUE(Str1().startsWith(u""));
    EXPECT_EQ(text[1], u'e');
}

TEST(Str1Test, CaseChangesOnlyWhatChanges) {
    Str1 text = Str1Copy(u"aÀЖ");
    const Str1 sharer(text);
    EXPECT_EQ(text.toLower(), 0);
    EXPECT_EQ(units(text), u"aàж");
    EXPECT_EQ(units(sharer), u"aÀЖ");
    const Str1 lower(text);
    EXPECT_EQ(text.toLower(), 0);
    EXPECT_TRUE(shares(text, lower)) << "text that is so already stays shared";
    EXPECT_EQ(text.toUpper(), 0);
    EXPECT_EQ(units(text), u"AÀЖ");
    Str1 none;
    EXPECT_EQ(none.toLower(), 0);
}

TEST(Str1Test, BecomesAString) {
    EXPECT_EQ(Str1Copy(u"text").toQVString(), u"text");
    EXPECT_EQ(Str1().toQVString().getData(), String().getData());
}

// --- Forms ---

TEST(Str1FormsTest, WrapReadsTheCallersArray) {
    char16_t memory[16] = u"abc";
    Str1Wrap text(memory, -1, 16);
    EXPECT_EQ(text.getData1(), memory);
    text.append(u"d");
    EXPECT_EQ(memory[3], u'd') << "it is the sole holder and writes in place";
}

TEST(Str1FormsTest, StaticTextIsNeverWrittenInPlace) {
    static const char16_t literal[] = u"literal";
    Str1Static text(literal);
    EXPECT_EQ(text.getData1(), literal);
    EXPECT_EQ(units(text.substring(1, 3)), u"it");
    text.toUpper();
    EXPECT_EQ(units(text), u"LITERAL");
    EXPECT_NE(text.getData1(), literal);
    EXPECT_EQ(std::u16string(literal), u"literal");
}

TEST(Str1FormsTest, LocalWritesTheCallersArrayAndComesHome) {
    char16_t memory[8] = u"ab";
    Str1Local text(memory, -1, 8);
    text.append(u"cd");
    EXPECT_EQ(text.getData1(), memory);
    text.append(u'x', 20);
    EXPECT_NE(text.getData1(), memory);
    EXPECT_EQ(text.getLength(), 24);
    const Str1 away(text);
    text.copy(u"home");
    EXPECT_EQ(units(text), u"home");
    EXPECT_EQ(text.getData1(), memory);
    EXPECT_EQ(away.getLength(), 24);
    const Str1 sharer(text);
    text.append(u"!");
    EXPECT_EQ(units(sharer), u"home");
    EXPECT_EQ(units(text), u"home!");
}

TEST(Str1FormsTest, TextComesHomeWhenAnotherHoldsTheHeapStore) {
    Str1Fixed<128> text;
    const auto* const object = reinterpret_cast<const char*>(&text);
    const auto isHome = [&] {
        const auto* const data = reinterpret_cast<const char*>(text.getData1());
        return data >= object && data < object + sizeof text;
    };
    text.copy(u"short");
    EXPECT_TRUE(isHome());
    text.append(u'x', 200);
    EXPECT_FALSE(isHome());
    const Str1 sharer(text);
    text.copy(u"short");
    EXPECT_TRUE(isHome());
    EXPECT_EQ(sharer.getLength(), 205);
}

TEST(Str1FormsTest, TextStaysAwayWhileAnotherHoldsItsHome) {
    Str1Fixed<128> text(u"home");
    const Str1 view(text);
    text.append(u'x', 200);
    const Str1 away(text);
    text.copy(u"other");
    EXPECT_EQ(units(view), u"home");
    EXPECT_EQ(units(text), u"other");
    EXPECT_EQ(away.getLength(), 204);
}

/// Assigns a text of every kind to a form that holds "abc".
template <class Form>
void expectTakesEverySource(Form& text) {
    EXPECT_EQ(units(text), u"abc");
    text = String(u"string");
    EXPECT_EQ(units(text), u"string");
    text = u"units";
    EXPECT_EQ(units(text), u"units");
    const Str1 light = Str1Copy(u"light");
    text = light;
    EXPECT_EQ(units(text), u"light");
    EXPECT_TRUE(shares(text, light));
    text = u"other";
    EXPECT_EQ(units(text), u"other");
    EXPECT_EQ(units(light), u"light");
}

TEST(Str1FormsTest, CopyTakesEverySource) {
    Str1Copy text(u"abc");
    expectTakesEverySource(text);
}

TEST(Str1FormsTest, WrapTakesEverySource) {
    char16_t memory[16] = u"abc";
    Str1Wrap text(memory, -1, 16);
    expectTakesEverySource(text);
}

TEST(Str1FormsTest, StaticTakesEverySourceAndKeepsItsText) {
    static const char16_t literal[] = u"abc";
    Str1Static text(literal);
    expectTakesEverySource(text);
    EXPECT_EQ(std::u16string(literal), u"abc");
}

TEST(Str1FormsTest, LocalTakesEverySource) {
    char16_t memory[16] = u"abc";
    Str1Local text(memory, -1, 16);
    expectTakesEverySource(text);
}

TEST(Str1FormsTest, FixedTakesEverySource) {
    Str1Fixed<128> text(u"abc");
    expectTakesEverySource(text);
}

TEST(Str1FormsTest, FormsOfOneKindShareUnlessTheirStoreLiesInside) {
    static_assert(!std::is_copy_constructible_v<Str1Embedded>);
    static_assert(!std::is_assignable_v<Str1Embedded&, const Str1Embedded&>);
    const Str1Copy copy(u"copy");
    Str1Copy otherCopy(u"other");
    otherCopy = copy;
    EXPECT_TRUE(shares(otherCopy, copy));
    char16_t memory[16] = u"wrap";
    const Str1Wrap wrap(memory, -1, 16);
    Str1Wrap otherWrap(memory, 0, 16);
    otherWrap = wrap;
    EXPECT_TRUE(shares(otherWrap, wrap));
    EXPECT_EQ(storeOf(otherWrap), storeOf(wrap));
    static_assert(!std::is_copy_assignable_v<Str1Static>);
    static_assert(!std::is_copy_assignable_v<Str1Local>);
    static_assert(!std::is_copy_assignable_v<Str1Fixed<128>>);
}

// --- Appendor ---

TEST(Str1AppendorTest, AppendsFast) {
    Str1 text = Str1Copy(u"start:");
    Str1::Appendor appendor(text, 100, 50);
    appendor.firstAppend(u"first", 5);
    const char16_t* const data = text.getData1();
    for (int i = 0; i < 90; ++i) {
        appendor.fastAppend(u'x');
    }
    EXPECT_EQ(text.getData1(), data) << "the room was asked for once";
    appendor.fastAppend(u"end", 3);
    std::u16string expected(u"start:first");
    expected.append(90, u'x').append(u"end");
    EXPECT_EQ(units(text), expected);
    std::u16string long1(1000, u'y');
    appendor.fastAppend(long1.data(), 1000);
    EXPECT_EQ(text.getLength(), 1104);
}

TEST(Str1AppendorTest, AsksAheadByItsHintsOnceByTheFirstAndThenByTheOther) {
    Str1 text;
    Str1::Appendor appendor(text, 100, 50);
    appendor.fastAppend(u"12345", 5);
    EXPECT_EQ(capacityOf(text), 112u); // 0 + 100 + 5, rounded
    StrBuf1* const store = storeOf(text);
    for (int i = 0; i < 107; ++i) {
        appendor.fastAppend(u'x');
    }
    EXPECT_EQ(storeOf(text), store) << "what was given beyond the wish is used";
    EXPECT_EQ(capacityOf(text), 112u);
    appendor.fastAppend(u'y');
    EXPECT_EQ(capacityOf(text), 224u); // 50 + 112 + 1 is 176 rounded, 220 with a quarter more
    EXPECT_EQ(text.getLength(), 113);
}

TEST(Str1AppendorTest, FirstAppendOfNothingAsksForTheFirstHintAlone) {
    Str1 text;
    Str1::Appendor appendor(text, 20, 500);
    appendor.firstAppend(u"", 0);
    EXPECT_EQ(capacityOf(text), 32u);
    EXPECT_TRUE(text.isEmpty());
    appendor.firstAppend(u"abc", 3);
    EXPECT_EQ(units(text), u"abc");
    EXPECT_EQ(capacityOf(text), 32u);
}

TEST(Str1AppendorTest, FirstAppendOfNothingReserves) {
    Str1 text = Str1Copy(u"0123456789");
    Str1::Appendor appendor(text, 6, 1);
    appendor.firstAppend(nullptr, 0);
    EXPECT_EQ(text.getLength(), 10);
    for (int i = 0; i < 100; ++i) {
        appendor.fastAppend(u'x');
    }
    std::u16string expected(u"0123456789");
    expected.append(100, u'x');
    EXPECT_EQ(units(text), expected);
}

TEST(Str1AppendorTest, TellsTheRoomThatItReserved) {
    Str1 text = Str1Copy(u"0123456789");
    Str1::Appendor appendor(text, 100, 1000);
    const int room = appendor.setRemCap(2);
    EXPECT_EQ(room, static_cast<int>(capacityOf(text)) - 10);
    EXPECT_GE(appendor.setRemCap(2), 1002);
    EXPECT_EQ(text.getLength(), 10);
}

TEST(Str1AppendorTest, NothingAppendedToAStringWithoutAStoreLeavesItSo) {
    Str1 text;
    Str1::Appendor appendor(text, 10, 10);
    appendor.fastAppend(u"", 0);
    appendor.fastAppend(nullptr, 0);
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(storeOf(text), nullptr);
    appendor.fastAppend(u'a');
    EXPECT_EQ(units(text), u"a");
}

TEST(Str1AppendorTest, HintsBelowNoneAskForNothing) {
    Str1 text;
    Str1::Appendor appendor(text, -5, -5);
    appendor.fastAppend(u"01234567890123456789", 20);
    appendor.fastAppend(u"abc", 3);
    EXPECT_EQ(units(text), u"01234567890123456789abc");
}

TEST(Str1AppendorTest, HintsBeyondAllNumbersAreOutOfMemory) {
    constexpr int most = std::numeric_limits<int>::max();
    Str1 text = Str1Copy(u"abc");
    EXPECT_THROW(Str1::Appendor(text, most, most).fastAppend(u'd'), std::bad_alloc);
    EXPECT_THROW(Str1::Appendor(text, most, 0).checkAvailable(most), std::bad_alloc);
    EXPECT_EQ(units(text), u"abc");
}

TEST(Str1AppendorTest, NoUnitsOfAStringWithoutAStoreHaveNoPlace) {
    Str1 text;
    EXPECT_EQ(Str1::Appendor(text, 0, 0).checkAvailable(0), nullptr);
    EXPECT_EQ(Str1::Appendor(text, 1, 1).checkAvailable(0), nullptr);
    EXPECT_EQ(text.getLength(), 0);
}

TEST(Str1AppendorTest, ResyncForgetsTheRoomThatWasLeft) {
    Str1 text;
    Str1::Appendor appendor(text, 100, 10);
    appendor.fastAppend(u"abc", 3);
    text.reset();
    appendor.resync();
    appendor.fastAppend(u"def", 3);
    EXPECT_EQ(units(text), u"def") << "it asked for room again";
    EXPECT_EQ(capacityOf(text), 16u) << "13 units, rounded";
}

TEST(Str1AppendorTest, ResyncFollowsOtherChanges) {
    Str1 text;
    Str1::Appendor appendor(text, 10, 10);
    appendor.fastAppend(u"abc", 3);
    const Str1 sharer(text);
    text.append(u"d");
    appendor.resync();
    appendor.fastAppend(u'e');
    EXPECT_EQ(units(text), u"abcde");
    EXPECT_EQ(units(sharer), u"abc");
}

// --- Growth ---

/// A light string that shows how it makes room. Its text is that of a source without other holders,
/// from `start` on.
struct Roomy : Str1 {
    explicit Roomy(int start) {
        copy(u"0123456789");
        setTo(substring(start));
    }
    using Str1::ensureCapacity1;
};

TEST(Str1RoomTest, RoomCountsFromTheOffset) {
    Roomy text(4);
    const char16_t* const data = text.getData1();
    EXPECT_EQ(text.ensureCapacity1(6, 0, -1), 12);
    EXPECT_EQ(text.ensureCapacity1(12, 0, -1), 12) << "all that there is behind the offset";
    EXPECT_EQ(text.getData1(), data);
    EXPECT_EQ(text.ensureCapacity1(13, 0, -1), 16) << "the front is reclaimed";
    EXPECT_EQ(text.getData1(), data - 4);
    EXPECT_EQ(units(text), u"456789");
}

TEST(Str1RoomTest, NothingKeptGivesTheFrontBackAtOnce) {
    Roomy text(4);
    const char16_t* const data = text.getData1();
    EXPECT_EQ(text.ensureCapacity1(1, 0, 0), 16);
    EXPECT_EQ(text.getData1(), data - 4);
    Roomy shared(4);
    const Str1 sharer(shared);
    EXPECT_EQ(shared.ensureCapacity1(0, 0, 0), 0) << "no room is wanted, and none is made";
    EXPECT_EQ(shared.getData1(), sharer.getData1());
}

TEST(Str1RoomTest, OnlyWhatIsKeptMoves) {
    Roomy text(4);
    EXPECT_EQ(text.ensureCapacity1(16, 1, 3), 16);
    text.adjustLength(2 - text.getLength());
    EXPECT_EQ(units(text), u"56") << "to the front of its own store";
    Roomy grown(4);
    EXPECT_EQ(grown.ensureCapacity1(17, 1, 3), 48) << "32, and a quarter more, rounded";
    grown.adjustLength(2 - grown.getLength());
    EXPECT_EQ(units(grown), u"56");
    Roomy shared(0);
    const Str1 sharer(shared);
    EXPECT_EQ(shared.ensureCapacity1(3, 2, 5), 32) << "16, and a quarter more, rounded";
    shared.adjustLength(3 - shared.getLength());
    EXPECT_EQ(units(shared), u"234");
    EXPECT_EQ(units(sharer), u"0123456789");
}

TEST(Str1RoomTest, NothingKeptTakesNoMoreThanIsWanted) {
    Roomy text(0);
    EXPECT_EQ(text.ensureCapacity1(100, 0, 0), 112);
    Roomy shared(0);
    const Str1 sharer(shared);
    EXPECT_EQ(shared.ensureCapacity1(3, 0, 0), 16);
    EXPECT_NE(shared.getData1(), sharer.getData1());
}

TEST(Str1AppendorTest, RoomOfAViewEndsWithItsStore) {
    Str1 text = Str1Copy(u"0123456789");
    text.setTo(text.substring(8));
    Str1::Appendor appendor(text, 0, 0);
    for (int i = 0; i < 100; ++i) {
        appendor.fastAppend(static_cast<char16_t>(u'a' + i % 26));
        ASSERT_LE(static_cast<unsigned int>(text.getData1() - storeOf(text)->getData() +
                                            text.getLength()),
                  capacityOf(text));
    }
    EXPECT_EQ(text.getLength(), 102);
    EXPECT_TRUE(text.startsWith(u"89abc"));
}

TEST(Str1Test, CopyOfItselfStandsAtTheFrontOfAStore) {
    Str1 view = Str1Copy(u"0123456789");
    view.setTo(view.substring(4));
    ASSERT_EQ(offsetOf(view), 4);
    const char16_t* const store = view.getData0() - 4;
    view.copy(view);
    EXPECT_EQ(units(view), u"456789");
    EXPECT_EQ(view.getData0(), store);

    Str1 shared = Str1Copy(std::u16string(100, u'x').c_str());
    const Str1 sharer(shared);
    shared.copy(shared);
    EXPECT_EQ(capacityOf(shared), 112u) << "it takes no room to grow";
    EXPECT_NE(shared.getData0(), sharer.getData0());
    EXPECT_EQ(units(shared), units(sharer));

    Str1 empty;
    EXPECT_EQ(empty.copy(empty).getLength(), 0);
}

TEST(Str1Test, AppendToAClearedViewBeginsAtTheFront) {
    for (const bool single : {false, true}) {
        Str1 view = Str1Copy(u"0123456789");
        view.setTo(view.substring(4));
        const char16_t* const store = view.getData0() - 4;
        view.clear();
        single ? view.append(u'x') : view.append(u"x");
        EXPECT_EQ(view.getData0(), store);
        EXPECT_EQ(units(view), u"x");
    }
}

TEST(Str1Test, CopyTakesNoRoomToGrow) {
    Str1 fresh;
    fresh.copy(std::u16string(100, u'x').c_str());
    EXPECT_EQ(capacityOf(fresh), 112u);
    Str1 text = Str1Copy(u"old text");
    EXPECT_EQ(capacityOf(text), 16u);
    text.copy(std::u16string(100, u'x').c_str());
    EXPECT_EQ(capacityOf(text), 112u) << "nothing of the old text is kept";
    text.copy(String(u'y', 200));
    EXPECT_EQ(capacityOf(text), 208u);
    text.copy(Str1Copy(String(u'z', 300)));
    EXPECT_EQ(capacityOf(text), 304u);
}

TEST(Str1Test, TextThatGrowsTakesAQuarterMore) {
    Str1 text = Str1Copy(u"old text");
    text.append(u'x', 92);
    EXPECT_EQ(text.getLength(), 100);
    EXPECT_EQ(capacityOf(text), 144u); // 112 and a quarter are 140
}

TEST(Str1Test, CountBeyondTheEndAppendsTheRest) {
    const Str1 source = Str1Copy(u"0123456789");
    Str1 text = Str1Copy(u"-");
    text.append(source, std::numeric_limits<int>::max(), 2);
    EXPECT_EQ(units(text), u"-23456789");
    Str1 view;
    view.append(source, std::numeric_limits<int>::max(), 2);
    EXPECT_EQ(units(view), u"23456789");
    EXPECT_EQ(storeOf(view), storeOf(source));
    text.append(source, std::numeric_limits<int>::max(), 10);
    EXPECT_EQ(units(text), u"-23456789");
}

TEST(Str1Test, StartOutsideTheTextAppendsNothing) {
    const Str1 source = Str1Copy(u"0123456789");
    for (const int start :
         {-1, std::numeric_limits<int>::min(), 10, 11, std::numeric_limits<int>::max()}) {
        for (const int count : {-1, 0, 3, std::numeric_limits<int>::max()}) {
            Str1 text = Str1Copy(u"-");
            text.append(source, count, start);
            EXPECT_EQ(units(text), u"-") << start << ' ' << count;
            Str1 none;
            none.append(source, count, start);
            EXPECT_TRUE(none.isEmpty()) << start << ' ' << count;
        }
    }
}

// --- Narrow text ---

TEST(Str1BytesTest, BytesAreDecoded) {
    EXPECT_EQ(units(Str1(bytesOf("a\xC3\xA9"), -1, u"UTF-8")), u"aé");
    Str1 text = Str1Copy(u"old");
    EXPECT_EQ(text.appendA(bytesOf("\xC3\xA9!"), 2, u"UTF-8"), 0);
    EXPECT_EQ(units(text), u"oldé");
    EXPECT_EQ(text.copyA(bytesOf("new"), -1, u"UTF-8"), 0);
    EXPECT_EQ(units(text), u"new");
    EXPECT_EQ(text.appendA(bytesOf(""), 0, u"no such"), 0) << "no bytes, no decoder";
}

TEST(Str1BytesTest, NullNamesTheDefaultEncoding) {
    char16_t name[40];
    QVGetDefaultCharEncoding(name, 40);
    const Str1Copy source(u"a\u00E9");
    const std::string bytes = source.getBytesAZ(name).get();
    const Str1 decoded(bytesOf(bytes.c_str()), -1, name);
    EXPECT_STREQ(source.getBytesAZ(), bytes.c_str());
    int length = -1;
    EXPECT_EQ(source.getLengthA(&length), 0);
    EXPECT_EQ(length, static_cast<int>(bytes.size()));
    char out[16];
    EXPECT_EQ(source.convertToAZ(out, 16), 0);
    EXPECT_EQ(out, bytes);
    Str1 text;
    EXPECT_EQ(text.copyA(bytesOf(bytes.c_str()), -1), 0);
    EXPECT_EQ(text, decoded);
    text.clear();
    EXPECT_EQ(text.appendA(bytesOf(bytes.c_str()), -1), 0);
    EXPECT_EQ(text, decoded);
    EXPECT_EQ(Str1(bytesOf(bytes.c_str()), -1, nullptr), decoded);
}

TEST(Str1BytesTest, LongBytesAreDecodedThroughChunks) {
    std::string bytes;
    std::u16string expected;
    for (int i = 0; i < 3000; ++i) {
        bytes += "a\xD0\x96\xE4\xB8\xAD";
        expected += u"aЖ中";
    }
    Str1 text;
    EXPECT_EQ(text.copyA(bytesOf(bytes.c_str()), -1, u"UTF-8"), 0);
    EXPECT_EQ(units(text), expected);
}

TEST(Str1BytesTest, RoomForTheRestIsEstimatedFromTheFirstChunk) {
    Str1 text = Str1Copy(u"old text");
    const std::string bytes(2000, 'a');
    EXPECT_EQ(text.copyA(bytesOf(bytes.c_str()), -1, u"UTF-8"), 0);
    EXPECT_EQ(text.getLength(), 2000);
    // 512 units and an estimate of 1488 and 1 more, for an empty text: 2001, rounded.
    EXPECT_EQ(capacityOf(text), 2016u);
}

/// Encodes nothing and says that a character may take more room than there is; decodes each byte as
/// as many units as there is room for.
class GreedyEncoder : public text::charset::CharToByteConverter {
public:
    std::int32_t convert(const char16_t*, std::int32_t* position, std::int32_t end, signed char*,
                         std::int32_t*, std::int32_t) override {
        *position = end;
        return 0;
    }
    std::int32_t flush(signed char*, std::int32_t*, std::int32_t) override { return 0; }
    void reset() override {}
    const char16_t* getEncodingName() override { return u"x-Greedy"; }
    int getMaxBytesPerChar() override { return 0x40000000; }
    int getMaxCharsPerByte() override { return 0x40000000; }
};

class GreedyDecoder : public text::charset::ByteToCharConverter {
public:
    std::int32_t convert(const signed char*, std::int32_t* position, std::int32_t, char16_t* out,
                         std::int32_t* written, std::int32_t size) override {
        ++*position;
        std::fill(out + *written, out + size, u'x');
        return size - std::exchange(*written, size);
    }
    std::int32_t flush(char16_t*, std::int32_t*, std::int32_t) override { return 0; }
    void reset() override {}
    const char16_t* getEncodingName() override { return u"x-Greedy"; }
    int getMaxBytesPerChar() override { return 1; }
    int getMaxCharsPerByte() override { return 512; }
};

/// The name of an encoding whose converters ask for more than there is.
const char16_t* greedyEncoding() {
    ClassManagerBase* const classes = ClassManager::getInstance();
    classes->registerClass(u"test::GreedyEncoder", &typeid(GreedyEncoder),
                           []() -> Object* { return new GreedyEncoder; });
    classes->registerClass(u"test::GreedyDecoder", &typeid(GreedyDecoder),
                           []() -> Object* { return new GreedyDecoder; });
    text::charset::CodecManager::getInstance()->registerCodec(u"x-Greedy", u"test::GreedyEncoder",
                                                              u"test::GreedyDecoder");
    return u"x-Greedy";
}

TEST(Str1BytesTest, BytesBeyondAllNumbersAreOutOfMemory) {
    EXPECT_THROW(Str1Copy(u"abc").getBytesAZ(greedyEncoding()), std::bad_alloc);
    EXPECT_THROW(Str1Copy(u"abcd").getBytesAZ(greedyEncoding()), std::bad_alloc);
}

TEST(Str1BytesTest, MoreThanAStoreCanHaveIsOutOfMemory) {
    const std::string bytes(0x800001, 'a'); // each byte is 512 units
    Str1 text = Str1Copy(u"text");
    EXPECT_THROW(text.appendA(bytesOf(bytes.c_str()), -1, greedyEncoding()), std::bad_alloc);
    EXPECT_EQ(units(text).substr(0, 6), u"textxx");
}

TEST(Str1BytesTest, EstimateBeyondAStoreIsNoFailure) {
    constexpr int count = 6'000'000;
    std::string bytes(512, 'a'); // the first chunk promises a unit for each byte of the rest
    for (int i = 0; i < count; ++i) {
        bytes += "\xE4\xB8\xAD";
    }
    ASSERT_GT(bytes.size(), StrBuf1::greatestCapacity);
    Str1 text;
    EXPECT_EQ(text.appendA(bytesOf(bytes.c_str()), -1, u"UTF-8"), 0);
    EXPECT_EQ(text.getLength(), 512 + count);
    EXPECT_EQ(text.getData0()[512 + count - 1], u'\u4E2D');
}

TEST(Str1BytesTest, WhatTheDecoderKeptStandsAtTheEnd) {
    for (const int count : {1, 512, 1300}) {
        const std::string bytes(static_cast<std::size_t>(count), 'a');
        Str1 text;
        EXPECT_EQ(text.appendA(bytesOf(bytes.c_str()), -1, support::closingEncoding()), 0);
        EXPECT_EQ(units(text), std::u16string(static_cast<std::size_t>(count), u'a') + u'!');
        EXPECT_EQ(String(bytesOf(bytes.c_str()), -1, support::closingEncoding()),
                  String(units(text).c_str()));
    }
}

TEST(Str1BytesTest, FailuresAreResults) {
    Str1 text;
    EXPECT_EQ(text.appendA(bytesOf("ab\xC3"), -1, u"UTF-8"), QV_E_FAIL);
    EXPECT_EQ(units(text), u"ab") << "what was decoded stays";
    EXPECT_EQ(text.appendA(bytesOf("x"), -1, u"no such"), QV_E_UNKNOWNENCODING);
    EXPECT_EQ(text.appendA(bytesOf("\xED\xA0\x80"), -1, u"UTF-8"), QV_E_INVALIDCHARACTER);
    EXPECT_EQ(support::thrownResult([] { Str1(bytesOf("\xC3"), -1, u"UTF-8"); }), QV_E_FAIL);
}

TEST(Str1BytesTest, NarrowLengthIsMeasured) {
    int length = -1;
    EXPECT_EQ(Str1Copy(u"aé中").getLengthA(&length, u"UTF-8"), 0);
    EXPECT_EQ(length, 6);
    EXPECT_EQ(Str1Copy(u"aé中").getLengthA(&length, u"UTF-8", 1), 0);
    EXPECT_EQ(length, 5);
    Str1 text;
    text.append(u'中', 5000);
    EXPECT_EQ(text.getLengthA(&length, u"UTF-8"), 0);
    EXPECT_EQ(length, 15000);
    EXPECT_EQ(Str1().getLengthA(&length, u"UTF-8"), 0);
    EXPECT_EQ(length, 0);
    length = 7;
    EXPECT_EQ(text.getLengthA(&length, u"no such"), QV_E_UNKNOWNENCODING);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(Str1Copy(u"a\xD800x").getLengthA(&length, u"UTF-8"), QV_E_INVALIDCHARACTER);
    EXPECT_EQ(Str1Copy(u"a\xD800").getLengthA(&length, u"AMP-7"), QV_E_FAIL)
        << "a text that cannot be ended does not loop";
}

TEST(Str1BytesTest, NarrowLengthCountsThePairsWhole) {
    for (const char16_t* const encoding :
         {u"UTF-8", u"UTF-16LE", u"UTF-32BE", u"CP1252", u"AMP-7", support::closingEncoding()}) {
        SCOPED_TRACE(String(encoding).getBytes(u"UTF-8"));
        for (int front = 0; front < 600; ++front) {
            Str1 text;
            text.append(u'a', front).append(u"\U0001F600").append(u"\U0001F600\U0001F601z");
            int length = -1;
            ASSERT_EQ(text.getLengthA(&length, encoding), 0);
            std::array<char, 5000> out;
            int written = -1;
            ASSERT_EQ(text.convertToAZ(out.data(), out.size(), encoding, &written), 0);
            ASSERT_EQ(length, written) << front;
        }
    }
}

TEST(Str1BytesTest, NarrowFormIsWrittenAndTerminated) {
    char out[16];
    int written = -1;
    int position = 0;
    EXPECT_EQ(Str1Copy(u"aé").convertToAZ(out, 16, u"UTF-8", &written, &position), 0);
    EXPECT_STREQ(out, "a\xC3\xA9");
    EXPECT_EQ(written, 3);
    EXPECT_EQ(position, 2);
    EXPECT_EQ(Str1Copy(u"abc").convertToAZ(out, 16, u"UTF-8"), 0);
    EXPECT_STREQ(out, "abc");
    position = 1;
    EXPECT_EQ(Str1Copy(u"abc").convertToAZ(out, 16, u"UTF-8", nullptr, &position), 0);
    EXPECT_STREQ(out, "bc");
}

TEST(Str1BytesTest, PositionsOutsideTheTextReadNothingOutsideIt) {
    char out[16];
    for (const int start : {1, 3, std::numeric_limits<int>::max()}) {
        int written = -1;
        int position = start;
        EXPECT_EQ(Str1().convertToAZ(out, 16, u"UTF-8", &written, &position), 0);
        EXPECT_STREQ(out, "");
        EXPECT_EQ(written, 0);
        EXPECT_EQ(position, 0) << "where it ended";
        int length = -1;
        EXPECT_EQ(Str1().getLengthA(&length, u"UTF-8", start), 0);
        EXPECT_EQ(length, 0);
    }
    for (const int start : {3, 4, std::numeric_limits<int>::max()}) {
        int written = -1;
        int position = start;
        EXPECT_EQ(Str1Copy(u"abc").convertToAZ(out, 16, u"UTF-8", &written, &position), 0);
        EXPECT_STREQ(out, "");
        EXPECT_EQ(written, 0);
        EXPECT_EQ(position, 3) << "where it ended";
        int length = -1;
        EXPECT_EQ(Str1Copy(u"abc").getLengthA(&length, u"UTF-8", start), 0);
        EXPECT_EQ(length, 0);
    }
    for (const int start : {-1, std::numeric_limits<int>::min()}) {
        int position = start;
        EXPECT_EQ(Str1Copy(u"abc").convertToAZ(out, 16, u"UTF-8", nullptr, &position), 0);
        EXPECT_STREQ(out, "abc");
        EXPECT_EQ(position, 3);
        int length = -1;
        EXPECT_EQ(Str1Copy(u"abc").getLengthA(&length, u"UTF-8", start), 0);
        EXPECT_EQ(length, 3);
    }
}

TEST(Str1BytesTest, CutTextHasNoTerminator) {
    char out[4] = {'x', 'x', 'x', 'x'};
    int written = -1;
    int position = 0;
    EXPECT_EQ(Str1Copy(u"abcdef").convertToAZ(out, 4, u"UTF-8", &written, &position),
              QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(position, 3);
    EXPECT_EQ(std::string(out, 4), "abcx");
    EXPECT_EQ(Str1Copy(u"abc").convertToAZ(out, 4, u"UTF-8"), 0);
    EXPECT_STREQ(out, "abc");
}

/// The narrow form of a text, taken in pieces of `size` bytes at most.
std::string inPieces(const Str1& text, const char16_t* encoding, int size) {
    std::string whole;
    std::int32_t result = QV_E_BUFFERTOOSMALL;
    for (int position = 0; result == QV_E_BUFFERTOOSMALL;) {
        char out[20] = {};
        int written = 0;
        const int before = position;
        result = text.convertToAZ(out, size + 1, encoding, &written, &position);
        whole.append(out, static_cast<std::size_t>(written));
        if (result == QV_E_BUFFERTOOSMALL && position <= before) {
            return "stuck";
        }
    }
    return whole;
}

TEST(Str1BytesTest, CutTextGoesOnWhereItWasCut) {
    const Str1Copy text(u"ab\U0001F600c\U0001F600");
    const std::pair<const char16_t*, int> encodings[] = {
        {u"UTF-8", 4},    {u"UTF-16LE", 2}, {u"UTF-16BE", 2}, {u"UTF-32LE", 4},
        {u"UTF-32BE", 4}, {u"CP1252", 1},   {u"AMP-7", 8},
    };
    for (const auto& [encoding, longestForm] : encodings) {
        int length = 0;
        ASSERT_EQ(text.getLengthA(&length, encoding), 0);
        std::string expected(100, 'x');
        text.toQVString().getBytes(expected.data(), 100, encoding);
        expected.resize(static_cast<std::size_t>(length)); // without the terminator
        for (int size = longestForm; size < 19; ++size) {
            EXPECT_EQ(inPieces(text, encoding, size), expected) << size;
        }
    }
}

TEST(Str1BytesTest, APairWithoutRoomIsNotPassed) {
    char out[4] = {};
    int written = -1;
    int position = 0;
    EXPECT_EQ(Str1Copy(u"\U0001F600").convertToAZ(out, sizeof out, u"UTF-8", &written, &position),
              QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(written, 0);
    EXPECT_EQ(position, 0);
}

TEST(Str1BytesTest, RoomForOneByteTakesNothingOfAText) {
    char out[1] = {'x'};
    int written = -1;
    int position = 0;
    EXPECT_EQ(Str1Copy(u"abc").convertToAZ(out, 1, u"UTF-8", &written, &position),
              QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(out[0], 'x') << "no terminator behind a cut text";
    EXPECT_EQ(written, 0);
    EXPECT_EQ(position, 0);
}

TEST(Str1BytesTest, RoomForOneByteTakesTheTerminatorOfAnEmptyText) {
    char out[1] = {'x'};
    EXPECT_EQ(Str1().convertToAZ(out, 1, u"UTF-8"), 0);
    EXPECT_EQ(out[0], 0);
}

TEST(Str1BytesTest, AFormOfItsOwnMayEncodePieceByPiece) {
    struct Form : Str1Copy {
        using Str1::convertToA;
        using Str1Copy::Str1Copy;
    };
    const Form text(u"abc");
    using text::charset::CharToByteConverter;
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(u"UTF-8"));
    char out[4] = {};
    int written = 0;
    int position = 1;
    EXPECT_EQ(text.convertToA(out, 1, *encoder, &written, &position), QV_E_BUFFERTOOSMALL);
    EXPECT_STREQ(out, "b");
    EXPECT_EQ(written, 1);
    EXPECT_EQ(position, 2);
    EXPECT_EQ(text.convertToA(out, 3, *encoder, nullptr, nullptr), 0);
    EXPECT_STREQ(out, "abc");
}

TEST(Str1BytesTest, NoRoomIsABadArgument) {
    char out[1];
    EXPECT_EQ(Str1Copy(u"a").convertToAZ(nullptr, 5), QV_E_INVALIDARG);
    EXPECT_EQ(Str1Copy(u"a").convertToAZ(out, 0), QV_E_INVALIDARG);
    EXPECT_EQ(Str1Copy(u"a").convertToAZ(out, 1, u"no such"), QV_E_UNKNOWNENCODING);
}

TEST(Str1BytesTest, ArrayIsGivenAway) {
    OwningArray<char> first = Str1Copy(u"first").getBytesAZ(u"UTF-8");
    const char* const array = first.get();
    OwningArray<char> moved(std::move(first));
    EXPECT_EQ(moved.get(), array);
    EXPECT_EQ(first.get(), nullptr);
    OwningArray<char> second = Str1Copy(u"second").getBytesAZ(u"UTF-8");
    second = std::move(moved);
    EXPECT_EQ(second.get(), array);
    EXPECT_EQ(moved.get(), nullptr);
    const std::unique_ptr<char[]> taken(second.detach());
    EXPECT_EQ(taken.get(), array);
    EXPECT_EQ(second.get(), nullptr);
    EXPECT_STREQ(taken.get(), "first");
}

TEST(Str1BytesTest, BytesComeInAnArrayThatFreesItself) {
    const OwningArray<char> bytes = Str1Copy(u"aé中").getBytesAZ(u"UTF-8");
    EXPECT_STREQ(bytes, "a\xC3\xA9\xE4\xB8\xAD");
    EXPECT_STREQ(Str1().getBytesAZ(u"UTF-8"), "");
    EXPECT_THROW(Str1Copy(u"a").getBytesAZ(u"no such"), text::charset::UnknownEncodingException);
    EXPECT_EQ(support::thrownResult([] { Str1Copy(u"\xD800x").getBytesAZ(u"UTF-8"); }),
              QV_E_INVALIDCHARACTER);
}

} // namespace
