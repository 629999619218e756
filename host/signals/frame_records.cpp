#include "host/signals/frame_records.h"

#include <algorithm>
#include <cstring>

#include "host/client/own_interface.h"
#include "host/kernel/guarded_copy.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

constexpr std::size_t record_alignment = 16;
constexpr std::size_t largest_frame = 65536;  // the kernel's SIGFRAME_MAXSZ

constexpr std::size_t round_up(std::size_t bytes) {
  return (bytes + record_alignment - 1) / record_alignment * record_alignment;
}

constexpr std::size_t reserved_offset = offsetof(signal_frame, context) +
                                        offsetof(ucontext_t, uc_mcontext) +
                                        offsetof(mcontext_t, __reserved);
constexpr std::size_t reserved_bytes = sizeof(mcontext_t::__reserved);
constexpr std::size_t terminator_bytes = round_up(sizeof(_aarch64_ctx));
constexpr std::size_t extra_bytes = round_up(sizeof(extra_context));

// 32 Z registers of the vector's length, 16 predicates and the FFR of an eighth of it.
constexpr std::size_t vector_state_bytes(std::size_t vector_bytes) {
  return 32 * vector_bytes + 17 * (vector_bytes / 8);
}
static_assert(vector_state_bytes(256) == SVE_SIG_REGS_SIZE(16) && sizeof(sve_context) == 16,
              "the kernel's sve_context");

constexpr std::uint16_t streaming_mode = 1;  // the kernel's SVE_SIG_FLAG_SM

// Gives out the room of a frame. As in the kernel, room for an extra_context is held back, and the
// first record that does not fit goes behind one.
class allocator {
 public:
  std::size_t take(std::size_t bytes) {
    const std::size_t padded = round_up(bytes);
    if (size_ + padded > limit_ && layout_.extra == 0) {
      layout_.extra = size_;
      size_ += extra_bytes + terminator_bytes;
      limit_ = largest_frame - terminator_bytes;
    }
    const std::size_t at = size_;
    size_ += padded;
    return at;
  }

  frame_layout finish() {
    layout_.end = size_;
    layout_.size = std::max(round_up(size_ + sizeof(_aarch64_ctx)), sizeof(signal_frame));
    return layout_;
  }

  frame_layout& layout() { return layout_; }

 private:
  frame_layout layout_;
  std::size_t size_ = reserved_offset;
  std::size_t limit_ = reserved_offset + reserved_bytes - terminator_bytes - extra_bytes;
};

template <typename Record>
void put(std::span<unsigned char> frame, std::size_t at, const Record& record) {
  std::memcpy(&frame[at], &record, sizeof record);
}

fpsimd_context vectors_of(const thread_context& from) {
  fpsimd_context record{};
  record.head = {.magic = FPSIMD_MAGIC, .size = sizeof record};
  record.fpsr = static_cast<std::uint32_t>(from.fpsr);
  record.fpcr = static_cast<std::uint32_t>(from.fpcr);
  std::memcpy(record.vregs, from.q, sizeof record.vregs);
  return record;
}

void write_sve(thread_state& thread, const tessaly_vector_state_t& state, std::size_t at,
               std::span<unsigned char> frame) {
  const std::size_t vector_bytes = state.vector_bytes;
  const bool is_live = state.is_live(&thread);
  const std::size_t size = sizeof(sve_context) + (is_live ? vector_state_bytes(vector_bytes) : 0);
  sve_context record{};
  record.head = {.magic = SVE_MAGIC, .size = static_cast<std::uint32_t>(round_up(size))};
  record.vl = static_cast<std::uint16_t>(vector_bytes);
  put(frame, at, record);
  if (!is_live) return;
  unsigned char* const registers = &frame[at + sizeof record];
  state.save(&thread, registers);
  for (unsigned n = 0; n < 32; n++) {
    std::memcpy(registers + n * vector_bytes, thread.context.q[n], sizeof thread.context.q[n]);
  }
}

void write_extra(const frame_layout& layout, std::uint64_t address,
                 std::span<unsigned char> frame) {
  const std::size_t data = layout.extra + extra_bytes + terminator_bytes;
  extra_context record{};
  record.head = {.magic = EXTRA_MAGIC, .size = extra_bytes};
  record.datap = address + data;
  record.size = static_cast<std::uint32_t>(layout.size - data);
  put(frame, layout.extra, record);
}

// The records that a handler may have changed or moved. As the kernel does, this finds them by
// their headers.
class record_reader {
 public:
  record_reader(std::uint64_t address, const signal_frame& fixed)
      : at_(address + reserved_offset),
        records_(std::begin(fixed.context.uc_mcontext.__reserved),
                 std::end(fixed.context.uc_mcontext.__reserved)) {}

  // Returns false if the list is not one that the kernel accepts.
  bool read() {
    while (ok_ && !ended_) step();
    return ok_;
  }

  std::optional<fpsimd_context> fpsimd;
  std::vector<unsigned char> sve;  // the whole record, empty if there is none

 private:
  template <typename Record>
  bool get(Record& record, std::size_t from) {
    if (records_.size() < from + sizeof record) return false;
    std::memcpy(&record, &records_[from], sizeof record);
    return true;
  }

  void step() {
    _aarch64_ctx head{};
    ok_ = get(head, offset_) && head.size % record_alignment == 0 &&
          head.size <= records_.size() - offset_;
    if (!ok_) return;
    switch (head.magic) {
      case 0: ended_ = true; return;
      case FPSIMD_MAGIC:
        ok_ = !fpsimd && head.size >= sizeof(fpsimd_context) && get(fpsimd.emplace(), offset_);
        break;
      case SVE_MAGIC: take_sve(head.size); break;
      case EXTRA_MAGIC: return enter_extra(head.size);
      case ESR_MAGIC: break;
      default: ok_ = false;
    }
    offset_ += head.size;
    ok_ = ok_ && head.size != 0;
  }

  void take_sve(std::size_t size) {
    ok_ = sve.empty() && size >= sizeof(sve_context);
    const auto begin = records_.begin() + static_cast<std::ptrdiff_t>(offset_);
    if (ok_) sve.assign(begin, begin + static_cast<std::ptrdiff_t>(size));
  }

  // The further records must lie right behind the one that ends the list in the fixed part.
  void enter_extra(std::size_t size) {
    extra_context extra{};
    _aarch64_ctx terminator{};
    ok_ = !in_extra_ && size >= sizeof extra && get(extra, offset_) &&
          get(terminator, offset_ + size) && terminator.magic == 0 && terminator.size == 0 &&
          extra.datap == at_ + offset_ + size + terminator_bytes &&
          extra.size % record_alignment == 0 && extra.size <= largest_frame;
    if (!ok_) return;
    in_extra_ = true;
    at_ = extra.datap;
    offset_ = 0;
    records_.assign(extra.size, 0);
    ok_ = guarded_copy(records_.data(), pointer_to(at_), records_.size()) == 0;
  }

  std::uint64_t at_;                    // of the first of the records, in the application's memory
  std::vector<unsigned char> records_;  // a copy
  std::size_t offset_ = 0;
  bool in_extra_ = false;
  bool ended_ = false;
  bool ok_ = true;
};

void restore_vectors(const fpsimd_context& from, thread_context& to) {
  to.fpsr = from.fpsr;
  to.fpcr = from.fpcr;
  std::memcpy(to.q, from.vregs, sizeof to.q);
}

// A thread without the record, or with its header alone, has no live state afterwards.
bool restore_sve(thread_state& thread, const tessaly_vector_state_t& state,
                 const std::vector<unsigned char>& record) {
  if (record.empty()) return state.restore(&thread, nullptr), true;
  sve_context head{};
  std::memcpy(&head, record.data(), sizeof head);
  if (head.vl != state.vector_bytes || (head.flags & streaming_mode) != 0) return false;
  if (record.size() == sizeof head) return state.restore(&thread, nullptr), true;
  if (record.size() < sizeof head + vector_state_bytes(state.vector_bytes)) return false;
  state.restore(&thread, record.data() + sizeof head);
  return true;
}

// The kernel keeps the syndrome and the address of the last fault, and each later frame tells of
// them, whatever the signal is. SIGTRAP and SIGFPE do not change them.
void keep_syndrome(thread_signals& signals, pending_signal& arrived) {
  const bool is_fault =
      arrived.info.si_code > 0 &&
      (arrived.signal == SIGSEGV || arrived.signal == SIGBUS || arrived.signal == SIGILL);
  if (is_fault) {
    signals.last_syndrome = arrived.syndrome;
    signals.last_fault_address = arrived.fault_address;
  }
  arrived.syndrome = signals.last_syndrome;
  arrived.fault_address = signals.last_fault_address;
}

}  // namespace

frame_layout lay_out_frame(bool has_syndrome, std::optional<std::size_t> vector_bytes) {
  allocator room;
  room.layout().fpsimd = room.take(sizeof(fpsimd_context));
  if (has_syndrome) room.layout().esr = room.take(sizeof(esr_context));
  if (vector_bytes) {
    const std::size_t at = room.take(sizeof(sve_context) + vector_state_bytes(*vector_bytes));
    room.layout().sve = at;
  }
  return room.finish();
}

frame_layout frame_layout_for(thread_state& thread, pending_signal& arrived) {
  const tessaly_vector_state_t* const state = client_vector_state();
  if (state == nullptr) return lay_out_frame(arrived.syndrome != 0, std::nullopt);
  keep_syndrome(*thread.signals, arrived);
  return lay_out_frame(arrived.syndrome != 0, state->is_live(&thread) ? state->vector_bytes : 0);
}

// The kernel adds the record of the interrupted frame, and what aligning the stack may cost.
std::size_t smallest_signal_stack(std::size_t vector_bytes) {
  constexpr std::size_t frame_record_bytes = 16;
  return lay_out_frame(true, vector_bytes).size + frame_record_bytes + record_alignment;
}

void write_frame_records(thread_state& thread, const pending_signal& arrived,
                         const frame_layout& layout, std::uint64_t address,
                         std::span<unsigned char> frame) {
  put(frame, layout.fpsimd, vectors_of(thread.context));
  if (layout.esr != 0) {
    put(frame, layout.esr,
        esr_context{.head = {.magic = ESR_MAGIC, .size = sizeof(esr_context)},
                    .esr = arrived.syndrome});
  }
  if (layout.sve != 0) write_sve(thread, *client_vector_state(), layout.sve, frame);
  if (layout.extra != 0) write_extra(layout, address, frame);
}

bool read_frame_records(thread_state& thread, std::uint64_t address, const signal_frame& fixed) {
  record_reader records(address, fixed);
  const bool accepted = records.read() && records.fpsimd;
  const tessaly_vector_state_t* const state = client_vector_state();
  if (state != nullptr && (!accepted || !restore_sve(thread, *state, records.sve))) return false;
  if (records.fpsimd) restore_vectors(*records.fpsimd, thread.context);
  return true;
}

}  // namespace host
