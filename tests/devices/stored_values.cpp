// SPDX-License-Identifier: MIT
// Reads the values of the registry's file on a processor without SQLite.
#include "flat_registry.h"
#include "platform/qt/services/services.h"
#include "tests/settings/device.h"

std::vector<RegistryValue> StoredValues() {
    std::vector<RegistryValue> values;
    std::vector<FlatRow> rows;
    ReadFlatRegistry(DeviceRoot() + "/registry.db", &rows);
    for (const FlatRow& row : rows)
        if (row.is_value && row.key == "HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET")
            values.push_back({row.name, row.type, row.data});
    return values;
}
