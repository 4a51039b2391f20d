#include "qv/String.h"

#include "qv/AnsiBytes.h"
#include "qv/Exceptions.h"
#include "qv/qvcom/Module.h"
#include "qv/util/MTBuffer.h"
#include "qv/util/ROBuffer.h"
#include "qv/util/RWBuffer.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <limits>

using namespace qv;
using namespace qv::literals;

namespace {

/// A string that can be asked whether it shares its characters.
bool shares(const String& left, const String& right) { return left.getData() == right.getData(); }

String ofLength(int length, char16_t unit = u'a') { return String(unit, length); }

// --- Construction ---

TEST(StringTest, EmptyStringsShareOneBuffer) {
    const String a;
    const String b(u"");
    const String c(0);
    const String d(-5);
    EXPECT_TRUE(shares(a, b));
    EXPECT_TRUE(shares(a, c));
    EXPECT_TRUE(shares(a, d));
    EXPECT_TRUE(shares(a, String(u"abc", 0)));
    EXPECT_TRUE(shares(a, String(u'x', 0)));
    EXPECT_EQ(a.getLength(), 0);
    EXPECT_EQ(a.getData()[0], 0);
    EXPECT_TRUE(a.isEmpty());
}

TEST(StringTest, CopyConstructionShares) {
    const String text(u"text");
    const String copy(text);
    EXPECT_TRUE(shares(text, copy));
    EXPECT_EQ(copy, u"text");
}

TEST(StringTest, LiteralIsReadWhereItStands) {
    static constexpr STRUCT_QV_STR_LIT_INFO literal{u"literal", 7};
    String text(literal);
    EXPECT_EQ(text.getData(), literal.text);
    EXPECT_EQ(text.getLength(), 7);
    EXPECT_TRUE(text.isWritable());
    EXPECT_EQ(static_cast<util::ICharBuffer&>(text).IsWritable(), 1);
    text.setCharAt(0, u'L');
    EXPECT_NE(text.getData(), literal.text);
    EXPECT_EQ(text, u"Literal");
    EXPECT_EQ(String(literal), u"literal");
    EXPECT_EQ(String(u"lit"_lit).getLength(), 3);
}

TEST(StringTest, LiteralIsNotMeasured) {
    EXPECT_EQ(String(u"a\0b"_lit).getLength(), 3);
    EXPECT_EQ(String(u"a\0b"_lit)[2], u'b');
    static constexpr STRUCT_QV_STR_LIT_INFO front{u"literal", 3};
    EXPECT_EQ(String(front).getLength(), 3);
}

TEST(StringTest, CapacityGivesAnEmptyTextWithRoom) {
    String text(100);
    EXPECT_EQ(text.getLength(), 0);
    EXPECT_FALSE(shares(text, String()));
    const char16_t* const data = text.getData();
    text.append(u'a', 98);
    EXPECT_EQ(text.getData(), data);
}

TEST(StringTest, TextIsCopiedUpToItsLength) {
    EXPECT_EQ(String(u"hello"), u"hello");
    EXPECT_EQ(String(u"hello", 3), u"hel");
    const String whole(u"a\0b", 3);
    EXPECT_EQ(whole.getLength(), 3);
    EXPECT_EQ(whole[1], 0);
    EXPECT_EQ(whole[2], u'b');
    EXPECT_EQ(whole.getData()[3], 0);
    const String roomy(u"ab", 2, 100);
    EXPECT_EQ(roomy, u"ab");
    EXPECT_FALSE(shares(String(u"", 0, 5), String()));
}

TEST(StringTest, UnitIsRepeated) {
    EXPECT_EQ(String(u'x'), u"x");
    EXPECT_EQ(String(u'x', 3), u"xxx");
    EXPECT_EQ(String(u'x', 2, 50), u"xx");
    EXPECT_EQ(String(u'x', -1), u"");
}

TEST(StringTest, BufferIsCopiedAndTerminated) {
    util::RWCharBuffer buffer(u"abcdef", 3);
    const String text(&buffer);
    EXPECT_EQ(text, u"abc");
    EXPECT_EQ(text.getData()[3], 0);
    EXPECT_NE(text.getData(), buffer.getData());
}

TEST(StringTest, ModesTakeARangeOfAString) {
    const String source(u"0123456789");
    EXPECT_EQ(String(String::ACQUIRE_COPY, source, 2, 5), u"234");
    EXPECT_EQ(String(String::ACQUIRE_COPY, source, 2, -1), u"23456789");
    EXPECT_EQ(String(String::ACQUIRE_COPY, source, 2, 99), u"23456789");
    EXPECT_EQ(String(String::ACQUIRE_COPY, source, 7, 5), u"") << "the start is cut to the end";
    EXPECT_TRUE(shares(String(String::ACQUIRE_COPY, source, 5, 5), String()));
    EXPECT_FALSE(shares(String(String::ACQUIRE_COPY, source, 5, 5, 10), String()));
    EXPECT_EQ(String(String::ACQUIRE_COPY_UPPER, String(u"xaé"), 1), u"AÉ");
    const String shared(String::ACQUIRE_SHARE, source, 2, 5);
    EXPECT_TRUE(shares(shared, source)) << "the range is ignored";
    const String wrapped(String::ACQUIRE_WRAP, source, 2, 5);
    EXPECT_EQ(wrapped.getData(), source.getData() + 2);
    EXPECT_EQ(wrapped.getLength(), 3);
}

TEST(StringTest, ModesTakeABuffer) {
    const Reference<util::RWCharBuffer> buffer(new util::RWCharBuffer(u"abc", 4));
    const String shared(String::ACQUIRE_SHARE, buffer.get());
    EXPECT_EQ(shared.getData(), buffer->getData());
    EXPECT_EQ(shared.getLength(), 3) << "the last unit is the terminator";
    EXPECT_EQ(buffer->GetRefCount(), 2u);
    EXPECT_EQ(String(String::ACQUIRE_COPY_UPPER, buffer.get()).getLength(), 4);
    EXPECT_TRUE(String(String::ACQUIRE_COPY_UPPER, buffer.get()).startsWith(u"ABC"));
    const String wrapped(String::ACQUIRE_WRAP, buffer.get());
    EXPECT_EQ(wrapped.getData(), buffer->getData());
    EXPECT_EQ(wrapped.getLength(), 4) << "a wrap counts the terminator as a unit of the text";
}

TEST(StringTest, ModesTakeAText) {
    const char16_t text[] = u"abc";
    EXPECT_EQ(String(String::ACQUIRE_COPY, text), u"abc");
    EXPECT_NE(String(String::ACQUIRE_SHARE, text).getData(), text) << "nothing to share: it copies";
    String wrapped(String::ACQUIRE_WRAP, text, -1);
    EXPECT_EQ(wrapped.getData(), text);
    EXPECT_EQ(wrapped.getLength(), 3);
    wrapped.append(u"d");
    EXPECT_EQ(wrapped, u"abcd");
    EXPECT_STREQ(String(text).getBytes(u"UTF-8"), "abc");
    EXPECT_EQ(String(String::ACQUIRE_COPY_UPPER, text), u"ABC");
    EXPECT_EQ(String(String::ACQUIRE_WRAP, text, 2).getLength(), 2);
}

TEST(StringTest, ModeValuesAreFixed) {
    EXPECT_EQ(String::ACQUIRE_COPY, 0);
    EXPECT_EQ(String::ACQUIRE_SHARE, 1);
    EXPECT_EQ(String::ACQUIRE_WRAP, 2);
    EXPECT_EQ(String::ACQUIRE_COPY_UPPER, 3);
    EXPECT_EQ(String::TRIM_LEFT, 1);
    EXPECT_EQ(String::TRIM_RIGHT, 2);
    EXPECT_EQ(String::TRIM_BOTH, 3);
}

TEST(StringTest, WrappingNothingGivesAnEmptyTextThatCanBeWritten) {
    util::RWCharBuffer nothing;
    String ofBuffer(String::ACQUIRE_WRAP, &nothing);
    String ofNull(String::ACQUIRE_WRAP, static_cast<const char16_t*>(nullptr), 0);
    String set(u"old");
    set.setTo(String::ACQUIRE_WRAP, static_cast<const char16_t*>(nullptr), 0);
    for (String* const text : {&ofBuffer, &ofNull, &set}) {
        EXPECT_EQ(text->getLength(), 0);
        EXPECT_EQ(text->getData()[0], 0);
        text->append(u"text");
        EXPECT_EQ(*text, u"text");
        EXPECT_EQ(text->getData()[4], 0);
    }
    EXPECT_EQ(nothing.getLength(), 0);
}

TEST(StringTest, CopiesOfAnEmptyBufferShareTheEmptyOne) {
    util::RWCharBuffer nothing;
    EXPECT_TRUE(shares(String(&nothing), String()));
    EXPECT_TRUE(shares(String(String::ACQUIRE_COPY, &nothing), String()));
    EXPECT_TRUE(shares(String(String::ACQUIRE_COPY_UPPER, &nothing), String()));
    util::RWCharBuffer room(100);
    EXPECT_TRUE(shares(String(&room), String()));
}

TEST(StringTest, SystemWideTextIsTaken) {
    EXPECT_EQ(String(L"aé\U0001F600"), u"aé\U0001F600");
    EXPECT_EQ(String(L"abc", 2), u"ab");
    EXPECT_EQ(String(L""), u"");
}

/// True where the system's wide text is what a string holds.
template <class Text>
constexpr bool handsOutWideText = requires(const Text& text) {
    text.getWideData();
};

template <class Text>
void expectWideText([[maybe_unused]] const Text& text, [[maybe_unused]] const wchar_t* expected) {
    if constexpr (handsOutWideText<Text>) {
        EXPECT_EQ(std::wstring(text.getWideData()), expected);
        EXPECT_EQ(static_cast<const void*>(text.getWideData()), text.getData());
    }
}

TEST(StringTest, SystemWideTextIsHandedOutWhereItsUnitsAreTheStrings) {
    EXPECT_EQ(handsOutWideText<String>, sizeof(wchar_t) == sizeof(char16_t));
    expectWideText(String(u"aé"), L"aé");
}

TEST(StringTest, ComponentNameMakesStringsByValue) {
    const String text(u"text");
    EXPECT_TRUE(shares(CQVString::create(text), text));
    EXPECT_EQ(CQVString::create(reinterpret_cast<const signed char*>("abc"), 2, u"UTF-8", 0),
              u"ab");
    EXPECT_EQ(CQVString::create(u"abc", 2, 0), u"ab");
}

TEST(StringTest, MoveLeavesAnEmptyString) {
    String text(u"text");
    const char16_t* const data = text.getData();
    const String moved(std::move(text));
    EXPECT_EQ(moved.getData(), data);
    EXPECT_EQ(text, u""); // NOLINT: the state is laid down
}

TEST(StringTest, MoveLeavesNoNarrowForm) {
    String text(u"text");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "text");
    String moved(std::move(text));
    EXPECT_STREQ(text.getBytes(u"UTF-8"), ""); // NOLINT: the state is laid down
    EXPECT_STREQ(moved.getBytes(u"UTF-8"), "text");
    String assigned(u"old");
    EXPECT_STREQ(assigned.getBytes(u"UTF-8"), "old");
    assigned = std::move(moved);
    EXPECT_STREQ(moved.getBytes(u"UTF-8"), ""); // NOLINT: the state is laid down
    EXPECT_STREQ(assigned.getBytes(u"UTF-8"), "text");
}

// --- Sharing and separation ---

TEST(StringTest, WritingToACopyLeavesTheSource) {
    const String text(u"text");
    String copy(text);
    copy.append(u"!");
    EXPECT_EQ(text, u"text");
    EXPECT_EQ(copy, u"text!");
    EXPECT_FALSE(shares(text, copy));
}

TEST(StringTest, AssignmentCopiesAndDoesNotShare) {
    const String text(u"text");
    String copy;
    copy = text;
    EXPECT_EQ(copy, text);
    EXPECT_FALSE(shares(text, copy));
}

TEST(StringTest, AssignmentFromAWrappingTemporaryCopies) {
    char16_t memory[] = u"abc";
    String text;
    text = String(String::ACQUIRE_WRAP, memory, -1);
    memory[0] = u'x';
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, AssignmentTakesEveryKindOfText) {
    String text(u"old");
    text = u"units";
    EXPECT_EQ(text, u"units");
    text = u'c';
    EXPECT_EQ(text, u"c");
    text = "narrow";
    EXPECT_EQ(text, u"narrow");
    text = String(u"temporary");
    EXPECT_EQ(text, u"temporary");
    auto& same = text;
    text = same;
    EXPECT_EQ(text, u"temporary");
    text = String();
    EXPECT_EQ(text, u"");
}

TEST(StringTest, SelfAssignmentOfAFullBufferKeepsTheText) {
    String text(u'a', 15); // 16 units with the terminator: the buffer is full
    auto& same = text;
    text = same;
    EXPECT_EQ(text, ofLength(15));
}

TEST(StringTest, SetAddRefShares) {
    const String text(u"text");
    String other(u"other");
    other.setAddRef(text);
    EXPECT_TRUE(shares(text, other));
    auto& same = other;
    other.setAddRef(same);
    EXPECT_EQ(other, u"text");
}

TEST(StringTest, SetAddRefOfItselfKeepsABufferThatNoOtherHolds) {
    String text(u"text");
    const String& same = text;
    text.setAddRef(same);
    EXPECT_EQ(text, u"text");
    EXPECT_EQ(text.append(u"!"), u"text!");
}

TEST(StringTest, SetAddRefLeavesAStaleNarrowForm) {
    String text(u"old");
    const char* const bytes = text.getBytes(u"UTF-8");
    text.setAddRef(String(u"new text"));
    EXPECT_EQ(text.getBytes(u"UTF-8"), bytes);
    EXPECT_STREQ(bytes, "old");
    text.append(u"!");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "new text!");
}

TEST(StringTest, SetToThatWrapsLeavesAStaleNarrowForm) {
    String text(u"old");
    const char* const bytes = text.getBytes(u"UTF-8");
    text.setTo(String::ACQUIRE_WRAP, u"new text", -1);
    EXPECT_EQ(text, u"new text");
    EXPECT_EQ(text.getBytes(u"UTF-8"), bytes);
    EXPECT_STREQ(bytes, "old");
    text.append(u"!");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "new text!");
}

TEST(StringTest, SetToOfUnitsCannotShareThem) {
    char16_t memory[] = u"abc";
    String text;
    text.setTo(String::ACQUIRE_SHARE, memory, -1);
    EXPECT_NE(text.getData(), memory);
    memory[0] = u'x';
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, SetToFollowsItsMode) {
    const String source(u"0123456789");
    String text(u"x");
    text.setTo(String::ACQUIRE_COPY, source, 2, 5);
    EXPECT_EQ(text, u"234");
    text.setTo(String::ACQUIRE_SHARE, source, 2, 5);
    EXPECT_TRUE(shares(text, source));
    text.setTo(String::ACQUIRE_WRAP, source, 2, 5);
    EXPECT_EQ(text.getData(), source.getData() + 2);
    EXPECT_EQ(text.getLength(), 3);
    text.setTo(String::ACQUIRE_COPY_UPPER, String(u"abc"), 1, -1);
    EXPECT_EQ(text, u"BC");
    text.setTo(String::ACQUIRE_COPY_UPPER, u"wide", -1);
    EXPECT_EQ(text, u"WIDE");
    text.setTo(String::ACQUIRE_COPY, u"wide", 2);
    EXPECT_EQ(text, u"wi");
    text.setTo(u"three", 5);
    EXPECT_EQ(text, u"three");
    text.setTo(u'z', 4);
    EXPECT_EQ(text, u"zzzz");
    text.setTo(String::ACQUIRE_COPY, text, 1, 3);
    EXPECT_EQ(text, u"zz");
}

TEST(StringTest, ClearSeparatesAndLeavesTheOthers) {
    const String text(u"text");
    String copy(text);
    copy.clear();
    EXPECT_EQ(copy, u"");
    EXPECT_EQ(text, u"text");
}

TEST(StringTest, SharedForeignBufferIsReadInPlaceAndSeparatedByAWrite) {
    const Reference<util::RWCharBuffer> buffer(new util::RWCharBuffer(u"abc", 4));
    String text(String::ACQUIRE_SHARE, buffer.get());
    text.setCharAt(0, u'x');
    EXPECT_EQ(text, u"xbc");
    EXPECT_EQ(buffer->getData()[0], u'a');
    EXPECT_EQ(buffer->GetRefCount(), 1u);
}

TEST(StringTest, LastStringOfABufferGivesTheBuffersModuleFree) {
    qvcom::Module module;
    {
        auto* const owned = new util::RWCharBuffer(u"abc", 4);
        owned->SetComModule(&module);
        String text(String::ACQUIRE_SHARE, owned);
        EXPECT_EQ(module.GetRefCount(), 1u) << "the string holds it";
        const String copy(text);
        text = u"other";
        EXPECT_EQ(module.GetRefCount(), 1u);
    }
    EXPECT_EQ(module.GetRefCount(), 0u);
    auto* const owned = new util::RWCharBuffer(u"abc", 4);
    owned->SetComModule(&module);
    String text(String::ACQUIRE_SHARE, owned);
    EXPECT_EQ(module.GetRefCount(), 1u);
    text.setAddRef(String());
    EXPECT_EQ(module.GetRefCount(), 0u);
}

/// A buffer of no class that a string knows, which counts its locks and may refuse them, or room.
class LockedBuffer : public util::RWCharBuffer {
public:
    using RWBuffer::RWBuffer;
    const char16_t* getReadLock() const override {
        if (refuse) {
            throw ResultException(QV_E_BUSY);
        }
        ++locks;
        return RWBuffer::getReadLock();
    }
    void releaseReadLock() const override { --locks; }
    char16_t* getWriteLock(int capacity) override {
        if (refuse) {
            throw ResultException(QV_E_BUSY);
        }
        ++locks;
        return RWBuffer::getWriteLock(capacity);
    }
    char16_t* ensureCapacity(int capacity) override {
        if (full && capacity > getCapacity()) {
            throw std::bad_alloc();
        }
        return RWBuffer::ensureCapacity(capacity);
    }
    void releaseWriteLock(int length) override {
        --locks;
        RWBuffer::releaseWriteLock(length);
    }
    mutable int locks = 0;
    bool refuse = false;
    bool full = false;
};

TEST(StringTest, EmptyInnerBufferCountsAsEmptyText) {
    for (util::ICharBuffer* const buffer : std::initializer_list<util::ICharBuffer*>{
             new util::RWCharBuffer, new util::ROCharBuffer, new LockedBuffer}) {
        String text(String::ACQUIRE_SHARE, buffer);
        EXPECT_EQ(buffer->GetLength(), 0) << "not even a terminator";
        EXPECT_EQ(text.getLength(), 0);
        EXPECT_EQ(static_cast<const util::ICharBuffer&>(text).GetLength(), 0);
        EXPECT_EQ(text, u"");
        EXPECT_EQ(text.compare(String()), 0);
        EXPECT_EQ(text.compare(u"ab"), -2);
        EXPECT_EQ(text.hashCode(), 0u);
        EXPECT_EQ(text.append(u'a'), u"a");
        EXPECT_EQ(text.append(u"bc"), u"abc");
        EXPECT_EQ(text.getData()[3], 0);
    }
}

TEST(StringTest, ForeignInnerBufferWithoutRoomKeepsItsTextAndGivesTheLockBack) {
    auto* const buffer = new LockedBuffer(u"abc", 4);
    String text(String::ACQUIRE_SHARE, buffer);
    buffer->full = true;
    EXPECT_EQ(support::thrownResult([&] { text.append(ofLength(100)); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(buffer->locks, 0);
    EXPECT_EQ(support::thrownResult([&] { text.insert(1, u'x', 100); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(buffer->locks, 0);
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, ForeignInnerBufferIsReachedThroughItsLocks) {
    auto* const buffer = new LockedBuffer(u"abc", 4);
    String text(String::ACQUIRE_SHARE, buffer);
    EXPECT_EQ(text, u"abc");
    EXPECT_EQ(text.indexOf(u"c"), 2);
    text.append(u"def");
    EXPECT_EQ(text, u"abcdef");
    EXPECT_EQ(text.getData(), buffer->getData()) << "sole owner of a writable buffer";
    EXPECT_EQ(buffer->locks, 0);
    buffer->refuse = true;
    EXPECT_EQ(support::thrownResult([&] { text.equals(u"abc"); }), QV_E_BUSY);
    EXPECT_EQ(support::thrownResult([&] { text.getReadLock(); }), QV_E_BUSY);
}

TEST(StringTest, NativeLocksThrowWhatTheInnerBufferAnswers) {
    constexpr auto wouldDeadlock = static_cast<std::int32_t>(0x8007046B);
    String text(String::ACQUIRE_SHARE, new util::MTCharBuffer(u"abc", 4, 0));
    EXPECT_EQ(support::thrownResult([&] { text.releaseReadLock(); }), QV_E_NOTOWNER);
    text.getReadLock();
    EXPECT_EQ(support::thrownResult([&] { text.freeExtra(); }), wouldDeadlock);
    EXPECT_EQ(support::thrownResult([&] { text.getWriteLock(0); }), wouldDeadlock);
    text.releaseReadLock();

    auto* const buffer = new LockedBuffer(u"abc", 4);
    text.setAddRef(String(String::ACQUIRE_SHARE, buffer));
    buffer->refuse = true;
    EXPECT_EQ(support::thrownResult([&] { text.getWriteLock(0); }), QV_E_BUSY);
    EXPECT_EQ(support::thrownResult([&] { text.append(u"d"); }), QV_E_BUSY);
    buffer->refuse = false;
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, TemporaryIsWrittenThroughAForeignInnerBuffer) {
    auto* const buffer = new LockedBuffer(u"abc", 4);
    const char16_t* const units = buffer->getData();
    String text(String::ACQUIRE_SHARE, buffer);
    text = String(u"temporary");
    EXPECT_EQ(text, u"temporary");
    ASSERT_EQ(text.getData(), units);
    EXPECT_EQ(buffer->locks, 0);
}

TEST(StringTest, StringThatGaveItsTextAwayIsEmptyAndWrapsNothing) {
    char16_t memory[] = u"wrapped";
    String text(String::ACQUIRE_WRAP, memory, -1);
    String other(u"abc");
    text = std::move(other);
    EXPECT_EQ(text, u"abc");
    EXPECT_EQ(other.getLength(), 0); // NOLINT(bugprone-use-after-move): what is looked at
    EXPECT_NE(other.getData(), memory);
    other = u"new";
    EXPECT_EQ(other, u"new");
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, TemporaryThatSharesIsCopied) {
    const String source(u"abc");
    String text;
    text = String(source);
    EXPECT_EQ(text, u"abc");
    EXPECT_FALSE(shares(text, source));
}

TEST(StringTest, TemporaryLeavesRoomThatWasReserved) {
    String text(1000);
    text = u"abc";
    const char16_t* const room = text.getData();
    text = String(u"temporary");
    EXPECT_EQ(text, u"temporary");
    EXPECT_EQ(text.getData(), room);
}

TEST(StringTest, SharedForeignInnerBufferIsLeftToItsOtherHolder) {
    auto* const buffer = new LockedBuffer(u"abc", 4);
    const String sharer(String::ACQUIRE_SHARE, buffer);
    String text(sharer);
    ASSERT_EQ(text.getData(), buffer->getData());
    text.append(u"d");
    EXPECT_EQ(text, u"abcd");
    EXPECT_EQ(sharer, u"abc");
    EXPECT_EQ(sharer.getData(), buffer->getData());
    EXPECT_EQ(buffer->getLength(), 4);
    EXPECT_EQ(buffer->locks, 0);
    EXPECT_EQ(buffer->GetRefCount(), 1u);
}

TEST(StringTest, ForeignInnerBufferThatIsNotWritableIsLeftAlone) {
    class ReadOnlyBuffer : public LockedBuffer {
    public:
        using LockedBuffer::LockedBuffer;
        short IsWritable() const override { return 0; }
    };
    const Reference<ReadOnlyBuffer> buffer(new ReadOnlyBuffer(u"abc", 4));
    String text(String::ACQUIRE_SHARE, buffer.get());
    text.append(u"d");
    EXPECT_EQ(text, u"abcd");
    EXPECT_EQ(buffer->getLength(), 4);
    EXPECT_EQ(buffer->GetRefCount(), 1u) << "the string has taken a buffer of its own";
}

/// An operation that reads one string, and perhaps another.
struct Reading {
    const char* name;
    void (*read)(const String& own, const String& other);
};

class StringReadingTest : public testing::TestWithParam<Reading> {
protected:
    static void read(const String& own, const String& other) { GetParam().read(own, other); }
    LockedBuffer* const buffer = new LockedBuffer(u"abc", 4);
    const String locked{String::ACQUIRE_SHARE, buffer};
};
class StringReadsItselfTest : public StringReadingTest {};
class StringReadsAnotherTest : public StringReadingTest {};

TEST_P(StringReadsItselfTest, UnderALockThatItGivesBack) {
    read(locked, u"b");
    EXPECT_EQ(buffer->locks, 0);
    buffer->refuse = true;
    EXPECT_EQ(support::thrownResult([&] { read(locked, u"b"); }), QV_E_BUSY);
    EXPECT_EQ(buffer->locks, 0);
}

TEST_P(StringReadsAnotherTest, UnderALockThatItGivesBack) {
    read(u"abcabc", locked);
    EXPECT_EQ(buffer->locks, 0);
    buffer->refuse = true;
    EXPECT_EQ(support::thrownResult([&] { read(u"abcabc", locked); }), QV_E_BUSY);
    EXPECT_EQ(buffer->locks, 0);
}

using S = String;
const Reading ofItself[] = {
    {"GetCharAt", [](const S& own, const S&) { static_cast<void>(own.getCharAt(1)); }},
    {"HashCode", [](const S& own, const S&) { static_cast<void>(own.hashCode()); }},
    {"HashCodeIgnoringCase", [](const S& own, const S&) { static_cast<void>(own.hashCode(true)); }},
    {"Substring", [](const S& own, const S&) { static_cast<void>(own.substring(1)); }},
    {"GetBytes",
     [](const S& own, const S&) {
         char out[8];
         own.getBytes(out, 8, u"UTF-8");
     }},
    {"Compare", [](const S& own, const S& other) { static_cast<void>(own.compare(other)); }},
    {"Equals", [](const S& own, const S& other) { static_cast<void>(own.equals(other)); }},
    {"StartsWith", [](const S& own, const S& other) { static_cast<void>(own.startsWith(other)); }},
    {"EndsWith", [](const S& own, const S& other) { static_cast<void>(own.endsWith(other)); }},
    {"IndexOf", [](const S& own, const S& other) { static_cast<void>(own.indexOf(other)); }},
    {"IndexOfUnit", [](const S& own, const S&) { static_cast<void>(own.indexOf(u'b')); }},
    {"LastIndexOf",
     [](const S& own, const S& other) { static_cast<void>(own.lastIndexOf(other)); }},
    {"LastIndexOfUnit", [](const S& own, const S&) { static_cast<void>(own.lastIndexOf(u'b')); }},
    {"FindFirstOf",
     [](const S& own, const S& other) { static_cast<void>(own.findFirstOf(other)); }},
    {"FindFirstNotOf",
     [](const S& own, const S& other) { static_cast<void>(own.findFirstNotOf(other)); }},
    {"FindLastOf", [](const S& own, const S& other) { static_cast<void>(own.findLastOf(other)); }},
    {"FindLastNotOf",
     [](const S& own, const S& other) { static_cast<void>(own.findLastNotOf(other)); }},
};
INSTANTIATE_TEST_SUITE_P(All, StringReadsItselfTest, testing::ValuesIn(ofItself),
                         [](const auto& row) { return row.param.name; });

const Reading ofAnother[] = {
    {"Copy", [](const S&, const S& other) { S(S::ACQUIRE_COPY, other, 0); }},
    {"Wrap", [](const S&, const S& other) { S(S::ACQUIRE_WRAP, other, 0); }},
    {"Upper", [](const S&, const S& other) { S(S::ACQUIRE_COPY_UPPER, other, 0); }},
    {"CopyAsBuffer", [](const S&, const S& other) { S(const_cast<S*>(&other)); }},
    {"WrapAsBuffer", [](const S&, const S& other) { S(S::ACQUIRE_WRAP, const_cast<S*>(&other)); }},
    {"Assign", [](const S&, const S& other) { static_cast<void>(S() = other); }},
    {"SetTo", [](const S&, const S& other) { S().setTo(S::ACQUIRE_COPY, other, 0); }},
    {"SetToWrap", [](const S&, const S& other) { S().setTo(S::ACQUIRE_WRAP, other, 0); }},
    {"Replace", [](const S& own, const S& other) { S(own).replace(0, 1, other, 0); }},
    {"Append", [](const S& own, const S& other) { S(own).append(other); }},
    {"Add", [](const S& own, const S& other) { static_cast<void>(S(own) += other); }},
    {"Prepend", [](const S& own, const S& other) { S(own).prepend(other); }},
    {"Insert", [](const S& own, const S& other) { S(own).insert(1, other); }},
    {"Trim", [](const S& own, const S& other) { S(own).trim(other, S::TRIM_BOTH); }},
    {"TranslateFrom", [](const S& own, const S& other) { S(own).translate(other, u"x"); }},
    {"TranslateTo", [](const S& own, const S& other) { S(own).translate(u"x", other); }},
    {"Compare", [](const S& own, const S& other) { static_cast<void>(own.compare(other)); }},
    {"CompareTo",
     [](const S& own, const S& other) {
         static_cast<void>(own.compareTo(static_cast<const Object&>(other)));
     }},
    {"Equals", [](const S& own, const S& other) { static_cast<void>(own.equals(other)); }},
    {"StartsWith", [](const S& own, const S& other) { static_cast<void>(own.startsWith(other)); }},
    {"EndsWith", [](const S& own, const S& other) { static_cast<void>(own.endsWith(other)); }},
    {"Contains", [](const S& own, const S& other) { static_cast<void>(own.contains(other)); }},
    {"RegionCompare",
     [](const S& own, const S& other) { static_cast<void>(own.regionCompare(0, -1, other, 0)); }},
    {"RegionMatches",
     [](const S& own, const S& other) { static_cast<void>(own.regionMatches(0, -1, other, 0)); }},
    {"IndexOf", [](const S& own, const S& other) { static_cast<void>(own.indexOf(other)); }},
    {"LastIndexOf",
     [](const S& own, const S& other) { static_cast<void>(own.lastIndexOf(other)); }},
    {"FindFirstOf",
     [](const S& own, const S& other) { static_cast<void>(own.findFirstOf(other)); }},
    {"FindFirstNotOf",
     [](const S& own, const S& other) { static_cast<void>(own.findFirstNotOf(other)); }},
    {"FindFirstOfCase",
     [](const S& own, const S& other) { static_cast<void>(own.findFirstOfCase(other)); }},
    {"FindLastOf", [](const S& own, const S& other) { static_cast<void>(own.findLastOf(other)); }},
    {"FindLastNotOf",
     [](const S& own, const S& other) { static_cast<void>(own.findLastNotOf(other)); }},
};
INSTANTIATE_TEST_SUITE_P(All, StringReadsAnotherTest, testing::ValuesIn(ofAnother),
                         [](const auto& row) { return row.param.name; });

TEST(StringTest, NarrowReadLockLastsUntilItIsReleased) {
    auto* const buffer = new LockedBuffer(u"abc", 4);
    const String text(String::ACQUIRE_SHARE, buffer);
    EXPECT_STREQ(text.getBytesReadLock(u"UTF-8"), "abc");
    EXPECT_EQ(buffer->locks, 1);
    text.releaseReadLock();
    EXPECT_EQ(buffer->locks, 0);
    EXPECT_STREQ(text.getReadLockT(true), "abc");
    EXPECT_EQ(buffer->locks, 1);
    text.releaseReadLock();
    EXPECT_EQ(text.getReadLockT(1), text.getData());
    EXPECT_EQ(buffer->locks, 1);
    text.releaseReadLock();
    EXPECT_THROW(text.getBytesReadLock(u"no such"), text::charset::UnknownEncodingException);
    EXPECT_EQ(buffer->locks, 0) << "nobody would release it";
}

TEST(StringTest, SeparatingWriteReservesTheRoomItAskedFor) {
    const String text(u"abc");
    String copy(text);
    const char16_t* const data = copy.getWriteLock(100);
    copy.releaseWriteLock(-1);
    EXPECT_EQ(copy, text);
    copy.append(u'x', 97);
    EXPECT_EQ(copy.getData(), data);
}

// --- Editing ---

struct Edit {
    const char* name;
    void (*make)(String& text);
    const char* result; // of "ab c "
};

class StringEditTest : public testing::TestWithParam<Edit> {
protected:
    String text{u"ab c "};
};

TEST_P(StringEditTest, DropsTheNarrowForm) {
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "ab c ");
    GetParam().make(text);
    EXPECT_STREQ(text.getBytes(u"UTF-8"), GetParam().result);
}

TEST_P(StringEditTest, LeavesTheSharers) {
    const String sharer(text);
    GetParam().make(text);
    EXPECT_EQ(sharer, u"ab c ");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), GetParam().result);
    EXPECT_FALSE(shares(text, sharer));
}

TEST_P(StringEditTest, LeavesALiteral) {
    static const char16_t units[] = u"ab c ";
    String literal(STRUCT_QV_STR_LIT_INFO{units, 5});
    GetParam().make(literal);
    EXPECT_STREQ(literal.getBytes(u"UTF-8"), GetParam().result);
    EXPECT_EQ(std::u16string(units), u"ab c ");
}

const Edit edits[] = {
    {"AssignString", [](String& text) { text = static_cast<const String&>(String(u"x")); }, "x"},
    {"AssignTemporary", [](String& text) { text = String(u"x"); }, "x"},
    {"AssignUnits", [](String& text) { text = u"x"; }, "x"},
    {"AssignUnit", [](String& text) { text = u'x'; }, "x"},
    {"AssignBytes", [](String& text) { text = "x"; }, "x"},
    {"SetToText", [](String& text) { text.setTo(u"xyz", 2); }, "xy"},
    {"SetToUnits", [](String& text) { text.setTo(u'x', 2); }, "xx"},
    {"SetToBytes", [](String& text) { text.setTo("xyz", 2, u"UTF-8"); }, "xy"},
    {"SetToNoBytes", [](String& text) { text.setTo("", 0, u"UTF-8"); }, ""},
    {"SetToCopy", [](String& text) { text.setTo(String::ACQUIRE_COPY, u"xy"); }, "xy"},
    {"SetToUpper", [](String& text) { text.setTo(String::ACQUIRE_COPY_UPPER, u"xy"); }, "XY"},
    {"ReplaceText", [](String& text) { text.replace(1, 1, u"--"); }, "a-- c "},
    {"ReplaceUnits", [](String& text) { text.replace(1, 1, u'-', 2); }, "a-- c "},
    {"AddString", [](String& text) { text += String(u"x"); }, "ab c x"},
    {"AddUnits", [](String& text) { text += u"x"; }, "ab c x"},
    {"AddUnit", [](String& text) { text += u'x'; }, "ab c x"},
    {"AppendUnit", [](String& text) { text.append(u'x'); }, "ab c x"},
    {"AppendUnits", [](String& text) { text.append(u'x', 2); }, "ab c xx"},
    {"Prepend", [](String& text) { text.prepend(u"x"); }, "xab c "},
    {"Insert", [](String& text) { text.insert(2, u"x"); }, "abx c "},
    {"Remove", [](String& text) { text.remove(1, 2); }, "ac "},
    {"Clear", [](String& text) { text.clear(); }, ""},
    {"ResizeCuts", [](String& text) { text.resize(2); }, "ab"},
    {"ResizeFills", [](String& text) { text.resize(7, u'x'); }, "ab c xx"},
    {"SetCharAt", [](String& text) { text.setCharAt(0, u'x'); }, "xb c "},
    {"ToUpper", [](String& text) { text.toUpper(); }, "AB C "},
    {"ToLower", [](String& text) { text.toLower(); }, "ab c "},
    {"Translate", [](String& text) { text.translate(u'a', u'x'); }, "xb c "},
    {"Trim", [](String& text) { text.trim(); }, "ab c"},
    {"TrimSet", [](String& text) { text.trim(u"a ", -1, String::TRIM_BOTH); }, "b c"},
    {"TrimUnit", [](String& text) { text.trim(u'a', String::TRIM_LEFT); }, "b c "},
    {"Format", [](String& text) { text.format(u"{0}", -1, u"x"); }, "x"},
    {"WriteLock",
     [](String& text) {
         text.getWriteLock(1)[0] = u'x';
         text.releaseWriteLock(1);
     },
     "x"},
};
INSTANTIATE_TEST_SUITE_P(All, StringEditTest, testing::ValuesIn(edits),
                         [](const auto& row) { return row.param.name; });

TEST(StringTest, ReplacePutsATextInPlaceOfARange) {
    String text(u"0123456789");
    EXPECT_EQ(&text.replace(2, 3, u"abc", 3, 0), &text);
    EXPECT_EQ(text, u"01abc56789");
    EXPECT_EQ(text.replace(2, 3, u"X", -1, 0), u"01X56789");
    EXPECT_EQ(text.replace(2, 1, u"longer than before"), u"01longer than before56789");
    EXPECT_EQ(String(u"abc").replace(1, 1, u"0123", -1, 2), u"a23c");
    EXPECT_EQ(String(u"abc").replace(1, 1, u"0123", -1, 9), u"ac") << "the start is cut";
    EXPECT_EQ(String(u"abc").replace(-1, 0, u"d"), u"abcd");
    EXPECT_EQ(String(u"abc").replace(99, 5, u"d"), u"abcd");
    EXPECT_EQ(String(u"abc").replace(1, -1, u"d"), u"ad");
    EXPECT_EQ(String(u"abc").replace(1, 99, u"d"), u"ad");
    EXPECT_EQ(String(u"abc").replace(0, -1, nullptr, 0, 0), u"");
    EXPECT_EQ(String(u"abc").replace(1, 1, u'-', 3), u"a---c");
    EXPECT_EQ(String(u"abc").replace(1, 1, u'-', 0), u"ac");
    EXPECT_EQ(String(u"abc").replace(1, 1, String(u"xyz"), 1), u"ayzc");
}

TEST(StringTest, ReplaceTakesItsOwnText) {
    String text(u"abc");
    text.append(text);
    EXPECT_EQ(text, u"abcabc");
    text.insert(3, text);
    EXPECT_EQ(text, u"abcabcabcabc");
}

TEST(StringTest, AppendPrependInsertRemove) {
    String text(u"m");
    EXPECT_EQ(text.append(u"no"), u"mno");
    EXPECT_EQ(text.append(u"pqr", 2), u"mnopq");
    EXPECT_EQ(text.append(u'r', 2), u"mnopqrr");
    EXPECT_EQ(text.append(String(u"s")), u"mnopqrrs");
    EXPECT_EQ(text.prepend(u"l"), u"lmnopqrrs");
    EXPECT_EQ(text.prepend(String(u"k")), u"klmnopqrrs");
    EXPECT_EQ(text.prepend(u'j', 2), u"jjklmnopqrrs");
    EXPECT_EQ(text.insert(1, u"-"), u"j-jklmnopqrrs");
    EXPECT_EQ(text.insert(2, u'+', 2), u"j-++jklmnopqrrs");
    EXPECT_EQ(text.insert(0, String(u"!")), u"!j-++jklmnopqrrs");
    EXPECT_EQ(text.remove(1, 4), u"!jklmnopqrrs");
    EXPECT_EQ(text.remove(2), u"!j");
    text += u"a";
    text += u'b';
    text += String(u"c");
    EXPECT_EQ(text, u"!jabc");
    EXPECT_EQ(String(u"a") + String(u"b"), u"ab");
}

TEST(StringTest, LongTextsGrowUnitByUnit) {
    String text;
    for (int i = 0; i < 70000; ++i) {
        text += static_cast<char16_t>(u'a' + i % 26);
    }
    ASSERT_EQ(text.getLength(), 70000);
    EXPECT_EQ(text[69999], u'a' + 69999 % 26);
    EXPECT_EQ(text.getData()[70000], 0);
}

void expectExactGrowth(util::RWCharBuffer* buffer) {
    String text(String::ACQUIRE_SHARE, buffer);
    for (int length = 1; length <= 500; ++length) {
        text.append(u'a');
        ASSERT_EQ(text.getData(), buffer->getData()) << "still the same inner buffer";
        // The terminator and one unit more stand behind the text.
        EXPECT_EQ(buffer->getCapacity(), (length + 2 + 15) / 16 * 16) << length;
    }
    text.append(u'a', 1000);
    EXPECT_EQ(buffer->getCapacity(), (1500 + 2 + 15) / 16 * 16);
    text.insert(0, u"0123456789");
    EXPECT_EQ(buffer->getCapacity(), (1510 + 2 + 15) / 16 * 16);
}

TEST(StringTest, GrowthIsExactButForTheRounding) {
    expectExactGrowth(new util::RWCharBuffer(u"", 1));
}

TEST(StringTest, GrowthOfAForeignInnerBufferIsExactButForTheRounding) {
    expectExactGrowth(new LockedBuffer(u"", 1));
}

TEST(StringTest, LocksMakeRoomForTheTerminatorToo) {
    auto* const buffer = new LockedBuffer(u"", 1);
    String text(String::ACQUIRE_SHARE, buffer);
    text.getWriteLock(15);
    EXPECT_EQ(buffer->getCapacity(), 16);
    text.ensureCapacity(16);
    EXPECT_EQ(buffer->getCapacity(), 32);
    text.releaseWriteLock(31);
    EXPECT_EQ(buffer->getCapacity(), 32);
    text.getWriteLock(32);
    EXPECT_EQ(buffer->getCapacity(), 48);
    text.releaseWriteLock(48);
    EXPECT_EQ(buffer->getCapacity(), 64) << "the release makes room for the terminator";
    text.releaseWriteLock(0);
    text.freeExtra();
    EXPECT_EQ(buffer->getCapacity(), 16);
}

TEST(StringTest, EveryConstructorGivesTheRoomAskedFor) {
    const String source(u"0123456789");
    for (const String& made :
         {String(u"ab", 2, 100), String(u'x', 2, 100), String(u"", 0, 100), String(100),
          String(String::ACQUIRE_COPY, source, 2, 4, 100),
          String(String::ACQUIRE_COPY, u"ab", 2, 100),
          String(reinterpret_cast<const signed char*>("ab"), 2, u"UTF-8", 100),
          CQVString::create(u"ab", 2, 100),
          CQVString::create(reinterpret_cast<const signed char*>("ab"), 2, u"UTF-8", 100)}) {
        // The initializer list holds each: a copy of it would separate.
        String& text = const_cast<String&>(made);
        const char16_t* const data = text.getData();
        text.append(u'y', 98 - text.getLength());
        EXPECT_EQ(text.getData(), data);
        EXPECT_EQ(text.getLength(), 98);
    }
}

TEST(StringTest, ImpossibleLengthsAreOutOfMemory) {
    String text(u"abc");
    EXPECT_THROW(text.append(u'x', std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_THROW(text.resize(std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, ResizeCutsOrFills) {
    String text(u"abc");
    text.resize(5, u'-');
    EXPECT_EQ(text, u"abc--");
    text.resize(2, u'-');
    EXPECT_EQ(text, u"ab");
    text.resize(0);
    EXPECT_EQ(text, u"");
}

TEST(StringTest, UnitsAreReadAndSet) {
    String text(u"abc");
    EXPECT_EQ(text.getCharAt(1), u'b');
    EXPECT_EQ(text[2], u'c');
    const String copy(text);
    text.setCharAt(1, u'x');
    EXPECT_EQ(text, u"axc");
    EXPECT_EQ(copy, u"abc");
}

TEST(StringTest, SubstringCopiesARange) {
    const String text(u"0123456789");
    EXPECT_EQ(text.substring(2, 5), u"234");
    EXPECT_EQ(text.substring(7), u"789");
    EXPECT_EQ(text.substring(7, 99), u"789");
    EXPECT_TRUE(shares(text.substring(5, 5), String()));
    EXPECT_TRUE(shares(text.substring(8, 3), String()));
    EXPECT_FALSE(shares(text.substring(0), text));
}

TEST(StringTest, CaseIsMappedInPlace) {
    String text(u"aÀßЖ中Z");
    text.toLower();
    EXPECT_EQ(text, u"aàßж中z");
    text.toUpper();
    EXPECT_EQ(text, u"AÀßЖ中Z");
    String withNul(u"a\0b", 3);
    withNul.toUpper();
    EXPECT_EQ(withNul, String(u"A\0B", 3));
}

TEST(StringTest, TranslateMapsOneUnit) {
    String text(u"a/b/c");
    text.translate(u'/', u'\\');
    EXPECT_EQ(text, u"a\\b\\c");
}

TEST(StringTest, TrimmingASetTrimsZeroUnitsToo) {
    // The search in a set finds its terminator.
    String text(u"\0xab\0cx\0", 8);
    text.trim(u"x", 1, String::TRIM_BOTH);
    EXPECT_EQ(text, String(u"ab\0c", 4));
    String left(u"\0ab\0", 4);
    left.trim(u"x", 1, String::TRIM_LEFT);
    EXPECT_EQ(left, String(u"ab\0", 3));
    String blanks(u"\0 ab \0", 6);
    blanks.trim();
    EXPECT_EQ(blanks, u"ab");
    String ofString(u"ab\0", 3);
    ofString.trim(String(u"x"), String::TRIM_RIGHT);
    EXPECT_EQ(ofString, u"ab");
    String ofUnit(u"xab\0", 4);
    ofUnit.trim(u'x', String::TRIM_BOTH);
    EXPECT_EQ(ofUnit, String(u"ab\0", 3)) << "one unit is no set";
}

TEST(StringTest, TranslateOfTextsLeavesTheTextAsItWas) {
    String text(u"abc");
    text.translate(u"abc", 3, u"xyz", 3);
    text.translate(String(u"abc"), String(u"xyz"));
    text.translate(u"abc", u"xyz");
    EXPECT_EQ(text, u"abc");
}

TEST(StringTest, TrimTakesTheFourBlanks) {
    String text(u"\t a b \r\n");
    text.trim(String::TRIM_LEFT);
    EXPECT_EQ(text, u"a b \r\n");
    text.trim(String::TRIM_RIGHT);
    EXPECT_EQ(text, u"a b");
    String blanks(u"\t  \r\n");
    blanks.trim();
    EXPECT_EQ(blanks, u"");
    EXPECT_EQ(blanks.getData()[0], 0);
    String others(u"\v\u00A0a\v");
    others.trim(String::TRIM_BOTH);
    EXPECT_EQ(others, u"\v\u00A0a\v");
}

TEST(StringTest, TrimTakesASetWhoseLengthDoesNotCount) {
    String text(u"xyaxy");
    text.trim(u"xy", 1, String::TRIM_BOTH);
    EXPECT_EQ(text, u"a");
    String other(u"xyaxy");
    other.trim(String(u"xy"), String::TRIM_LEFT);
    EXPECT_EQ(other, u"axy");
    other.trim(u'y', String::TRIM_RIGHT);
    EXPECT_EQ(other, u"ax");
    String all(u"xx");
    all.trim(all, String::TRIM_BOTH);
    EXPECT_EQ(all, u"");
}

// --- Comparison ---

TEST(StringTest, CompareGivesASignOrTheDifferenceOfLengths) {
    EXPECT_EQ(String(u"abc").compare(u"abd"), -1);
    EXPECT_EQ(String(u"abz").compare(u"aba"), 1);
    EXPECT_EQ(String(u"ab").compare(u"abc"), -1);
    EXPECT_EQ(String(u"abcde").compare(u"abc"), 2);
    EXPECT_EQ(String(u"abc").compare(String(u"abc")), 0);
    EXPECT_EQ(String(u"").compare(u""), 0);
    EXPECT_EQ(String(u"\uFFFF").compare(u"\u0001"), 1) << "units are unsigned";
    EXPECT_EQ(String(u"abc").compare(u"abX", 2), 1);
    EXPECT_EQ(String(u"ABC").compare(String(u"abc"), true), 0);
    EXPECT_EQ(String(u"ABCDE").compare(u"abc", -1, true), 2);
    EXPECT_LT(String(u"ABC").compare(u"abd", -1, true), 0);
}

TEST(StringTest, CompareFindsTheDifferenceAtEveryPlace) {
    for (int length = 1; length < 40; ++length) {
        for (int place = 0; place < length; ++place) {
            String left = ofLength(length);
            String right = ofLength(length);
            left.setCharAt(place, u'b');
            EXPECT_EQ(left.compare(right), 1);
            EXPECT_EQ(right.compare(left), -1);
            EXPECT_FALSE(left.equals(right));
        }
    }
}

TEST(StringTest, EqualsNeedsTheSameLength) {
    EXPECT_TRUE(String(u"abc").equals(u"abc"));
    EXPECT_FALSE(String(u"abc").equals(u"ab"));
    EXPECT_FALSE(String(u"abc").equals(u"abcd"));
    EXPECT_TRUE(String(u"abc").equals(u"abX", 2) == false);
    EXPECT_TRUE(String(u"ÀЖ").equals(String(u"àж"), true));
    EXPECT_FALSE(String(u"À").equals(String(u"à"), false));
    EXPECT_TRUE(String(u"a\0b", 3).equals(String(u"a\0b", 3)));
    EXPECT_FALSE(String(u"a\0b", 3).equals(String(u"a\0c", 3)));
    EXPECT_FALSE(String(u"a\0b", 3).equals(String(u"a\0c", 3), true));
}

TEST(StringTest, StartsAndEnds) {
    const String text(u"Hello");
    EXPECT_TRUE(text.startsWith(u"Hel"));
    EXPECT_FALSE(text.startsWith(u"hel"));
    EXPECT_TRUE(text.startsWith(u"hel", -1, true));
    EXPECT_TRUE(text.startsWith(String(u"hel"), true));
    EXPECT_TRUE(text.startsWith(u""));
    EXPECT_FALSE(text.startsWith(u"Hello World"));
    EXPECT_TRUE(text.endsWith(u"llo"));
    EXPECT_TRUE(text.endsWith(String(u"LLO"), true));
    EXPECT_TRUE(text.endsWith(u""));
    EXPECT_FALSE(text.endsWith(u"xHello"));
    EXPECT_TRUE(text.endsWith(u"loX", 2));
}

TEST(StringTest, RegionsAreCut) {
    const String text(u"0123456789");
    EXPECT_TRUE(text.regionMatches(2, 3, u"xx234", -1, 2));
    EXPECT_FALSE(text.regionMatches(2, 3, u"xx2345", -1, 2));
    EXPECT_TRUE(text.regionMatches(-1, 5, u"", 0, 0)) << "-1 is the end";
    EXPECT_TRUE(text.regionMatches(99, 5, u"abc", -1, 9)) << "both regions are empty";
    EXPECT_EQ(text.regionCompare(2, -1, u"23", -1, 0), 6);
    EXPECT_EQ(text.regionCompare(8, 99, u"89", -1, 0), 0);
    EXPECT_EQ(text.regionCompare(2, 2, String(u"x24"), 1), -1);
    EXPECT_TRUE(String(u"ABC").regionMatches(1, 2, String(u"xbc"), 1, true));
    EXPECT_EQ(String(u"ABC").regionCompare(1, 2, u"bc", -1, 0, true), 0);
}

TEST(StringTest, ObjectMethodsKnowStrings) {
    const String text(u"abc");
    const Object& object = text;
    EXPECT_EQ(object.compareTo(object), 0);
    EXPECT_EQ(object.compareTo(String(u"abd")), -1);
    EXPECT_EQ(support::thrownText<CastFailedException>([&] { object.compareTo(Object()); }), "");
    EXPECT_TRUE(object.equals(String(u"abc")));
    EXPECT_TRUE(object.equals(object));
    EXPECT_FALSE(object.equals(Object()));
    EXPECT_TRUE(shares(object.toString(), text));
    EXPECT_EQ(object.hashCode(), text.hashCode(false));
}

TEST(StringTest, OperatorsCompareTexts) {
    EXPECT_TRUE(String(u"a") == String(u"a"));
    EXPECT_TRUE(String(u"a") != u"b");
    EXPECT_TRUE(String(u"a") < String(u"b"));
    EXPECT_TRUE(String(u"b") > String(u"a"));
}

// --- Hash ---

TEST(StringTest, HashIsTheMultiplierOverTheSampledUnits) {
    EXPECT_EQ(String().hashCode(), 0u);
    EXPECT_EQ(String(u"a").hashCode(), 97u);
    EXPECT_EQ(String(u"ab").hashCode(), 97u * 37 + 98);
    EXPECT_EQ(String(u"AB").hashCode(true), String(u"ab").hashCode());
    EXPECT_NE(String(u"AB").hashCode(false), String(u"ab").hashCode());
}

TEST(StringTest, LongHashesReadEveryNthUnit) {
    const auto sensitive = [](int length, int place) {
        String changed = ofLength(length);
        changed.setCharAt(place, u'b');
        return changed.hashCode() != ofLength(length).hashCode();
    };
    EXPECT_TRUE(sensitive(63, 1));
    EXPECT_TRUE(sensitive(63, 62));
    EXPECT_FALSE(sensitive(64, 1));
    EXPECT_TRUE(sensitive(64, 2));
    EXPECT_TRUE(sensitive(95, 94));
    EXPECT_FALSE(sensitive(96, 2));
    EXPECT_TRUE(sensitive(96, 3));
}

// --- Search ---

TEST(StringTest, IndexOfFindsTheFirstMatch) {
    const String text(u"abcabcABC");
    EXPECT_EQ(text.indexOf(u"bc"), 1);
    EXPECT_EQ(text.indexOf(u"bc", -1, 2), 4);
    EXPECT_EQ(text.indexOf(u"bcX", 2, 5), -1);
    EXPECT_EQ(text.indexOf(u"bc", -1, 5, true), 7);
    EXPECT_EQ(text.indexOf(String(u"ABC")), 6);
    EXPECT_EQ(text.indexOf(String(u"ABC"), 0, true), 0);
    EXPECT_EQ(text.indexOf(u'c'), 2);
    EXPECT_EQ(text.indexOf(u'c', 3), 5);
    EXPECT_EQ(text.indexOf(u'C', 3, true), 5);
    EXPECT_EQ(text.indexOf(u'z'), -1);
    EXPECT_EQ(text.indexOf(u"abc", -1, 9), -1);
    EXPECT_EQ(text.indexOf(u"abcabcABCx"), -1);
    EXPECT_EQ(text.indexOf(u"abcabcABC"), 0);
}

TEST(StringTest, EmptyTextIsNeverFound) {
    const String text(u"abc");
    EXPECT_EQ(text.indexOf(u""), -1);
    EXPECT_EQ(text.indexOf(u"abc", 0), -1);
    EXPECT_EQ(text.lastIndexOf(u""), -1);
    EXPECT_FALSE(text.contains(u""));
    EXPECT_FALSE(text.contains(String()));
    EXPECT_TRUE(text.contains(u"b"));
    EXPECT_TRUE(text.contains(String(u"BC"), true));
    EXPECT_FALSE(text.contains(String(u"BC")));
}

TEST(StringTest, IndexOfFindsNeedlesAtEveryPlace) {
    for (int length = 1; length < 40; ++length) {
        for (int needle = 1; needle <= length && needle < 12; ++needle) {
            for (int place = 0; place + needle <= length; ++place) {
                String text = ofLength(length);
                for (int i = 0; i < needle; ++i) {
                    text.setCharAt(place + i, static_cast<char16_t>(u'b' + i));
                }
                const String wanted = text.substring(place, place + needle);
                ASSERT_EQ(text.indexOf(wanted), place);
                ASSERT_EQ(text.lastIndexOf(wanted), place);
                String upper(wanted);
                upper.toUpper();
                ASSERT_EQ(text.indexOf(upper, 0, true), place);
                ASSERT_EQ(text.indexOf(upper), -1);
            }
        }
    }
}

TEST(StringTest, LastIndexOfFindsTheLastMatchThatEndsInTime) {
    const String text(u"abcabcABC");
    EXPECT_EQ(text.lastIndexOf(u"bc"), 4);
    EXPECT_EQ(text.lastIndexOf(u"bc", -1, 4), 1) << "the match must end at or before 4";
    EXPECT_EQ(text.lastIndexOf(u"bc", -1, 5), 4);
    EXPECT_EQ(text.lastIndexOf(u"bc", -1, 99), 4);
    EXPECT_EQ(text.lastIndexOf(u"bc", -1, -1, true), 7);
    EXPECT_EQ(text.lastIndexOf(u"bc", -1, 1), -1);
    EXPECT_EQ(text.lastIndexOf(String(u"abc")), 3);
    EXPECT_EQ(text.lastIndexOf(u'a'), 3);
    EXPECT_EQ(text.lastIndexOf(u'a', 2), 0);
    EXPECT_EQ(text.lastIndexOf(u'a', -1, true), 6);
    EXPECT_EQ(text.lastIndexOf(u'z'), -1);
    EXPECT_EQ(String().lastIndexOf(u'a'), -1);
}

TEST(StringTest, BackwardSearchesFromBehindTheTextBeginAtItsLastUnit) {
    const String text(u"a b a");
    // The terminator, which stands at the length, is no unit of the text.
    for (const int from : {5, 6, 99, std::numeric_limits<int>::max()}) {
        for (const bool ignoreCase : {false, true}) {
            EXPECT_EQ(text.lastIndexOf(u'a', from, ignoreCase), 4) << from;
            EXPECT_EQ(text.lastIndexOf(u'\0', from, ignoreCase), -1) << from;
            EXPECT_EQ(text.lastIndexOf(u" a", -1, from, ignoreCase), 3) << from;
            EXPECT_EQ(text.findLastOf(u" ", -1, from, ignoreCase), 3) << from;
            EXPECT_EQ(text.findLastOf(u"\0b", 2, from, ignoreCase), 2) << from;
            EXPECT_EQ(text.findLastNotOf(u"a", -1, from, ignoreCase), 3) << from;
        }
    }
}

TEST(StringTest, EveryFormOfASearchHandsItsArgumentsOn) {
    const String text(u"AbcAbc");
    const String needle(u"bC");
    const String set(u"BX");
    EXPECT_EQ(text.indexOf(needle, 2, true), 4);
    EXPECT_EQ(text.indexOf(needle, 2), -1);
    EXPECT_EQ(text.lastIndexOf(needle, 3, true), 1);
    EXPECT_EQ(text.lastIndexOf(needle, 3), -1);
    EXPECT_EQ(text.findFirstOf(set, 2, true), 4);
    EXPECT_EQ(text.findFirstOf(set, 2), -1);
    EXPECT_EQ(text.findFirstNotOf(String(u"aB"), 3, true), 5);
    EXPECT_EQ(text.findFirstNotOf(String(u"aB"), 3), 3);
    EXPECT_EQ(text.findLastOf(set, 3, true), 1);
    EXPECT_EQ(text.findLastOf(set, 3), -1);
    EXPECT_EQ(text.findLastNotOf(String(u"aB"), 4, true), 2);
    EXPECT_EQ(text.findLastNotOf(String(u"aB"), 4), 4);
    EXPECT_TRUE(text.contains(String(u"CA"), true));
    EXPECT_FALSE(text.contains(String(u"CA")));
    EXPECT_TRUE(text.contains(u"CA", -1, true));
    EXPECT_FALSE(text.contains(u"CA", -1));
    EXPECT_TRUE(text.equals(u"ABCABC", -1, true));
    EXPECT_FALSE(text.equals(u"ABCABC", -1));
    EXPECT_EQ(text.findFirstOfCase(u"b", -1, 2), 4);
    EXPECT_EQ(text.findFirstOfCase(String(u"b"), 2), 4);
}

TEST(StringTest, SetsAreSearchedWithoutCaseOnBothSides) {
    const String text(u"KEY = v");
    EXPECT_EQ(text.findFirstOf(u"e", -1, 0, true), 1);
    EXPECT_EQ(text.findFirstNotOf(u"kE", -1, 0, true), 2);
    EXPECT_EQ(text.findLastOf(u"y", -1, -1, true), 2);
    EXPECT_EQ(text.findLastNotOf(u"V =", -1, -1, true), 2);
}

TEST(StringTest, SetsAreSearchedForward) {
    const String text(u"key = value");
    EXPECT_EQ(text.findFirstOf(u"=:"), 4);
    EXPECT_EQ(text.findFirstOf(u"=:", -1, 5), -1);
    EXPECT_EQ(text.findFirstOf(String(u" ")), 3);
    EXPECT_EQ(text.findFirstOf(u"V", -1, 0, true), 6);
    EXPECT_EQ(text.findFirstOf(u"V"), -1);
    EXPECT_EQ(text.findFirstOf(u"=:x", 1), 4);
    EXPECT_EQ(text.findFirstNotOf(u"key"), 3);
    EXPECT_EQ(text.findFirstNotOf(String(u"KEY"), 0, true), 3);
    EXPECT_EQ(text.findFirstNotOf(u"key =", -1, 1), 6);
    EXPECT_EQ(String(u"aaa").findFirstNotOf(u"a"), -1);
    EXPECT_EQ(text.findFirstOfCase(u"V"), -1);
    EXPECT_EQ(text.findFirstOfCase(String(u"v")), 6);
    EXPECT_EQ(text.findFirstOf(u"k", -1, 99), -1);
}

TEST(StringTest, SetsAreSearchedBackward) {
    const String text(u"key = value");
    EXPECT_EQ(text.findLastOf(u" "), 5);
    EXPECT_EQ(text.findLastOf(u" ", -1, 4), 3);
    EXPECT_EQ(text.findLastOf(String(u"K"), -1, true), 0);
    EXPECT_EQ(text.findLastOf(u"z"), -1);
    EXPECT_EQ(text.findLastNotOf(u"value"), 5);
    EXPECT_EQ(text.findLastNotOf(String(u"VALUE ="), -1, true), 2);
    EXPECT_EQ(text.findLastNotOf(u"e", -1, 99), 9);
    EXPECT_EQ(text.findLastNotOf(u"key", -1, 2), -1);
}

TEST(StringTest, EmptySetFindsNothingNotEvenForTheNotForms) {
    const String text(u"abc");
    EXPECT_EQ(text.findFirstOf(u""), -1);
    EXPECT_EQ(text.findFirstNotOf(u""), -1);
    EXPECT_EQ(text.findLastOf(String()), -1);
    EXPECT_EQ(text.findLastNotOf(u""), -1);
}

// --- The buffer faces ---

TEST(StringTest, NativeLocksWriteThrough) {
    String text(u"abc");
    EXPECT_EQ(text.getReadLock(), text.getData());
    text.releaseReadLock();
    char16_t* data = text.getWriteLock(10);
    data[3] = u'd';
    data = text.ensureCapacity(100);
    data[4] = u'e';
    text.releaseWriteLock(5);
    EXPECT_EQ(text, u"abcde");
    EXPECT_EQ(text.getDataT(1), text.getData());
    EXPECT_STREQ(text.getDataT(true), "abcde");
    EXPECT_EQ(text.getReadLockT(1), text.getData());
    text.releaseReadLock();
    EXPECT_STREQ(text.getReadLockT(false), "abcde");
    text.releaseReadLock();
    text.freeExtra();
    EXPECT_EQ(text, u"abcde");
}

TEST(StringComponentTest, FilledByAWriterThatTerminates) {
    String text;
    util::ICharBuffer& face = text;
    char16_t* data = nullptr;
    ASSERT_EQ(face.GetWriteLock(8, &data), 0);
    std::u16string(u"written").copy(data, 8);
    data[7] = 0;
    EXPECT_EQ(face.ReleaseWriteLock(-1), 0);
    EXPECT_EQ(text, u"written");
    EXPECT_EQ(face.GetLength(), 7);
}

TEST(StringComponentTest, FilledByAWriterThatDoesNotTerminate) {
    String text;
    util::ICharBuffer& face = text;
    char16_t* data = nullptr;
    ASSERT_EQ(face.GetWriteLock(3, &data), 0);
    data[0] = data[1] = data[2] = u'x';
    EXPECT_EQ(face.EnsureCapacity(40, &data), 0);
    data[3] = u'y';
    EXPECT_EQ(face.ReleaseWriteLock(4), 0);
    EXPECT_EQ(text, u"xxxy");
    EXPECT_EQ(face.GetData()[4], 0);
    const char16_t* read = nullptr;
    EXPECT_EQ(face.GetReadLock(&read), 0);
    EXPECT_EQ(read, face.GetData());
    EXPECT_EQ(face.ReleaseReadLock(), 0);
    EXPECT_EQ(face.FreeExtra(), 0);
    EXPECT_EQ(text, u"xxxy");
}

TEST(StringComponentTest, WriteLockSeparates) {
    const String text(u"text");
    String copy(text);
    util::ICharBuffer& face = copy;
    char16_t* data = nullptr;
    ASSERT_EQ(face.GetWriteLock(0, &data), 0);
    data[0] = u'T';
    EXPECT_EQ(face.ReleaseWriteLock(4), 0);
    EXPECT_EQ(text, u"text");
    EXPECT_EQ(copy, u"Text");
}

TEST(StringComponentTest, EnsureCapacityDoesNotSeparate) {
    String text(u"literal"_lit);
    char16_t* data = nullptr;
    EXPECT_EQ(static_cast<util::ICharBuffer&>(text).EnsureCapacity(1, &data), QV_E_NOTIMPL);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(support::thrownResult([&] { text.ensureCapacity(1); }), QV_E_NOTIMPL);
}

TEST(StringComponentTest, ReleaseStopsWithTheFailureOfTheInnerBuffer) {
    static const char16_t units[] = u"literal";
    String text(STRUCT_QV_STR_LIT_INFO{units, 7});
    util::ICharBuffer& face = text;
    EXPECT_EQ(face.ReleaseWriteLock(3), QV_E_NOTIMPL) << "no lock was taken, nothing separated";
    EXPECT_EQ(text, u"literal");
    EXPECT_EQ(face.ReleaseWriteLock(-1), QV_E_NOTIMPL);
    EXPECT_EQ(support::thrownResult([&] { text.releaseWriteLock(3); }), QV_E_NOTIMPL);
}

TEST(StringComponentTest, ImpossibleSizesAreOutOfMemoryWithNothingStored) {
    constexpr int most = std::numeric_limits<int>::max();
    String text(u"abc");
    util::ICharBuffer& face = text;
    for (const int capacity : {most, most - 1}) {
        char16_t unit = 0;
        char16_t* data = &unit;
        EXPECT_EQ(face.GetWriteLock(capacity, &data), QV_E_OUTOFMEMORY) << capacity;
        EXPECT_EQ(data, nullptr);
        data = &unit;
        EXPECT_EQ(face.EnsureCapacity(capacity, &data), QV_E_OUTOFMEMORY) << capacity;
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(face.ReleaseWriteLock(capacity), QV_E_OUTOFMEMORY) << capacity;
    }
    EXPECT_EQ(text, u"abc");
}

TEST(StringComponentTest, ReadLockOfARefusingInnerBufferStoresNothing) {
    auto* const buffer = new LockedBuffer(u"abc", 4);
    const String text(String::ACQUIRE_SHARE, buffer);
    buffer->refuse = true;
    const char16_t* data = u"";
    EXPECT_EQ(static_cast<const util::ICharBuffer&>(text).GetReadLock(&data), QV_E_BUSY);
    EXPECT_EQ(data, nullptr);
}

TEST(StringComponentTest, AnswersTheInterfacesOfABuffer) {
    String text(u"abc");
    text.AddRef();
    void* out = nullptr;
    ASSERT_EQ(text.QueryInterface(IID_IQVCharBuffer, &out), 0);
    EXPECT_EQ(static_cast<IQVCharBuffer*>(out)->GetLength(), 3);
    ASSERT_EQ(text.QueryInterface(IID_IQVComparable, &out), 0);
    String other(u"abd");
    int order = 0;
    EXPECT_EQ(static_cast<IQVComparable*>(out)->CompareTo(static_cast<ComObject*>(&other), &order),
              0);
    EXPECT_EQ(order, -1);
    Object object;
    EXPECT_EQ(static_cast<IQVComparable*>(out)->CompareTo(static_cast<ComObject*>(&object), &order),
              QV_E_FAIL);
    EXPECT_EQ(order, 0);
}

} // namespace
