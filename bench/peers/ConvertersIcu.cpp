#include "bench/ConvertersBench.h"

#include <stdexcept>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

/// ICU: its string functions for UTF-8, its converters for the rest.
namespace bench {

namespace {

std::int32_t length(std::size_t count) { return static_cast<std::int32_t>(count); }

std::size_t checked(std::int32_t written, UErrorCode error) {
    if (U_FAILURE(error)) {
        throw std::runtime_error(u_errorName(error));
    }
    return static_cast<std::size_t>(written);
}

std::size_t decodeUtf8(std::string_view bytes, std::u16string& out) {
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t written = 0;
    u_strFromUTF8WithSub(out.data(), length(out.size()), &written, bytes.data(),
                         length(bytes.size()), 0xFFFD, nullptr, &error);
    return checked(written, error);
}

std::size_t encodeUtf8(std::u16string_view units, std::string& out) {
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t written = 0;
    u_strToUTF8(out.data(), length(out.size()), &written, units.data(), length(units.size()),
                &error);
    return checked(written, error);
}

void measureConverter(const char* encoding, const char* name) {
    measure(
        encoding, "icu",
        [name](std::string_view bytes, std::u16string& out) {
            UErrorCode error = U_ZERO_ERROR;
            UConverter* const converter = ucnv_open(name, &error);
            const std::int32_t written = ucnv_toUChars(converter, out.data(), length(out.size()),
                                                       bytes.data(), length(bytes.size()), &error);
            ucnv_close(converter);
            return checked(written, error);
        },
        [name](std::u16string_view units, std::string& out) {
            UErrorCode error = U_ZERO_ERROR;
            UConverter* const converter = ucnv_open(name, &error);
            const std::int32_t written =
                ucnv_fromUChars(converter, out.data(), length(out.size()), units.data(),
                                length(units.size()), &error);
            ucnv_close(converter);
            return checked(written, error);
        });
}

[[maybe_unused]] const bool isRegistered = [] {
    measure("UTF-8", "icu", decodeUtf8, encodeUtf8);
    measureConverter("UTF-16LE", "UTF-16LE");
    measureConverter("UTF-16BE", "UTF-16BE");
    measureConverter("UTF-32LE", "UTF-32LE");
    measureConverter("UTF-32BE", "UTF-32BE");
    measureConverter("CP1252", "windows-1252");
    measureConverter("CP437", "ibm-437");
    return true;
}();

} // namespace

} // namespace bench
