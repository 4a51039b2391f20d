#include "qv/Str1.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qv/detail/Exactly.h"
#include "qv/detail/Lengths.h"
#include "qv/detail/Units.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/detail/Surrogates.h"
#include "qv/util/BufferLocks.h"
#include "qvcore/Text.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <memory>
#include <span>

namespace qv {

using detail::measured;
using text::charset::ByteToCharConverter;
using text::charset::CharToByteConverter;

namespace {

constexpr int chunkSize = 512;

/// `length` plus `more` as a size to ask for. A sum beyond what a store can have is one that it
/// refuses.
unsigned int sum(int length, int more) {
    return static_cast<unsigned int>(length) + static_cast<unsigned int>(more);
}

/// Units to ask for where `remaining` more are expected: a guess, which asks for no more than a
/// store can have.
unsigned int estimate(int length, float remaining) {
    const float most = static_cast<float>(StrBuf1::greatestCapacity);
    return std::min(sum(length, static_cast<int>(std::min(remaining, most)) + 1),
                    StrBuf1::greatestCapacity);
}

void moveUnits(char16_t* target, const char16_t* source, int count) {
    std::memmove(target, source, static_cast<std::size_t>(count) * sizeof(char16_t));
}

} // namespace

// --- Making, sharing, copying ---

Str1::Str1(unsigned int capacity) { attach(StrBuf1::newStrBuf1Cap(capacity), 0); }

Str1::Str1(const Str1& other) noexcept { setTo(other); }

Str1::Str1(const Str1& other, int start, int end) {
    end = end == -1 || end > other.length_ ? other.length_ : end;
    if (start < 0 || start >= end) {
        return;
    }
    setTo(other);
    offset_ = other.offset_ + start;
    length_ = end - start;
}

Str1::Str1(const signed char* bytes, int length, const char16_t* encoding) {
    try {
        throwIfFailed(appendA(bytes, length, encoding));
    } catch (...) {
        reset();
        throw;
    }
}

Str1::~Str1() { reset(); }

Str1& Str1::setTo(const Str1& other) noexcept {
    StrBuf1* const old = buffer_;
    if (other.buffer_ != nullptr) {
        other.buffer_->AddRef();
    }
    buffer_ = other.buffer_;
    offset_ = other.offset_;
    length_ = other.length_;
    if (old != nullptr) {
        old->Release();
    }
    return *this;
}

void Str1::attach(StrBuf1* buffer, int length) noexcept {
    buffer->AddRef();
    if (buffer_ != nullptr) {
        buffer_->Release();
    }
    buffer_ = buffer;
    offset_ = 0;
    length_ = length;
}

void Str1::reset() noexcept {
    length_ = 0;
    offset_ = 0;
    if (buffer_ != nullptr) {
        std::exchange(buffer_, nullptr)->Release();
    }
}

Str1& Str1::copy(const char16_t* text, int length) {
    length = measured(text, length);
    if (length > 0) {
        ensureCapacity1(sum(length, 0), 0, 0);
        moveUnits(writable(), text, length);
    }
    offset_ = 0;
    length_ = length;
    return *this;
}

Str1& Str1::copy(const Str1& text) {
    if (&text == this && buffer_ != nullptr && buffer_->isPrivatelyHeld(0) != 0) {
        moveUnits(buffer_->getData(), getData1(), length_);
        offset_ = 0;
        return *this;
    }
    const Str1 source(text); // holds the store while this one may give it up
    return copy(source.getData0(), source.length_);
}

Str1& Str1::copy(const String& text) {
    const util::BufferReadLock<char16_t> lock(text);
    return copy(lock.getData(), text.getLength());
}

// --- Appending ---

Str1& Str1::append(const char16_t* text, int length) {
    length = measured(text, length);
    if (length > 0) {
        ensureCapacity1(sum(length_, length), 0, -1);
        moveUnits(writable() + length_, text, length);
        length_ += length;
    }
    return *this;
}

Str1& Str1::append(char16_t unit, int count) {
    return count == 1 && appendInPlace(unit) ? *this : appendUnits(unit, count);
}

/// The most frequent edit, without a call: into a heap store that has room for it.
inline bool Str1::appendInPlace(char16_t unit) noexcept {
    if (buffer_ == nullptr) {
        return false;
    }
    const auto* const heap = detail::exactly<StrBuf1Heap>(buffer_);
    const auto end = static_cast<unsigned int>(offset_ + length_);
    if (heap == nullptr || end >= heap->heldCapacity() || length_ == 0) {
        return false; // an empty text begins at the front
    }
    heap->getData()[end] = unit;
    ++length_;
    return true;
}

/// The rest of it, apart from the frequent case so that that one needs no registers saved.
[[gnu::noinline]] Str1& Str1::appendUnits(char16_t unit, int count) {
    if (count > 0) {
        ensureCapacity1(sum(length_, count), 0, -1);
        std::fill_n(writable() + length_, count, unit);
        length_ += count;
    }
    return *this;
}

Str1& Str1::append(const Str1& text, int count, int start) {
    const bool whole = count == -1 || start < 0 || count > text.length_ - start;
    const int end = whole ? text.length_ : start + std::max(count, 0);
    if (&text == this) {
        return appendOwn(start, end);
    }
    const Str1 part(text, start, end);
    if (buffer_ == nullptr) {
        return setTo(part);
    }
    return append(part.getData0(), part.length_);
}

/// Appends a range of the text to itself, without a second holder of the store, who would keep it
/// from being written.
Str1& Str1::appendOwn(int start, int end) {
    if (start >= 0 && start < end) {
        const int count = end - start;
        ensureCapacity1(sum(length_, count), 0, -1);
        moveUnits(writable() + length_, getData0() + start, count);
        length_ += count;
    }
    return *this;
}

Str1& Str1::append(const String& text) {
    const util::BufferReadLock<char16_t> lock(text);
    return append(lock.getData(), text.getLength());
}

// --- The store ---

StrBuf1* Str1::fastAllocBuffer(unsigned int) { return nullptr; }

int Str1::ensureCapacity1(unsigned int needed, int keepStart, int keepEnd) {
    const int kept = std::max((keepEnd == -1 ? length_ : keepEnd) - keepStart, 0);
    if (buffer_ != nullptr) {
        const unsigned int held = buffer_->isPrivatelyHeld(0);
        const auto offset = kept == 0 ? 0u : static_cast<unsigned int>(offset_);
        if (held != 0 && offset + needed <= held) {
            offset_ = static_cast<int>(offset);
            return static_cast<int>(held - offset);
        }
        if (held != 0 && offset > 0 && needed <= held) {
            moveUnits(buffer_->getData(), getData1() + keepStart, kept);
            offset_ = 0;
            return static_cast<int>(held);
        }
    }
    if (needed == 0) {
        return 0;
    }
    if (StrBuf1* const fast = fastAllocBuffer(needed)) {
        return moveTo(fast, keepStart, kept);
    }
    if (needed > StrBuf1::greatestCapacity) {
        throw std::bad_alloc();
    }
    // Only a text that grows pays for room to grow.
    const unsigned int grown =
        kept == 0 ? needed : std::max(needed, StrBuf1::normalizeCapacity(needed) * 5 / 4);
    return growTo(std::min(grown, StrBuf1::greatestCapacity), keepStart, kept);
}

/// Goes on in a heap store of `capacity` units, which is the present one where it can be had.
int Str1::growTo(unsigned int capacity, int keepStart, int kept) {
    const bool isWhole = offset_ == 0 && keepStart == 0 && kept > 0;
    if (StrBuf1* const grown = isWhole ? StrBuf1::growInPlace(buffer_, capacity) : nullptr) {
        buffer_ = grown;
        return static_cast<int>(grown->getBufCapacity());
    }
    return moveTo(StrBuf1::newStrBuf1Cap(capacity), keepStart, kept);
}

int Str1::moveTo(StrBuf1* buffer, int keepStart, int kept) noexcept {
    const auto capacity = static_cast<int>(buffer->getBufCapacity());
    if (kept > 0) {
        moveUnits(buffer->getData(), getData1() + keepStart, std::min(kept, capacity));
    }
    attach(buffer, length_);
    return capacity;
}

// --- Comparison and search ---

bool Str1::operator==(const Str1& other) const noexcept {
    return length_ == other.length_ &&
           (length_ == 0 || detail::equalUnits(getData1(), other.getData1(), length_));
}

bool Str1::operator==(const char16_t* text) const noexcept {
    const int length = measured(text, -1);
    return length_ == length && (length_ == 0 || detail::equalUnits(getData1(), text, length_));
}

int Str1::indexOf(char16_t unit, int from, bool ignoreCase) const noexcept {
    if (from < 0 || from >= length_) {
        return -1;
    }
    const char16_t* const units = getData1() + from;
    const int index = ignoreCase ? QVStrNIFindW(units, length_ - from, &unit, 1)
                                 : detail::findUnit(units, length_ - from, unit);
    return index < 0 ? -1 : from + index;
}

bool Str1::startsWith(const char16_t* text, int length, bool ignoreCase) const noexcept {
    length = measured(text, length);
    if (length > length_) {
        return false;
    }
    return length == 0 || (ignoreCase ? QVStrNICmpW(getData1(), text, length) == 0
                                      : detail::equalUnits(getData1(), text, length));
}

bool Str1::startsWith(const Str1& text, bool ignoreCase) const noexcept {
    return startsWith(text.getData0(), text.length_, ignoreCase);
}

std::int32_t Str1::mapUnits(char16_t (*map)(char16_t) noexcept) {
    const char16_t* const begin = getData0();
    const char16_t* const first =
        std::find_if(begin, begin + length_, [map](char16_t unit) { return map(unit) != unit; });
    const auto unchanged = first - begin;
    if (unchanged == length_) {
        return QV_S_OK;
    }
    ensureCapacity1(sum(length_, 0), 0, -1);
    std::transform(writable() + unchanged, writable() + length_, writable() + unchanged, map);
    return QV_S_OK;
}

std::int32_t Str1::toLower() { return mapUnits(&QVToLowerW); }

std::int32_t Str1::toUpper() { return mapUnits(&QVToUpperW); }

String Str1::toQVString() const { return String(getData0(), length_); }

// --- Narrow text ---

std::int32_t Str1::copyA(const signed char* bytes, int length, const char16_t* encoding) {
    offset_ = 0;
    length_ = 0;
    return appendA(bytes, length, encoding);
}

std::int32_t Str1::appendA(const signed char* bytes, int length, const char16_t* encoding) try {
    length = measured(reinterpret_cast<const char*>(bytes), length);
    if (length == 0) {
        return QV_S_OK;
    }
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(encoding));
    char16_t chunk[chunkSize];
    std::int32_t consumed = 0;
    for (;;) {
        const std::int32_t start = consumed;
        std::int32_t written = 0;
        decoder->convert(bytes, &consumed, length, chunk, &written, chunkSize);
        const std::int32_t progress = consumed - start;
        if (consumed >= length) {
            append(chunk, written);
            written = 0;
            decoder->flush(chunk, &written, chunkSize);
            append(chunk, written);
            return QV_S_OK;
        }
        if (progress == 0) {
            return QV_E_FAIL;
        }
        const float remaining = static_cast<float>(length - consumed) *
                                (static_cast<float>(written) / static_cast<float>(progress));
        ensureCapacity1(estimate(length_ + written, remaining), 0, -1);
        append(chunk, written);
    }
} catch (const Exception& exception) {
    return exception.getResult();
}

std::int32_t Str1::convertToA(char* out, int size, CharToByteConverter& encoder, int* written,
                              int* position) const {
    return convertUpTo(length_, out, size, encoder, written, position);
}

std::int32_t Str1::convertUpTo(int end, char* out, int size, CharToByteConverter& encoder,
                               int* written, int* position) const {
    std::int32_t bytes = 0;
    std::int32_t consumed = position != nullptr ? std::clamp(*position, 0, end) : 0;
    const std::int32_t result = toResult([&] {
        encoder.convert(getData0(), &consumed, end, reinterpret_cast<signed char*>(out), &bytes,
                        size);
    });
    if (written != nullptr) {
        *written = bytes;
    }
    if (position != nullptr) {
        *position = consumed;
    }
    return result < 0 || consumed >= end ? result : QV_E_BUFFERTOOSMALL;
}

namespace {

/// Runs `work` with the encoder of a name. @return its result, or that of what was thrown.
template <class Work>
std::int32_t withEncoder(const char16_t* encoding, Work work) {
    std::int32_t result = QV_S_OK;
    const std::int32_t failure = toResult([&] {
        const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(encoding));
        result = work(*encoder);
    });
    return failure < 0 ? failure : result;
}

/// Whether the encoder, from the beginning, makes that many bytes of the text. False where it
/// fails.
bool encodes(CharToByteConverter& encoder, std::span<const char16_t> text, int bytes) noexcept {
    std::int32_t consumed = 0;
    std::int32_t written = 0;
    const std::int32_t result = toResult([&] {
        const auto out =
            std::make_unique_for_overwrite<signed char[]>(static_cast<std::size_t>(bytes));
        encoder.reset();
        encoder.convert(text.data(), &consumed, static_cast<int>(text.size()), out.get(), &written,
                        bytes);
    });
    return result >= 0 && written == bytes && consumed == static_cast<int>(text.size());
}

} // namespace

/// In pieces that a chunk has room for, and that cut no pair: encoders forget the half of one for
/// whose other half there is no room.
std::int32_t Str1::getLengthA(int* bytes, const char16_t* encoding, int start) const {
    *bytes = 0;
    return withEncoder(encoding, [&](CharToByteConverter& encoder) {
        char chunk[chunkSize];
        const int units = std::max(chunkSize / std::max(encoder.getMaxBytesPerChar(), 1), 2);
        for (int position = std::clamp(start, 0, length_); position < length_;) {
            const int before = position;
            int end = std::min(length_ - before, units) + before;
            end -= end < length_ && text::charset::detail::isLeading(getData0()[end - 1]) ? 1 : 0;
            int written = 0;
            const std::int32_t result =
                convertUpTo(end, chunk, chunkSize, encoder, &written, &position);
            *bytes += written;
            if (result < 0 && result != QV_E_BUFFERTOOSMALL) {
                return result;
            }
            if (position == before && written == 0) {
                return QV_E_FAIL; // what is left completes no character
            }
        }
        return QV_S_OK;
    });
}

std::int32_t Str1::convertToAZ(char* out, int size, const char16_t* encoding, int* written,
                               int* position) const {
    if (out == nullptr || size < 1) {
        return QV_E_INVALIDARG;
    }
    return withEncoder(encoding, [&](CharToByteConverter& encoder) {
        int bytes = 0;
        int end = position != nullptr ? *position : 0;
        const std::int32_t result = convertToA(out, size - 1, encoder, &bytes, &end);
        if (result >= 0) {
            out[bytes] = 0;
        }
        if (written != nullptr) {
            *written = bytes;
        }
        if (position != nullptr) {
            const int begin = std::max(std::exchange(*position, end), 0);
            const bool isInPair = result == QV_E_BUFFERTOOSMALL && end > begin &&
                                  text::charset::detail::isLeading(getData0()[end - 1]);
            // What the encoder has kept of a pair ends with it; what it has written is written.
            if (isInPair && encodes(encoder, {getData0() + begin, getData0() + end - 1}, bytes)) {
                *position = end - 1;
            }
        }
        return result;
    });
}

OwningArray<char> Str1::getBytesAZ(const char16_t* encoding) const {
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(encoding));
    const int capacity = detail::checkedSize(encoder->getMaxBytesPerChar(), length_, 1) - 1;
    OwningArray<char> bytes(new char[static_cast<std::size_t>(capacity) + 1]);
    int written = 0;
    throwIfFailed(convertToA(bytes.get(), capacity, *encoder, &written, nullptr));
    bytes[written] = 0;
    return bytes;
}

// --- Appendor ---

Str1::Appendor::Appendor(Str1& target, int first, int further) noexcept
    : target_(target), first_(first), further_(further) {}

void Str1::Appendor::firstAppend(const char16_t* text, int length) {
    if (length < 1) {
        setRemCap(0);
    } else {
        fastAppend(text, length);
    }
}

void Str1::Appendor::fastAppend(const char16_t* text, int length) {
    if (length < 1) {
        return;
    }
    moveUnits(checkAvailable(length), text, length);
}

char16_t* Str1::Appendor::checkAvailable(int length) {
    if (length > remaining_) {
        setRemCap(length);
    }
    remaining_ -= length;
    char16_t* const place =
        target_.buffer_ == nullptr ? nullptr : target_.writable() + target_.length_;
    target_.length_ += length;
    return place;
}

int Str1::Appendor::setRemCap(int length) {
    const int ahead = first_ != 0 ? std::exchange(first_, 0) : further_;
    const std::int64_t needed = std::int64_t{target_.length_} + std::max(ahead, 0) + length;
    if (needed > std::numeric_limits<std::int32_t>::max()) {
        throw std::bad_alloc();
    }
    remaining_ =
        target_.ensureCapacity1(static_cast<unsigned int>(needed), 0, -1) - target_.length_;
    return remaining_;
}

// --- Forms ---

Str1Wrap::Str1Wrap(const char16_t* text, int length, unsigned int capacity) {
    attach(new StrBuf1Wrap(text, capacity), measured(text, length));
}

Str1Static::Str1Static(const char16_t* text, int length) noexcept
    : store_(text, static_cast<unsigned int>(measured(text, length))) {
    store_.initStaticInstance(0);
    attach(&store_, measured(text, length));
}

StrBuf1* Str1Embedded::fastAllocBuffer(unsigned int capacity) {
    const bool current = embedded_ == getBuffer();
    return current || capacity > embedded_->isPrivatelyHeld(1) ? nullptr : embedded_;
}

Str1Local::Str1Local(const char16_t* text, int length, unsigned int capacity) noexcept
    : Str1Embedded(store_), store_(text, capacity) {
    store_.initStaticInstance(0);
    attach(&store_, measured(text, length));
}

template class StrBuf1Fixed<128>;
template class Str1Fixed<128>;

} // namespace qv
