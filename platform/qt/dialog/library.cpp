// Libraries that a program looks up at run time: the device carries that of the common dialogs.
#include "platform/qt/dialog/color_dialog.h"
#include "platform/qt/services/wide_text.h"
#include "platform/qt/testing.h"

typedef void (*AnyProcedure)();

struct ProcedureRow {
    LPCWSTR name;  // null ends the table
    AnyProcedure procedure;
};

struct SliceModule {
    LPCWSTR name;
    const ProcedureRow* procedures;
};

namespace {

const ProcedureRow kCommonDialogs[] = {
    {u"ChooseColor", reinterpret_cast<AnyProcedure>(ShowColorDialog)},
    {nullptr, nullptr},
};

SliceModule g_libraries[] = {{u"COMMDLG.DLL", kCommonDialogs}};

bool g_missing = false;

bool IsLibrary(HMODULE library) {
    return library >= std::begin(g_libraries) && library < std::end(g_libraries);
}

}  // namespace

HMODULE LoadLibraryW(LPCWSTR name) {
    for (SliceModule& library : g_libraries)
        if (name && !g_missing && CompareWithoutCase(name, library.name) == 0) return &library;
    return nullptr;
}

FARPROC GetProcAddressW(HMODULE library, LPCWSTR name) {
    if (!IsLibrary(library) || !name) return nullptr;
    for (const ProcedureRow* row = library->procedures; row->name; row++)
        if (lstrcmpW(row->name, name) == 0) return reinterpret_cast<FARPROC>(row->procedure);
    return nullptr;
}

BOOL FreeLibrary(HMODULE library) { return IsLibrary(library); }

void TakeLibrariesAway(bool missing) { g_missing = missing; }
