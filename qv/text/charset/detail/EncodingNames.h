#pragma once

#include "qv/Str1HashMap.h"
#include "qv/text/charset/EncodingInfo.h"

#include <span>
#include <vector>

namespace qv::text::charset::detail {

/// What the library knows of encodings that have a code page: their rows, and every name of each.
///
/// Thread safety: immutable, once library start has built it.
class EncodingNames {
public:
    EncodingNames();
    EncodingNames(const EncodingNames&) = delete;
    EncodingNames& operator=(const EncodingNames&) = delete;

    /// Makes the one that `current` gives, or replaces it.
    /// @throws std::bad_alloc.
    static void build();
    static void free() noexcept;
    /// Borrows: what is there between library start and library end; null before and after.
    static const EncodingNames* current() noexcept;

    std::span<const QVEncInfo> rows() const noexcept { return rows_; }
    /// The row of a name, an alias or a code page in decimal, without regard to case; null for
    /// none.
    /// @throws std::bad_alloc.
    const QVEncInfo* find(const char16_t* name) const;
    const QVEncInfo* find(std::uint32_t codePage) const noexcept;

private:
    void addName(const char16_t* name, const QVEncInfo& row);
    void addAlias(const char16_t* alias, const char16_t* target);

    std::vector<QVEncInfo> rows_;
    Str1HashMap<void*> byName_;
};

} // namespace qv::text::charset::detail
