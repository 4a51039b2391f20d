#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>

/// Numbers in memory, at any address, as the host holds them or in the order of the network.
namespace qv::detail {

static_assert(std::endian::native == std::endian::little);

template <std::integral Number>
constexpr Number swappedBytes(Number number) noexcept {
    if constexpr (sizeof number == 8) {
        return static_cast<Number>(__builtin_bswap64(static_cast<std::uint64_t>(number)));
    } else if constexpr (sizeof number == 4) {
        return static_cast<Number>(__builtin_bswap32(static_cast<std::uint32_t>(number)));
    } else if constexpr (sizeof number == 2) {
        return static_cast<Number>(__builtin_bswap16(static_cast<std::uint16_t>(number)));
    } else {
        return number;
    }
}

template <std::integral Number>
Number loadNumber(const void* from) noexcept {
    Number number;
    std::memcpy(&number, from, sizeof number);
    return number;
}
template <std::integral Number>
void storeNumber(void* to, Number number) noexcept {
    std::memcpy(to, &number, sizeof number);
}

/// Most significant byte first.
template <std::integral Number>
Number loadBigEndian(const void* from) noexcept {
    return swappedBytes(loadNumber<Number>(from));
}
template <std::integral Number>
void storeBigEndian(void* to, Number number) noexcept {
    storeNumber(to, swappedBytes(number));
}

} // namespace qv::detail
