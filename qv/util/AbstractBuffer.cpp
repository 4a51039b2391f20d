#include "qv/util/AbstractBuffer.h"

#include "qv/ErrorRule.h"

namespace qv::util {

namespace {

// The buffer interface's table stands right behind the qv::Object part.
template <class Unit>
constexpr qvcom::InterfaceData bufferMap[] = {
    qvcom::offsetRow(detail::BufferInterface<Unit>::iid, sizeof(Object)),
    qvcom::chainRow(&qvcom::chainToObject),
    qvcom::endRow(),
};

} // namespace

template <class Unit>
std::int32_t AbstractBuffer<Unit>::QueryInterface(const GUID& iid, void** out) noexcept {
    return qvcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

template <class Unit>
int AbstractBuffer<Unit>::GetLength() const {
    return getLength();
}

template <class Unit>
const Unit* AbstractBuffer<Unit>::GetData() const {
    return getData();
}

template <class Unit>
std::int32_t AbstractBuffer<Unit>::GetReadLock(const Unit** data) const noexcept {
    *data = nullptr;
    return toResult([&] { *data = getReadLock(); });
}

template <class Unit>
std::int32_t AbstractBuffer<Unit>::ReleaseReadLock() const noexcept {
    return toResult([&] { releaseReadLock(); });
}

template <class Unit>
short AbstractBuffer<Unit>::IsWritable() const {
    return static_cast<short>(isWritable());
}

template <class Unit>
std::int32_t AbstractBuffer<Unit>::GetWriteLock(int capacity, Unit** data) noexcept {
    *data = nullptr;
    return toResult([&] { *data = getWriteLock(capacity); });
}

template <class Unit>
std::int32_t AbstractBuffer<Unit>::EnsureCapacity(int capacity, Unit** data) noexcept {
    *data = nullptr;
    return toResult([&] { *data = ensureCapacity(capacity); });
}

template <class Unit>
std::int32_t AbstractBuffer<Unit>::ReleaseWriteLock(int length) noexcept {
    return toResult([&] { releaseWriteLock(length); });
}

template <class Unit>
std::int32_t AbstractBuffer<Unit>::FreeExtra() noexcept {
    return toResult([&] { freeExtra(); });
}

template <class Unit>
const qvcom::InterfaceData* AbstractBuffer<Unit>::GetComIntfMap() noexcept {
    return bufferMap<Unit>;
}

template class AbstractBuffer<signed char>;
template class AbstractBuffer<char16_t>;

} // namespace qv::util
