// SPDX-License-Identifier: MIT
// What a person, a host and the desktop do to the running program, as an input of the fuzz target
// says it. Window thread only.
#ifndef QUILL_FUZZ_WINDOW_EVENTS_H
#define QUILL_FUZZ_WINDOW_EVENTS_H

#include <cstddef>
#include <cstdint>
#include <QPoint>
#include <QWidget>
#include <string>

#include "windows_ce.h"

inline constexpr int kDeviceWidth = 480, kDeviceHeight = 352;
inline constexpr SOCKET kHostSocket = 0x5eed;  // of the session; the network does not know it

struct EventInput {
    const uint8_t* at = nullptr;
    size_t left = 0;
};

unsigned TakeByte(EventInput* input);
std::string TakeText(EventInput* input);
QPoint TakePlace(EventInput* input, const QWidget& window);  // a little beyond its edges, too

// Does the next event. Returns true if the next one is to come before the program has done all that
// this one causes.
bool DoEvent(EventInput* input);
void LiftStylus();         // outside of all windows, if it is down
bool TakeWishToCompare();  // true once after an event that asks to compare the picture

void BeginFakeSession();                  // as a connection that came up
void HostSays(const std::string& bytes);  // nothing, if the program cannot read now

QWidget* TopWidget();  // the popup, the dialog or the screen that a person reaches

// One step towards a screen without boxes, dialogs and menus; false if there are none.
bool CloseTopMost();

#endif
