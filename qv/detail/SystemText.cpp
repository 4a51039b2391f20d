#include "qv/detail/SystemText.h"

#include "qv/Exceptions.h"
#include "qv/util/BufferLocks.h"
#include "qvcore/Encoding.h"

namespace qv::detail {

namespace {

String asciiText(const char* bytes) {
    String text;
    for (; *bytes != 0; ++bytes) {
        const auto byte = static_cast<unsigned char>(*bytes);
        text.append(byte < 0x80 ? static_cast<char16_t>(byte) : u'\uFFFD', 1);
    }
    return text;
}

String platformText(const char* bytes) {
    const std::int32_t length = QVAnsiToUnicode(nullptr, bytes, -1, 0);
    if (length < 0) {
        return asciiText(bytes);
    }
    String text;
    util::BufferWriteLock<char16_t> lock(text, length);
    QVAnsiToUnicode(lock.getData(), bytes, -1, length);
    lock.setLength(length);
    lock.release();
    return text;
}

} // namespace

String systemText(const char* bytes) {
    try {
        String text;
        text = bytes;
        return text;
    } catch (const text::charset::InvalidCharacterException&) {
    } catch (const text::charset::UnknownEncodingException&) {
    }
    return platformText(bytes);
}

} // namespace qv::detail
