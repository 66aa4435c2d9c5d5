// SPDX-License-Identifier: MIT
// File systems that only this process sees. Not every machine permits them.
#ifndef QUILL_TESTS_FAULTS_OWN_DISK_H
#define QUILL_TESTS_FAULTS_OWN_DISK_H

#include <string>

// Call it before the process has a second thread. All of them are false if that is not permitted.
bool MakeOwnMounts();
bool MountSmallDisk(const std::string& folder);  // empty, with room for 8 MB
bool BindFolder(const std::string& from, const std::string& to);
bool MakeReadOnly(const std::string& bound);
bool Unmount(const std::string& folder);  // although files on it are open

#endif
