#pragma once

#include "qv/Reference.h"
#include "qv/StringLiteral.h"
#include "qv/util/AbstractBuffer.h"

#include <array>
#include <compare>
#include <concepts>
#include <cstdarg>
#include <string>

namespace qv {

/// A text of UTF-16 units, used by value everywhere, and a character buffer at the same time: it
/// can be handed to any operation that fills or reads an IQVCharBuffer.
///
/// Sharing: the characters live in a counted inner buffer. Copy construction and returning by value
/// share it; the first write by any sharer separates that sharer. Assignment copies the characters
/// into this string (`setAddRef` is the way to share by assignment). Literals and wrapped texts are
/// read where they stand, until a write copies them. Empty strings cost no allocation.
///
/// The inner buffer is 0-terminated and its length counts the terminator. Positions and lengths
/// count units; -1 as a length means up to the terminator, -1 as a position the end, -1 as a count
/// all the rest. A text argument must not point into this string's own storage.
///
/// Every operation that writes throws std::bad_alloc when memory runs out, and ResultException with
/// the inner buffer's result where that refuses.
///
/// Thread safety: one thread at a time. Strings that share an inner buffer may be used by several
/// threads.
class QV_API String : public util::AbstractCharBuffer {
public:
    /// How a source is taken. Other bits are not used.
    enum AcquireMode {
        ACQUIRE_COPY = 0,      ///< copy the characters
        ACQUIRE_SHARE = 1,     ///< a reference to the source's buffer; ranges are ignored
        ACQUIRE_WRAP = 2,      ///< read the source's memory, which the caller keeps alive
        ACQUIRE_COPY_UPPER = 3 ///< copy, then upper case
    };
    /// Where `trim` works; a bit mask.
    enum TrimType { TRIM_LEFT = 1, TRIM_RIGHT = 2, TRIM_BOTH = 3 };

    class AnsiBytes;

    String();
    /// Shares the other's characters.
    String(const String& other);
    /// Leaves `other` empty.
    String(String&& other) noexcept;
    String(const STRUCT_QV_STR_LIT_INFO& literal);
    /// An empty text with room for `capacity` units.
    explicit String(int capacity);
    /// Copies the characters under a read lock.
    explicit String(util::ICharBuffer* source);
    String(const char16_t* text, int length = -1, int capacity = 0);
    explicit String(char16_t unit, int count = 1, int capacity = 0);
    /// Decodes bytes; a null encoding is the default encoding.
    /// @throws text::charset::UnknownEncodingException.
    String(const signed char* bytes, int length, const char16_t* encoding = nullptr,
           int capacity = 0);
    /// The range from `start` up to but not including `end`.
    String(AcquireMode mode, const String& source, int start, int end = -1, int capacity = 0);
    String(AcquireMode mode, util::ICharBuffer* source);
    String(AcquireMode mode, const char16_t* text, int length = -1, int capacity = 0);
    /// The system's own wide text: UTF-16 where its unit has 16 bits, otherwise UTF-32, of which
    /// what is no character becomes U+FFFD.
    explicit String(const wchar_t* text, int length = -1);
    ~String() noexcept override;

    int compareTo(const Object& other) const override;
    bool equals(const Object& other) const override;
    std::uint32_t hashCode() const override;
    String toString() const override;

    // The native buffer face: the component operation of this object, whose failure throws
    // ResultException.
    int getLength() const override;
    const char16_t* getData() const override;
    const char16_t* getReadLock() const override;
    void releaseReadLock() const override;
    /// Always true: a write separates first.
    bool isWritable() const override;
    char16_t* getWriteLock(int capacity) override;
    char16_t* ensureCapacity(int capacity) override;
    /// A writer need not write the terminator; one that did may pass -1 for the length.
    void releaseWriteLock(int length) override;
    void freeExtra() override;

    // The component face: a filter over the inner buffer. EnsureCapacity does not separate: it is
    // for use under a write lock.
    int GetLength() const noexcept override;
    const char16_t* GetData() const noexcept override;
    std::int32_t GetReadLock(const char16_t** data) const noexcept override;
    std::int32_t ReleaseReadLock() const noexcept override;
    short IsWritable() const noexcept override;
    std::int32_t GetWriteLock(int capacity, char16_t** data) noexcept override;
    std::int32_t EnsureCapacity(int capacity, char16_t** data) noexcept override;
    std::int32_t ReleaseWriteLock(int length) noexcept override;
    std::int32_t FreeExtra() noexcept override;

    // --- Assignment: copies characters, never shares ---

    String& operator=(const String& other);
    /// Copies unless `other` is the only owner of memory that it may give away, and is empty then.
    String& operator=(String&& other);
    String& operator=(const char16_t* text);
    String& operator=(char16_t unit);
    /// Decodes from the default encoding.
    String& operator=(const char* bytes);

    /// Shares the other's inner buffer.
    /// Kept: the narrow form made last stays until the next write, here and where `setTo` wraps a
    /// text; callers rely on its pointer.
    String& setAddRef(const String& other);
    String& setTo(const char16_t* text, int length = -1);
    String& setTo(char16_t unit, int count);
    String& setTo(const char* bytes, int length = -1, const char16_t* encoding = nullptr);
    String& setTo(AcquireMode mode, const String& source, int start, int end = -1);
    String& setTo(AcquireMode mode, const char16_t* text, int length = -1);

    // --- Editing ---

    /// Puts the units of `text` from `textStart` on in place of `count` units at `position`.
    String& replace(int position, int count, const char16_t* text, int textLength = -1,
                    int textStart = 0);
    String& replace(int position, int count, const String& text, int textStart = 0);
    String& replace(int position, int count, char16_t unit, int repeat);

    String& operator+=(const String& text);
    String& operator+=(const char16_t* text);
    String& operator+=(char16_t unit);
    String& append(const String& text);
    String& append(const char16_t* text, int length = -1);
    String& append(char16_t unit, int count = 1);
    String& prepend(const String& text);
    String& prepend(const char16_t* text, int length = -1);
    String& prepend(char16_t unit, int count = 1);
    String& insert(int position, const String& text);
    String& insert(int position, const char16_t* text, int length = -1);
    String& insert(int position, char16_t unit, int count = 1);
    String& remove(int position, int count = -1);
    void clear();
    /// Cuts the text to `length`, or fills it up with `fill`.
    void resize(int length, char16_t fill = u' ');

    /// Requires: `index` within the text, here and in `setCharAt`.
    char16_t getCharAt(int index) const;
    char16_t operator[](int index) const { return getCharAt(index); }
    void setCharAt(int index, char16_t unit);
    /// A copy of the range from `start` up to but not including `end`; -1 is the end.
    String substring(int start, int end = -1) const;

    void toLower();
    void toUpper();
    /// Every `from` becomes `to`.
    void translate(char16_t from, char16_t to);
    /// Kept: these do nothing; callers may rely on the text staying as it is.
    void translate(const char16_t* from, int fromLength, const char16_t* to, int toLength);
    void translate(const String& from, const String& to);
    void translate(const char16_t* from, const char16_t* to);

    /// Trims blanks, tabs, carriage returns and line feeds.
    void trim(TrimType type = TRIM_BOTH);
    /// Trims the units of a set. Kept: the set ends at its terminator; `length` does not shorten
    /// it.
    void trim(const char16_t* set, int length, TrimType type);
    void trim(const String& set, TrimType type);
    void trim(char16_t unit, TrimType type);

    // --- Comparison and search ---

    /// Negative, 0 or positive by unit order, then by length. Not reduced to a sign: texts that
    /// differ in length alone give the difference.
    int compare(const String& text, bool ignoreCase = false) const;
    int compare(const char16_t* text, int length = -1, bool ignoreCase = false) const;
    bool equals(const String& text, bool ignoreCase = false) const;
    bool equals(const char16_t* text, int length = -1, bool ignoreCase = false) const;
    bool startsWith(const String& text, bool ignoreCase = false) const;
    bool startsWith(const char16_t* text, int length = -1, bool ignoreCase = false) const;
    bool endsWith(const String& text, bool ignoreCase = false) const;
    bool endsWith(const char16_t* text, int length = -1, bool ignoreCase = false) const;
    /// An empty text is never contained: it is never found.
    bool contains(const String& text, bool ignoreCase = false) const;
    bool contains(const char16_t* text, int length = -1, bool ignoreCase = false) const;

    int regionCompare(int start, int count, const String& text, int textStart,
                      bool ignoreCase = false) const;
    int regionCompare(int start, int count, const char16_t* text, int length, int textStart,
                      bool ignoreCase = false) const;
    bool regionMatches(int start, int count, const String& text, int textStart,
                       bool ignoreCase = false) const;
    bool regionMatches(int start, int count, const char16_t* text, int length, int textStart,
                       bool ignoreCase = false) const;

    /// First match at or after `from`, or -1. An empty text is never found.
    int indexOf(const String& text, int from = 0, bool ignoreCase = false) const;
    int indexOf(const char16_t* text, int length = -1, int from = 0, bool ignoreCase = false) const;
    int indexOf(char16_t unit, int from = 0, bool ignoreCase = false) const;
    /// Last match that ends at `from` or before, or -1; -1 as `from` is the last unit.
    int lastIndexOf(const String& text, int from = -1, bool ignoreCase = false) const;
    int lastIndexOf(const char16_t* text, int length = -1, int from = -1,
                    bool ignoreCase = false) const;
    int lastIndexOf(char16_t unit, int from = -1, bool ignoreCase = false) const;

    /// First index at or after `from` whose unit is in the set, or -1. An empty set finds nothing,
    /// here and in the three below. Kept: that holds for the Not forms too.
    int findFirstOf(const String& set, int from = 0, bool ignoreCase = false) const;
    int findFirstOf(const char16_t* set, int length = -1, int from = 0,
                    bool ignoreCase = false) const;
    int findFirstNotOf(const String& set, int from = 0, bool ignoreCase = false) const;
    int findFirstNotOf(const char16_t* set, int length = -1, int from = 0,
                       bool ignoreCase = false) const;
    int findFirstOfCase(const String& set, int from = 0) const;
    int findFirstOfCase(const char16_t* set, int length = -1, int from = 0) const;
    int findLastOf(const String& set, int from = -1, bool ignoreCase = false) const;
    int findLastOf(const char16_t* set, int length = -1, int from = -1,
                   bool ignoreCase = false) const;
    int findLastNotOf(const String& set, int from = -1, bool ignoreCase = false) const;
    int findLastNotOf(const char16_t* set, int length = -1, int from = -1,
                      bool ignoreCase = false) const;

    /// The sampled hash of the text: long texts hash in about 32 steps.
    std::uint32_t hashCode(bool ignoreCase) const;

    // --- Narrow text; a null encoding is the default encoding ---

    /// The 0-terminated narrow form, held by this string until its next write or a call with
    /// another encoding. The terminator is as wide as the encoding's widest character.
    /// @throws text::charset::UnknownEncodingException, as all of these.
    const char* getBytes(const char16_t* encoding = nullptr) const;
    const char* getBytes(std::nullptr_t) const { return getBytes(); }
    /// Into a buffer, terminator included in its length.
    void getBytes(util::IByteBuffer* out, const char16_t* encoding = nullptr) const;
    /// Into memory of the caller's, cut where it is too small.
    /// @return bytes written, terminator included.
    std::int32_t getBytes(signed char* out, std::int32_t size,
                          const char16_t* encoding = nullptr) const;
    std::int32_t getBytes(char* out, std::int32_t size, const char16_t* encoding = nullptr) const;
    /// `getBytes` under a read lock that the caller ends with `releaseReadLock`.
    const char* getBytesReadLock(const char16_t* encoding = nullptr) const;

    /// The wide forms and the narrow forms; the argument only selects.
    const char16_t* getDataT(int) const { return getData(); }
    const char* getDataT(bool) const { return getBytes(); }
    const char16_t* getReadLockT(int) const { return getReadLock(); }
    const char* getReadLockT(bool) const { return getBytesReadLock(); }

    /// The units as the system's own wide text, on systems whose unit has 16 bits.
    template <class Wide = wchar_t>
    requires(sizeof(Wide) == sizeof(char16_t)) const Wide* getWideData() const {
        return reinterpret_cast<const Wide*>(getData());
    }

    // --- Formatting ---

    /// Fills this string from a pattern whose placeholders are "{0}", "{1}" and so on, without a
    /// gap: the scan ends at the first index that does not occur. An argument is a 0-terminated
    /// text and is never expanded itself; a placeholder without an argument stays as it stands.
    template <class... Arguments>
    requires(std::convertible_to<const Arguments&, const char16_t*>&&...) const String& format(
        const char16_t* pattern, int length, const Arguments&... arguments) {
        const std::array<const char16_t*, sizeof...(Arguments)> texts{arguments...};
        return formatTexts(pattern, length, texts.data(), static_cast<int>(texts.size()));
    }
    template <class... Arguments>
    requires(std::convertible_to<const Arguments&, const char16_t*>&&...) const String& format(
        String pattern, const Arguments&... arguments) {
        return format(pattern.getData(), pattern.getLength(), arguments...);
    }
    /// The same with the system's variable argument list of `const char16_t*`.
    /// Requires: as many arguments as there are consecutive indices in the pattern.
    const String& formatv(const char16_t* pattern, int length, va_list arguments);
    const String& formatv(String pattern, va_list arguments);

    /// The text of a value, in the form of the runtime's formats "%d", "%u", "%g" and their like.
    /// The decimal separator of `float` and `double` is that of the process's runtime locale.
    static String valueOf(int value);
    static String valueOf(unsigned int value);
    static String valueOf(long value);
    static String valueOf(unsigned long value);
    static String valueOf(long long value);
    static String valueOf(unsigned long long value);
    static String valueOf(float value);
    static String valueOf(double value);
    /// "true" or "false".
    static String valueOf(bool value);
    static String valueOf(char16_t value);

    friend bool operator==(const String& left, const String& right) { return left.equals(right); }
    friend bool operator==(const String& left, const char16_t* right) { return left.equals(right); }
    friend std::weak_ordering operator<=>(const String& left, const String& right) {
        return left.compare(right) <=> 0;
    }
    friend String operator+(const String& left, const String& right) {
        String sum(left);
        sum.append(right);
        return sum;
    }

protected:
    /// Makes this string the only owner of a writable inner buffer of at least `minCapacity` units,
    /// terminator included: the one point of separation.
    void copyOnWrite(int minCapacity);
    /// Replaces the text by decoded bytes, in a buffer of at least `capacity` units.
    String& internalSetTo(const char* bytes, int length, const char16_t* encoding, int capacity);

private:
    class Reader;
    class Writer;

    /// Takes `buffer`, counted for this string, in place of the one it has.
    void adopt(IQVCharBuffer* buffer) noexcept;
    void dropNarrowCache() noexcept {
        if (narrowCache_ != nullptr) {
            releaseNarrowCache();
        }
    }
    void releaseNarrowCache() noexcept;
    bool appendInPlace(char16_t unit) noexcept;
    String& appendGrowing(char16_t unit, int count);
    const String& formatTexts(const char16_t* pattern, int length, const char16_t* const* texts,
                              int count);

    IQVCharBuffer* buffer_;
    mutable AnsiBytes* narrowCache_ = nullptr;
};

} // namespace qv

/// Makes strings by value, for callers that name the library's classes by their component names.
class QV_API CQVString {
public:
    /// Shares the characters.
    static qv::String create(const qv::String& text);
    /// Decodes; a null encoding is the default encoding.
    static qv::String create(const signed char* bytes, int length, const char16_t* encoding,
                             int capacity);
    /// Copies the units.
    static qv::String create(const char16_t* text, int length, int capacity);
};

/// Copies the characters of `source` into `target`, without a terminator: the common way of filling
/// an out-parameter.
/// @throws ResultException with the result of a lock that fails.
QV_FLAT_API std::int32_t QVCopyCharBuffer(IQVCharBuffer* target, IQVCharBuffer* source);
