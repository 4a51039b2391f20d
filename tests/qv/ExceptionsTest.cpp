#include "qv/Exceptions.h"

#include "qv/Class.h"
#include "qv/ErrorRule.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::io;
using namespace qv::text::charset;

namespace {

constexpr std::int32_t fail = static_cast<std::int32_t>(0x80004005);

/// True if a handler for `Base` takes a thrown `Thrown`.
template <class Base, class Thrown>
bool caughtAs(const Thrown& exception) {
    try {
        throw exception;
    } catch (const Base&) {
        return true;
    } catch (...) {
        return false;
    }
}

/// What the class answers as its result.
template <class T>
constexpr std::uint32_t resultOf = 0x80004005;
template <>
constexpr std::uint32_t resultOf<InvalidCharacterException> = 0x8BB34101;
template <>
constexpr std::uint32_t resultOf<UnmappableCharacterException> = 0x8BB34102;
template <>
constexpr std::uint32_t resultOf<UnknownEncodingException> = 0x8BB34103;

template <class T>
class MessageExceptionTest : public testing::Test {};

using WithMessage =
    testing::Types<Exception, CastFailedException, ClassNotFoundException, IllegalAccessException,
                   IllegalStateException, InvalidPathException, RangeErrorException,
                   ReadOnlyException, UnsupportedOperationException, IoException, TimeoutException,
                   UnexpectedEOFException, InvalidCharacterException, UnmappableCharacterException,
                   UnknownEncodingException>;
TYPED_TEST_SUITE(MessageExceptionTest, WithMessage);

TYPED_TEST(MessageExceptionTest, HasNoMessageOfItsOwn) {
    EXPECT_EQ(TypeParam().getDescription(), u"");
}

TYPED_TEST(MessageExceptionTest, KeepsTheMessageGiven) {
    const TypeParam exception(u"why");
    EXPECT_EQ(exception.getDescription(), u"why");
    EXPECT_TRUE(caughtAs<Exception>(exception));
    EXPECT_TRUE(caughtAs<Object>(exception));
}

TYPED_TEST(MessageExceptionTest, HasTheResultOfItsClass) {
    EXPECT_EQ(static_cast<std::uint32_t>(TypeParam().getResult()), resultOf<TypeParam>);
    EXPECT_EQ(static_cast<std::uint32_t>(TypeParam(u"why").getResult()), resultOf<TypeParam>);
    const TypeParam thrown(u"why");
    EXPECT_EQ(static_cast<std::uint32_t>(toResult([&] { throw thrown; })), resultOf<TypeParam>);
}

TYPED_TEST(MessageExceptionTest, CopySharesTheMessageAndHasAnObjectPartOfItsOwn) {
    TypeParam exception(u"why");
    exception.AddRef();
    TypeParam copy(exception);
    EXPECT_EQ(copy.GetRefCount(), 0u);
    EXPECT_EQ(copy.getDescription().getData(), exception.getDescription().getData());
    copy.AddRef();
    copy.AddRef();
    copy = TypeParam(u"other");
    EXPECT_EQ(copy.GetRefCount(), 2u) << "assignment leaves the object part alone";
    EXPECT_EQ(exception.getDescription(), u"why");
    EXPECT_EQ(copy.getDescription(), u"other");
    const TypeParam& same = copy;
    copy = same;
    EXPECT_EQ(copy.getDescription(), u"other");
}

template <class T>
class BareExceptionTest : public testing::Test {};

using WithoutMessage =
    testing::Types<AccessViolationException, ArrayBoundsException, IllegalInstructionException,
                   StackOverflowException, UserAbortException, IntErrorException,
                   IntDivByZeroException, IntOverflowException, MathErrorException,
                   MathDivByZeroException, MathInvalidOpException, MathOverflowException,
                   MathUnderflowException>;
TYPED_TEST_SUITE(BareExceptionTest, WithoutMessage);

TYPED_TEST(BareExceptionTest, IsAnExternalExceptionWithTheDefaultResult) {
    const TypeParam exception;
    EXPECT_EQ(exception.getDescription(), u"");
    EXPECT_EQ(exception.getResult(), fail);
    EXPECT_TRUE(caughtAs<ExternalException>(exception));
    EXPECT_FALSE((std::is_constructible_v<TypeParam, const String&>));
}

TEST(ExceptionsTest, ResultsAreThoseOfTheTree) {
    EXPECT_EQ(Exception().getResult(), fail);
    EXPECT_EQ(ResultException().getResult(), fail);
    EXPECT_EQ(OutOfMemoryException().getResult(), static_cast<std::int32_t>(0x8007000E));
    EXPECT_EQ(CastFailedException().getResult(), fail);
    EXPECT_EQ(IoException().getResult(), fail);
    EXPECT_EQ(InvalidCharacterException().getResult(), static_cast<std::int32_t>(0x8BB34101));
    EXPECT_EQ(UnmappableCharacterException().getResult(), static_cast<std::int32_t>(0x8BB34102));
    EXPECT_EQ(UnknownEncodingException().getResult(), static_cast<std::int32_t>(0x8BB34103));
}

TEST(ExceptionsTest, TreeIsAsLaidDown) {
    EXPECT_TRUE(caughtAs<IoException>(TimeoutException()));
    EXPECT_FALSE(caughtAs<IoException>(UnexpectedEOFException()));
    EXPECT_TRUE(caughtAs<IntErrorException>(IntDivByZeroException()));
    EXPECT_TRUE(caughtAs<IntErrorException>(IntOverflowException()));
    EXPECT_TRUE(caughtAs<MathErrorException>(MathDivByZeroException()));
    EXPECT_TRUE(caughtAs<MathErrorException>(MathInvalidOpException()));
    EXPECT_TRUE(caughtAs<MathErrorException>(MathOverflowException()));
    EXPECT_TRUE(caughtAs<MathErrorException>(MathUnderflowException()));
    EXPECT_FALSE(caughtAs<ResultException>(IoException()));
}

TEST(ExceptionsTest, ResultTravelsUnchanged) {
    const ResultException exception(QV_E_INVALIDARG, u"text");
    EXPECT_EQ(exception.getResult(), QV_E_INVALIDARG);
    EXPECT_EQ(exception.getDescription(), u"text");
    EXPECT_EQ(ResultException(QV_E_INVALIDARG).getDescription(), u"");
    ResultException other;
    other = exception;
    EXPECT_EQ(other.getResult(), QV_E_INVALIDARG);
    EXPECT_EQ(other.getDescription(), u"text");
    auto& same = other;
    other = same;
    EXPECT_EQ(other.getDescription(), u"text");
    EXPECT_EQ(ResultException(other).getResult(), QV_E_INVALIDARG);
}

TEST(ExceptionsTest, OutOfMemoryIsAlsoTheLanguagesOwn) {
    try {
        throw OutOfMemoryException();
    } catch (const std::bad_alloc& exception) {
        EXPECT_STREQ(exception.what(), "bad allocation");
    }
    EXPECT_TRUE(caughtAs<Exception>(OutOfMemoryException()));
    EXPECT_EQ(OutOfMemoryException(OutOfMemoryException()).getDescription(), u"");
    EXPECT_FALSE((std::is_constructible_v<OutOfMemoryException, const String&>));
}

/// The record that an exception holds: its last field.
_EXCEPTION_POINTERS* faultOf(const ExternalException& exception) {
    static_assert(sizeof(ExternalException) == sizeof(Exception) + sizeof(void*));
    _EXCEPTION_POINTERS* fault = nullptr;
    std::memcpy(&fault, reinterpret_cast<const char*>(&exception) + sizeof(Exception),
                sizeof fault);
    return fault;
}

TEST(ExceptionsTest, ExternalExceptionTakesAFaultRecord) {
    auto* const fault = reinterpret_cast<_EXCEPTION_POINTERS*>(std::uintptr_t{16});
    const ExternalException exception(fault);
    EXPECT_EQ(faultOf(exception), fault);
    EXPECT_EQ(faultOf(ExternalException(exception)), fault);
    const AccessViolationException bare;
    EXPECT_EQ(faultOf(bare), nullptr);
    ExternalException assigned(reinterpret_cast<_EXCEPTION_POINTERS*>(std::uintptr_t{32}));
    assigned = exception;
    EXPECT_EQ(faultOf(assigned), fault);
    EXPECT_EQ(assigned.getResult(), fail);
    EXPECT_FALSE(std::is_default_constructible_v<ExternalException>);
}

TEST(ExceptionsTest, TextHasTheClassNameAndNotTheMessage) {
    const String text = IoException(u"secret").toString();
    EXPECT_TRUE(text.startsWith(u"qv::io::IoException@"));
    EXPECT_FALSE(text.contains(u"secret"));
}

TEST(ErrorRuleTest, ExceptionsBecomeResultsInOrder) {
    EXPECT_EQ(toResult([] {}), 0);
    EXPECT_EQ(toResult([] { throw ResultException(QV_E_INVALIDARG); }), QV_E_INVALIDARG);
    EXPECT_EQ(toResult([] { throw Exception(); }), fail);
    EXPECT_EQ(toResult([] { throw OutOfMemoryException(); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(toResult([] { throw std::bad_alloc(); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(toResult([] { throw std::runtime_error("x"); }), fail);
    EXPECT_EQ(toResult([] { throw 1; }), fail);
    EXPECT_EQ(toResult([] { throw UnknownEncodingException(); }), QV_E_UNKNOWNENCODING);
}

TEST(ErrorRuleTest, LibraryExceptionIsAskedBeforeItCountsAsTheLanguagesOwn) {
    struct Both : Exception, std::bad_alloc {
        std::int32_t getResult() const override { return QV_E_BUSY; }
    };
    EXPECT_EQ(toResult([] { throw Both(); }), QV_E_BUSY);
}

TEST(ErrorRuleTest, ResultsBecomeExceptions) {
    EXPECT_NO_THROW(throwIfFailed(0));
    EXPECT_NO_THROW(throwIfFailed(1));
    EXPECT_EQ(support::thrownResult([] { throwIfFailed(QV_E_TIMEOUT); }), QV_E_TIMEOUT);
    EXPECT_EQ(support::thrownText<ResultException>([] { throwIfFailed(QV_E_TIMEOUT); }), "");
    EXPECT_EQ(support::thrownText<ResultException>([] { throwIfFailed(QV_E_TIMEOUT, u"late"); }),
              "late");
}

TEST(ErrorRuleTest, OneValueTravelsThroughBothWorlds) {
    EXPECT_EQ(toResult([] { throwIfFailed(toResult([] { throwIfFailed(QV_E_BUSY); })); }),
              QV_E_BUSY);
}

} // namespace
