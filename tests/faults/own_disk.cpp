// SPDX-License-Identifier: MIT
// File systems of one process, by namespaces of Linux.
#include "tests/faults/own_disk.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>
#include <fstream>

static void Write(const char* path, const std::string& text) { std::ofstream(path) << text; }

bool MakeOwnMounts() {
    const std::string user = std::to_string(getuid()), group = std::to_string(getgid());
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        Write("/proc/self/setgroups", "deny");
        Write("/proc/self/uid_map", "0 " + user + " 1");
        Write("/proc/self/gid_map", "0 " + group + " 1");
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool MountSmallDisk(const std::string& folder) {
    return mount("none", folder.c_str(), "tmpfs", 0, "size=8m") == 0;
}

bool BindFolder(const std::string& from, const std::string& to) {
    return mount(from.c_str(), to.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

bool MakeReadOnly(const std::string& bound) {
    return mount("none", bound.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
}

bool Unmount(const std::string& folder) { return umount2(folder.c_str(), MNT_DETACH) == 0; }
