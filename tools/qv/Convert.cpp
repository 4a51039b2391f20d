// The command that converts a text from one encoding to another, in constant memory.

#include "Commands.h"
#include "Files.h"
#include "qv/Exceptions.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace tool {

using qv::Reference;
using qv::String;
using namespace qv::io;
using namespace qv::text::charset;

namespace {

constexpr std::int32_t chunkSize = 1 << 16; // bytes
constexpr std::int32_t wordSize = 4;        // bytes of the widest fixed-size encoding

/// Carries bytes through a decoder and an encoder. What a converter leaves at the end of a chunk
/// opens the next one.
class Conversion {
public:
    Conversion(const String& from, const String& to, bool strict, OutputStream& out)
        : decoder_(ByteToCharConverter::getConverter(from.getData())),
          encoder_(CharToByteConverter::getConverter(to.getData())), out_(out),
          wholeWordsOnly_(String(decoder_->getEncodingName()).startsWith(u"UTF-32")) {
        decoder_->setSubstitutionMode(!strict);
        encoder_->setSubstitutionMode(!strict);
        const auto unitsPerByte = static_cast<std::size_t>(decoder_->getMaxCharsPerByte());
        units_.resize((chunkSize + wordSize) * unitsPerByte + reserve);
        encoded_.resize(units_.size() * static_cast<std::size_t>(encoder_->getMaxBytesPerChar()) +
                        reserve);
        strict_ = strict;
    }

    void run(InputStream& in) {
        for (;;) {
            const std::int32_t count = in.read(bytes_ + byteCount_, chunkSize - byteCount_);
            if (count < 0) {
                break;
            }
            byteCount_ += count;
            // A word that is not all there yet is nothing to show a decoder.
            decode(byteCount_ - byteCount_ % wordSize);
            encode();
        }
        decode(wholeWordsOnly_ ? byteCount_ - byteCount_ % wordSize : byteCount_);
        decodeRest();
        encode();
        finish();
    }

private:
    static constexpr std::size_t reserve =
        64; // units that a converter wants free behind its output

    void decode(std::int32_t end) {
        std::int32_t consumed = 0;
        decoder_->convert(bytes_, &consumed, end, units_.data(), &unitCount_,
                          static_cast<std::int32_t>(units_.size()));
        std::copy(bytes_ + consumed, bytes_ + byteCount_, bytes_);
        byteCount_ -= consumed;
    }

    /// Bytes that complete no character, and no more will come: each becomes U+FFFD.
    void decodeRest() {
        if (byteCount_ > 0 && strict_) {
            throw InvalidCharacterException(u"incomplete character at the end of the input");
        }
        for (; byteCount_ > 0; --byteCount_) {
            units_[static_cast<std::size_t>(unitCount_++)] = u'\uFFFD';
        }
    }

    void encode() {
        std::int32_t consumed = 0;
        std::int32_t written = 0;
        const auto room = static_cast<std::int32_t>(encoded_.size());
        encoder_->convert(units_.data(), &consumed, unitCount_, encoded_.data(), &written, room);
        out_.write(encoded_.data(), written);
        std::copy(units_.begin() + consumed, units_.begin() + unitCount_, units_.begin());
        unitCount_ -= consumed;
    }

    void finish() {
        if (unitCount_ > 0) {
            throw InvalidCharacterException(u"leading surrogate without trailing");
        }
        std::int32_t written = 0;
        encoder_->flush(encoded_.data(), &written, static_cast<std::int32_t>(encoded_.size()));
        out_.write(encoded_.data(), written);
        out_.flush();
    }

    Reference<ByteToCharConverter> decoder_;
    Reference<CharToByteConverter> encoder_;
    OutputStream& out_;
    bool wholeWordsOnly_;
    bool strict_ = false;
    signed char bytes_[chunkSize];
    std::int32_t byteCount_ = 0;
    std::vector<char16_t> units_;
    std::int32_t unitCount_ = 0;
    std::vector<signed char> encoded_;
};

} // namespace

void runConvert(const Arguments& arguments) {
    const String from = arguments.requiredText(u"from");
    const String to = arguments.requiredText(u"to");
    const std::optional<String> inPath = arguments.text(u"in");
    const std::optional<String> outPath = arguments.text(u"out");
    // Nothing is emptied before it is sure that there is something to write.
    static_cast<void>(Reference<qv::Object>(ByteToCharConverter::getConverter(from.getData())));
    static_cast<void>(Reference<qv::Object>(CharToByteConverter::getConverter(to.getData())));
    refuseSameFile(inPath, outPath);
    const Reference<InputStream> in = openInput(inPath);
    const Reference<OutputStream> out = openOutput(outPath);
    const auto conversion = std::make_unique<Conversion>(from, to, arguments.has(u"strict"), *out);
    conversion->run(*in);
}

} // namespace tool
