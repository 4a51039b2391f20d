#include "qv/Class.h"
#include "qv/ClassManager.h"
#include "qv/Double.h"
#include "qv/Exceptions.h"
#include "qv/Integers.h"
#include "qv/Number.h"
#include "qv/String.h"
#include "qv/collections/qvcom/ArrayList.h"
#include "qv/collections/qvcom/HashMap.h"
#include "qv/collections/qvcom/LinkedList.h"
#include "qv/io/AlphaNumInputStream.h"
#include "qv/io/AlphaNumOutputStream.h"
#include "qv/io/BitInputStream.h"
#include "qv/io/BitOutputStream.h"
#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedOutputStream.h"
#include "qv/io/BufferedReader.h"
#include "qv/io/BufferedWriter.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/DataInputStream.h"
#include "qv/io/DataOutputStream.h"
#include "qv/io/FilterInputStream.h"
#include "qv/io/FilterOutputStream.h"
#include "qv/io/FilterReader.h"
#include "qv/io/FilterWriter.h"
#include "qv/io/InputStreamReader.h"
#include "qv/io/NullOutputStream.h"
#include "qv/io/NullWriter.h"
#include "qv/io/OutputStreamWriter.h"
#include "qv/io/PrintWriter.h"
#include "qv/io/StdioInputStream.h"
#include "qv/io/StdioOutputStream.h"
#include "qv/io/StringWriter.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"
#include "qv/sync/Event.h"
#include "qv/sync/FakeMutex.h"
#include "qv/sync/Gate.h"
#include "qv/sync/Mutex.h"
#include "qv/sync/ReaderWriterLock.h"
#include "qv/sync/Semaphore.h"
#include "qv/text/charset/AMP7Converters.h"
#include "qv/text/charset/BTCUTF8.h"
#include "qv/text/charset/CTBUTF8.h"
#include "qv/text/charset/SingleByteConverters.h"
#include "qv/text/charset/UTF16Converters.h"
#include "qv/text/charset/UTF32Converters.h"
#include "qv/util/Comparator.h"
#include "qv/util/FilePath.h"
#include "qv/util/Guid.h"
#include "qv/util/MTBuffer.h"
#include "qv/util/ROBuffer.h"
#include "qv/util/RWBuffer.h"
#include "tests/support/Printing.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <typeinfo>

using namespace qv;
using namespace qv::io;
using namespace qv::text::charset;

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

    "CQVAtomic qv::qvcom::ClassFactory CQVComDllModule qv::sync::FakeAtomic CQVLocale "
    "CQVResourceBundle CQVRunnable qv::i18n::StringMapBundle qv::net::TcpServerSocket "
    "qv::net::TcpSocket CQVThread ";

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

/// The type behind each name whose class exists.
struct TypeRow {
    const char16_t* name;
    const std::type_info* type;
};

const TypeRow types[] = {
    {u"CQVAbstractByteBuffer", &typeid(util::AbstractByteBuffer)},
    {u"CQVAbstractCharBuffer", &typeid(util::AbstractCharBuffer)},
    {u"CQVAlphaNumInputStream", &typeid(io::AlphaNumInputStream)},
    {u"CQVAlphaNumOutputStream", &typeid(io::AlphaNumOutputStream)},
    {u"CQVArrayList", &typeid(collections::qvcom::ArrayList)},
    {u"CQVBigDecimal", &typeid(math::BigDecimal)},
    {u"CQVBigInteger", &typeid(math::BigInteger)},
    {u"CQVBitInputStream", &typeid(io::BitInputStream)},
    {u"CQVBitOutputStream", &typeid(io::BitOutputStream)},
    {u"CQVBTCSingleByte", &typeid(BTCSingleByte)},
    {u"CQVBTCSingleByteTable", &typeid(BTCSingleByteTable)},
    {u"CQVBufferedInputStream", &typeid(io::BufferedInputStream)},
    {u"CQVBufferedOutputStream", &typeid(io::BufferedOutputStream)},
    {u"CQVBufferedReader", &typeid(io::BufferedReader)},
    {u"CQVBufferedWriter", &typeid(io::BufferedWriter)},
    {u"CQVByteArrayInputStream", &typeid(io::ByteArrayInputStream)},
    {u"CQVByteArrayOutputStream", &typeid(io::ByteArrayOutputStream)},
    {u"CQVByteToCharConverter", &typeid(ByteToCharConverter)},
    {u"CQVCharToByteConverter", &typeid(CharToByteConverter)},
    {u"qv::Class", &typeid(Class)},
    {u"CQVCTBSingleByte", &typeid(CTBSingleByte)},
    {u"CQVCTBSingleByteTable", &typeid(CTBSingleByteTable)},
    {u"CQVCollection", &typeid(collections::qvcom::Collection)},
    {u"CQVComObject", &typeid(ComObject)},
    {u"CQVComparator", &typeid(util::Comparator)},
    {u"CQVConstIterator", &typeid(collections::qvcom::ConstIterator)},
    {u"CQVConstListIterator", &typeid(collections::qvcom::ConstListIterator)},
    {u"CQVDataInputStream", &typeid(io::DataInputStream)},
    {u"CQVDataOutputStream", &typeid(io::DataOutputStream)},
    {u"CQVDouble", &typeid(Double)},
    {u"CQVEvent", &typeid(sync::Event)},
    {u"CQVFakeMutex", &typeid(sync::FakeMutex)},
    {u"CQVFilePath", &typeid(util::FilePath)},
    {u"CQVFilterInputStream", &typeid(io::FilterInputStream)},
    {u"CQVFilterOutputStream", &typeid(io::FilterOutputStream)},
    {u"CQVFilterReader", &typeid(io::FilterReader)},
    {u"CQVFilterWriter", &typeid(io::FilterWriter)},
    {u"CQVFloat", &typeid(Float)},
    {u"CQVGate", &typeid(sync::Gate)},
    {u"CQVGuid", &typeid(util::Guid)},
    {u"CQVHashMap", &typeid(collections::qvcom::HashMap)},
    {u"CQVInputStream", &typeid(io::InputStream)},
    {u"CQVInputStreamReader", &typeid(io::InputStreamReader)},
    {u"CQVInteger16", &typeid(Integer16)},
    {u"CQVInteger32", &typeid(Integer32)},
    {u"CQVInteger64", &typeid(Integer64)},
    {u"CQVInteger8", &typeid(Integer8)},
    {u"CQVIterator", &typeid(collections::qvcom::Iterator)},
    {u"CQVLinkedList", &typeid(collections::qvcom::LinkedList)},
    {u"CQVList", &typeid(collections::qvcom::List)},
    {u"CQVListIterator", &typeid(collections::qvcom::ListIterator)},
    {u"CQVLockObject", &typeid(sync::LockObject)},
    {u"CQVMap", &typeid(collections::qvcom::Map)},
    {u"CQVMTByteBuffer", &typeid(util::MTByteBuffer)},
    {u"CQVMTCharBuffer", &typeid(util::MTCharBuffer)},
    {u"CQVMutex", &typeid(sync::Mutex)},
    {u"CQVNullOutputStream", &typeid(io::NullOutputStream)},
    {u"CQVNullWriter", &typeid(io::NullWriter)},
    {u"CQVNumber", &typeid(Number)},
    {u"CQVObject", &typeid(Object)},
    {u"CQVOutputStream", &typeid(io::OutputStream)},
    {u"CQVOutputStreamWriter", &typeid(io::OutputStreamWriter)},
    {u"CQVPrintWriter", &typeid(io::PrintWriter)},
    {u"CQVReader", &typeid(io::Reader)},
    {u"CQVROByteBuffer", &typeid(util::ROByteBuffer)},
    {u"CQVROCharBuffer", &typeid(util::ROCharBuffer)},
    {u"CQVRWByteBuffer", &typeid(util::RWByteBuffer)},
    {u"CQVRWCharBuffer", &typeid(util::RWCharBuffer)},
    {u"CQVRWLock", &typeid(sync::ReaderWriterLock)},
    {u"CQVSemaphore", &typeid(sync::Semaphore)},
    {u"CQVSet", &typeid(collections::qvcom::Set)},
    {u"CQVSignedInteger", &typeid(SignedInteger)},
    {u"CQVStdioInputStream", &typeid(io::StdioInputStream)},
    {u"CQVStdioOutputStream", &typeid(io::StdioOutputStream)},
    {u"CQVString", &typeid(String)},
    {u"CQVStringWriter", &typeid(io::StringWriter)},
    {u"CQVSyncObject", &typeid(sync::Object)},
    {u"CQVUInteger16", &typeid(UInteger16)},
    {u"CQVUInteger32", &typeid(UInteger32)},
    {u"CQVUInteger64", &typeid(UInteger64)},
    {u"CQVUInteger8", &typeid(UInteger8)},
    {u"CQVUnsignedInteger", &typeid(UnsignedInteger)},
    {u"CQVWriter", &typeid(io::Writer)},
    {u"qv::AccessViolationException", &typeid(AccessViolationException)},
    {u"qv::ArrayBoundsException", &typeid(ArrayBoundsException)},
    {u"qv::CastFailedException", &typeid(CastFailedException)},
    {u"qv::ClassNotFoundException", &typeid(ClassNotFoundException)},
    {u"qv::Exception", &typeid(Exception)},
    {u"qv::ExternalException", &typeid(ExternalException)},
    {u"qv::IllegalAccessException", &typeid(IllegalAccessException)},
    {u"qv::IllegalInstructionException", &typeid(IllegalInstructionException)},
    {u"qv::IllegalStateException", &typeid(IllegalStateException)},
    {u"qv::IntDivByZeroException", &typeid(IntDivByZeroException)},
    {u"qv::IntErrorException", &typeid(IntErrorException)},
    {u"qv::IntOverflowException", &typeid(IntOverflowException)},
    {u"qv::text::charset::InvalidCharacterException", &typeid(InvalidCharacterException)},
    {u"qv::InvalidPathException", &typeid(InvalidPathException)},
    {u"qv::io::IoException", &typeid(io::IoException)},
    {u"qv::io::TimeoutException", &typeid(io::TimeoutException)},
    {u"qv::MathDivByZeroException", &typeid(MathDivByZeroException)},
    {u"qv::MathErrorException", &typeid(MathErrorException)},
    {u"qv::MathInvalidOpException", &typeid(MathInvalidOpException)},
    {u"qv::MathOverflowException", &typeid(MathOverflowException)},
    {u"qv::MathUnderflowException", &typeid(MathUnderflowException)},
    {u"qv::OutOfMemoryException", &typeid(OutOfMemoryException)},
    {u"qv::RangeErrorException", &typeid(RangeErrorException)},
    {u"qv::ReadOnlyException", &typeid(ReadOnlyException)},
    {u"qv::StackOverflowException", &typeid(StackOverflowException)},
    {u"qv::io::UnexpectedEOFException", &typeid(io::UnexpectedEOFException)},
    {u"qv::text::charset::UnknownEncodingException", &typeid(UnknownEncodingException)},
    {u"qv::text::charset::UnmappableCharacterException", &typeid(UnmappableCharacterException)},
    {u"qv::UnsupportedOperationException", &typeid(UnsupportedOperationException)},
    {u"qv::UserAbortException", &typeid(UserAbortException)},
    {u"qv::text::charset::CTBASCII", &typeid(CTBASCII)},
    {u"qv::text::charset::BTCASCII", &typeid(BTCASCII)},
    {u"qv::text::charset::CTBISO8859_1", &typeid(CTBISO8859_1)},
    {u"qv::text::charset::BTCISO8859_1", &typeid(BTCISO8859_1)},
    {u"qv::text::charset::CTBCP437", &typeid(CTBCP437)},
    {u"qv::text::charset::BTCCP437", &typeid(BTCCP437)},
    {u"qv::text::charset::CTBCP1252", &typeid(CTBCP1252)},
    {u"qv::text::charset::BTCCP1252", &typeid(BTCCP1252)},
    {u"qv::text::charset::BTCUTF8", &typeid(BTCUTF8)},
    {u"qv::text::charset::CTBUTF8", &typeid(CTBUTF8)},
    {u"qv::text::charset::CTBUTF16LE", &typeid(CTBUTF16LE)},
    {u"qv::text::charset::BTCUTF16LE", &typeid(BTCUTF16LE)},
    {u"qv::text::charset::CTBUTF16BE", &typeid(CTBUTF16BE)},
    {u"qv::text::charset::BTCUTF16BE", &typeid(BTCUTF16BE)},
    {u"qv::text::charset::CTBUTF32LE", &typeid(CTBUTF32LE)},
    {u"qv::text::charset::BTCUTF32LE", &typeid(BTCUTF32LE)},
    {u"qv::text::charset::CTBUTF32BE", &typeid(CTBUTF32BE)},
    {u"qv::text::charset::BTCUTF32BE", &typeid(BTCUTF32BE)},
    {u"qv::text::charset::BTCAMP7", &typeid(BTCAMP7)},
    {u"qv::text::charset::CTBAMP7", &typeid(CTBAMP7)},
};

TEST(ClassTableTest, NamesBelongToTheirTypes) {
    for (const TypeRow& row : types) {
        const Class* const record = Class::forName(row.name);
        EXPECT_EQ(record, Class::forType(row.type)) << row.type->name();
        EXPECT_EQ(String(record->getName()), row.name);
    }
}

template <class Table>
bool holdsName(const Table& table, const String& name) {
    return std::any_of(std::begin(table), std::end(table),
                       [&](const auto& row) { return name.equals(row.name); });
}

TEST(ClassTableTest, EveryClassThatExistsHasItsType) {
    for (const Row& row : rows) {
        const String name(row.name);
        const bool listed = holdsName(types, name);
        const bool absent =
            (" " + std::string(missing)).find(" " + std::string(name.getBytes()) + " ") !=
            std::string::npos;
        EXPECT_NE(listed, absent) << name.getBytes();
    }
}

/// What the tests of this program have registered for themselves.
bool isOfTests(const String& name) { return name.startsWith(u"test::"); }

TEST(ClassTableTest, HoldsNoOtherNames) {
    int names = 0;
    ClassManager::getInstance()->forEach(
        [](const Class& record, void* context) {
            const String name(record.getName());
            if (isOfTests(name)) {
                return;
            }
            EXPECT_TRUE(holdsName(rows, name)) << name.getBytes();
            EXPECT_TRUE(holdsName(types, name)) << name.getBytes();
            ++*static_cast<int*>(context);
        },
        &names);
    EXPECT_EQ(static_cast<std::size_t>(names), std::size(types));
}

} // namespace
