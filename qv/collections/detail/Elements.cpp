#include "qv/collections/detail/Elements.h"

#include "qv/Exceptions.h"

namespace qv::collections::detail {

void throwForeignElement() { throw CastFailedException(); }

} // namespace qv::collections::detail
