// What the instruction counter uses of QEMU's plugin interface, version 1.
//
// Distributions of qemu-user do not install a header for it; these are the declarations that the
// interface fixes for the functions and the two symbols in use. QEMU itself resolves them when it
// loads the plugin.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

using qemu_plugin_id_t = std::uint64_t;

struct qemu_info_t;       // the emulated machine
struct qemu_plugin_tb;    // a block of guest code that is being translated
struct qemu_plugin_insn;  // one instruction of it

enum qemu_plugin_cb_flags : int { QEMU_PLUGIN_CB_NO_REGS };  // the callback reads no guest register

using qemu_plugin_vcpu_tb_trans_cb_t = void (*)(qemu_plugin_id_t, qemu_plugin_tb*);
using qemu_plugin_vcpu_udata_cb_t = void (*)(unsigned vcpu_index, void* user_data);
using qemu_plugin_udata_cb_t = void (*)(qemu_plugin_id_t, void* user_data);

// Called for each block that is translated. Its instructions are valid until the callback returns.
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, qemu_plugin_vcpu_tb_trans_cb_t);
std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb*);
qemu_plugin_insn* qemu_plugin_tb_get_insn(const qemu_plugin_tb*, std::size_t index);

// The bytes of an instruction as they stand in the guest's memory.
const void* qemu_plugin_insn_data(const qemu_plugin_insn*);
std::size_t qemu_plugin_insn_size(const qemu_plugin_insn*);

// Has `callback` called each time before the instruction is executed; in the order in which they
// are registered, where there are several.
void qemu_plugin_register_vcpu_insn_exec_cb(qemu_plugin_insn*, qemu_plugin_vcpu_udata_cb_t callback,
                                            qemu_plugin_cb_flags, void* user_data);

// Has `callback` called once when the emulation ends, also by exit_group.
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t, qemu_plugin_udata_cb_t callback,
                                    void* user_data);

// What a plugin exports: the version that it was made for, and its entry. The arguments are those
// behind file= on the command line, each as "name=value"; any other result than 0 ends QEMU.
[[gnu::visibility("default")]] extern int qemu_plugin_version;
[[gnu::visibility("default")]] int qemu_plugin_install(qemu_plugin_id_t, const qemu_info_t*,
                                                       int count, char** arguments);
}
