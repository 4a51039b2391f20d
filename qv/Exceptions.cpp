#include "qv/Exceptions.h"

namespace qv {

Exception::Exception() = default;
Exception::Exception(const String& description) : description_(description) {}
Exception::Exception(const Exception& other) = default;
Exception& Exception::operator=(const Exception& other) = default;
Exception::~Exception() noexcept = default;

String Exception::getDescription() const { return description_; }

std::int32_t Exception::getResult() const { return QV_E_FAIL; }

ResultException::ResultException() : ResultException(QV_E_FAIL) {}

ResultException::ResultException(std::int32_t result) : result_(result) {}

ResultException::ResultException(std::int32_t result, const String& description)
    : Exception(description), result_(result) {}

std::int32_t ResultException::getResult() const { return result_; }

OutOfMemoryException::OutOfMemoryException() = default;
OutOfMemoryException::OutOfMemoryException(const OutOfMemoryException& other) = default;
OutOfMemoryException& OutOfMemoryException::operator=(const OutOfMemoryException& other) = default;

std::int32_t OutOfMemoryException::getResult() const { return QV_E_OUTOFMEMORY; }

const char* OutOfMemoryException::what() const noexcept { return "bad allocation"; }

ExternalException::ExternalException(_EXCEPTION_POINTERS* fault) : fault_(fault) {}

} // namespace qv

namespace qv::text::charset {

std::int32_t InvalidCharacterException::getResult() const { return QV_E_INVALIDCHARACTER; }

std::int32_t UnmappableCharacterException::getResult() const { return QV_E_UNMAPPABLECHARACTER; }

std::int32_t UnknownEncodingException::getResult() const { return QV_E_UNKNOWNENCODING; }

} // namespace qv::text::charset
