#include "qvcore/Path.h"

#include "qvcore/common/Guarded.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/common/PathText.h"
#include "qvcore/windows/SystemPath.h"

#include <windows.h>

namespace qv::core {

namespace {

/// Fetches a text by a system call that takes a capacity and an area, and answers with the length,
/// or with the capacity needed.
template <typename Call>
std::int32_t fetchPath(Call call, char16_t* buffer, std::int32_t capacity) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = call(static_cast<DWORD>(path.size()), path.data());
        if (length == 0) {
            return lastNativeResult();
        }
        const bool fits = length < path.size();
        path.resize(length);
        if (fits) {
            return copyPath(std::wstring_view(path), buffer, capacity);
        }
    }
}

} // namespace

} // namespace qv::core

using namespace qv;
using namespace qv::core;

std::int32_t QVPathExpand(const char16_t* text, char16_t* buffer, std::int32_t capacity) noexcept {
    if (text == nullptr || *text == 0) {
        return QV_E_INVALIDARG;
    }
    return guarded([=] {
        std::wstring path;
        const std::int32_t result = expandPath(text, path);
        return result < 0 ? result : copyPath(std::wstring_view(path), buffer, capacity);
    });
}

std::int32_t QVPathGetCurrentDirectory(char16_t* buffer, std::int32_t capacity) noexcept {
    return guarded([=] { return fetchPath(GetCurrentDirectoryW, buffer, capacity); });
}

std::int32_t QVPathGetTempDirectory(char16_t* buffer, std::int32_t capacity) noexcept {
    return guarded([=] { return fetchPath(GetTempPathW, buffer, capacity); });
}
