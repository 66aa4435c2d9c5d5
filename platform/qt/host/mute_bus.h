// SPDX-License-Identifier: MIT
// Message buses of the desktop that take connections and never answer.
#ifndef QUILL_PLATFORM_QT_HOST_MUTE_BUS_H
#define QUILL_PLATFORM_QT_HOST_MUTE_BUS_H

// Talks to the bus of the session and to the one of the screen readers, and waits at most two
// seconds for each answer. If one does not come, this process runs without that bus, because the
// toolkit would wait for ever: without the session's bus there are no screen readers either. Call
// it before the toolkit starts.
void LeaveMuteBuses();

#endif
