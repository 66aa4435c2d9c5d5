// SPDX-License-Identifier: MIT
// The clock of the frames, which a test can stop. A program that uses it is linked with
// --wrap=_ZNSt6chrono3_V212steady_clock3nowEv.
#ifndef QUILL_TESTS_SUPPORT_FRAME_CLOCK_H
#define QUILL_TESTS_SUPPORT_FRAME_CLOCK_H

// Each of these is about the calling thread only; the clocks of other threads go on.
void StopFrameClock();
void AdvanceFrameClock(int milliseconds);  // of a clock that is stopped
void StartFrameClock();                    // goes on from where the clock was stopped

#endif
