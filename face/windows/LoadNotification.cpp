#include "face/Library.h"

/// The system's load notification. The runtime has run the module's static constructors before it
/// attaches, and runs their destructors after it detaches.
extern "C" int DllMain(void* instance, unsigned long reason, void* reserved) {
    return qv::face::entry(instance, static_cast<std::uint32_t>(reason), reserved);
}
