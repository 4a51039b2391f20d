#include "qv/sync/FakeMutex.h"

namespace qv::sync {

FakeMutex::FakeMutex(const char*, std::uint32_t) noexcept {}

} // namespace qv::sync
