// The host's interface to a client, first part: modules, memory, output, save slots, operands,
// instructions, instruction lists, and code that a client inserts into a block.
//
// The launcher exports these functions to the client that it loads. Names and signatures are those
// of the instrumentation host's public interface. Only what a client needs to rewrite blocks on
// AArch64 is here. If a client asks for a form that is not listed here, the process ends with one
// line that names the form: no instruction is ever encoded by guess.
//
// A `drcontext` is a thread's context. Functions that take one may be called on that thread only.
#pragma once

#include <cstddef>
#include <cstdint>

#define DR_EXPORT extern "C" __attribute__((visibility("default")))

using byte = unsigned char;
using app_pc = byte*;
using uint = unsigned int;
using uint64 = std::uint64_t;
using ptr_int_t = std::int64_t;
using ptr_uint_t = std::uint64_t;
using reg_t = ptr_uint_t;
using client_id_t = uint;
using file_t = int;

// --- Registers ---------------------------------------------------------------------------------

using reg_id_t = std::uint16_t;

// Contiguous within each file, so that DR_REG_X0 + n, DR_REG_W0 + n and DR_REG_Q0 + n are register
// n. Number 31 of the general registers is the stack pointer, number 32 the zero register.
enum : reg_id_t {
  DR_REG_NULL = 0,
  // clang-format off
  DR_REG_X0 = 1, DR_REG_X1, DR_REG_X2, DR_REG_X3, DR_REG_X4, DR_REG_X5, DR_REG_X6, DR_REG_X7,
  DR_REG_X8, DR_REG_X9, DR_REG_X10, DR_REG_X11, DR_REG_X12, DR_REG_X13, DR_REG_X14, DR_REG_X15,
  DR_REG_X16, DR_REG_X17, DR_REG_X18, DR_REG_X19, DR_REG_X20, DR_REG_X21, DR_REG_X22, DR_REG_X23,
  DR_REG_X24, DR_REG_X25, DR_REG_X26, DR_REG_X27, DR_REG_X28, DR_REG_X29, DR_REG_X30,
  DR_REG_XSP, DR_REG_XZR,
  DR_REG_W0, DR_REG_W1, DR_REG_W2, DR_REG_W3, DR_REG_W4, DR_REG_W5, DR_REG_W6, DR_REG_W7,
  DR_REG_W8, DR_REG_W9, DR_REG_W10, DR_REG_W11, DR_REG_W12, DR_REG_W13, DR_REG_W14, DR_REG_W15,
  DR_REG_W16, DR_REG_W17, DR_REG_W18, DR_REG_W19, DR_REG_W20, DR_REG_W21, DR_REG_W22, DR_REG_W23,
  DR_REG_W24, DR_REG_W25, DR_REG_W26, DR_REG_W27, DR_REG_W28, DR_REG_W29, DR_REG_W30,
  DR_REG_WSP, DR_REG_WZR,
  DR_REG_Q0, DR_REG_Q1, DR_REG_Q2, DR_REG_Q3, DR_REG_Q4, DR_REG_Q5, DR_REG_Q6, DR_REG_Q7,
  DR_REG_Q8, DR_REG_Q9, DR_REG_Q10, DR_REG_Q11, DR_REG_Q12, DR_REG_Q13, DR_REG_Q14, DR_REG_Q15,
  DR_REG_Q16, DR_REG_Q17, DR_REG_Q18, DR_REG_Q19, DR_REG_Q20, DR_REG_Q21, DR_REG_Q22, DR_REG_Q23,
  DR_REG_Q24, DR_REG_Q25, DR_REG_Q26, DR_REG_Q27, DR_REG_Q28, DR_REG_Q29, DR_REG_Q30, DR_REG_Q31,
  // clang-format on
  DR_REG_NZCV,
  DR_REG_FPCR,
  DR_REG_FPSR,
  DR_REG_SP = DR_REG_XSP,
  DR_REG_LR = DR_REG_X30,
};

// --- Operands ----------------------------------------------------------------------------------

using opnd_size_t = std::uint8_t;

enum : opnd_size_t {
  OPSZ_NA = 0,
  OPSZ_0,
  OPSZ_1,
  OPSZ_2,
  OPSZ_4,
  OPSZ_8,
  OPSZ_16,
  OPSZ_32,
  OPSZ_6b,   // a shift amount
  OPSZ_12b,  // an arithmetic immediate
  OPSZ_PTR = OPSZ_8,
};

// Shift types, as the value of an immediate operand that carries DR_OPND_IS_SHIFT.
enum dr_shift_type_t { DR_SHIFT_LSL = 0, DR_SHIFT_LSR, DR_SHIFT_ASR, DR_SHIFT_ROR };

enum dr_opnd_flags_t : std::uint16_t {
  DR_OPND_DEFAULT = 0,
  DR_OPND_IS_SHIFT = 1,
};

enum class opnd_kind : std::uint8_t { null, reg, base_disp, immed_int };

// A value; read its fields through the functions below. It is passed through variable arguments, so
// it must not have initialisers.
struct opnd_t {
  opnd_kind kind;
  opnd_size_t size;
  std::uint16_t flags;
  reg_id_t reg;  // the register, or the base of a memory operand
  std::int32_t disp;
  ptr_int_t value;
};

DR_EXPORT opnd_t opnd_create_null();
DR_EXPORT opnd_t opnd_create_reg(reg_id_t reg);
DR_EXPORT opnd_t opnd_create_immed_int(ptr_int_t value, opnd_size_t size);
// A memory operand [base, #disp] of `size` bytes in all (a pair of X registers is OPSZ_16). `index`
// must be DR_REG_NULL and `scale` 0.
DR_EXPORT opnd_t opnd_create_base_disp(reg_id_t base, reg_id_t index, int scale, int disp,
                                       opnd_size_t size);
DR_EXPORT opnd_t opnd_add_flags(opnd_t opnd, dr_opnd_flags_t flags);
DR_EXPORT reg_id_t opnd_get_reg(opnd_t opnd);
// The width of a register; for any other operand, the size that it was made with.
DR_EXPORT opnd_size_t opnd_get_size(opnd_t opnd);

// --- Instructions ------------------------------------------------------------------------------

struct _instr_t;
using instr_t = _instr_t;
struct _instr_list_t;
using instrlist_t = _instr_list_t;

// Opcodes of the instructions that can be created. A form's operands are listed in the order of the
// constructor: destinations first.
enum {
  OP_INVALID = 0,
  OP_UNDECODED,  // an application instruction: only its word is known
  OP_add,        // 1dst_4src: Xd|SP, Xn|SP, immediate 0..4095, shift type LSL, shift amount 0 or 12
  OP_ldr,        // 1dst_1src: Xt|Wt|Qt, memory of the register's size
  OP_str,        // 1dst_1src: memory of the register's size, Xt|Wt|Qt
  OP_orr,        // 1dst_2src: Xd, Xn, immediate of 64 bits whose ones stand in one row
                 // 1dst_4src: Xd, Xn, Xm, shift type LSL, shift amount 0
  OP_ldp,        // 2dst_1src: Xt1, Xt2, memory OPSZ_16
  OP_stp,        // 1dst_2src: memory OPSZ_16, Xt1, Xt2
  OP_mrs,        // 1dst_1src: Xt, DR_REG_NZCV|DR_REG_FPCR|DR_REG_FPSR
  OP_msr,        // 1dst_1src: DR_REG_NZCV|DR_REG_FPCR|DR_REG_FPSR, Xt
  OP_movz,       // made by the host for constants
  OP_movn,
  OP_movk,
  OP_blr,  // made by the host for calls
};

// Displacements: LDR and STR take multiples of the size from 0 to 4095 times the size, LDP and STP
// multiples of 8 from -512 to 504. A base, or a register operand of OP_add, may be DR_REG_XSP;
// elsewhere number 31 is DR_REG_XZR.
DR_EXPORT instr_t* instr_create_1dst_1src(void* drcontext, int opcode, opnd_t dst, opnd_t src);
DR_EXPORT instr_t* instr_create_1dst_2src(void* drcontext, int opcode, opnd_t dst, opnd_t src1,
                                          opnd_t src2);
DR_EXPORT instr_t* instr_create_2dst_1src(void* drcontext, int opcode, opnd_t dst1, opnd_t dst2,
                                          opnd_t src);
DR_EXPORT instr_t* instr_create_1dst_4src(void* drcontext, int opcode, opnd_t dst, opnd_t src1,
                                          opnd_t src2, opnd_t src3, opnd_t src4);
DR_EXPORT void instr_destroy(void* drcontext, instr_t* instr);

// Gives the instruction an application address, and returns the instruction.
DR_EXPORT instr_t* instr_set_translation(instr_t* instr, app_pc pc);
// The address of an application instruction; for any other, the address set as its translation.
DR_EXPORT app_pc instr_get_app_pc(instr_t* instr);
// Address of the 4 encoded bytes of an application instruction; null for a created one.
DR_EXPORT byte* instr_get_raw_bits(instr_t* instr);
DR_EXPORT int instr_get_opcode(instr_t* instr);
// Whether this is an application instruction: neither inserted by the host as its own nor marked
// meta. Meta instructions are emitted unchanged. In all others X28 is the application's.
DR_EXPORT bool instr_is_app(instr_t* instr);
DR_EXPORT instr_t* instr_set_meta(instr_t* instr);
DR_EXPORT instr_t* instr_get_next(instr_t* instr);
DR_EXPORT instr_t* instr_get_prev(instr_t* instr);
DR_EXPORT instr_t* instr_get_next_app(instr_t* instr);

DR_EXPORT instr_t* instrlist_first(instrlist_t* ilist);
DR_EXPORT instr_t* instrlist_last(instrlist_t* ilist);
DR_EXPORT instr_t* instrlist_first_app(instrlist_t* ilist);
DR_EXPORT void instrlist_preinsert(instrlist_t* ilist, instr_t* where, instr_t* instr);
DR_EXPORT void instrlist_meta_preinsert(instrlist_t* ilist, instr_t* where, instr_t* instr);
DR_EXPORT void instrlist_append(instrlist_t* ilist, instr_t* instr);
DR_EXPORT void instrlist_remove(instrlist_t* ilist, instr_t* instr);

// Inserts MOVZ, MOVN and MOVK that load `value` into the X register `dst`, as non-meta
// instructions. If `first` or `last` is not null, it receives the first or last of them.
DR_EXPORT void instrlist_insert_mov_immed_ptrsz(void* drcontext, ptr_int_t value, opnd_t dst,
                                                instrlist_t* ilist, instr_t* where, instr_t** first,
                                                instr_t** last);

// For tests and tools outside a block event: they make their own lists and application
// instructions, and write a list's machine words. `drcontext` may be null in these and in all
// constructors.
DR_EXPORT instrlist_t* instrlist_create(void* drcontext);
DR_EXPORT void instrlist_clear_and_destroy(void* drcontext, instrlist_t* ilist);
// An application instruction whose 4 bytes are at `bits`, with the application address `pc`.
DR_EXPORT instr_t* instr_create_app(void* drcontext, byte* bits, app_pc pc);
// Writes the list's words at `pc`, unmangled and in order, and returns the address after the last.
DR_EXPORT byte* instrlist_encode(void* drcontext, instrlist_t* ilist, byte* pc,
                                 bool has_instr_jmp_targets);

// --- Inserted code -----------------------------------------------------------------------------

enum dr_spill_slot_t {
  SPILL_SLOT_1 = 0,
  SPILL_SLOT_2,
  SPILL_SLOT_3,
  SPILL_SLOT_4,
  SPILL_SLOT_5,
  SPILL_SLOT_6,
  SPILL_SLOT_7,
  SPILL_SLOT_8,
  SPILL_SLOT_9,
  SPILL_SLOT_MAX = SPILL_SLOT_9,
};

// DR_REG_X28: in cache code it holds the host's thread context, not the application's value.
DR_EXPORT reg_id_t dr_get_stolen_reg();

// Inserts a meta instruction that stores `reg` (an X register, not X28) to a slot of the thread, or
// loads it.
DR_EXPORT void dr_save_reg(void* drcontext, instrlist_t* ilist, instr_t* where, reg_id_t reg,
                           dr_spill_slot_t slot);
DR_EXPORT void dr_restore_reg(void* drcontext, instrlist_t* ilist, instr_t* where, reg_id_t reg,
                              dr_spill_slot_t slot);
// The slots of the thread, from within a called function.
DR_EXPORT reg_t dr_read_saved_reg(void* drcontext, dr_spill_slot_t slot);
DR_EXPORT void dr_write_saved_reg(void* drcontext, dr_spill_slot_t slot, reg_t value);

// Inserts a meta instruction that copies the application's X28 into `reg`, or `reg` into the
// application's X28.
DR_EXPORT bool dr_insert_get_stolen_reg_value(void* drcontext, instrlist_t* ilist, instr_t* where,
                                              reg_id_t reg);
DR_EXPORT bool dr_insert_set_stolen_reg_value(void* drcontext, instrlist_t* ilist, instr_t* where,
                                              reg_id_t reg);

// Slots of a thread's raw storage. Inserted code reaches each of them by one instruction from the
// register that `tls_register` receives, which is the stolen one; `offset` receives the first
// slot's displacement from it. They are 0 in a new thread. `alignment` is ignored. Returns false if
// not enough of the 8 slots are free.
DR_EXPORT bool dr_raw_tls_calloc(reg_id_t* tls_register, uint* offset, uint num_slots,
                                 uint alignment);
DR_EXPORT bool dr_raw_tls_cfree(uint offset, uint num_slots);
// The address in that register while the calling thread's code runs.
DR_EXPORT void* dr_get_dr_segment_base(reg_id_t tls_register);
// Inserts a meta instruction that loads a slot into `reg` (an X register, not X28), or stores it.
DR_EXPORT void dr_insert_read_raw_tls(void* drcontext, instrlist_t* ilist, instr_t* where,
                                      reg_id_t tls_register, uint tls_offs, reg_id_t reg);
DR_EXPORT void dr_insert_write_raw_tls(void* drcontext, instrlist_t* ilist, instr_t* where,
                                       reg_id_t tls_register, uint tls_offs, reg_id_t reg);

// Inserts a call to `callee` that takes the place of the application instruction at `pc`. The
// arguments, at most 8, are immediate operands (`opnd_t`). The callee runs on the application's
// thread, on a host stack, with the host's TPIDR_EL0, and with the application's FPCR and FPSR.
// Afterwards SP, TPIDR_EL0 and X28 are what they were before the call; every other register may
// hold anything.
DR_EXPORT void dr_insert_call_velox(void* drcontext, instrlist_t* ilist, instr_t* where, app_pc pc,
                                    void* callee, uint num_args, ...);

// --- Modules -----------------------------------------------------------------------------------

struct _module_data_t {
  app_pc start;
  app_pc end;
  app_pc entry_point;  // null for a module that the program mapped itself
  char* full_path;
};
using module_data_t = _module_data_t;

// The caller owns these records and frees them with dr_free_module_data. Null if there is no such
// module.
DR_EXPORT module_data_t* dr_get_main_module();
DR_EXPORT module_data_t* dr_lookup_module(byte* pc);
DR_EXPORT void dr_free_module_data(module_data_t* data);
DR_EXPORT app_pc dr_fragment_app_pc(void* tag);

// --- Signals -----------------------------------------------------------------------------------

enum dr_kernel_xfer_type_t { DR_XFER_SIGNAL_DELIVERY, DR_XFER_SIGNAL_RETURN };
enum dr_mcontext_flags_t { DR_MC_CONTROL = 0x02 };

// The application's registers. This host fills in SP and PC only.
struct dr_mcontext_t {
  std::size_t size;
  dr_mcontext_flags_t flags;
  reg_t xsp;
  byte* pc;
};

struct dr_kernel_xfer_info_t {
  dr_kernel_xfer_type_t type;
  const dr_mcontext_t* source_mcontext;  // null in a delivery
  app_pc target_pc;
  reg_t target_xsp;
  int sig;  // of a delivery
};

// An instruction of the application has faulted in a block.
struct dr_fault_fragment_info_t {
  void* tag;  // of the block; see dr_fragment_app_pc
};
struct dr_restore_state_info_t {
  dr_mcontext_t* mcontext;  // before the instruction
  dr_fault_fragment_info_t fragment_info;
};

// --- Process, threads, output ------------------------------------------------------------------

DR_EXPORT void dr_set_client_name(const char* name, const char* report_url);
DR_EXPORT void dr_register_exit_event(void (*func)());
DR_EXPORT bool dr_unregister_exit_event(void (*func)());
DR_EXPORT void* dr_get_current_drcontext();

// Uninitialised memory that belongs to a thread. Aligned to 16 bytes. Never null.
DR_EXPORT void* dr_thread_alloc(void* drcontext, std::size_t size);
DR_EXPORT void dr_thread_free(void* drcontext, void* mem, std::size_t size);

DR_EXPORT file_t our_stderr;
#define STDERR our_stderr
DR_EXPORT std::ptrdiff_t dr_fprintf(file_t file, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
// Writes to the host's log. The embedded host keeps none. `drcontext` may be null.
DR_EXPORT void dr_log(void* drcontext, uint mask, uint level, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
#define DR_LOG_ALL 0x00ffffff
// Ends the process by SIGABRT.
DR_EXPORT void dr_abort() __attribute__((noreturn));

enum dr_emit_flags_t { DR_EMIT_DEFAULT = 0 };
