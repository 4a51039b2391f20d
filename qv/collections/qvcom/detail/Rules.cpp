#include "qv/collections/qvcom/detail/Rules.h"

#include "qv/Exceptions.h"

namespace qv::collections::qvcom::detail {

void throwWalkFailed() { throw Exception(); }
void throwRangeError() { throw RangeErrorException(); }

} // namespace qv::collections::qvcom::detail
