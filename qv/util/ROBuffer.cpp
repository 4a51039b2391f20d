#include "qv/util/ROBuffer.h"

#include "qv/Exceptions.h"

namespace qv::util {

template <class Unit>
ROBuffer<Unit>::ROBuffer(const Unit* data, int length, int) noexcept
    : data_(data), length_(length) {}

template <class Unit>
Unit* ROBuffer<Unit>::getWriteLock(int) {
    throw ReadOnlyException();
}

template <class Unit>
Unit* ROBuffer<Unit>::ensureCapacity(int) {
    throw ReadOnlyException();
}

template <class Unit>
void ROBuffer<Unit>::releaseWriteLock(int) {
    throw ReadOnlyException();
}

template <class Unit>
std::int32_t ROBuffer<Unit>::GetReadLock(const Unit** data) const noexcept {
    *data = data_;
    return QV_S_OK;
}

template <class Unit>
std::int32_t ROBuffer<Unit>::ReleaseReadLock() const noexcept {
    return QV_S_OK;
}

template <class Unit>
short ROBuffer<Unit>::IsWritable() const noexcept {
    return 0;
}

template <class Unit>
std::int32_t ROBuffer<Unit>::GetWriteLock(int, Unit** data) noexcept {
    *data = nullptr;
    return QV_E_NOTIMPL;
}

template <class Unit>
std::int32_t ROBuffer<Unit>::EnsureCapacity(int, Unit** data) noexcept {
    *data = nullptr;
    return QV_E_NOTIMPL;
}

template <class Unit>
std::int32_t ROBuffer<Unit>::ReleaseWriteLock(int) noexcept {
    return QV_E_NOTIMPL;
}

template <class Unit>
std::int32_t ROBuffer<Unit>::FreeExtra() noexcept {
    return QV_S_OK;
}

template class ROBuffer<signed char>;
template class ROBuffer<char16_t>;

} // namespace qv::util
