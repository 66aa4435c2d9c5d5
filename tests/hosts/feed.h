// SPDX-License-Identifier: MIT
// The terminal as a host sees it: bytes in, replies out. Apart from the rest, since the device's
// headers and those of the system's terminals do not go together.
#ifndef QUILL_TESTS_HOSTS_FEED_H
#define QUILL_TESTS_HOSTS_FEED_H

#include <string>

void NewSession();  // an empty screen, just connected

std::string Feed(const std::string& bytes);  // the replies, one after the other

#endif
