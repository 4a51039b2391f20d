#include "qvcore/Path.h"

#include "qvcore/common/Guarded.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/common/PathText.h"
#include "qvcore/posix/SystemPath.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace qv::core {

namespace {

constexpr char16_t separator = u'\\';

constexpr bool isSeparator(char16_t unit) noexcept { return unit == u'\\' || unit == u'/'; }

/// An absolute path that grows part by part.
class ExpandedPath {
public:
    /// Adds the parts of a text; one that begins with a separator starts anew.
    void add(std::u16string_view text) {
        if (!text.empty() && isSeparator(text.front())) {
            path_.clear();
        }
        while (!text.empty()) {
            const auto* end = std::find_if(text.begin(), text.end(), isSeparator);
            const auto length = static_cast<std::size_t>(end - text.begin());
            addPart(text.substr(0, length));
            text.remove_prefix(std::min(length + 1, text.size()));
        }
    }

    /// The text, with a separator at its end if it is the root or is asked for.
    std::u16string text(bool endsInSeparator) const {
        return endsInSeparator || path_.empty() ? path_ + separator : path_;
    }

private:
    void addPart(std::u16string_view part) {
        if (part.empty() || part == u".") {
            return;
        }
        if (part == u"..") {
            path_.resize(path_.empty() ? 0 : path_.rfind(separator));
            return;
        }
        path_ += separator;
        path_ += part;
    }

    /// Every part with its separator in front; empty for the root.
    std::u16string path_;
};

std::int32_t systemCurrentDirectory(std::string& path) {
    path.resize(256);
    while (getcwd(path.data(), path.size()) == nullptr) {
        if (errno != ERANGE) {
            return lastNativeResult();
        }
        path.resize(path.size() * 2);
    }
    path.resize(path.find('\0'));
    // A directory outside the process's root is told with a mark in front, which is no path.
    return path.front() == '/' ? QV_S_OK : QV_E_FILENOTFOUND;
}

std::int32_t currentDirectory(std::u16string& text) {
    std::string path;
    const std::int32_t result = systemCurrentDirectory(path);
    return result < 0 ? result : fromSystemPath(path, text);
}

std::int32_t expand(std::u16string_view text, std::u16string& expanded) {
    ExpandedPath path;
    if (!isSeparator(text.front())) {
        std::u16string current;
        const std::int32_t result = currentDirectory(current);
        if (result < 0) {
            return result;
        }
        path.add(current);
    }
    path.add(text);
    expanded = path.text(isSeparator(text.back()));
    return QV_S_OK;
}

/// True if the system can spell it.
bool isSpellable(const char16_t* text) {
    std::string spelling;
    return toSystemPath(text, spelling) == QV_S_OK;
}

std::string systemTempDirectory() {
    const char* chosen = secure_getenv("TMPDIR");
    std::string path = chosen != nullptr && *chosen == '/' ? chosen : "/tmp";
    if (path.back() != '/') {
        path += '/';
    }
    return path;
}

std::int32_t give(std::int32_t result, const std::u16string& text, char16_t* buffer,
                  std::int32_t capacity) noexcept {
    return result < 0 ? result : copyPath(std::u16string_view(text), buffer, capacity);
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
        if (!isSpellable(text)) {
            return QV_E_INVALIDNAME;
        }
        std::u16string expanded;
        const std::int32_t result = expand(text, expanded);
        return give(result, expanded, buffer, capacity);
    });
}

std::int32_t QVPathGetCurrentDirectory(char16_t* buffer, std::int32_t capacity) noexcept {
    return guarded([=] {
        std::u16string text;
        const std::int32_t result = currentDirectory(text);
        return give(result, text, buffer, capacity);
    });
}

std::int32_t QVPathGetTempDirectory(char16_t* buffer, std::int32_t capacity) noexcept {
    return guarded([=] {
        std::u16string text;
        const std::int32_t result = fromSystemPath(systemTempDirectory(), text);
        return give(result, text, buffer, capacity);
    });
}
