#pragma once

#include "qv/String.h"

namespace qv::detail {

/// A text that the system or the compiler gives in the default encoding, whatever its bytes are and
/// whether a converter of the library serves the encoding or not: what has no form is U+FFFD.
String systemText(const char* bytes);

} // namespace qv::detail
