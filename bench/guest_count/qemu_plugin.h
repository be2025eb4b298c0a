/* The part of QEMU's plugin interface, version 1, that the counter uses. Declared here because no package holds
 * the header; QEMU itself resolves the functions when it loads the plugin. */
#pragma once

#include <stddef.h>
#include <stdint.h>

typedef uint64_t qemu_plugin_id_t;
struct qemu_info_t;    /* target and emulator facts, not looked at */
struct qemu_plugin_tb; /* a block of guest instructions while it is being translated */
struct qemu_plugin_insn;

enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };

typedef void (*qemu_plugin_tb_trans_cb)(qemu_plugin_id_t id, struct qemu_plugin_tb* block);
typedef void (*qemu_plugin_syscall_cb)(qemu_plugin_id_t id, unsigned int cpu, int64_t number, uint64_t a1,
                                       uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, uint64_t a6,
                                       uint64_t a7, uint64_t a8);
typedef void (*qemu_plugin_exit_cb)(qemu_plugin_id_t id, void* data);

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, qemu_plugin_tb_trans_cb callback);
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id, qemu_plugin_syscall_cb callback);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, qemu_plugin_exit_cb callback, void* data);

size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
uint64_t qemu_plugin_tb_vaddr(const struct qemu_plugin_tb* block);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb* block, size_t index);
const char* qemu_plugin_insn_symbol(const struct qemu_plugin_insn* instruction);

/* Has every execution of the block add `value` to *counter, in the translated code itself. */
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, enum qemu_plugin_op operation,
                                              void* counter, uint64_t value);
