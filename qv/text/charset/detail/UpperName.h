#pragma once

#include "qv/Str1.h"

namespace qv::text::charset::detail {

/// An encoding's name as the tables know it: in upper case.
class UpperName : public Str1Fixed<128> {
public:
    explicit UpperName(const char16_t* name) : Str1Fixed<128>(name) { toUpper(); }
};

} // namespace qv::text::charset::detail
