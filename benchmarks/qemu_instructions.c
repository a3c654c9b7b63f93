// SPDX-License-Identifier: MIT
// A plugin of the emulator qemu-user that does what callgrind does for --instructions and --worst: counts
// what runs from each call of Instructions::Begin to the next one of Instructions::End, and writes a line
// with it to standard error. Debian has no header for plugins, so what is used of their interface is declared
// here.
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
struct qemu_plugin_insn;

enum { NO_REGISTERS = 0, ADD_U64 = 0 };

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*translated)(qemu_plugin_id_t, struct qemu_plugin_tb*));
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb* block, size_t index);
const char* qemu_plugin_insn_symbol(const struct qemu_plugin_insn* instruction);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation, void* counter,
                                              uint64_t value);
void qemu_plugin_register_vcpu_tb_exec_cb(struct qemu_plugin_tb* block, void (*executed)(unsigned int, void*),
                                          int flags, void* data);

int qemu_plugin_version = 1;

static uint64_t count;

static void Begin(unsigned int cpu, void* data) {
    (void)cpu;
    (void)data;
    count = 0;
}

static void End(unsigned int cpu, void* data) {
    (void)cpu;
    (void)data;
    fprintf(stderr, "summary: %llu\n", (unsigned long long)count);
}

static void Translated(qemu_plugin_id_t id, struct qemu_plugin_tb* block) {
    (void)id;
    const char* const symbol = qemu_plugin_insn_symbol(qemu_plugin_tb_get_insn(block, 0));
    if (symbol && strstr(symbol, "Instructions5BeginEv"))
        qemu_plugin_register_vcpu_tb_exec_cb(block, Begin, NO_REGISTERS, NULL);
    else if (symbol && strstr(symbol, "Instructions3EndEv"))
        qemu_plugin_register_vcpu_tb_exec_cb(block, End, NO_REGISTERS, NULL);
    else
        qemu_plugin_register_vcpu_tb_exec_inline(block, ADD_U64, &count, qemu_plugin_tb_n_insns(block));
}

int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int argc, char** argv) {
    (void)info;
    (void)argc;
    (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, Translated);
    return 0;
}
