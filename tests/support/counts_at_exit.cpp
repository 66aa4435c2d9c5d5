// SPDX-License-Identifier: MIT
// For the program that counts what it runs: writes the counts also where the process ends at once
// or becomes another one. The linker leads these calls here.
extern "C" void __gcov_dump();
extern "C" [[noreturn]] void EndAtOnce(int code) asm("__real__exit");
extern "C" [[noreturn]] void CountAndEnd(int code) asm("__wrap__exit");
extern "C" int Become(const char* path, char* const* arguments) asm("__real_execv");
extern "C" int CountAndBecome(const char* path, char* const* arguments) asm("__wrap_execv");

void CountAndEnd(int code) {
    __gcov_dump();
    EndAtOnce(code);
}

int CountAndBecome(const char* path, char* const* arguments) {
    __gcov_dump();
    return Become(path, arguments);
}
