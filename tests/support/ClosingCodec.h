#pragma once

#include "qv/ClassManager.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/CodecManager.h"

#include <cstdint>
#include <typeinfo>

namespace support {

/// Hands the units or bytes on as they are, and writes one that it kept back at the end, "!".
template <class From, class To>
class Closing {
public:
    static std::int32_t convert(const From* source, std::int32_t* position, std::int32_t end,
                                To* target, std::int32_t* written, std::int32_t size) {
        const std::int32_t before = *written;
        while (*position < end && *written < size) {
            target[(*written)++] = static_cast<To>(source[(*position)++]);
        }
        return *written - before;
    }
    static std::int32_t flush(To* target, std::int32_t* written, std::int32_t size) {
        if (*written >= size) {
            return 0;
        }
        target[(*written)++] = static_cast<To>('!');
        return 1;
    }
};

/// A converter of the encoding "x-Closing".
template <class Base, class From, class To>
class ClosingConverter : public Base {
public:
    std::int32_t convert(const From* source, std::int32_t* position, std::int32_t end, To* target,
                         std::int32_t* written, std::int32_t size) override {
        return Closing<From, To>::convert(source, position, end, target, written, size);
    }
    std::int32_t flush(To* target, std::int32_t* written, std::int32_t size) override {
        return Closing<From, To>::flush(target, written, size);
    }
    void reset() override {}
    const char16_t* getEncodingName() override { return u"x-Closing"; }
    int getMaxBytesPerChar() override { return 2; }
    int getMaxCharsPerByte() override { return 2; }

    static qv::Object* make() { return new ClosingConverter; }
};

/// The name of an encoding of ASCII whose converters keep something back until the end.
inline const char16_t* closingEncoding() {
    using Encoder = ClosingConverter<qv::text::charset::CharToByteConverter, char16_t, signed char>;
    using Decoder = ClosingConverter<qv::text::charset::ByteToCharConverter, signed char, char16_t>;
    qv::ClassManagerBase* const classes = qv::ClassManager::getInstance();
    classes->registerClass(u"test::ClosingEncoder", &typeid(Encoder), &Encoder::make);
    classes->registerClass(u"test::ClosingDecoder", &typeid(Decoder), &Decoder::make);
    qv::text::charset::CodecManager::getInstance()->registerCodec(
        u"x-Closing", u"test::ClosingEncoder", u"test::ClosingDecoder");
    return u"x-Closing";
}

} // namespace support
