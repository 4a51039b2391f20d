#include "qv/String.h"

#include "qv/AnsiBytes.h"
#include "qv/Exceptions.h"
#include "qv/StringLocks.h"
#include "qv/detail/SampledHash.h"
#include "qv/util/BufferLocks.h"

#include <algorithm>
#include <limits>

namespace qv {

namespace {

constexpr char16_t emptyText[] = u"";

/// The buffer of all empty strings, made by the library's static constructors and kept for the life
/// of the process, so that a string in any later static destructor still finds it.
util::ROCharBuffer* sharedEmpty = nullptr;

/// Its storage is no object of static duration: nothing destroys it.
alignas(util::ROCharBuffer) std::byte sharedEmptyStorage[sizeof(util::ROCharBuffer)];

[[maybe_unused]] const bool sharedEmptyMade = [] {
    sharedEmpty = new (sharedEmptyStorage) util::ROCharBuffer(emptyText, 1);
    sharedEmpty->AddRef();
    return true;
}();

/// The empty buffer, counted for the caller. Static constructors that run earlier get one of their
/// own.
IQVCharBuffer* takeEmptyBuffer() {
    IQVCharBuffer* const buffer =
        sharedEmpty != nullptr ? sharedEmpty : new util::ROCharBuffer(emptyText, 1);
    buffer->AddRef();
    return buffer;
}

/// Counts on an inner buffer, without the detour through its tables where its class is known:
/// copying and dropping strings is what programs do most.
void addReference(IQVCharBuffer* buffer) noexcept {
    if (auto* own = detail::exactly<util::RWCharBuffer>(buffer)) {
        own->ComObject::AddRef();
    } else {
        buffer->AddRef();
    }
}

void release(IQVCharBuffer* buffer) noexcept {
    if (auto* own = detail::exactly<util::RWCharBuffer>(buffer)) {
        // The one string that holds it belongs to this thread: no other can take a reference
        // meanwhile, and the locked operation, which costs as much as all the rest, is saved.
        if (own->GetRefCount() == 1) {
            own->ReleaseLast();
        } else {
            own->ComObject::Release();
        }
    } else {
        buffer->Release();
    }
}

template <class Buffer>
IQVCharBuffer* counted(Buffer* buffer) {
    buffer->AddRef();
    return buffer;
}

/// Adds room for the terminator. @throws std::bad_alloc where that is no `int`.
int withTerminator(int length) {
    if (length == std::numeric_limits<int>::max()) {
        throw std::bad_alloc();
    }
    return length + 1;
}

/// A new buffer, counted for the caller, with room for `length` units and `capacity` units in all.
IQVCharBuffer* takeNewBuffer(const char16_t* units, int length, int capacity) {
    const int innerLength = withTerminator(length);
    Reference buffer = util::RWCharBuffer::makeWhole(std::max(capacity, innerLength));
    char16_t* const target = buffer->util::RWCharBuffer::ensureCapacity(innerLength);
    std::copy_n(units, length, target);
    target[length] = 0;
    buffer->util::RWCharBuffer::releaseWriteLock(innerLength);
    return buffer.detach();
}

IQVCharBuffer* takeCopy(const char16_t* text, int length, int capacity) {
    if (length < 1 && capacity < 1) {
        return takeEmptyBuffer();
    }
    return takeNewBuffer(text, std::max(length, 0), capacity);
}

IQVCharBuffer* takeWrapped(const char16_t* text, int length) {
    if (text == nullptr) {
        return takeEmptyBuffer();
    }
    return counted(new util::ROCharBuffer(text, withTerminator(length)));
}

IQVCharBuffer* asCharBuffer(util::ICharBuffer* source) {
    return static_cast<IQVCharBuffer*>(source);
}

/// A range of a text, with its ends cut to what there is.
struct Range {
    Range(int from, int to, int length)
        : end(to < 0 || to > length ? length : to), start(std::clamp(from, 0, end)) {}
    int count() const { return end - start; }

    int end;
    int start;
};

} // namespace

String::String() : buffer_(takeEmptyBuffer()) {}

String::String(const String& other) : util::AbstractCharBuffer(), buffer_(other.buffer_) {
    addReference(buffer_);
}

String::String(String&& other) noexcept : buffer_(std::exchange(other.buffer_, takeEmptyBuffer())) {
    other.dropNarrowCache();
}

String::String(const STRUCT_QV_STR_LIT_INFO& literal)
    : buffer_(takeWrapped(literal.text, literal.length)) {}

String::String(int capacity)
    : buffer_(capacity < 1 ? takeEmptyBuffer() : takeNewBuffer(u"", 0, capacity)) {}

String::String(util::ICharBuffer* source) : String(ACQUIRE_COPY, source) {}

String::String(const char16_t* text, int length, int capacity)
    : buffer_(takeCopy(text, detail::measured(text, length), capacity)) {}

String::String(char16_t unit, int count, int capacity) : String(std::max(capacity, 0)) {
    if (count > 0) {
        replace(0, -1, unit, count);
    }
}

String::String(const signed char* bytes, int length, const char16_t* encoding, int capacity)
    : String() {
    internalSetTo(reinterpret_cast<const char*>(bytes), length, encoding, capacity);
}

String::String(AcquireMode mode, const String& source, int start, int end, int capacity)
    : String() {
    if (mode == ACQUIRE_SHARE) {
        setAddRef(source);
        return;
    }
    const Reader reader(source);
    const Range range(start, end, reader.length());
    if (range.count() == 0 && capacity == 0) {
        return;
    }
    const char16_t* const units = reader.units() + range.start;
    if (mode == ACQUIRE_WRAP) {
        adopt(takeWrapped(units, range.count()));
        return;
    }
    adopt(takeNewBuffer(units, range.count(), capacity));
    if (mode == ACQUIRE_COPY_UPPER) {
        toUpper();
    }
}

String::String(AcquireMode mode, util::ICharBuffer* source) : String() {
    if (mode == ACQUIRE_SHARE) {
        adopt(counted(asCharBuffer(source)));
        return;
    }
    const util::BufferReadLock<char16_t> lock(*source);
    const int length = source->GetLength();
    if (length < 1) {
        return;
    }
    if (mode == ACQUIRE_WRAP) {
        adopt(takeWrapped(lock.getData(), length));
        return;
    }
    adopt(takeNewBuffer(lock.getData(), length, 0));
    if (mode == ACQUIRE_COPY_UPPER) {
        toUpper();
    }
}

String::String(AcquireMode mode, const char16_t* text, int length, int capacity)
    : buffer_(mode == ACQUIRE_WRAP ? takeWrapped(text, detail::measured(text, length))
                                   : takeCopy(text, detail::measured(text, length), capacity)) {
    if (mode == ACQUIRE_COPY_UPPER) {
        toUpper();
    }
}

String::~String() noexcept {
    dropNarrowCache();
    release(buffer_);
}

// --- qv::Object ---

int String::compareTo(const Object& other) const {
    if (this == &other) {
        return 0;
    }
    const auto* const text = dynamic_cast<const String*>(&other);
    if (text == nullptr) {
        throw CastFailedException();
    }
    return compare(*text, false);
}

bool String::equals(const Object& other) const {
    if (this == &other) {
        return true;
    }
    const auto* const text = dynamic_cast<const String*>(&other);
    return text != nullptr && equals(*text, false);
}

std::uint32_t String::hashCode() const { return hashCode(false); }

std::uint32_t String::hashCode(bool ignoreCase) const {
    const Reader reader(*this);
    return detail::sampledHash(reader.units(), reader.length(), ignoreCase);
}

String String::toString() const { return *this; }

// --- Native buffer face ---

int String::getLength() const { return GetLength(); }

const char16_t* String::getData() const { return GetData(); }

const char16_t* String::getReadLock() const {
    const char16_t* units = nullptr;
    throwIfFailed(GetReadLock(&units));
    return units;
}

void String::releaseReadLock() const { throwIfFailed(ReleaseReadLock()); }

bool String::isWritable() const { return true; }

char16_t* String::getWriteLock(int capacity) {
    char16_t* units = nullptr;
    throwIfFailed(GetWriteLock(capacity, &units));
    return units;
}

char16_t* String::ensureCapacity(int capacity) {
    char16_t* units = nullptr;
    throwIfFailed(EnsureCapacity(capacity, &units));
    return units;
}

void String::releaseWriteLock(int length) { throwIfFailed(ReleaseWriteLock(length)); }

void String::freeExtra() { throwIfFailed(FreeExtra()); }

// --- Component buffer face ---

int String::GetLength() const noexcept {
    if (const auto* own = detail::exactly<util::RWCharBuffer>(buffer_)) {
        return std::max(own->util::RWCharBuffer::getLength() - 1, 0);
    }
    return std::max(buffer_->GetLength() - 1, 0);
}

const char16_t* String::GetData() const noexcept {
    if (const auto* own = detail::exactly<util::RWCharBuffer>(buffer_)) {
        return own->util::RWCharBuffer::getData();
    }
    return buffer_->GetData();
}

std::int32_t String::GetReadLock(const char16_t** data) const noexcept {
    *data = nullptr;
    return buffer_->GetReadLock(data);
}

std::int32_t String::ReleaseReadLock() const noexcept { return buffer_->ReleaseReadLock(); }

short String::IsWritable() const noexcept { return 1; }

std::int32_t String::GetWriteLock(int capacity, char16_t** data) noexcept {
    *data = nullptr;
    return toResult([&] {
        dropNarrowCache();
        copyOnWrite(withTerminator(capacity));
        throwIfFailed(buffer_->GetWriteLock(capacity + 1, data));
    });
}

std::int32_t String::EnsureCapacity(int capacity, char16_t** data) noexcept {
    *data = nullptr;
    if (capacity == std::numeric_limits<int>::max()) {
        return QV_E_OUTOFMEMORY;
    }
    return buffer_->EnsureCapacity(capacity + 1, data);
}

std::int32_t String::ReleaseWriteLock(int length) noexcept {
    if (length < 0) {
        length = QVStrLenW_32(buffer_->GetData());
    } else {
        char16_t* units = nullptr;
        const std::int32_t result = EnsureCapacity(length, &units);
        if (result < 0) {
            return result;
        }
        units[length] = 0;
    }
    return buffer_->ReleaseWriteLock(length + 1);
}

std::int32_t String::FreeExtra() noexcept { return buffer_->FreeExtra(); }

// --- Assignment and sharing ---

String& String::operator=(const String& other) {
    return this == &other ? *this : replace(0, -1, other, 0);
}

String& String::operator=(String&& other) {
    auto* const own = detail::exactly<util::RWCharBuffer>(other.buffer_);
    if (this == &other || own == nullptr || own->GetRefCount() != 1 ||
        !detail::givesWay(buffer_, own->getCapacity())) {
        return *this = static_cast<const String&>(other);
    }
    dropNarrowCache();
    other.dropNarrowCache();
    adopt(std::exchange(other.buffer_, takeEmptyBuffer()));
    return *this;
}

String& String::operator=(const char16_t* text) { return replace(0, -1, text, -1, 0); }

String& String::operator=(char16_t unit) { return replace(0, -1, unit, 1); }

String& String::operator=(const char* bytes) { return setTo(bytes, -1, nullptr); }

String& String::setAddRef(const String& other) {
    adopt(counted(other.buffer_));
    return *this;
}

String& String::setTo(const char16_t* text, int length) { return replace(0, -1, text, length, 0); }

String& String::setTo(char16_t unit, int count) { return replace(0, -1, unit, count); }

String& String::setTo(AcquireMode mode, const String& source, int start, int end) {
    if (mode == ACQUIRE_SHARE) {
        return setAddRef(source);
    }
    if (&source == this) {
        return setTo(mode, String(source), start, end);
    }
    const Reader reader(source);
    const Range range(start, end, reader.length());
    return setTo(mode, reader.units() + range.start, range.count());
}

String& String::setTo(AcquireMode mode, const char16_t* text, int length) {
    length = detail::measured(text, length);
    if (mode == ACQUIRE_WRAP) {
        adopt(takeWrapped(text, length));
        return *this;
    }
    replace(0, -1, text, length, 0);
    if (mode == ACQUIRE_COPY_UPPER) {
        toUpper();
    }
    return *this;
}

String String::substring(int start, int end) const {
    const Reader reader(*this);
    const Range range(start, end, reader.length());
    return String(reader.units() + range.start, range.count());
}

// --- Separation ---

void String::copyOnWrite(int minCapacity) {
    if (auto* own = detail::exactly<util::RWCharBuffer>(buffer_)) {
        if (own->GetRefCount() < 2) {
            return;
        }
    } else {
        // The only way to read a count through the interface.
        buffer_->AddRef();
        if (buffer_->Release() < 2 && buffer_->IsWritable() != 0) {
            return;
        }
    }
    IQVCharBuffer* separate = nullptr;
    {
        const util::BufferReadLock<char16_t> lock(*buffer_);
        const int innerLength = buffer_->GetLength();
        Reference copy = util::RWCharBuffer::makeWhole(std::max(innerLength, minCapacity));
        std::copy_n(lock.getData(), innerLength, copy->util::RWCharBuffer::ensureCapacity(0));
        copy->util::RWCharBuffer::releaseWriteLock(innerLength);
        separate = copy.detach();
    }
    adopt(separate);
    dropNarrowCache();
}

void String::adopt(IQVCharBuffer* buffer) noexcept { release(std::exchange(buffer_, buffer)); }

void String::releaseNarrowCache() noexcept { std::exchange(narrowCache_, nullptr)->Release(); }

} // namespace qv

qv::String CQVString::create(const qv::String& text) { return text; }

qv::String CQVString::create(const signed char* bytes, int length, const char16_t* encoding,
                             int capacity) {
    return qv::String(bytes, length, encoding, capacity);
}

qv::String CQVString::create(const char16_t* text, int length, int capacity) {
    return qv::String(text, length, capacity);
}

std::int32_t QVCopyCharBuffer(IQVCharBuffer* target, IQVCharBuffer* source) {
    const int length = source->GetLength();
    qv::util::BufferWriteLock<char16_t> writing(*target, length);
    {
        const qv::util::BufferReadLock<char16_t> reading(*source);
        std::copy_n(reading.getData(), length, writing.getData());
    }
    writing.setLength(length);
    return writing.release();
}
