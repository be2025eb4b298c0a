/* Counts the instructions a guest program executes, between marks that the program sets.
 *
 * A mark is the system call write(-1, 0x5A0051, n): harmless without the plugin, and a place where a block of
 * instructions ends, so that the count is exact. Each mark appends the line "n COUNT INSIDE" to the file;
 * INSIDE counts the code between two addresses that the program names in the same manner, with 0x5A0052 and
 * 0x5A0053, before that code runs. With "symbols=on" the counts of every symbol of the program between marks
 * 1 and 2 follow at the end, as "COUNT NAME"; symbols of shared libraries are unknown to the emulator and come
 * together as "-".
 *
 *   qemu-arm -plugin libguest_count.so,out=FILE[,symbols=on] PROGRAM
 */
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qemu_plugin.h"

enum { MARK = 0x5A0051, INSIDE_FROM = 0x5A0052, INSIDE_TO = 0x5A0053 };
#define MAX_SYMBOLS 16384 /* a power of two, several times what the programs have */

struct symbol {
    char* name;
    uint64_t executed, before; /* so far; at mark 1 */
    uint64_t between;          /* marks 1 and 2 */
};

__attribute__((visibility("default"))) int qemu_plugin_version = 1;

static uint64_t executed, executed_inside;
static uint64_t inside_from, inside_to;
static struct symbol symbols[MAX_SYMBOLS];
static bool by_symbol;
static FILE* out;

static struct symbol* find_symbol(const char* name) {
    uint32_t hash = 2166136261u;
    for (const char* c = name; *c != '\0'; ++c) {
        hash = (hash ^ (unsigned char)*c) * 16777619u;
    }
    for (uint32_t i = 0; i < MAX_SYMBOLS; ++i) {
        struct symbol* symbol = &symbols[(hash + i) % MAX_SYMBOLS];
        if (symbol->name == NULL) {
            symbol->name = strdup(name);
        }
        if (strcmp(symbol->name, name) == 0) {
            return symbol;
        }
    }
    fprintf(stderr, "guest_count: too many symbols\n");
    exit(1);
}

static void on_translation(qemu_plugin_id_t id, struct qemu_plugin_tb* block) {
    (void)id;
    const size_t length = qemu_plugin_tb_n_insns(block);
    qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &executed, length);
    const uint64_t address = qemu_plugin_tb_vaddr(block);
    if (address >= inside_from && address < inside_to) {
        qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &executed_inside, length);
    }
    if (by_symbol) {
        const char* name = qemu_plugin_insn_symbol(qemu_plugin_tb_get_insn(block, 0));
        struct symbol* symbol = find_symbol(name != NULL && *name != '\0' ? name : "-");
        qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &symbol->executed,
                                                 length);
    }
}

static void on_mark(unsigned mark) {
    fprintf(out, "%u %llu %llu\n", mark, (unsigned long long)executed, (unsigned long long)executed_inside);
    for (int i = 0; i < MAX_SYMBOLS; ++i) {
        if (mark == 1) {
            symbols[i].before = symbols[i].executed;
        } else if (mark == 2) {
            symbols[i].between = symbols[i].executed - symbols[i].before;
        }
    }
}

static void on_system_call(qemu_plugin_id_t id, unsigned int cpu, int64_t number, uint64_t file, uint64_t tag,
                           uint64_t value, uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
    (void)id, (void)cpu, (void)number, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    if ((uint32_t)file != UINT32_MAX) {
        return;
    }
    if (tag == INSIDE_FROM) {
        inside_from = value;
    } else if (tag == INSIDE_TO) {
        inside_to = value;
    } else if (tag == MARK) {
        on_mark((unsigned)value);
    }
}

static void on_exit_of_guest(qemu_plugin_id_t id, void* data) {
    (void)id, (void)data;
    for (int i = 0; i < MAX_SYMBOLS; ++i) {
        if (symbols[i].between > 0) {
            fprintf(out, "%llu %s\n", (unsigned long long)symbols[i].between, symbols[i].name);
        }
    }
    fclose(out);
}

__attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id,
                                                               const struct qemu_info_t* info, int argc,
                                                               char** argv) {
    (void)info;
    for (int i = 0; i < argc; ++i) {
        if (strncmp(argv[i], "out=", 4) == 0) {
            out = fopen(argv[i] + 4, "w");
        } else if (strncmp(argv[i], "symbols=", 8) == 0) {
            by_symbol = strcmp(argv[i] + 8, "on") == 0;
        } else {
            fprintf(stderr, "guest_count: unknown argument '%s'\n", argv[i]);
            return 1;
        }
    }
    if (out == NULL) {
        fprintf(stderr, "guest_count: no file to write to (out=FILE)\n");
        return 1;
    }
    qemu_plugin_register_vcpu_tb_trans_cb(id, on_translation);
    qemu_plugin_register_vcpu_syscall_cb(id, on_system_call);
    qemu_plugin_register_atexit_cb(id, on_exit_of_guest, NULL);
    return 0;
}
