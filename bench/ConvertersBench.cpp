#include "bench/ConvertersBench.h"

#include "qv/Reference.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

/// The converters with texts of five languages, each converted in one call.
namespace bench {

namespace {

using qv::Reference;
using qv::text::charset::ByteToCharConverter;
using qv::text::charset::CharToByteConverter;

std::u16string nameOf(const std::string& encoding) { return {encoding.begin(), encoding.end()}; }

std::int32_t length(std::size_t count) { return static_cast<std::int32_t>(count); }

std::size_t decode(ByteToCharConverter& decoder, std::string_view bytes, std::u16string& out) {
    std::int32_t from = 0;
    std::int32_t to = 0;
    decoder.convert(reinterpret_cast<const signed char*>(bytes.data()), &from, length(bytes.size()),
                    out.data(), &to, length(out.size()));
    return static_cast<std::size_t>(to);
}

std::size_t encode(CharToByteConverter& encoder, std::u16string_view units, std::string& out) {
    std::int32_t from = 0;
    std::int32_t to = 0;
    encoder.convert(units.data(), &from, length(units.size()),
                    reinterpret_cast<signed char*>(out.data()), &to, length(out.size()));
    return static_cast<std::size_t>(to);
}

void readText(const std::string& language, std::vector<Text>& texts) {
    std::ifstream file(std::string(QVCL_BENCH_TEXTS) + "/" + language + ".txt", std::ios::binary);
    Text text;
    text.language = language;
    text.utf8.assign(std::istreambuf_iterator<char>(file), {});
    if (text.utf8.empty()) {
        return;
    }
    text.utf16.resize(text.utf8.size());
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(u"UTF-8"));
    text.utf16.resize(decode(*decoder, text.utf8, text.utf16));
    texts.push_back(std::move(text));
}

bool isSingleByte(const std::string& encoding) {
    return encoding.starts_with("CP") || encoding.starts_with("ISO");
}

/// Texts of other scripts than the Latin one have no form in the single-byte encodings.
bool fits(const Text& text, const std::string& encoding) {
    return !isSingleByte(encoding) || text.language == "english" || text.language == "french";
}

constexpr std::size_t longestForm = 8;

void measureLibrary() {
    for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE", "CP1252",
                                 "CP437", "ISO8859_1", "AMP-7"}) {
        const std::u16string name = nameOf(encoding);
        measure(
            encoding, "qv",
            [name](std::string_view bytes, std::u16string& out) {
                const Reference<ByteToCharConverter> decoder(
                    ByteToCharConverter::getConverter(name.c_str()));
                return decode(*decoder, bytes, out);
            },
            [name](std::u16string_view units, std::string& out) {
                const Reference<CharToByteConverter> encoder(
                    CharToByteConverter::getConverter(name.c_str()));
                return encode(*encoder, units, out);
            });
    }
}

[[maybe_unused]] const bool isRegistered = (measureLibrary(), true);

} // namespace

const std::vector<Text>& texts() {
    static const std::vector<Text> read = [] {
        std::vector<Text> texts;
        for (const char* language : {"english", "french", "russian", "chinese", "japanese"}) {
            readText(language, texts);
        }
        return texts;
    }();
    return read;
}

const std::string& bytesOf(const Text& text, const std::string& encoding) {
    static std::map<std::pair<std::string, std::string>, std::string> forms;
    std::string& bytes = forms[{text.language, encoding}];
    if (bytes.empty()) {
        const Reference<CharToByteConverter> encoder(
            CharToByteConverter::getConverter(nameOf(encoding).c_str()));
        bytes.resize(text.utf16.size() * longestForm);
        bytes.resize(encode(*encoder, text.utf16, bytes));
        bytes.shrink_to_fit();
    }
    return bytes;
}

void measure(const std::string& encoding, const std::string& program, const Decode& decode,
             const Encode& encode) {
    for (const Text& text : texts()) {
        if (!fits(text, encoding)) {
            continue;
        }
        const std::string name = encoding + "/" + text.language + "/" + program;
        benchmark::RegisterBenchmark(("decode/" + name).c_str(), [&text, encoding,
                                                                  decode](benchmark::State& state) {
            const std::string& bytes = bytesOf(text, encoding);
            std::u16string out(text.utf16.size() + 64, u'\0');
            for (auto _ : state) {
                benchmark::DoNotOptimize(decode(bytes, out));
            }
            state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
        });
        benchmark::RegisterBenchmark(("encode/" + name).c_str(), [&text, encoding,
                                                                  encode](benchmark::State& state) {
            const std::string& bytes = bytesOf(text, encoding);
            std::string out(bytes.size() + 64, '\0');
            for (auto _ : state) {
                benchmark::DoNotOptimize(encode(text.utf16, out));
            }
            state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
        });
    }
}

} // namespace bench
