#include "qv/StringLocks.h"
#include "qv/detail/Units.h"

#include <algorithm>

namespace qv {

namespace {

/// A region of this string and one of a text, with their ends cut to what there is.
struct Regions {
    Regions(int wantedStart, int wantedCount, int length, int textLength, int wantedTextStart)
        : start(wantedStart < 0 || wantedStart > length ? length : wantedStart),
          count(wantedCount < 0 || wantedCount > length - start ? length - start : wantedCount),
          textStart(std::clamp(wantedTextStart, 0, textLength)), textCount(textLength - textStart) {
    }

    int start;
    int count;
    int textStart;
    int textCount;
};

/// The last index that a backward search looks at.
int lastIndex(int from, int length) { return from < 0 || from >= length ? length - 1 : from; }

/// A set of units to look for, with or without regard to case.
class UnitSet {
public:
    UnitSet(const char16_t* units, int length, bool ignoreCase)
        : units_(units), length_(length), ignoreCase_(ignoreCase) {}

    bool contains(char16_t unit) const noexcept {
        if (!ignoreCase_) {
            return std::find(units_, units_ + length_, unit) != units_ + length_;
        }
        const char16_t lower = QVToLowerW(unit);
        return std::any_of(units_, units_ + length_,
                           [lower](char16_t candidate) { return QVToLowerW(candidate) == lower; });
    }

private:
    const char16_t* units_;
    int length_;
    bool ignoreCase_;
};

int findForward(const char16_t* units, int from, int length, const UnitSet& set, bool wanted) {
    for (int i = std::max(from, 0); i < length; ++i) {
        if (set.contains(units[i]) == wanted) {
            return i;
        }
    }
    return -1;
}

int findBackward(const char16_t* units, int from, const UnitSet& set, bool wanted) {
    for (int i = from; i >= 0; --i) {
        if (set.contains(units[i]) == wanted) {
            return i;
        }
    }
    return -1;
}

bool sameUnits(const char16_t* left, const char16_t* right, int count, bool ignoreCase) {
    return ignoreCase ? QVStrNICmpW(left, right, count) == 0
                      : detail::equalUnits(left, right, count);
}

} // namespace

// --- Comparison ---

int String::regionCompare(int start, int count, const char16_t* text, int length, int textStart,
                          bool ignoreCase) const {
    const Reader reader(*this);
    const Regions regions(start, count, reader.length(), detail::measured(text, length), textStart);
    const int common = std::min(regions.count, regions.textCount);
    const char16_t* const left = reader.units() + regions.start;
    const char16_t* const right = text + regions.textStart;
    const int order =
        ignoreCase ? QVStrNICmpW(left, right, common) : detail::compareUnits(left, right, common);
    return order != 0 ? order : regions.count - regions.textCount;
}

bool String::regionMatches(int start, int count, const char16_t* text, int length, int textStart,
                           bool ignoreCase) const {
    const Reader reader(*this);
    const Regions regions(start, count, reader.length(), detail::measured(text, length), textStart);
    return regions.count == regions.textCount &&
           sameUnits(reader.units() + regions.start, text + regions.textStart, regions.count,
                     ignoreCase);
}

int String::regionCompare(int start, int count, const String& text, int textStart,
                          bool ignoreCase) const {
    const Reader other(text);
    return regionCompare(start, count, other.units(), other.length(), textStart, ignoreCase);
}

bool String::regionMatches(int start, int count, const String& text, int textStart,
                           bool ignoreCase) const {
    const Reader other(text);
    return regionMatches(start, count, other.units(), other.length(), textStart, ignoreCase);
}

int String::compare(const String& text, bool ignoreCase) const {
    return regionCompare(0, -1, text, 0, ignoreCase);
}

int String::compare(const char16_t* text, int length, bool ignoreCase) const {
    return regionCompare(0, -1, text, length, 0, ignoreCase);
}

bool String::equals(const String& text, bool ignoreCase) const {
    return regionMatches(0, -1, text, 0, ignoreCase);
}

bool String::equals(const char16_t* text, int length, bool ignoreCase) const {
    return regionMatches(0, -1, text, length, 0, ignoreCase);
}

bool String::startsWith(const String& text, bool ignoreCase) const {
    const Reader other(text);
    return startsWith(other.units(), other.length(), ignoreCase);
}

bool String::startsWith(const char16_t* text, int length, bool ignoreCase) const {
    length = detail::measured(text, length);
    return regionMatches(0, length, text, length, 0, ignoreCase);
}

bool String::endsWith(const String& text, bool ignoreCase) const {
    const Reader other(text);
    return endsWith(other.units(), other.length(), ignoreCase);
}

bool String::endsWith(const char16_t* text, int length, bool ignoreCase) const {
    length = detail::measured(text, length);
    const int own = getLength();
    return own >= length && regionMatches(own - length, length, text, length, 0, ignoreCase);
}

bool String::contains(const String& text, bool ignoreCase) const {
    return indexOf(text, 0, ignoreCase) >= 0;
}

bool String::contains(const char16_t* text, int length, bool ignoreCase) const {
    return indexOf(text, length, 0, ignoreCase) >= 0;
}

// --- Search for a text or a unit ---

int String::indexOf(const String& text, int from, bool ignoreCase) const {
    const Reader other(text);
    return indexOf(other.units(), other.length(), from, ignoreCase);
}

int String::indexOf(const char16_t* text, int length, int from, bool ignoreCase) const {
    length = detail::measured(text, length);
    if (length < 1) {
        return -1;
    }
    const Reader reader(*this);
    from = std::max(from, 0);
    const int rest = reader.length() - from;
    if (rest < length) {
        return -1;
    }
    const char16_t* const units = reader.units() + from;
    const int index = ignoreCase ? QVStrNIFindW(units, rest, text, length)
                                 : detail::findUnits(units, rest, text, length);
    return index < 0 ? -1 : from + index;
}

int String::indexOf(char16_t unit, int from, bool ignoreCase) const {
    return indexOf(&unit, 1, from, ignoreCase);
}

int String::lastIndexOf(const String& text, int from, bool ignoreCase) const {
    const Reader other(text);
    return lastIndexOf(other.units(), other.length(), from, ignoreCase);
}

int String::lastIndexOf(const char16_t* text, int length, int from, bool ignoreCase) const {
    length = detail::measured(text, length);
    if (length < 1) {
        return -1;
    }
    const Reader reader(*this);
    for (int i = lastIndex(from, reader.length()) - length + 1; i >= 0; --i) {
        if (sameUnits(reader.units() + i, text, length, ignoreCase)) {
            return i;
        }
    }
    return -1;
}

int String::lastIndexOf(char16_t unit, int from, bool ignoreCase) const {
    if (ignoreCase) {
        return lastIndexOf(&unit, 1, from, true);
    }
    const Reader reader(*this);
    return detail::findUnitBackward(reader.units(), lastIndex(from, reader.length()) + 1, unit);
}

// --- Search for units of a set ---

int String::findFirstOf(const String& set, int from, bool ignoreCase) const {
    const Reader other(set);
    return findFirstOf(other.units(), other.length(), from, ignoreCase);
}

int String::findFirstOf(const char16_t* set, int length, int from, bool ignoreCase) const {
    length = detail::measured(set, length);
    if (length < 1) {
        return -1;
    }
    const Reader reader(*this);
    return findForward(reader.units(), from, reader.length(), {set, length, ignoreCase}, true);
}

int String::findFirstNotOf(const String& set, int from, bool ignoreCase) const {
    const Reader other(set);
    return findFirstNotOf(other.units(), other.length(), from, ignoreCase);
}

int String::findFirstNotOf(const char16_t* set, int length, int from, bool ignoreCase) const {
    length = detail::measured(set, length);
    if (length < 1) {
        return -1;
    }
    const Reader reader(*this);
    return findForward(reader.units(), from, reader.length(), {set, length, ignoreCase}, false);
}

int String::findFirstOfCase(const String& set, int from) const {
    return findFirstOf(set, from, false);
}

int String::findFirstOfCase(const char16_t* set, int length, int from) const {
    return findFirstOf(set, length, from, false);
}

int String::findLastOf(const String& set, int from, bool ignoreCase) const {
    const Reader other(set);
    return findLastOf(other.units(), other.length(), from, ignoreCase);
}

int String::findLastOf(const char16_t* set, int length, int from, bool ignoreCase) const {
    length = detail::measured(set, length);
    if (length < 1) {
        return -1;
    }
    const Reader reader(*this);
    return findBackward(reader.units(), lastIndex(from, reader.length()), {set, length, ignoreCase},
                        true);
}

int String::findLastNotOf(const String& set, int from, bool ignoreCase) const {
    const Reader other(set);
    return findLastNotOf(other.units(), other.length(), from, ignoreCase);
}

int String::findLastNotOf(const char16_t* set, int length, int from, bool ignoreCase) const {
    length = detail::measured(set, length);
    if (length < 1) {
        return -1;
    }
    const Reader reader(*this);
    return findBackward(reader.units(), lastIndex(from, reader.length()), {set, length, ignoreCase},
                        false);
}

} // namespace qv
