#pragma once

#include "qvcore/common/Utf.h"

#include <string>

/// The default encoding of the process, for the layer's own use.
namespace qv::core {

/// Narrows a whole text. What has no form in the default encoding is refused with QV_E_INVALIDNAME.
/// @throws std::bad_alloc.
std::int32_t toSystemText(std::u16string_view text, std::string& result);

/// Widens a whole text. Bytes that are no text in the default encoding are refused with
/// QV_E_INVALIDNAME.
/// @throws std::bad_alloc.
std::int32_t fromSystemText(std::string_view text, std::u16string& result);

/// What the system answers for its default encoding.
struct DefaultEncodingName {
    char text[64];
    bool isUtf8;
};

/// Implemented by the system.
DefaultEncodingName defaultEncodingName() noexcept;

/// The default encoding where it is not UTF-8, as the system converts it. Implemented by the
/// system.
class SystemCodeSet {
public:
    SystemCodeSet() noexcept;
    ~SystemCodeSet();
    SystemCodeSet(const SystemCodeSet&) = delete;
    SystemCodeSet& operator=(const SystemCodeSet&) = delete;

    /// False if the system cannot convert it; nothing else may be called then.
    bool isUsable() const noexcept;
    /// An empty form if the character has none. Requires: a character that is no surrogate.
    Encoded<char> encode(char32_t character) noexcept;
    /// Reads the first character. Requires: text that is not empty.
    Decoded decode(std::string_view text) noexcept;

private:
    std::uintptr_t encoder_;
    std::uintptr_t decoder_;
};

} // namespace qv::core
