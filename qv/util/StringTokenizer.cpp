#include "qv/util/StringTokenizer.h"

#include "qv/Exceptions.h"
#include "qv/detail/Units.h"

#include <algorithm>

namespace qv::util {

namespace {

constexpr std::int32_t unknown = -1;

String setOf(const char16_t* delimiters) {
    using namespace literals;
    return delimiters == nullptr ? String(u" \r\n\t\f"_lit) : String(delimiters);
}

} // namespace

StringTokenizer::StringTokenizer(const String& text, const char16_t* delimiters,
                                 bool returnDelimiters)
    : text_(text), delimiters_(setOf(delimiters)), returnDelimiters_(returnDelimiters) {}

StringTokenizer::~StringTokenizer() noexcept = default;

bool StringTokenizer::isDelimiter(char16_t unit) const noexcept {
    return qv::detail::findUnit(delimiters_.getData(), delimiters_.getLength(), unit) >= 0;
}

/// Where a token may begin, at `start` or behind it; behind the length if nowhere.
int StringTokenizer::skipDelims(int start) const {
    if (returnDelimiters_) {
        return start;
    }
    const char16_t* const units = text_.getData();
    const int length = text_.getLength();
    for (int i = start; i < length; ++i) {
        if (!isDelimiter(units[i])) {
            return i;
        }
    }
    return length + 1;
}

/// Where the token that begins at `start` ends; behind the length if no delimiter ends it.
int StringTokenizer::scanToken(int start) const {
    const int length = text_.getLength();
    if (start >= length) {
        return start;
    }
    const int end = text_.findFirstOf(delimiters_, start);
    if (returnDelimiters_ && end == start) {
        return start + 1;
    }
    return end >= 0 ? end : length + 1;
}

bool StringTokenizer::hasMoreTokens() {
    nextStart_ = skipDelims(position_);
    return nextStart_ < text_.getLength();
}

String StringTokenizer::nextToken(const char16_t* delimiters) {
    if (delimiters != nullptr) {
        delimiters_ = delimiters;
        nextStart_ = unknown;
    }
    const int start = nextStart_ != unknown ? nextStart_ : skipDelims(position_);
    nextStart_ = unknown;
    const int length = text_.getLength();
    if (start >= length) {
        throw Exception(u"No such element");
    }
    const int end = scanToken(start);
    String token = text_.substring(start, std::min(end, length));
    position_ = end;
    return token;
}

int StringTokenizer::getTokenCount() const {
    const int length = text_.getLength();
    int count = 0;
    for (int start = skipDelims(position_); start < length; start = skipDelims(scanToken(start))) {
        ++count;
    }
    return count;
}

} // namespace qv::util
