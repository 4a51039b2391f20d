#pragma once

#include "qv/Export.h"

namespace qv::io::detail {

/// @throws IoException "stream closed".
[[noreturn]] QV_API void throwStreamClosed();

} // namespace qv::io::detail
