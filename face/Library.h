#pragma once

#include <cstdint>

/// The life of the library: what happens when the module is loaded and unloaded. Only the system's
/// load notification calls these, under the loader's exclusion.
namespace qv::face {

/// Why the system calls the entry routine.
enum LoadReason : std::uint32_t { ProcessDetach = 0, ProcessAttach = 1 };

/// Brings the library up on the first call; further calls only count.
/// @return 0, or the result of the step that failed; what came up before it stays up.
std::int32_t startLibrary() noexcept;
/// Takes the library down on the call that matches the first start.
/// @return 0; QV_E_FAIL where the library is not up.
std::int32_t endLibrary() noexcept;

/// The word that tells this module from others, wherever the platform layer acts on its behalf.
std::uint64_t identity() noexcept;

/// The library's entry routine. At the end of the process `reserved` is not null where the system
/// has ended all other threads. @return 1, always: the library never refuses to load.
int entry(void* instance, std::uint32_t reason, void* reserved) noexcept;

} // namespace qv::face
