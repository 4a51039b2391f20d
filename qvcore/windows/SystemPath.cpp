#include "qvcore/windows/SystemPath.h"

#include "qv/Results.h"
#include "qvcore/common/NativeError.h"

#include <string_view>
#include <windows.h>

namespace qv::core {

namespace {

constexpr std::wstring_view devicePrefix = L"\\\\?\\";
constexpr std::wstring_view serverLead = L"\\\\";

/// Paths below this length need no prefix, also those of a directory in which a file is made.
constexpr std::size_t plainLength = MAX_PATH - 12;

bool isPrefixed(std::wstring_view path) noexcept {
    return path.starts_with(devicePrefix) || path.starts_with(L"\\\\.\\");
}

} // namespace

std::int32_t expandPath(const char16_t* text, std::wstring& path) {
    const auto* source = reinterpret_cast<const wchar_t*>(text);
    path.resize(MAX_PATH);
    for (;;) {
        SetLastError(NO_ERROR);
        const DWORD length =
            GetFullPathNameW(source, static_cast<DWORD>(path.size()), path.data(), nullptr);
        if (length == 0) { // with no error for a text of blanks
            return GetLastError() == NO_ERROR ? QV_E_INVALIDNAME : lastNativeResult();
        }
        const bool fits = length < path.size();
        path.resize(length);
        if (fits) {
            return QV_S_OK;
        }
    }
}

std::int32_t toSystemPath(const char16_t* text, std::wstring& path) {
    path = reinterpret_cast<const wchar_t*>(text);
    if (path.empty() || isPrefixed(path)) {
        return QV_S_OK;
    }
    std::wstring full;
    const std::int32_t result = expandPath(text, full);
    if (result < 0 || full.size() < plainLength || isPrefixed(full)) {
        return result;
    }
    if (full.starts_with(serverLead)) {
        full.replace(0, serverLead.size(), L"UNC\\");
    }
    path = std::wstring(devicePrefix) + full;
    return QV_S_OK;
}

} // namespace qv::core
