/* SPDX-License-Identifier: MIT */
/* A plugin of QEMU's user mode: prints how many instructions the program ran. The declarations are
   those of QEMU's plugin interface, version 1. */
#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
typedef struct qemu_info_t qemu_info_t;
enum { kAddNumber = 0 };

size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*seen)(qemu_plugin_id_t, struct qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation,
                                              void* number, uint64_t value);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, void (*end)(qemu_plugin_id_t, void*),
                                    void* data);

int qemu_plugin_version = 1;
static uint64_t instructions;

static void SeeBlock(qemu_plugin_id_t id, struct qemu_plugin_tb* block) {
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, kAddNumber, &instructions,
                                             qemu_plugin_tb_n_insns(block));
}

static void PrintCount(qemu_plugin_id_t id, void* data) {
    (void)id, (void)data;
    fprintf(stderr, "%" PRIu64 "\n", instructions);
}

int qemu_plugin_install(qemu_plugin_id_t id, const qemu_info_t* info, int count, char** words) {
    (void)info, (void)count, (void)words;
    qemu_plugin_register_vcpu_tb_trans_cb(id, SeeBlock);
    qemu_plugin_register_atexit_cb(id, PrintCount, NULL);
    return 0;
}
