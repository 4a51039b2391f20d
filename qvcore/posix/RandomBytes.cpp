#include "qvcore/common/RandomBytes.h"

#include "qvcore/NativeResult.h"

#include <cerrno>
#include <sys/random.h>

namespace qv::core {

std::int32_t fillWithRandomBytes(void* memory, std::size_t size) noexcept {
    auto* bytes = static_cast<char*>(memory);
    while (size > 0) {
        const ssize_t count = getrandom(bytes, size, 0);
        if (count < 0 && errno != EINTR) {
            return QVResultFromNative(static_cast<std::uint32_t>(errno));
        }
        if (count > 0) {
            bytes += count;
            size -= static_cast<std::size_t>(count);
        }
    }
    return 0;
}

} // namespace qv::core
