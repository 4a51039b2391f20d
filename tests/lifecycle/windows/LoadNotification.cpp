#include "tests/lifecycle/LoadNotification.h"

#include "face/Library.h"

extern "C" int DllMain(void* instance, unsigned long reason, void* reserved);

int notify(std::uint32_t reason, void* reserved) { return DllMain(nullptr, reason, reserved); }

Attachment::Attachment() { notify(qv::face::ProcessAttach); }
Attachment::~Attachment() { notify(qv::face::ProcessDetach); }
