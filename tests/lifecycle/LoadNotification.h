#pragma once

#include <cstdint>

/// Speaks to the library, which the program consists of, as the system's loader does.
/// @return the answer.
int notify(std::uint32_t reason, void* reserved = nullptr);

/// The library attached for as long as the object lives, where the system does not do so for a
/// program by itself.
class Attachment {
public:
    Attachment();
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;
    ~Attachment();
};
