#include "qv/Class.h"
#include "qv/Exceptions.h"
#include "tests/support/Printing.h"

#include <gtest/gtest.h>

using namespace qv;

namespace {

/// The class table as it will be when every class exists: the name, and whether it has a factory.
struct Row {
    const char16_t* name;
    bool factory;
};

const Row rows[] = {
    {u"CQVAbstractByteBuffer", false},
    {u"CQVAbstractCharBuffer", false},
    {u"CQVAlphaNumInputStream", false},
    {u"CQVAlphaNumOutputStream", false},
    {u"CQVArrayList", true},
    {u"CQVAtomic", false},
    {u"CQVBigDecimal", true},
    {u"CQVBigInteger", true},
    {u"CQVBitInputStream", false},
    {u"CQVBitOutputStream", false},
    {u"CQVBTCSingleByte", false},
    {u"CQVBTCSingleByteTable", false},
    {u"CQVBufferedInputStream", false},
    {u"CQVBufferedOutputStream", false},
    {u"CQVBufferedReader", false},
    {u"CQVBufferedWriter", false},
    {u"CQVByteArrayInputStream", false},
    {u"CQVByteArrayOutputStream", true},
    {u"CQVByteToCharConverter", false},
    {u"CQVCharToByteConverter", false},
    {u"qv::Class", false},
    {u"CQVCTBSingleByte", false},
    {u"CQVCTBSingleByteTable", false},
    {u"CQVCollection", false},
    {u"qv::qvcom::ClassFactory", false},
    {u"CQVComDllModule", false},
    {u"CQVComObject", false},
    {u"CQVComparator", false},
    {u"CQVConstIterator", false},
    {u"CQVConstListIterator", false},
    {u"CQVDataInputStream", false},
    {u"CQVDataOutputStream", false},
    {u"CQVDouble", false},
    {u"CQVEvent", true},
    {u"qv::sync::FakeAtomic", false},
    {u"CQVFakeMutex", true},
    {u"CQVFilePath", false},
    {u"CQVFilterInputStream", false},
    {u"CQVFilterOutputStream", false},
    {u"CQVFilterReader", false},
    {u"CQVFilterWriter", false},
    {u"CQVFloat", false},
    {u"CQVGate", true},
    {u"CQVGuid", false},
    {u"CQVHashMap", true},
    {u"CQVInputStream", false},
    {u"CQVInputStreamReader", false},
    {u"CQVInteger16", false},
    {u"CQVInteger32", false},
    {u"CQVInteger64", false},
    {u"CQVInteger8", false},
    {u"CQVIterator", false},
    {u"CQVLinkedList", true},
    {u"CQVList", false},
    {u"CQVListIterator", false},
    {u"CQVLocale", false},
    {u"CQVLockObject", false},
    {u"CQVMap", false},
    {u"CQVMTByteBuffer", true},
    {u"CQVMTCharBuffer", true},
    {u"CQVMutex", true},
    {u"CQVNullOutputStream", true},
    {u"CQVNullWriter", true},
    {u"CQVNumber", false},
    {u"CQVObject", true},
    {u"CQVOutputStream", false},
    {u"CQVOutputStreamWriter", false},
    {u"CQVPrintWriter", false},
    {u"CQVReader", false},
    {u"CQVResourceBundle", false},
    {u"CQVROByteBuffer", true},
    {u"CQVROCharBuffer", true},
    {u"CQVRunnable", false},
    {u"CQVRWByteBuffer", true},
    {u"CQVRWCharBuffer", true},
    {u"CQVRWLock", true},
    {u"CQVSemaphore", true},
    {u"CQVSet", false},
    {u"CQVSignedInteger", false},
    {u"CQVStdioInputStream", true},
    {u"CQVStdioOutputStream", true},
    {u"CQVString", true},
    {u"qv::i18n::StringMapBundle", false},
    {u"CQVStringWriter", true},
    {u"CQVSyncObject", false},
    {u"qv::net::TcpServerSocket", false},
    {u"qv::net::TcpSocket", false},
    {u"CQVThread", false},
    {u"CQVUInteger16", false},
    {u"CQVUInteger32", false},
    {u"CQVUInteger64", false},
    {u"CQVUInteger8", false},
    {u"CQVUnsignedInteger", false},
    {u"CQVWriter", false},
    {u"qv::AccessViolationException", false},
    {u"qv::ArrayBoundsException", false},
    {u"qv::CastFailedException", true},
    {u"qv::ClassNotFoundException", true},
    {u"qv::Exception", true},
    {u"qv::ExternalException", false},
    {u"qv::IllegalAccessException", true},
    {u"qv::IllegalInstructionException", false},
    {u"qv::IllegalStateException", true},
    {u"qv::IntDivByZeroException", true},
    {u"qv::IntErrorException", true},
    {u"qv::IntOverflowException", true},
    {u"qv::text::charset::InvalidCharacterException", true},
    {u"qv::InvalidPathException", true},
    {u"qv::IntDivByZeroException", true}, // stands twice; the first row counts, here and below
    {u"qv::IntErrorException", true},
    {u"qv::IntOverflowException", true},
    {u"qv::io::IoException", true},
    {u"qv::io::TimeoutException", true},
    {u"qv::MathDivByZeroException", false},
    {u"qv::MathErrorException", false},
    {u"qv::MathInvalidOpException", false},
    {u"qv::MathOverflowException", false},
    {u"qv::MathUnderflowException", false},
    {u"qv::OutOfMemoryException", true},
    {u"qv::RangeErrorException", true},
    {u"qv::ReadOnlyException", true},
    {u"qv::StackOverflowException", false},
    {u"qv::io::UnexpectedEOFException", true},
    {u"qv::text::charset::UnknownEncodingException", true},
    {u"qv::text::charset::UnmappableCharacterException", true},
    {u"qv::UnsupportedOperationException", true},
    {u"qv::UserAbortException", false},
    {u"qv::text::charset::CTBASCII", true},
    {u"qv::text::charset::BTCASCII", true},
    {u"qv::text::charset::CTBISO8859_1", true},
    {u"qv::text::charset::BTCISO8859_1", true},
    {u"qv::text::charset::CTBCP437", true},
    {u"qv::text::charset::BTCCP437", true},
    {u"qv::text::charset::CTBCP1252", true},
    {u"qv::text::charset::BTCCP1252", true},
    {u"qv::text::charset::BTCUTF8", true},
    {u"qv::text::charset::CTBUTF8", true},
    {u"qv::text::charset::CTBUTF16LE", true},
    {u"qv::text::charset::BTCUTF16LE", true},
    {u"qv::text::charset::CTBUTF16BE", true},
    {u"qv::text::charset::BTCUTF16BE", true},
    {u"qv::text::charset::CTBUTF32LE", true},
    {u"qv::text::charset::BTCUTF32LE", true},
    {u"qv::text::charset::CTBUTF32BE", true},
    {u"qv::text::charset::BTCUTF32BE", true},
    {u"qv::text::charset::BTCAMP7", true},
    {u"qv::text::charset::CTBAMP7", true},
};

/// The names whose classes do not exist yet. A class that comes is taken out here.
const char* const missing =
    "CQVAlphaNumInputStream CQVAlphaNumOutputStream CQVArrayList CQVAtomic CQVBigDecimal "
    "CQVBigInteger "
    "CQVBitInputStream CQVBitOutputStream CQVCollection qv::qvcom::ClassFactory CQVComDllModule "
    "CQVComparator CQVConstIterator CQVConstListIterator CQVDataInputStream CQVDataOutputStream "
    "CQVDouble "
    "qv::sync::FakeAtomic CQVFloat CQVGuid CQVHashMap CQVInteger16 CQVInteger32 CQVInteger64 "
    "CQVInteger8 "
    "CQVIterator CQVLinkedList CQVList CQVListIterator CQVLocale CQVMap CQVNumber "
    "CQVResourceBundle "
    "CQVRunnable CQVSet CQVSignedInteger qv::i18n::StringMapBundle qv::net::TcpServerSocket "
    "qv::net::TcpSocket CQVThread CQVUInteger16 CQVUInteger32 CQVUInteger64 CQVUInteger8 "
    "CQVUnsignedInteger ";

TEST(ClassTableTest, HoldsAllClassesButThoseThatAreMissingByName) {
    EXPECT_EQ(std::size(rows), 147u);
    std::string absent;
    for (const Row& row : rows) {
        try {
            EXPECT_EQ(Class::forName(row.name)->hasFactory(), row.factory)
                << String(row.name).getBytes();
        } catch (const ClassNotFoundException&) {
            absent += std::string(String(row.name).getBytes()) + " ";
        }
    }
    EXPECT_EQ(absent, missing);
}

} // namespace
