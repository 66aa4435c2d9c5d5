// SPDX-License-Identifier: MIT
// Reads the values of the registry's file with SQLite.
#include <sqlite3.h>

#include "platform/qt/services/services.h"
#include "tests/settings/device.h"

namespace {

const char kQuery[] =
    "SELECT name, type, data FROM registry "
    "WHERE key = 'HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET' AND name IS NOT NULL "
    "ORDER BY rowid";

RegistryValue ValueOfRow(sqlite3_stmt* statement) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, 2));
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, 2));
    return {reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
            static_cast<DWORD>(sqlite3_column_int64(statement, 1)),
            bytes ? std::string(bytes, size) : std::string()};
}

}  // namespace

std::vector<RegistryValue> StoredValues() {
    std::vector<RegistryValue> values;
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    const std::string file = DeviceRoot() + "/registry.db";
    if (sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, kQuery, -1, &statement, nullptr) == SQLITE_OK)
        while (sqlite3_step(statement) == SQLITE_ROW) values.push_back(ValueOfRow(statement));
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return values;
}
