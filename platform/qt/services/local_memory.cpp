// Blocks of memory behind handles.
#include <map>
#include <memory>
#include <new>

#include "windows_ce.h"

namespace {

struct Block {
    std::unique_ptr<BYTE[]> bytes;
    size_t size;
};

std::map<HLOCAL, Block> g_blocks;
UINT_PTR g_next_block = 0x10;

Block* FindBlock(HLOCAL handle) {
    const auto found = g_blocks.find(handle);
    return found == g_blocks.end() ? nullptr : &found->second;
}

}  // namespace

HLOCAL LocalAlloc(UINT, size_t bytes) {
    Block block = {std::unique_ptr<BYTE[]>(new (std::nothrow) BYTE[bytes]), bytes};
    if (!block.bytes) return nullptr;
    g_next_block += 4;
    const auto handle = reinterpret_cast<HLOCAL>(g_next_block);
    g_blocks.emplace(handle, std::move(block));
    return handle;
}

LPVOID LocalLock(HLOCAL handle) {
    const Block* block = FindBlock(handle);
    return block ? block->bytes.get() : nullptr;
}

BOOL LocalUnlock(HLOCAL) { return FALSE; }  // locked by no one any more

size_t LocalSize(HLOCAL handle) {
    const Block* block = FindBlock(handle);
    return block ? block->size : 0;
}

HLOCAL LocalFree(HLOCAL handle) { return g_blocks.erase(handle) ? nullptr : handle; }
