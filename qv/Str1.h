#pragma once

#include "qv/OwningArray.h"
#include "qv/StrBuf1.h"
#include "qv/String.h"

namespace qv {

namespace text::charset {
class CharToByteConverter;
}

/// The light string for hot paths inside one thread: a view (offset and length) into a shared store
/// of UTF-16 units. It is no object, has no terminator, and can live in storage of the caller's
/// without touching the heap.
///
/// Copies and substrings share the store; a write copies what others share. Lengths and positions
/// count units; a text length of -1 means up to the terminator. All that needs room throws
/// std::bad_alloc, also beyond StrBuf1::greatestCapacity units. Narrow conversions return results:
/// 0, or a failure.
///
/// Thread safety: one thread at a time, everything that shares a store included.
class QV_API Str1 {
public:
    class Appendor;

    Str1() noexcept = default;
    /// Empty, with room for `capacity` units.
    explicit Str1(unsigned int capacity);
    Str1(const Str1& other) noexcept;
    /// The view from `start` up to but not including `end`; -1 is the end.
    Str1(const Str1& other, int start, int end);
    /// Decodes. @throws ResultException with the result of `appendA`.
    Str1(const signed char* bytes, int length, const char16_t* encoding);

    virtual ~Str1();

    Str1& operator=(const Str1& other) noexcept { return setTo(other); }
    /// Shares the other's store.
    Str1& setTo(const Str1& other) noexcept;
    Str1& operator=(const String& text) { return copy(text); }
    Str1& operator=(const char16_t* text) { return copy(text); }

    Str1& copy(const char16_t* text, int length = -1);
    Str1& copy(const Str1& text);
    Str1& copy(const String& text);
    /// Decodes in place of the text. @return as `appendA`.
    std::int32_t copyA(const signed char* bytes, int length, const char16_t* encoding = nullptr);

    Str1& append(const char16_t* text, int length = -1);
    Str1& append(char16_t unit, int count = 1);
    /// Appends `count` units (-1: the rest) from `start` on. A string without a store becomes a
    /// view of the other's instead, without copying.
    Str1& append(const Str1& text, int count = -1, int start = 0);
    Str1& append(const String& text);
    Str1& operator+=(const char16_t* text) { return append(text); }
    Str1& operator+=(char16_t unit) { return append(unit); }
    Str1& operator+=(const Str1& text) { return append(text); }
    Str1& operator+=(const String& text) { return append(text); }
    /// Decodes behind the text, up to 512 units at a time; those before the ones that failed stay.
    /// @return 0; QV_E_FAIL for bytes that complete no character; the result of the decoder's
    ///     exception.
    std::int32_t appendA(const signed char* bytes, int length, const char16_t* encoding = nullptr);

    /// Length 0; the store stays.
    void clear() noexcept { length_ = 0; }
    /// Length 0, and the store is given back.
    void reset() noexcept;
    /// For writers that filled the store directly.
    void adjustLength(int delta) noexcept { length_ += delta; }

    int getLength() const noexcept { return length_; }
    bool isEmpty() const noexcept { return length_ == 0; }
    /// True where the store lies inside another object, and ends with it.
    bool isStoreEmbedded() const noexcept {
        return buffer_ != nullptr && buffer_->isStaticInstance();
    }
    /// The first unit, or null for an empty text.
    const char16_t* getData0() const noexcept { return length_ == 0 ? nullptr : getData1(); }
    /// The first unit. Requires: a store.
    const char16_t* getData1() const noexcept { return buffer_->getData() + offset_; }
    /// Requires: `index` within the text.
    char16_t operator[](int index) const { return getData1()[index]; }

    bool operator==(const Str1& other) const noexcept;
    bool operator==(const char16_t* text) const noexcept;
    /// -1 where `from` is negative or not below the length.
    int indexOf(char16_t unit, int from = 0, bool ignoreCase = false) const noexcept;
    bool startsWith(const char16_t* text, int length = -1, bool ignoreCase = false) const noexcept;
    bool startsWith(const Str1& text, bool ignoreCase = false) const noexcept;
    Str1 substring(int start, int end = -1) const noexcept { return Str1(*this, start, end); }

    /// A text that is so already is not touched and stays shared. @return 0.
    std::int32_t toLower();
    std::int32_t toUpper();

    String toQVString() const;

    /// Stores the size of the narrow form from `start` on, without a terminator.
    std::int32_t getLengthA(int* bytes, const char16_t* encoding = nullptr, int start = 0) const;
    /// Writes the narrow form and a terminating 0 byte. `*written` counts the bytes before it;
    /// `*position` is where to begin and then where it ended, in front of a pair that was cut. Both
    /// may be null.
    /// @return 0; QV_E_INVALIDARG for no room at all; QV_E_BUFFERTOOSMALL for a text that was cut
    ///     and has no terminator; the result of the encoder's exception.
    std::int32_t convertToAZ(char* out, int size, const char16_t* encoding = nullptr,
                             int* written = nullptr, int* position = nullptr) const;
    /// The narrow form, 0-terminated. @throws ResultException with the result of the conversion.
    OwningArray<char> getBytesAZ(const char16_t* encoding = nullptr) const;

protected:
    /// A store that is at hand for `capacity` units, or null.
    virtual StrBuf1* fastAllocBuffer(unsigned int capacity);

    /// Makes the store writable and at least `needed` units long, and keeps the units of this view
    /// from `keepStart` up to `keepEnd` (-1: the length), at its start.
    /// @return the room counted from the offset.
    int ensureCapacity1(unsigned int needed, int keepStart, int keepEnd);
    /// Encodes from `*position` on. Both counts may be null.
    /// @return QV_E_BUFFERTOOSMALL for a text that was cut; the result of the encoder's exception.
    std::int32_t convertToA(char* out, int size, text::charset::CharToByteConverter& encoder,
                            int* written, int* position) const;
    /// Makes a view of `length` units of `buffer`, and takes a reference.
    void attach(StrBuf1* buffer, int length) noexcept;
    StrBuf1* getBuffer() const noexcept { return buffer_; }

private:
    bool appendInPlace(char16_t unit) noexcept;
    Str1& appendUnits(char16_t unit, int count);
    Str1& appendOwn(int start, int end);
    char16_t* writable() noexcept { return buffer_->getData() + offset_; }
    int growTo(unsigned int capacity, int keepStart, int kept);
    int moveTo(StrBuf1* buffer, int keepStart, int kept) noexcept;
    std::int32_t mapUnits(char16_t (*map)(char16_t) noexcept);
    std::int32_t convertUpTo(int end, char* out, int size,
                             text::charset::CharToByteConverter& encoder, int* written,
                             int* position) const;

    StrBuf1* buffer_ = nullptr;
    int offset_ = 0;
    int length_ = 0;
};

/// Helper for a fast run of appends to one string: it asks for room once and for many.
///
/// Borrows: the string, which must not be changed by other means meanwhile, unless `resync`
/// follows.
class QV_API Str1::Appendor {
public:
    /// `first` and `further` are the units to reserve ahead at the first and at each further
    /// growth.
    Appendor(Str1& target, int first, int further) noexcept;

    /// As `fastAppend`; with no units it only reserves.
    void firstAppend(const char16_t* text, int length);
    void fastAppend(const char16_t* text, int length);
    void fastAppend(char16_t unit) { *checkAvailable(1) = unit; }
    /// Raises the length by `length`. @return the place for these units; null for none of a string
    /// without a store.
    char16_t* checkAvailable(int length);
    /// Reserves for `length` units and for those that the hints say. @return the units that now go
    /// in without another look at the store.
    int setRemCap(int length);
    /// To be called after the string has been changed by other means.
    void resync() noexcept { remaining_ = 0; }

private:
    Str1& target_;
    int remaining_ = 0;
    int first_;
    int further_;
};

/// A light string with a copy of a text.
class QV_API Str1Copy : public Str1 {
public:
    explicit Str1Copy(const String& text) { copy(text); }
    explicit Str1Copy(const char16_t* text, int length = -1) { copy(text, length); }

    using Str1::operator=;
};

/// A light string over an array of the caller's, which must outlive every string that shares it.
class QV_API Str1Wrap : public Str1 {
public:
    Str1Wrap(const char16_t* text, int length, unsigned int capacity);

    using Str1::operator=;
};

/// A light string over text in static storage: it is never written in place.
/// Requires: strings that share its store end before it.
class QV_API Str1Static : public Str1 {
public:
    explicit Str1Static(const char16_t* text, int length = -1) noexcept;
    Str1Static(const Str1Static&) = delete;
    Str1Static& operator=(const Str1Static&) = delete;
    ~Str1Static() override { reset(); }

    using Str1::operator=;

private:
    StrBuf1Static store_;
};

/// Base of the light strings with a store inside the object. A text that moved to the heap comes
/// home when a later one fits. Requires: strings that share the inner store end before it.
class QV_API Str1Embedded : public Str1 {
public:
    Str1Embedded(const Str1Embedded&) = delete;
    Str1Embedded& operator=(const Str1Embedded&) = delete;

    using Str1::operator=;

protected:
    explicit Str1Embedded(StrBuf1& embedded) noexcept : embedded_(&embedded) {}

    StrBuf1* fastAllocBuffer(unsigned int capacity) override;

private:
    StrBuf1* embedded_;
};

/// A light string in an array of the caller's, which it may write.
class QV_API Str1Local : public Str1Embedded {
public:
    Str1Local(const char16_t* text, int length, unsigned int capacity) noexcept;
    Str1Local(const Str1Local&) = delete;
    Str1Local& operator=(const Str1Local&) = delete;
    ~Str1Local() override { reset(); }

    using Str1::operator=;

private:
    StrBuf1Wrap store_;
};

/// A light string with `N` units of its own: it touches the heap only for longer texts.
template <unsigned int N>
class Str1Fixed : public Str1Embedded {
public:
    Str1Fixed() noexcept : Str1Embedded(store_) {
        store_.initStaticInstance(0);
        attach(&store_, 0);
    }
    explicit Str1Fixed(const char16_t* text, int length = -1) : Str1Fixed() { copy(text, length); }
    Str1Fixed(const Str1Fixed&) = delete;
    Str1Fixed& operator=(const Str1Fixed&) = delete;
    ~Str1Fixed() override { reset(); }

    using Str1::operator=;

private:
    StrBuf1Fixed<N> store_;
};

QV_EXTERN_INSTANCE(StrBuf1Fixed<128>);
QV_EXTERN_INSTANCE(Str1Fixed<128>);

} // namespace qv
