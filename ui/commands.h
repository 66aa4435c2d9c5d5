// The commands of menus, accelerators and buttons.
#ifndef QUILL_UI_COMMANDS_H
#define QUILL_UI_COMMANDS_H

#include "windows_ce.h"

// Carries out the command of that id; an unknown one does nothing.
void RunCommand(WORD id);

// Starts the help viewer on the program's page and does not wait for it.
void ShowHelp();

// The close button's way out: asks while a session is up and `confirm_exit` is set.
void ExitProgram();

// Minimising ends the program when `xbox` is set, with the same question.
void CloseByMinimising();

// A synthetic key while a session is up and `alive` is set keeps the device powered.
void KeepDeviceAwake();

#endif
