// The accelerator tables that were loaded; they live as long as the resource image.
#ifndef QUILL_PLATFORM_QT_SERVICES_ACCELERATOR_CACHE_H
#define QUILL_PLATFORM_QT_SERVICES_ACCELERATOR_CACHE_H

void FreeAcceleratorTables();

#endif
