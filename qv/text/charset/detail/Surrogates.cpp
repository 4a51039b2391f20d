#include "qv/text/charset/detail/Surrogates.h"

#include "qv/Exceptions.h"

namespace qv::text::charset::detail {

using namespace literals;

void throwLeadWithoutTrail() {
    throw InvalidCharacterException(u"leading surrogate without trailing"_lit);
}

void throwTrailWithoutLead() {
    throw InvalidCharacterException(u"trailing surrogate without leading"_lit);
}

} // namespace qv::text::charset::detail
