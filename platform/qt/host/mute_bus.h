// SPDX-License-Identifier: MIT
// Message buses of the desktop that take connections and never answer, and those that are not
// there.
#ifndef QUILL_PLATFORM_QT_HOST_MUTE_BUS_H
#define QUILL_PLATFORM_QT_HOST_MUTE_BUS_H

// Talks to the bus of the session and to the one of the screen readers. Waits at most two seconds
// for each answer of a bus, and ten for the program that starts the one of the screen readers. If
// an answer does not come, this process runs without that bus, because the toolkit would wait for
// ever: without the session's bus there are no screen readers either. If there is no bus of the
// session and no program that could start one, the toolkit does not look for it. Call it before the
// toolkit starts. It sets kBusVariables in the environment, which the toolkit reads at its start.
constexpr const char* kBusVariables[] = {"DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS"};
void LeaveMuteBuses();

#endif
