#include "qv/io/DataOutputStream.h"

#include "qv/detail/NumberBytes.h"
#include "qv/io/detail/OneByteCalls.h"

#include <bit>

namespace qv::io {

namespace {

template <class Number>
void put(OutputStream* out, Number number) {
    unsigned char bytes[sizeof number];
    qv::detail::storeBigEndian(bytes, number);
    detail::putBytes(out, bytes, sizeof bytes);
}

} // namespace

DataOutputStream::~DataOutputStream() = default;

void DataOutputStream::writeBool(bool value) { put(out_.operator->(), static_cast<char>(value)); }

void DataOutputStream::writeByte(signed char value) { put(out_.operator->(), value); }

void DataOutputStream::writeChar16(char16_t value) { writeInt16(static_cast<short>(value)); }

void DataOutputStream::writeChar32(unsigned int value) { writeInt32(static_cast<int>(value)); }

void DataOutputStream::writeInt16(short value) { put(out_.operator->(), value); }

void DataOutputStream::writeInt32(int value) { put(out_.operator->(), value); }

void DataOutputStream::writeInt64(std::int64_t value) {
    writeInt32(static_cast<int>(value >> 32));
    writeInt32(static_cast<int>(value));
}

void DataOutputStream::writeFloat(float value) { writeInt32(std::bit_cast<int>(value)); }

void DataOutputStream::writeDouble(double value) { writeInt64(std::bit_cast<std::int64_t>(value)); }

void DataOutputStream::writeString(const util::AbstractCharBuffer&) {}

} // namespace qv::io
