#pragma once

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace support {

/// The index of a virtual member in its class's operation table. Both systems' compilers store a
/// pointer to a virtual member as the byte offset of its slot plus one.
template <class Member>
std::ptrdiff_t slotOf(Member member) {
    std::ptrdiff_t word = 0;
    static_assert(sizeof member >= sizeof word);
    std::memcpy(&word, &member, sizeof word);
    EXPECT_EQ(word % 2, 1) << "not a virtual member";
    return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

/// Expects that the slots stand one behind the other.
inline void expectConsecutive(const std::vector<std::ptrdiff_t>& slots) {
    for (std::size_t i = 1; i < slots.size(); ++i) {
        EXPECT_EQ(slots[i], slots[i - 1] + 1) << "operation " << i;
    }
}

} // namespace support
