// The signals by which a desktop ends a program: hang-up, interrupt and termination.
#ifndef QUILL_PLATFORM_QT_HOST_END_SIGNALS_H
#define QUILL_PLATFORM_QT_HOST_END_SIGNALS_H

// From here on the first of them ends the program as its own exit does, without a question; another
// one of the same kind ends it at once. Needs a QApplication.
void EndBySignals();

#endif
