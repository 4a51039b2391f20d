#include "face/Library.h"

extern "C" void* __dso_handle; // the language runtime's word for this module

namespace {

/// Speaks when the module is loaded and unloaded. Static constructors run in link order and this
/// source is linked last, so the library starts when all others of its constructors have run, and
/// ends before any of its destructors.
struct LoadNotification {
    LoadNotification() { qv::face::entry(&__dso_handle, qv::face::ProcessAttach, nullptr); }
    ~LoadNotification() { qv::face::entry(&__dso_handle, qv::face::ProcessDetach, nullptr); }
};

const LoadNotification notification;

} // namespace
