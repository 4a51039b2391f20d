#include "qv/ErrorRule.h"

#include "qv/Exceptions.h"

#include <new>

namespace qv {

std::int32_t currentExceptionResult() noexcept {
    try {
        throw;
    } catch (Exception& exception) {
        return exception.getResult();
    } catch (std::bad_alloc&) {
        return QV_E_OUTOFMEMORY;
    } catch (...) {
        return QV_E_FAIL;
    }
}

void throwResult(std::int32_t result) { throw ResultException(result); }

void throwResult(std::int32_t result, const String& description) {
    throw ResultException(result, description);
}

} // namespace qv
