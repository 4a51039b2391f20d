#pragma once

#include "qv/Exception.h"
#include "qv/Results.h"

#include <new>

struct _EXCEPTION_POINTERS;

/// The exception tree below qv::Exception. A class says what went wrong; the constructors are those
/// of its base: none of them has a message of its own.
namespace qv {

/// Memory ran out. Satisfies a handler for qv::Exception and one for std::bad_alloc. The library
/// itself lets std::bad_alloc pass; this class is for code that wants one tree.
class QV_API OutOfMemoryException : public Exception, public std::bad_alloc {
public:
    OutOfMemoryException();
    OutOfMemoryException(const OutOfMemoryException& other);
    OutOfMemoryException& operator=(const OutOfMemoryException& other);

    std::int32_t getResult() const override;
    /// "bad allocation".
    const char* what() const noexcept override;
};

/// An object is not of the kind that the operation needs.
class QV_API CastFailedException : public Exception {
public:
    using Exception::Exception;
};

/// No run-time record for a class; the description is the name asked for.
class QV_API ClassNotFoundException : public Exception {
public:
    using Exception::Exception;
};

/// The operation exists, but not for this class.
class QV_API IllegalAccessException : public Exception {
public:
    using Exception::Exception;
};

/// The object is in a state in which the operation means nothing.
class QV_API IllegalStateException : public Exception {
public:
    using Exception::Exception;
};

/// A text that is no path.
class QV_API InvalidPathException : public Exception {
public:
    using Exception::Exception;
};

/// An index outside its range.
class QV_API RangeErrorException : public Exception {
public:
    using Exception::Exception;
};

/// A write to what is only read.
class QV_API ReadOnlyException : public Exception {
public:
    using Exception::Exception;
};

/// The class does not support the operation.
class QV_API UnsupportedOperationException : public Exception {
public:
    using Exception::Exception;
};

/// A fault of the processor, for hosts that turn such faults into exceptions of this tree. The
/// library itself neither throws one nor translates faults.
class QV_API ExternalException : public Exception {
public:
    /// Borrows: `fault`, the system's record of it.
    explicit ExternalException(_EXCEPTION_POINTERS* fault);

protected:
    ExternalException() = default;

private:
    [[maybe_unused]] _EXCEPTION_POINTERS* fault_ = nullptr;
};

/// An access to memory that is not there, or not for that use.
class QV_API AccessViolationException : public ExternalException {};
/// An index that the processor found outside its array.
class QV_API ArrayBoundsException : public ExternalException {};
/// An instruction that the processor does not know or does not allow.
class QV_API IllegalInstructionException : public ExternalException {};
/// No room left on the stack.
class QV_API StackOverflowException : public ExternalException {};
/// The user broke the program off.
class QV_API UserAbortException : public ExternalException {};

/// A fault of whole-number arithmetic.
class QV_API IntErrorException : public ExternalException {};
/// A whole number divided by 0.
class QV_API IntDivByZeroException : public IntErrorException {};
/// A whole number that its type cannot hold.
class QV_API IntOverflowException : public IntErrorException {};

/// A fault of floating-point arithmetic.
class QV_API MathErrorException : public ExternalException {};
/// A floating-point number divided by 0.
class QV_API MathDivByZeroException : public MathErrorException {};
/// An operation without a result.
class QV_API MathInvalidOpException : public MathErrorException {};
/// A result too large for its type.
class QV_API MathOverflowException : public MathErrorException {};
/// A result too small for its type.
class QV_API MathUnderflowException : public MathErrorException {};

} // namespace qv

namespace qv::io {

/// A stream failed; the description is a short fixed text.
class QV_API IoException : public Exception {
public:
    using Exception::Exception;
};

/// A stream operation ran out of time.
class QV_API TimeoutException : public IoException {
public:
    using IoException::IoException;
};

/// The stream ended inside a value of fixed width. Kept: not an IoException; callers tell the two
/// apart.
class QV_API UnexpectedEOFException : public Exception {
public:
    using Exception::Exception;
};

} // namespace qv::io

namespace qv::text::charset {

/// The data breaks the rules of its encoding.
class QV_API InvalidCharacterException : public Exception {
public:
    using Exception::Exception;
    /// QV_E_INVALIDCHARACTER.
    std::int32_t getResult() const override;
};

/// A well-formed character has no form in the encoding, and substitution is off.
class QV_API UnmappableCharacterException : public Exception {
public:
    using Exception::Exception;
    /// QV_E_UNMAPPABLECHARACTER.
    std::int32_t getResult() const override;
};

/// No converter under a name; the description is the name.
class QV_API UnknownEncodingException : public Exception {
public:
    using Exception::Exception;
    /// QV_E_UNKNOWNENCODING.
    std::int32_t getResult() const override;
};

} // namespace qv::text::charset
