#include "face/ClassTable.h"

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

namespace qv::face {

namespace {

/// A factory: makes an object with fixed arguments.
template <class T, auto... arguments>
Object* make() {
    return new T(arguments...);
}

template <class T>
constexpr ClassRow abstract(const char16_t* name) {
    return {name, &typeid(T), nullptr};
}

template <class T, auto... arguments>
constexpr ClassRow concrete(const char16_t* name) {
    return {name, &typeid(T), &make<T, arguments...>};
}

constexpr const char* noName = nullptr;

} // namespace

using namespace text::charset;

const ClassRow classTable[] = {
    abstract<util::AbstractByteBuffer>(u"CQVAbstractByteBuffer"),
    abstract<util::AbstractCharBuffer>(u"CQVAbstractCharBuffer"),
    abstract<io::AlphaNumInputStream>(u"CQVAlphaNumInputStream"),
    abstract<io::AlphaNumOutputStream>(u"CQVAlphaNumOutputStream"),
    concrete<collections::qvcom::ArrayList>(u"CQVArrayList"),
    concrete<math::BigDecimal>(u"CQVBigDecimal"),
    concrete<math::BigInteger>(u"CQVBigInteger"),
    abstract<io::BitInputStream>(u"CQVBitInputStream"),
    abstract<io::BitOutputStream>(u"CQVBitOutputStream"),
    abstract<BTCSingleByte>(u"CQVBTCSingleByte"),
    abstract<BTCSingleByteTable>(u"CQVBTCSingleByteTable"),
    abstract<io::BufferedInputStream>(u"CQVBufferedInputStream"),
    abstract<io::BufferedOutputStream>(u"CQVBufferedOutputStream"),
    abstract<io::BufferedReader>(u"CQVBufferedReader"),
    abstract<io::BufferedWriter>(u"CQVBufferedWriter"),
    abstract<io::ByteArrayInputStream>(u"CQVByteArrayInputStream"),
    concrete<io::ByteArrayOutputStream, 256>(u"CQVByteArrayOutputStream"),
    abstract<ByteToCharConverter>(u"CQVByteToCharConverter"),
    abstract<CharToByteConverter>(u"CQVCharToByteConverter"),
    abstract<Class>(u"qv::Class"),
    abstract<CTBSingleByte>(u"CQVCTBSingleByte"),
    abstract<CTBSingleByteTable>(u"CQVCTBSingleByteTable"),
    abstract<collections::qvcom::Collection>(u"CQVCollection"),
    abstract<ComObject>(u"CQVComObject"),
    abstract<util::Comparator>(u"CQVComparator"),
    abstract<collections::qvcom::ConstIterator>(u"CQVConstIterator"),
    abstract<collections::qvcom::ConstListIterator>(u"CQVConstListIterator"),
    abstract<io::DataInputStream>(u"CQVDataInputStream"),
    abstract<io::DataOutputStream>(u"CQVDataOutputStream"),
    abstract<Double>(u"CQVDouble"),
    concrete<sync::Event, noName, 0u>(u"CQVEvent"),
    concrete<sync::FakeMutex>(u"CQVFakeMutex"),
    abstract<util::FilePath>(u"CQVFilePath"),
    abstract<io::FilterInputStream>(u"CQVFilterInputStream"),
    abstract<io::FilterOutputStream>(u"CQVFilterOutputStream"),
    abstract<io::FilterReader>(u"CQVFilterReader"),
    abstract<io::FilterWriter>(u"CQVFilterWriter"),
    abstract<Float>(u"CQVFloat"),
    concrete<sync::Gate, noName, 0u>(u"CQVGate"),
    abstract<util::Guid>(u"CQVGuid"),
    concrete<collections::qvcom::HashMap>(u"CQVHashMap"),
    abstract<io::InputStream>(u"CQVInputStream"),
    abstract<io::InputStreamReader>(u"CQVInputStreamReader"),
    abstract<Integer16>(u"CQVInteger16"),
    abstract<Integer32>(u"CQVInteger32"),
    abstract<Integer64>(u"CQVInteger64"),
    abstract<Integer8>(u"CQVInteger8"),
    abstract<collections::qvcom::Iterator>(u"CQVIterator"),
    concrete<collections::qvcom::LinkedList>(u"CQVLinkedList"),
    abstract<collections::qvcom::List>(u"CQVList"),
    abstract<collections::qvcom::ListIterator>(u"CQVListIterator"),
    abstract<sync::LockObject>(u"CQVLockObject"),
    abstract<collections::qvcom::Map>(u"CQVMap"),
    concrete<util::MTByteBuffer>(u"CQVMTByteBuffer"),
    concrete<util::MTCharBuffer>(u"CQVMTCharBuffer"),
    concrete<sync::Mutex, noName, 0u>(u"CQVMutex"),
    concrete<io::NullOutputStream>(u"CQVNullOutputStream"),
    concrete<io::NullWriter>(u"CQVNullWriter"),
    abstract<Number>(u"CQVNumber"),
    concrete<Object>(u"CQVObject"),
    abstract<io::OutputStream>(u"CQVOutputStream"),
    abstract<io::OutputStreamWriter>(u"CQVOutputStreamWriter"),
    abstract<io::PrintWriter>(u"CQVPrintWriter"),
    abstract<io::Reader>(u"CQVReader"),
    concrete<util::ROByteBuffer>(u"CQVROByteBuffer"),
    concrete<util::ROCharBuffer>(u"CQVROCharBuffer"),
    concrete<util::RWByteBuffer>(u"CQVRWByteBuffer"),
    concrete<util::RWCharBuffer>(u"CQVRWCharBuffer"),
    concrete<sync::ReaderWriterLock, noName, 0u>(u"CQVRWLock"),
    concrete<sync::Semaphore, 0u, noName, 0u>(u"CQVSemaphore"),
    abstract<collections::qvcom::Set>(u"CQVSet"),
    abstract<SignedInteger>(u"CQVSignedInteger"),
    concrete<io::StdioInputStream>(u"CQVStdioInputStream"),
    concrete<io::StdioOutputStream>(u"CQVStdioOutputStream"),
    concrete<String>(u"CQVString"),
    concrete<io::StringWriter, 0>(u"CQVStringWriter"),
    abstract<sync::Object>(u"CQVSyncObject"),
    abstract<UInteger16>(u"CQVUInteger16"),
    abstract<UInteger32>(u"CQVUInteger32"),
    abstract<UInteger64>(u"CQVUInteger64"),
    abstract<UInteger8>(u"CQVUInteger8"),
    abstract<UnsignedInteger>(u"CQVUnsignedInteger"),
    abstract<io::Writer>(u"CQVWriter"),
    abstract<AccessViolationException>(u"qv::AccessViolationException"),
    abstract<ArrayBoundsException>(u"qv::ArrayBoundsException"),
    concrete<CastFailedException>(u"qv::CastFailedException"),
    concrete<ClassNotFoundException>(u"qv::ClassNotFoundException"),
    concrete<Exception>(u"qv::Exception"),
    abstract<ExternalException>(u"qv::ExternalException"),
    concrete<IllegalAccessException>(u"qv::IllegalAccessException"),
    abstract<IllegalInstructionException>(u"qv::IllegalInstructionException"),
    concrete<IllegalStateException>(u"qv::IllegalStateException"),
    concrete<IntDivByZeroException>(u"qv::IntDivByZeroException"),
    concrete<IntErrorException>(u"qv::IntErrorException"),
    concrete<IntOverflowException>(u"qv::IntOverflowException"),
    concrete<InvalidCharacterException>(u"qv::text::charset::InvalidCharacterException"),
    concrete<InvalidPathException>(u"qv::InvalidPathException"),
    // Kept: three names stand here again without a factory; the rows above count.
    abstract<IntDivByZeroException>(u"qv::IntDivByZeroException"),
    abstract<IntErrorException>(u"qv::IntErrorException"),
    abstract<IntOverflowException>(u"qv::IntOverflowException"),
    concrete<io::IoException>(u"qv::io::IoException"),
    concrete<io::TimeoutException>(u"qv::io::TimeoutException"),
    abstract<MathDivByZeroException>(u"qv::MathDivByZeroException"),
    abstract<MathErrorException>(u"qv::MathErrorException"),
    abstract<MathInvalidOpException>(u"qv::MathInvalidOpException"),
    abstract<MathOverflowException>(u"qv::MathOverflowException"),
    abstract<MathUnderflowException>(u"qv::MathUnderflowException"),
    concrete<OutOfMemoryException>(u"qv::OutOfMemoryException"),
    concrete<RangeErrorException>(u"qv::RangeErrorException"),
    concrete<ReadOnlyException>(u"qv::ReadOnlyException"),
    abstract<StackOverflowException>(u"qv::StackOverflowException"),
    concrete<io::UnexpectedEOFException>(u"qv::io::UnexpectedEOFException"),
    concrete<UnknownEncodingException>(u"qv::text::charset::UnknownEncodingException"),
    concrete<UnmappableCharacterException>(u"qv::text::charset::UnmappableCharacterException"),
    concrete<UnsupportedOperationException>(u"qv::UnsupportedOperationException"),
    abstract<UserAbortException>(u"qv::UserAbortException"),
    concrete<CTBASCII>(u"qv::text::charset::CTBASCII"),
    concrete<BTCASCII>(u"qv::text::charset::BTCASCII"),
    concrete<CTBISO8859_1>(u"qv::text::charset::CTBISO8859_1"),
    concrete<BTCISO8859_1>(u"qv::text::charset::BTCISO8859_1"),
    concrete<CTBCP437>(u"qv::text::charset::CTBCP437"),
    concrete<BTCCP437>(u"qv::text::charset::BTCCP437"),
    concrete<CTBCP1252>(u"qv::text::charset::CTBCP1252"),
    concrete<BTCCP1252>(u"qv::text::charset::BTCCP1252"),
    concrete<BTCUTF8>(u"qv::text::charset::BTCUTF8"),
    concrete<CTBUTF8>(u"qv::text::charset::CTBUTF8"),
    concrete<CTBUTF16LE>(u"qv::text::charset::CTBUTF16LE"),
    concrete<BTCUTF16LE>(u"qv::text::charset::BTCUTF16LE"),
    concrete<CTBUTF16BE>(u"qv::text::charset::CTBUTF16BE"),
    concrete<BTCUTF16BE>(u"qv::text::charset::BTCUTF16BE"),
    concrete<CTBUTF32LE>(u"qv::text::charset::CTBUTF32LE"),
    concrete<BTCUTF32LE>(u"qv::text::charset::BTCUTF32LE"),
    concrete<CTBUTF32BE>(u"qv::text::charset::CTBUTF32BE"),
    concrete<BTCUTF32BE>(u"qv::text::charset::BTCUTF32BE"),
    concrete<BTCAMP7>(u"qv::text::charset::BTCAMP7"),
    concrete<CTBAMP7>(u"qv::text::charset::CTBAMP7"),
    {nullptr, nullptr, nullptr},
};

} // namespace qv::face
