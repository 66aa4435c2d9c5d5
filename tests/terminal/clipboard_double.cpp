// SPDX-License-Identifier: MIT
// The clipboard's double.
#include "clipboard_double.h"

#include <map>

ClipboardDouble clipboard;

static std::map<HLOCAL, std::vector<WCHAR>> blocks;
static HLOCAL lent;
static UINT_PTR last_block;

static HLOCAL NewBlock(size_t bytes) {
    const auto handle = reinterpret_cast<HLOCAL>(++last_block);
    blocks[handle].assign(bytes / sizeof(WCHAR), 0xBADu);
    return handle;
}

void ResetClipboard() {
    clipboard = {};
    blocks.clear();
    lent = nullptr;
}

int LiveBlocks() { return static_cast<int>(blocks.size()); }

HLOCAL LocalAlloc(UINT, size_t bytes) {
    clipboard.allocated.push_back(bytes);
    return clipboard.refuse_memory ? nullptr : NewBlock(bytes / 16 * 16 + 16);
}

LPVOID LocalLock(HLOCAL block) {
    if (!blocks.count(block)) clipboard.faults.push_back("LocalLock of no block");
    return blocks.count(block) ? blocks[block].data() : nullptr;
}

BOOL LocalUnlock(HLOCAL block) {
    if (!blocks.count(block)) clipboard.faults.push_back("LocalUnlock of no block");
    return FALSE;
}

size_t LocalSize(HLOCAL block) { return blocks[block].size() * sizeof(WCHAR); }

HLOCAL LocalFree(HLOCAL block) {
    if (block == lent || !blocks.erase(block)) clipboard.faults.push_back("LocalFree");
    return nullptr;
}

BOOL OpenClipboard(HWND owner) {
    if (owner) clipboard.faults.push_back("OpenClipboard with an owner");
    if (clipboard.open) clipboard.faults.push_back("OpenClipboard twice");
    if (clipboard.refuse_open) return FALSE;
    return clipboard.open = true;
}

BOOL CloseClipboard() {
    if (!clipboard.open) clipboard.faults.push_back("CloseClipboard of a closed one");
    blocks.erase(lent);
    lent = nullptr;
    clipboard.open = false;
    return TRUE;
}

BOOL EmptyClipboard() {
    if (!clipboard.open) clipboard.faults.push_back("EmptyClipboard of a closed one");
    clipboard.empties++;
    clipboard.has_text = false;
    return TRUE;
}

HANDLE SetClipboardData(UINT format, HANDLE block) {
    if (!clipboard.open || format != 13) clipboard.faults.push_back("SetClipboardData");
    if (clipboard.refuse_data) return nullptr;
    clipboard.text = blocks[block].data();
    clipboard.block.assign(blocks[block].begin(), blocks[block].end());
    clipboard.has_text = true;
    blocks.erase(block);
    return block;
}

HANDLE GetClipboardData(UINT format) {
    if (!clipboard.open || format != 13) clipboard.faults.push_back("GetClipboardData");
    if (!clipboard.has_text) return nullptr;
    const size_t units = clipboard.text.size() + (clipboard.terminated ? 1 : 0);
    lent = NewBlock(units * sizeof(WCHAR));
    for (size_t i = 0; i < units; i++) blocks[lent][i] = clipboard.text.c_str()[i];
    return lent;
}
