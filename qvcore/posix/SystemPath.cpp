#include "qvcore/posix/SystemPath.h"

#include "qv/Results.h"
#include "qvcore/common/DefaultEncoding.h"

#include <algorithm>

namespace qv::core {

std::int32_t toSystemPath(const char16_t* text, std::string& path) {
    std::u16string units(text);
    std::replace(units.begin(), units.end(), u'\\', u'/');
    return toSystemText(units, path);
}

std::int32_t fromSystemPath(const std::string& path, std::u16string& text) {
    const std::int32_t result = fromSystemText(path, text);
    if (result < 0) {
        return result;
    }
    if (text.find(u'\\') != std::u16string::npos) {
        return QV_E_INVALIDNAME;
    }
    std::replace(text.begin(), text.end(), u'/', u'\\');
    return QV_S_OK;
}

} // namespace qv::core
