#include "tests/lifecycle/LoadNotification.h"

#include "face/Library.h"

extern "C" int DllMain(void* instance, unsigned long reason, void* reserved);

int notify(std::uint32_t reason) { return DllMain(nullptr, reason, nullptr); }

Attachment::Attachment() { notify(qv::face::ProcessAttach); }
Attachment::~Attachment() { notify(qv::face::ProcessDetach); }
