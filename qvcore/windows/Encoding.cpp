#include "qvcore/common/DefaultEncoding.h"

#include <cstdio>
#include <windows.h>

namespace qv::core {

DefaultEncodingName defaultEncodingName() noexcept {
    const UINT codePage = GetACP();
    DefaultEncodingName result = {};
    result.isUtf8 = codePage == CP_UTF8;
    if (result.isUtf8) {
        std::snprintf(result.text, sizeof result.text, "UTF-8");
    } else {
        std::snprintf(result.text, sizeof result.text, "CP%u", codePage);
    }
    return result;
}

// The system converts by code page number and keeps no state.
SystemCodeSet::SystemCodeSet() noexcept : encoder_(GetACP()), decoder_(GetACP()) {}

SystemCodeSet::~SystemCodeSet() = default;

bool SystemCodeSet::isUsable() const noexcept {
    return IsValidCodePage(static_cast<UINT>(encoder_)) != 0;
}

Encoded<char> SystemCodeSet::encode(char32_t character) noexcept {
    if (character < 0x80) {
        return encodeUtf8(character);
    }
    const Encoded<char16_t> units = encodeUtf16(character);
    Encoded<char> form = {};
    BOOL hasNoForm = FALSE;
    const int count = WideCharToMultiByte(static_cast<UINT>(encoder_), WC_NO_BEST_FIT_CHARS,
                                          reinterpret_cast<const wchar_t*>(units.units),
                                          static_cast<int>(units.count), form.units,
                                          static_cast<int>(sizeof form.units), nullptr, &hasNoForm);
    form.count = hasNoForm ? 0 : static_cast<std::size_t>(count);
    return form;
}

Decoded SystemCodeSet::decode(std::string_view text) noexcept {
    const auto codePage = static_cast<UINT>(decoder_);
    const std::size_t length = IsDBCSLeadByteEx(codePage, static_cast<BYTE>(text[0])) ? 2 : 1;
    wchar_t unit = 0;
    if (length > text.size() || MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text.data(),
                                                    static_cast<int>(length), &unit, 1) != 1) {
        return {Decoded::bad, 1};
    }
    return {static_cast<char32_t>(unit), length};
}

} // namespace qv::core
