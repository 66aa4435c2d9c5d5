// The registry's end, for the host and for tests.
#ifndef QUILL_PLATFORM_QT_SERVICES_REGISTRY_H
#define QUILL_PLATFORM_QT_SERVICES_REGISTRY_H

// Writes everything into the one file and closes it; the next call opens it again. Keys that are
// open stay open.
void CloseRegistry();

#endif
