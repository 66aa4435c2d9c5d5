// SPDX-License-Identifier: MIT
// A second terminal, libvterm's, that gets the same bytes: what a terminal of the usual kind shows.
#ifndef QUILL_TESTS_HOSTS_PEER_SCREEN_H
#define QUILL_TESTS_HOSTS_PEER_SCREEN_H

#include <string>

struct VTerm;

VTerm* NewPeer();
void FeedPeer(VTerm* peer, const std::string& bytes);
void FreePeer(VTerm* peer);

// Where session.screen shows something else than the peer, in words; empty if they are alike.
std::string DifferenceFromPeer(VTerm* peer);

#endif
