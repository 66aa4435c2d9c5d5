// SPDX-License-Identifier: MIT
// What the user does in each piece, and the device that it is prepared on.
#ifndef QUILL_TESTS_FAULTS_PIECES_H
#define QUILL_TESTS_FAULTS_PIECES_H

#include <string>

#include "tests/support/person.h"

extern std::string piece_wrong;  // what a piece has noticed itself
inline constexpr char kPosting[] = "_Z12PostMessageWP11SliceWindowjml";

// window_pieces.cpp
void StageNothing(Stage& stage);
void StageImport(Stage& stage);
void StageSmall(Stage& stage);
void DoNothing();
void ImportFile();
void UseWindow();
void UseSmallWindow();
void ResetAll();
void Exit();
void UseClipboard();
void UseFont();
void UseConnect();
void UseAutoLogin();
void UseSheet();
void UseSignOn();
void UseChooser();

// session_pieces.cpp
void StageDial(Stage& stage);
void HoldTelnet();
void HoldSsh1();
void HoldSsh2();
void HoldBlowfish();
void FailSsh1();
void FailSsh2();
void LookUpHost();
void BeRefused();
void FillQueue();
void Ask();
void DialUp();

#endif
