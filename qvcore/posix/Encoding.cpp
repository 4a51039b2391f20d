#include "qvcore/common/DefaultEncoding.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iconv.h>
#include <langinfo.h>

namespace qv::core {

namespace {

/// No code set of a locale has longer characters. The converter works on all that it is given
/// before it looks at the room for the result, so it is given no more than one character may need.
constexpr std::size_t longestForm = 8;

const iconv_t noConverter = reinterpret_cast<iconv_t>(-1);

std::uintptr_t open(const char* to, const char* from) noexcept {
    return reinterpret_cast<std::uintptr_t>(iconv_open(to, from));
}

iconv_t converter(std::uintptr_t value) noexcept { return reinterpret_cast<iconv_t>(value); }

void close(iconv_t opened) noexcept {
    if (opened != noConverter) {
        iconv_close(opened);
    }
}

} // namespace

DefaultEncodingName defaultEncodingName() noexcept {
    const char* name = nl_langinfo(CODESET);
    const bool isPlain = std::strcmp(name, "ANSI_X3.4-1968") == 0;
    DefaultEncodingName result = {};
    result.isUtf8 = isPlain || std::strcmp(name, "UTF-8") == 0;
    std::snprintf(result.text, sizeof result.text, "%s", isPlain ? "UTF-8" : name);
    return result;
}

SystemCodeSet::SystemCodeSet() noexcept
    : encoder_(open(nl_langinfo(CODESET), "UTF-32LE")),
      decoder_(open("UTF-32LE", nl_langinfo(CODESET))) {}

SystemCodeSet::~SystemCodeSet() {
    close(converter(encoder_));
    close(converter(decoder_));
}

bool SystemCodeSet::isUsable() const noexcept {
    return converter(encoder_) != noConverter && converter(decoder_) != noConverter;
}

Encoded<char> SystemCodeSet::encode(char32_t character) noexcept {
    Encoded<char> form = {};
    char* input = reinterpret_cast<char*>(&character);
    std::size_t inputLeft = sizeof character;
    char* output = form.units;
    std::size_t outputLeft = sizeof form.units;
    if (iconv(converter(encoder_), &input, &inputLeft, &output, &outputLeft) != 0) {
        return {{}, 0};
    }
    form.count = sizeof form.units - outputLeft;
    return form;
}

Decoded SystemCodeSet::decode(std::string_view text) noexcept {
    char32_t character = 0;
    char* input = const_cast<char*>(text.data());
    const std::size_t given = std::min(text.size(), longestForm);
    std::size_t inputLeft = given;
    char* output = reinterpret_cast<char*>(&character);
    std::size_t outputLeft = sizeof character;
    iconv(converter(decoder_), &input, &inputLeft, &output, &outputLeft);
    if (outputLeft == 0) {
        return {character, given - inputLeft};
    }
    return {Decoded::bad, 1};
}

} // namespace qv::core
