#include "qv/io/detail/AlphaNumAlphabet.h"

#include "qv/ErrorRule.h"
#include "qvcore/Text.h"

namespace qv::io::detail {

namespace {

constexpr const char16_t* defaultLetters = u"ABCDEFGHJKLMNPQRSTUVWXYZ23456789";

} // namespace

AlphaNumAlphabet::AlphaNumAlphabet(const char16_t* text) {
    const char16_t* const units = text != nullptr ? text : defaultLetters;
    if (QVStrLenW_32(units) != letterCount) {
        throwResult(QV_E_INVALIDARG);
    }
    values_.fill(noValue);
    for (int i = letterCount - 1; i >= 0; --i) { // so that the first of equal letters counts
        letters_[static_cast<std::size_t>(i)] = static_cast<unsigned char>(units[i]);
        if (units[i] < values_.size()) {
            values_[units[i]] = static_cast<std::int16_t>(i);
        }
    }
}

} // namespace qv::io::detail
