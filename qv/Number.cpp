#include "qv/Number.h"

#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"
#include "qvcore/NumberText.h"

namespace qv {

using math::BigDecimal;
using math::BigInteger;

bool Number::equals(const Object& other) const { return compareTo(other) == 0; }

std::uint32_t Number::hashCode() const { return toULong(); }

// --- The conversions, down to the two that a class supplies ---

signed char Number::toByte() const { return toInt8(); }
short Number::toShort() const { return toInt16(); }
int Number::toInt() const { return toInt32(); }
std::int32_t Number::toLong() const { return toInt32(); }
unsigned char Number::toUByte() const { return toUInt8(); }
unsigned short Number::toUShort() const { return toUInt16(); }
unsigned int Number::toUInt() const { return toUInt32(); }
std::uint32_t Number::toULong() const { return toUInt32(); }
float Number::toFloat() const { return static_cast<float>(toDouble()); }
BigInteger Number::toBigInteger() const { return BigInteger(toInt64()); }
BigDecimal Number::toBigDecimal() const { return BigDecimal(toDouble()); }
std::int8_t Number::toInt8() const { return static_cast<std::int8_t>(toInt64()); }
std::int16_t Number::toInt16() const { return static_cast<std::int16_t>(toInt64()); }
std::int32_t Number::toInt32() const { return static_cast<std::int32_t>(toInt64()); }
std::uint8_t Number::toUInt8() const { return static_cast<std::uint8_t>(toUInt64()); }
std::uint16_t Number::toUInt16() const { return static_cast<std::uint16_t>(toUInt64()); }
std::uint32_t Number::toUInt32() const { return static_cast<std::uint32_t>(toUInt64()); }
std::uint64_t Number::toUInt64() const { return static_cast<std::uint64_t>(toInt64()); }

// --- Parsers ---

std::int32_t Number::parseInt32(const String& text) { return QVStrToIW(text.getData()); }
int Number::parseInt(const String& text) { return parseInt32(text); }
short Number::parseShort(const String& text) { return static_cast<short>(parseInt32(text)); }
std::int16_t Number::parseInt16(const String& text) {
    return static_cast<std::int16_t>(parseInt32(text));
}
signed char Number::parseByte(const String& text) {
    return static_cast<signed char>(parseInt32(text));
}
std::int8_t Number::parseInt8(const String& text) {
    return static_cast<std::int8_t>(parseInt32(text));
}
std::int32_t Number::parseLong(const String& text) {
    return QVStrToLW(text.getData(), nullptr, 10);
}
std::int64_t Number::parseInt64(const String& text) { return BigInteger(text).toInt64(); }

std::uint32_t Number::parseUInt32(const String& text, int radix) {
    return QVStrToULW(text.getData(), nullptr, radix);
}
unsigned int Number::parseUInt(const String& text, int radix) { return parseUInt32(text, radix); }
unsigned short Number::parseUShort(const String& text, int radix) {
    return static_cast<unsigned short>(parseUInt32(text, radix));
}
std::uint16_t Number::parseUInt16(const String& text, int radix) {
    return static_cast<std::uint16_t>(parseUInt32(text, radix));
}
unsigned char Number::parseUByte(const String& text, int radix) {
    return static_cast<unsigned char>(parseUInt32(text, radix));
}
std::uint8_t Number::parseUInt8(const String& text, int radix) {
    return static_cast<std::uint8_t>(parseUInt32(text, radix));
}
std::uint32_t Number::parseULong(const String& text, int radix) { return parseUInt32(text, radix); }
std::uint64_t Number::parseUInt64(const String& text, int radix) {
    return BigInteger(text, radix).toUInt64();
}

double Number::parseDouble(const String& text) { return QVStrToDW(text.getData(), nullptr); }
float Number::parseFloat(const String& text) { return static_cast<float>(parseDouble(text)); }
BigInteger Number::parseBigInteger(const String& text) { return BigInteger(text); }
BigDecimal Number::parseBigDecimal(const String& text) { return BigDecimal(text); }

} // namespace qv
