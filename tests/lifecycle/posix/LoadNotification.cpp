#include "tests/lifecycle/LoadNotification.h"

#include "face/Library.h"

int notify(std::uint32_t reason, void* reserved) {
    return qv::face::entry(nullptr, reason, reserved);
}

// A static object of the library speaks before main begins and at the exit.
Attachment::Attachment() = default;
Attachment::~Attachment() = default;
