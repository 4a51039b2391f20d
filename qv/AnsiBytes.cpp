#include "qv/AnsiBytes.h"

#include "qvcore/Text.h"

#include <algorithm>

namespace qv {

namespace {

char16_t* copyOf(const char16_t* name) {
    if (name == nullptr) {
        return nullptr;
    }
    const std::size_t size = static_cast<std::size_t>(QVStrLenW_32(name)) + 1;
    auto* const copy = new char16_t[size];
    std::copy_n(name, size, copy);
    return copy;
}

char16_t asciiLower(char16_t unit) noexcept {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

} // namespace

String::AnsiBytes::AnsiBytes(const char16_t* encoding) : encoding_(copyOf(encoding)) {}

String::AnsiBytes::~AnsiBytes() noexcept { delete[] encoding_; }

bool String::AnsiBytes::encodingEquals(const char16_t* encoding) const noexcept {
    if (encoding_ == nullptr || encoding == nullptr) {
        return encoding_ == encoding;
    }
    const char16_t* own = encoding_;
    while (*own != 0 && asciiLower(*own) == asciiLower(*encoding)) {
        ++own;
        ++encoding;
    }
    return asciiLower(*own) == asciiLower(*encoding);
}

} // namespace qv
