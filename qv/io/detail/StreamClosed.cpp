#include "qv/io/detail/StreamClosed.h"

#include "qv/Exceptions.h"

namespace qv::io::detail {

void throwStreamClosed() { throw IoException(u"stream closed"); }

} // namespace qv::io::detail
