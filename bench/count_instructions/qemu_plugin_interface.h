// The part of QEMU's plugin interface, version 1, that the instruction counter uses.
//
// Distributions of qemu-user do not install a header for it. These are the declarations that the
// interface defines for the functions and the two symbols in use. QEMU itself resolves them when it
// loads the plugin.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

using qemu_plugin_id_t = std::uint64_t;

struct qemu_info_t;       // the emulated machine
struct qemu_plugin_tb;    // a block of guest code that is being translated
struct qemu_plugin_insn;  // one instruction of such a block

enum qemu_plugin_cb_flags : int { QEMU_PLUGIN_CB_NO_REGS };  // the callback reads no guest register

using qemu_plugin_vcpu_tb_trans_cb_t = void (*)(qemu_plugin_id_t, qemu_plugin_tb*);
using qemu_plugin_vcpu_udata_cb_t = void (*)(unsigned vcpu_index, void* user_data);
using qemu_plugin_udata_cb_t = void (*)(qemu_plugin_id_t, void* user_data);

// Called for each block that is translated. Its instructions are valid until the callback returns.
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, qemu_plugin_vcpu_tb_trans_cb_t);
std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb*);
qemu_plugin_insn* qemu_plugin_tb_get_insn(const qemu_plugin_tb*, std::size_t index);

// The bytes of an instruction as they are in the guest's memory.
const void* qemu_plugin_insn_data(const qemu_plugin_insn*);
std::size_t qemu_plugin_insn_size(const qemu_plugin_insn*);

// Makes QEMU call `callback` each time before it executes the instruction. If there are several,
// they are called in the order in which they were registered.
void qemu_plugin_register_vcpu_insn_exec_cb(qemu_plugin_insn*, qemu_plugin_vcpu_udata_cb_t callback,
                                            qemu_plugin_cb_flags, void* user_data);

// Makes QEMU call `callback` once when the emulation ends, also after exit_group.
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t, qemu_plugin_udata_cb_t callback,
                                    void* user_data);

// What a plugin exports: the version that it was made for, and its entry point. The arguments are
// those after file= on the command line, each as "name=value". Any result other than 0 ends QEMU.
[[gnu::visibility("default")]] extern int qemu_plugin_version;
[[gnu::visibility("default")]] int qemu_plugin_install(qemu_plugin_id_t, const qemu_info_t*,
                                                       int count, char** arguments);
}
