#pragma once

#include <cstring>

namespace support {

/// The operation table that an interface pointer points at, as a record of functions.
template <class Table>
const Table* tableOf(const void* face) {
    const Table* table = nullptr;
    std::memcpy(&table, face, sizeof table);
    return table;
}

} // namespace support
