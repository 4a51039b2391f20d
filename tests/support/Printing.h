#pragma once

#include "qv/Str1.h"
#include "qv/String.h"

#include <ostream>
#include <string>

/// Printing of the library's values in test failures.
namespace qv {

inline void PrintTo(const String& text, std::ostream* out) {
    *out << '"' << text.getBytes(u"UTF-8") << "\" (" << text.getLength() << " units)";
}

inline void PrintTo(const Str1& text, std::ostream* out) { PrintTo(text.toQVString(), out); }

} // namespace qv

namespace support {

/// The text as the language's own string, which knows its length.
inline std::u16string units(const qv::String& text) {
    return {text.getData(), static_cast<std::size_t>(text.getLength())};
}

inline std::u16string units(const qv::Str1& text) {
    return text.isEmpty()
               ? std::u16string()
               : std::u16string(text.getData1(), static_cast<std::size_t>(text.getLength()));
}

} // namespace support
