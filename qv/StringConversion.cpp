#include "qv/AnsiBytes.h"
#include "qv/StringLocks.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/util/BufferLocks.h"

#include <algorithm>

namespace qv {

using text::charset::ByteToCharConverter;
using text::charset::CharToByteConverter;

// --- Narrow output ---

std::int32_t String::getBytes(signed char* out, std::int32_t size, const char16_t* encoding) const {
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(encoding));
    const Reader reader(*this);
    std::int32_t consumed = 0;
    std::int32_t written = 0;
    encoder->convert(reader.units(), &consumed, reader.length(), out, &written, size);
    encoder->flush(out, &written, size);
    const std::int32_t zeros = std::min(encoder->getMaxBytesPerChar(), size - written);
    if (zeros > 0) {
        std::fill_n(out + written, zeros, static_cast<signed char>(0));
        written += zeros;
    }
    return written;
}

std::int32_t String::getBytes(char* out, std::int32_t size, const char16_t* encoding) const {
    return getBytes(reinterpret_cast<signed char*>(out), size, encoding);
}

void String::getBytes(util::IByteBuffer* out, const char16_t* encoding) const {
    const Reader reader(*this);
    int bytesPerChar = 0;
    {
        const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(encoding));
        bytesPerChar = encoder->getMaxBytesPerChar();
    }
    const int capacity = detail::checkedSize(bytesPerChar, std::int64_t{reader.length()} + 1);
    util::BufferWriteLock<signed char> lock(*out, capacity);
    lock.setLength(getBytes(lock.getData(), capacity, encoding));
}

const char* String::getBytes(const char16_t* encoding) const {
    if (narrowCache_ == nullptr || !narrowCache_->encodingEquals(encoding)) {
        auto* const bytes = new AnsiBytes(encoding);
        bytes->AddRef();
        if (AnsiBytes* const old = std::exchange(narrowCache_, bytes)) {
            old->Release();
        }
        try {
            getBytes(static_cast<util::IByteBuffer*>(bytes), encoding);
        } catch (...) {
            // An unfilled rendering must not be taken for one by the next call.
            std::exchange(narrowCache_, nullptr)->Release();
            throw;
        }
    }
    return reinterpret_cast<const char*>(narrowCache_->getData());
}

const char* String::getBytesReadLock(const char16_t* encoding) const {
    static_cast<void>(getReadLock());
    try {
        return getBytes(encoding);
    } catch (...) {
        releaseReadLock();
        throw;
    }
}

// --- Narrow input ---

String& String::setTo(const char* bytes, int length, const char16_t* encoding) {
    return internalSetTo(bytes, length, encoding, 0);
}

namespace {

/// Decodes all bytes into the lock's buffer of `capacity` units, of which one is for the
/// terminator.
/// @return the units written.
std::int32_t decode(ByteToCharConverter& decoder, const signed char* bytes, int length,
                    util::BufferWriteLock<char16_t>& lock, int capacity) {
    constexpr int unitsOfRefused = 2; // what AMP-7 gives for a byte that it refuses, and says 1
    std::int32_t consumed = 0;
    std::int32_t written = 0;
    decoder.convert(bytes, &consumed, length, lock.getData(), &written, capacity - 1);
    for (std::int32_t before = -1; consumed < length && consumed > before;) {
        before = consumed;
        capacity = detail::checkedSize(unitsOfRefused, length - consumed + 1, capacity);
        lock.ensureCapacity(capacity);
        decoder.convert(bytes, &consumed, length, lock.getData(), &written, capacity - 1);
    }
    decoder.flush(lock.getData(), &written, capacity - 1);
    return written;
}

} // namespace

String& String::internalSetTo(const char* bytes, int length, const char16_t* encoding,
                              int capacity) {
    length = detail::measured(bytes, length);
    // Held to the end: the bytes may be the narrow form itself.
    const auto dropped = Reference<AnsiBytes>::adopt(std::exchange(narrowCache_, nullptr));
    if (length < 1 && capacity < 1) {
        return setAddRef(String());
    }
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(encoding));
    const int needed =
        std::max(capacity, detail::checkedSize(decoder->getMaxCharsPerByte(), length, 1));
    const Reference<util::RWCharBuffer> decoded(new util::RWCharBuffer(needed));
    util::BufferWriteLock<char16_t> lock(*decoded, needed);
    const std::int32_t written =
        bytes == nullptr
            ? 0
            : decode(*decoder, reinterpret_cast<const signed char*>(bytes), length, lock, needed);
    lock.getData()[written] = 0;
    lock.setLength(written + 1);
    lock.release();
    decoded->AddRef();
    adopt(decoded);
    return *this;
}

String::String(const wchar_t* text, int length) : String() {
    const auto count = static_cast<std::size_t>(detail::measured(text, length));
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        replace(0, -1, reinterpret_cast<const char16_t*>(text), static_cast<int>(count), 0);
    } else {
        std::u16string units;
        units.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const auto point = static_cast<char32_t>(text[i]);
            if (point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
                units += u'\uFFFD';
            } else if (point > 0xFFFF) {
                units += static_cast<char16_t>(0xD7C0 + (point >> 10));
                units += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
            } else {
                units += static_cast<char16_t>(point);
            }
        }
        replace(0, -1, units.data(), static_cast<int>(units.size()), 0);
    }
}

} // namespace qv
