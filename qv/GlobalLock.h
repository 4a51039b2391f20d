#pragma once

#include "qv/Export.h"

namespace qv::sync {
class LockObject;
}

/// The process-wide lock of the library, taken only around the making and ending of its singletons
/// and of what else it makes lazily. Null before library start and after library end.
extern QV_API_DATA qv::sync::LockObject* g_pGlobalLock;
