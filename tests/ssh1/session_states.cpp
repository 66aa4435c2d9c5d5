// SPDX-License-Identifier: MIT
// Sessions that have gone some way with the scripted server.
#include <gtest/gtest.h>

#include "tests/ssh1/outside.h"
#include "tests/ssh1/scripted_host.h"

ScriptedHost SessionInState(int state, uint32_t ssh_type) {
    ScriptedHost host;
    NewSession();
    session.settings.ssh_type = ssh_type;
    if (state >= 1) {
        Receive(host.PublicKey());
        EXPECT_TRUE(host.TakeSessionKey());
    }
    if (state >= 2) Receive(host.Packet(14));  // encrypted from here on
    if (state >= 3) Receive(host.Packet(15));  // a password is required
    if (state >= 4) Receive(host.Packet(14));  // the password is correct
    if (state >= 5) Receive(host.Packet(14));  // the terminal is granted
    host.Sent();
    EXPECT_EQ(session.ssh1.ssh1State, state);
    EXPECT_EQ(Box(), "");
    outside.status_updates = 0;
    return host;
}
