#include "qv/StringLocks.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>
#include <new>

namespace qv {

namespace {

constexpr char16_t blanks[] = u" \t\r\n";

/// Units of a text that a replacement may leave: the text, its terminator and one unit more fit an
/// `int`.
constexpr std::int64_t greatestLength = std::numeric_limits<int>::max() - 2;

void moveUnits(char16_t* target, const char16_t* source, int count) {
    std::memmove(target, source, static_cast<std::size_t>(count) * sizeof(char16_t));
}

/// `buffer`, if one string alone holds it and may write to it as it stands; otherwise null.
util::RWCharBuffer* privatelyHeld(IQVCharBuffer* buffer) noexcept {
    auto* const own = detail::exactly<util::RWCharBuffer>(buffer);
    return own != nullptr && own->GetRefCount() == 1 ? own : nullptr;
}

/// Where a replacement takes place, with its ends cut to what there is, and what it leaves.
struct Place {
    Place(int wantedPosition, int wantedCount, int length, int inserted)
        : position(wantedPosition < 0 || wantedPosition > length ? length : wantedPosition),
          count(wantedCount < 0 || wantedCount > length - position ? length - position
                                                                   : wantedCount),
          tail(length - position - count), newLength(checked(length, inserted)) {}

    int position;
    int count;
    int tail;
    int newLength;

private:
    int checked(int length, int inserted) const {
        const std::int64_t result = std::int64_t{length} - count + inserted;
        if (result > greatestLength) {
            throw std::bad_alloc();
        }
        return static_cast<int>(result);
    }
};

} // namespace

String& String::replace(int position, int count, const char16_t* text, int textLength,
                        int textStart) {
    textLength = detail::measured(text, textLength);
    textStart = std::clamp(textStart, 0, textLength);
    const int inserted = textLength - textStart;
    Writer writer(*this);
    const Place place(position, count, writer.length(), inserted);
    assert(inserted == 0 || text + textLength <= writer.units() ||
           text > writer.units() + writer.length());
    writer.ensureCapacity(place.newLength + 1);
    char16_t* const target = writer.units() + place.position;
    if (inserted != place.count && place.tail > 0) {
        moveUnits(target + inserted, target + place.count, place.tail);
    }
    if (inserted > 0) {
        moveUnits(target, text + textStart, inserted);
    }
    writer.setLength(place.newLength);
    return *this;
}

String& String::replace(int position, int count, const String& text, int textStart) {
    if (&text == this) {
        return replace(position, count, String(text), textStart);
    }
    const Reader reader(text);
    return replace(position, count, reader.units(), reader.length(), textStart);
}

String& String::replace(int position, int count, char16_t unit, int repeat) {
    repeat = std::max(repeat, 0);
    Writer writer(*this);
    const Place place(position, count, writer.length(), repeat);
    writer.ensureCapacity(place.newLength + 1);
    char16_t* const target = writer.units() + place.position;
    if (repeat != place.count && place.tail > 0) {
        moveUnits(target + repeat, target + place.count, place.tail);
    }
    std::fill_n(target, repeat, unit);
    writer.setLength(place.newLength);
    return *this;
}

String& String::operator+=(const String& text) { return replace(-1, 0, text, 0); }
String& String::operator+=(const char16_t* text) { return replace(-1, 0, text, -1, 0); }
String& String::operator+=(char16_t unit) { return append(unit, 1); }

String& String::append(const String& text) { return replace(-1, 0, text, 0); }
String& String::append(const char16_t* text, int length) { return replace(-1, 0, text, length, 0); }
String& String::append(char16_t unit, int count) {
    return count == 1 && appendInPlace(unit) ? *this : appendGrowing(unit, count);
}

/// The most frequent edit, without the scaffolding of the general one and without a call. @return
/// false where it needs either.
bool String::appendInPlace(char16_t unit) noexcept {
    util::RWCharBuffer* const own = privatelyHeld(buffer_);
    if (own == nullptr || narrowCache_ != nullptr) {
        return false;
    }
    const int innerLength = own->util::RWCharBuffer::getLength();
    if (innerLength < 1 || innerLength > own->getCapacity() - 2) {
        return false;
    }
    char16_t* const end = own->util::RWCharBuffer::ensureCapacity(0) + innerLength;
    end[-1] = unit;
    end[0] = 0;
    own->util::RWCharBuffer::releaseWriteLock(innerLength + 1);
    return true;
}

/// What `append` does where there is no room: apart from it, so that it needs no registers saved.
[[gnu::noinline]] String& String::appendGrowing(char16_t unit, int count) {
    util::RWCharBuffer* const own = privatelyHeld(buffer_);
    if (count == 1 && own != nullptr && own->util::RWCharBuffer::getLength() <= greatestLength) {
        own->util::RWCharBuffer::ensureCapacity(own->util::RWCharBuffer::getLength() + 2);
        if (appendInPlace(unit)) {
            return *this;
        }
    }
    return replace(-1, 0, unit, count);
}

String& String::prepend(const String& text) { return replace(0, 0, text, 0); }
String& String::prepend(const char16_t* text, int length) { return replace(0, 0, text, length, 0); }
String& String::prepend(char16_t unit, int count) { return replace(0, 0, unit, count); }

String& String::insert(int position, const String& text) { return replace(position, 0, text, 0); }
String& String::insert(int position, const char16_t* text, int length) {
    return replace(position, 0, text, length, 0);
}
String& String::insert(int position, char16_t unit, int count) {
    return replace(position, 0, unit, count);
}

String& String::remove(int position, int count) { return replace(position, count, nullptr, 0, 0); }

void String::clear() { resize(0); }

void String::resize(int length, char16_t fill) {
    length = std::max(length, 0);
    if (length > greatestLength) {
        throw std::bad_alloc();
    }
    Writer writer(*this, length);
    if (writer.length() < length) {
        std::fill(writer.units() + writer.length(), writer.units() + length, fill);
    }
    writer.setLength(length);
}

char16_t String::getCharAt(int index) const { return Reader(*this).units()[index]; }

void String::setCharAt(int index, char16_t unit) { Writer(*this).units()[index] = unit; }

void String::toLower() {
    const Writer writer(*this);
    QVStrToLowerW(writer.units(), writer.length());
}

void String::toUpper() {
    const Writer writer(*this);
    QVStrToUpperW(writer.units(), writer.length());
}

void String::translate(char16_t from, char16_t to) {
    const Writer writer(*this);
    std::replace(writer.units(), writer.units() + writer.length(), from, to);
}

void String::translate(const char16_t*, int, const char16_t*, int) {}

void String::translate(const String& from, const String& to) {
    const Reader source(from);
    const Reader target(to);
    translate(source.units(), source.length(), target.units(), target.length());
}

void String::translate(const char16_t* from, const char16_t* to) { translate(from, -1, to, -1); }

namespace {

/// Trims what `trimmed` says of the `length` units, which move to the front. @return the new
/// length.
template <class Predicate>
int trimUnits(char16_t* units, int length, String::TrimType type, Predicate trimmed) {
    int start = 0;
    if ((type & String::TRIM_LEFT) != 0) {
        while (start < length && trimmed(units[start])) {
            ++start;
        }
    }
    int end = length;
    if ((type & String::TRIM_RIGHT) != 0) {
        while (end > start && trimmed(units[end - 1])) {
            --end;
        }
    }
    if (start > 0) {
        moveUnits(units, units + start, end - start);
    }
    return end - start;
}

} // namespace

void String::trim(TrimType type) { trim(blanks, -1, type); }

void String::trim(const char16_t* set, int, TrimType type) {
    Writer writer(*this);
    writer.setLength(trimUnits(writer.units(), writer.length(), type,
                               [set](char16_t unit) { return QVStrChrW(set, unit) != nullptr; }));
}

void String::trim(const String& set, TrimType type) {
    if (&set == this) {
        trim(String(set), type);
        return;
    }
    const Reader reader(set);
    trim(reader.units(), reader.length(), type);
}

void String::trim(char16_t unit, TrimType type) {
    Writer writer(*this);
    writer.setLength(trimUnits(writer.units(), writer.length(), type,
                               [unit](char16_t candidate) { return candidate == unit; }));
}

} // namespace qv
