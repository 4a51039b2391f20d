#include "qv/util/Guid.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"

#include <memory>
#include <new>

namespace qv::util {

Guid::Guid(const char16_t* text) : Guid() {
    if (QVComGUIDFromString(text, &guid_) < 0) {
        throw Exception(u"invalid GUID string");
    }
}

String Guid::toString() const {
    constexpr int size = 39; // units, terminator included
    char16_t text[size];
    throwIfFailed(QVComStringFromGUID(&guid_, text, size));
    return String(text, size - 1);
}

Guid* Guid::Generate() {
    std::unique_ptr<Guid> guid;
    try {
        guid = std::make_unique<Guid>();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    throwIfFailed(QVComGenerateGUID(&guid->guid_));
    return guid.release();
}

} // namespace qv::util
