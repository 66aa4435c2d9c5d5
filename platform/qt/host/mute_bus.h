// SPDX-License-Identifier: MIT
// A desktop's message bus that takes connections and never answers.
#ifndef QUILL_PLATFORM_QT_HOST_MUTE_BUS_H
#define QUILL_PLATFORM_QT_HOST_MUTE_BUS_H

// Asks the bus of the session for its first answer, and waits at most two seconds. If none comes,
// this process runs without the bus, and so without screen readers, because the toolkit would wait
// for ever. Call it before the toolkit starts.
void LeaveMuteBus();

#endif
