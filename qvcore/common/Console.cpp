#include "qvcore/Console.h"

#include "qv/Results.h"

std::int32_t QVConsoleReadKey(std::int32_t* key) noexcept {
    if (key == nullptr) {
        return qv::QV_E_POINTER;
    }
    return QVConsoleReadKeys(
        [](void* context, std::int32_t read) {
            *static_cast<std::int32_t*>(context) = read;
            return 0;
        },
        key);
}
