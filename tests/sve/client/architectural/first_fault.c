// First-fault and non-fault loads at the end of memory that can be read, at each distance from it.
// A load goes on to the last element that can be read. The FFR becomes false from the first active
// element on that cannot be. A model of this rule predicts each outcome.
//
// first_fault INSTRUCTIONS [ROUNDS [SEED]]: INSTRUCTIONS is docs/instructions.txt, which has the
// encodings.
//
// first_fault INSTRUCTIONS qemu checks the model by QEMU's processor, and leaves out what QEMU 7.2
// does in another way. There a load may stop at any element after the first active one, as the
// architecture permits. A contiguous load misreads the predicate if its first active element is
// beyond byte 7. A non-fault load faults if its first active element is in two pages. The user
// emulation loses faults at the end of a file.
#define _GNU_SOURCE
#include <setjmp.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include "vectors.h"

// --- The forms -----------------------------------------------------------------------------------

enum addressing { scalar_index, vector_length_multiple, vector_offset, vector_base };

struct form {
  char syntax[80];
  uint32_t word;  // with all fields 0
  int first_fault, sign;
  unsigned element_bytes, memory_bytes;
  enum addressing addressing;
  int offset_is_signed, offset_is_word;
  unsigned scale;
};

enum { max_forms = 200 };
static struct form forms[max_forms];
static unsigned form_count;

static unsigned bytes_of(char letter) { return 1u << (strchr("BHSD", letter) - "BHSD"); }

// The pattern has the fields m, i, g, n and t.
static uint32_t fixed_bits(const char* pattern) {
  uint32_t word = 0;
  for (int i = 0; i < 32; ++i) word = word << 1 | (pattern[i] == '1');
  return word;
}

// As in "LDFF1SH {<Zt>.S}, <Pg>/Z, [<Xn|SP>, <Zm>.S, SXTW #1]".
static struct form parse(const char* pattern, const char* syntax) {
  struct form f = {.word = fixed_bits(pattern), .first_fault = syntax[2] == 'F'};
  snprintf(f.syntax, sizeof f.syntax, "%.*s", (int)strcspn(syntax, "\n"), syntax);
  f.sign = syntax[5] == 'S';
  f.memory_bytes = syntax[5 + f.sign] == 'W' ? 4 : bytes_of(syntax[5 + f.sign]);
  f.element_bytes = bytes_of(strchr(syntax, '.')[1]);
  const char* const shift = strchr(strchr(syntax, '['), '#');
  f.scale = shift != NULL && shift[1] >= '1' && shift[1] <= '3' ? 1u << (shift[1] - '0') : 1;
  f.offset_is_signed = strstr(syntax, "SXTW") != NULL;
  f.offset_is_word = strstr(syntax, "XTW") != NULL;
  f.addressing = strstr(syntax, "MUL VL") != NULL  ? vector_length_multiple
                 : strstr(syntax, "[<Zn>") != NULL ? vector_base
                 : strstr(syntax, "<Zm>") != NULL  ? vector_offset
                                                   : scalar_index;
  return f;
}

static void read_forms(const char* file) {
  FILE* const listing = fopen(file, "r");
  if (listing == NULL) exit(2);
  char line[200];
  while (fgets(line, sizeof line, listing) != NULL) {
    const char* const syntax =
        strstr(line, "LDFF1") ? strstr(line, "LDFF1") : strstr(line, "LDNF1");
    if (syntax == NULL) continue;
    if (form_count == max_forms) exit(2);
    forms[form_count++] = parse(line, syntax);
  }
  fclose(listing);
}

// --- Memory --------------------------------------------------------------------------------------

enum { page = 4096, two_pages = 2 * page };

// What comes after the readable pages. Before them, nothing is mapped.
struct place {
  const char* what;
  uintptr_t begin, end, edge;  // the loads go around the edge
  int signal;
};
static struct place places[] = {
    {"memory that is not mapped", 0x20000000, 0x20001000, 0x20001000, SIGSEGV},
    {"the end of a file", 0x20010000, 0x20011000, 0x20011000, SIGBUS},
    {"another page of memory", 0x20020000, 0x20022000, 0x20021000, SIGSEGV},
};

static void map(uintptr_t at, size_t bytes, int flags, int file) {
  void* const place = (void*)at;  // NOLINT(performance-no-int-to-ptr)
  if (mmap(place, bytes, PROT_READ | PROT_WRITE, flags | MAP_FIXED, file, 0) != place) exit(2);
}

static void map_places(void) {
  char name[] = "/tmp/first_fault-XXXXXX";
  const int file = mkstemp(name);
  unlink(name);
  if (ftruncate(file, page) != 0) exit(2);
  map(places[0].begin, page, MAP_PRIVATE | MAP_ANONYMOUS, -1);
  map(places[1].begin, two_pages, MAP_SHARED, file);
  map(places[2].begin, two_pages, MAP_PRIVATE | MAP_ANONYMOUS, -1);
  for (int i = 0; i < 3; ++i) {
    void* const readable = (void*)places[i].begin;  // NOLINT(performance-no-int-to-ptr)
    fill(readable, places[i].end - places[i].begin);
  }
}

// --- One load ------------------------------------------------------------------------------------

// run_load knows this layout. X1 is the base, X2 the index, Z4 has offsets or addresses.
struct load_state {
  uint64_t x1, x2;
  unsigned char ffr[32], p1[32], z3[max_vector_bytes], z4[max_vector_bytes];
};
_Static_assert(offsetof(struct load_state, z4) == 336,
               "run_load finds the fields at fixed offsets");
void run_load(const void* code, struct load_state* state);

static const struct form* form;
static const struct place* place;
static struct load_state before, after;
static const uint32_t* code;  // of the load
static int is_qemu;
static unsigned target;  // Zt is Z3, or Z4
static uint64_t addresses[max_vector_bytes];

static unsigned element_count(void) { return (unsigned)vector_length() / form->element_bytes; }
static int bit(const unsigned char* predicate, unsigned e) {
  const unsigned n = e * form->element_bytes;
  return predicate[n / 8] >> n % 8 & 1;
}
static int active(unsigned e) { return bit(before.p1, e); }
static int readable(unsigned e) {
  return addresses[e] >= place->begin && addresses[e] + form->memory_bytes <= place->end;
}

// What the element becomes in the register.
static int64_t value_at(uint64_t address) {
  int64_t value = 0;
  memcpy(&value, (void*)address, form->memory_bytes);  // NOLINT(performance-no-int-to-ptr)
  const unsigned shift = 64 - 8 * form->memory_bytes;
  return form->sign ? (int64_t)((uint64_t)value << shift) >> shift : value;
}

static int random_below(int limit) { return (int)(next_random() % (uint64_t)limit); }

// All, none, one, few, many, or all from some element on.
static void choose_predicate(void) {
  const unsigned choice = (unsigned)random_below(6);
  const unsigned lone = (unsigned)random_below((int)element_count());
  for (unsigned e = 0; e < element_count(); ++e) {
    const int truths[] = {1, 0, e == lone, random_below(8) == 0, random_below(8) != 0, e >= lone};
    const int truth = truths[choice] || (is_qemu && e == 0);
    const unsigned n = e * form->element_bytes;
    const unsigned char mask = (unsigned char)(1 << n % 8);
    before.p1[n / 8] = (unsigned char)(truth ? before.p1[n / 8] | mask : before.p1[n / 8] & ~mask);
  }
}

// Mostly true; else true up to some bit.
static void choose_ffr(void) {
  const int whole = (int)vector_length();
  const int bits = random_below(4) != 0 ? whole : random_below(whole + 1);
  memset(before.ffr, 0, sizeof before.ffr);
  for (int i = 0; i < bits; ++i) before.ffr[i / 8] |= (unsigned char)(1 << i % 8);
}

// The first address is this far below the edge. For vectors of offsets and addresses, the others
// are around it.
static void choose_addresses(unsigned distance, unsigned operand) {
  const uint64_t first = place->edge - distance;
  before.x2 = operand;
  if (form->addressing == scalar_index || form->addressing == vector_length_multiple) {
    const int is_immediate = form->addressing == vector_length_multiple;
    const int64_t index = is_immediate ? (int64_t)(operand % 16 ^ 8) - 8 : operand;
    const uint64_t unit = is_immediate ? vector_length() / form->element_bytes * form->memory_bytes
                                       : form->memory_bytes;
    before.x1 = first - (uint64_t)index * unit;
    for (unsigned e = 0; e < element_count(); ++e)
      addresses[e] = first + (uint64_t)e * form->memory_bytes;
    return;
  }
  const int64_t lowest = form->offset_is_signed || !form->offset_is_word ? -3 : 0;
  before.x1 = first;
  for (unsigned e = 0; e < element_count(); ++e) {
    int64_t offset = lowest + (random_below(2) != 0 ? (int)e : random_below(12));
    addresses[e] = first + (uint64_t)offset * form->scale;
    if (form->addressing == vector_base) {
      offset = (int64_t)(addresses[e] - (uint64_t)operand * form->memory_bytes);
    }
    if (form->offset_is_word)
      offset = (int64_t)((uint64_t)offset << 32 >> 32 | next_random() << 32);
    memcpy(before.z4 + (size_t)e * form->element_bytes, &offset, form->element_bytes);
  }
}

// --- The code ------------------------------------------------------------------------------------

enum { operands = 32, ret = (int)0xd65f03c0 };

// With Zt as Z3 or Z4, P1, and X1, X2, Z4 and `operand` as the address.
static uint32_t word_of(const struct form* f, unsigned zt, unsigned operand) {
  static const unsigned n[] = {1, 1, 1, 4};
  const unsigned m[] = {2, operand % 16, 4, operand};
  return f->word | m[f->addressing] << 16 | 1 << 10 | n[f->addressing] << 5 | zt;
}

static uint32_t* code_buffer;

static uint32_t* code_for(unsigned f, unsigned zt, unsigned operand) {
  const size_t number = ((size_t)f * 2 + (zt - 3)) * operands + operand;
  return code_buffer + number * 2;
}

static void write_code(void) {
  const size_t bytes = sizeof(uint32_t) * form_count * 2 * operands * 2;
  code_buffer = mmap(NULL, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  for (unsigned f = 0; f < form_count; ++f) {
    for (unsigned i = 0; i < 2 * operands; ++i) {
      uint32_t* const at = code_for(f, 3 + i % 2, i / 2);
      at[0] = word_of(&forms[f], 3 + i % 2, i / 2);
      at[1] = (uint32_t)ret;
    }
  }
  mprotect(code_buffer, bytes, PROT_READ | PROT_EXEC);
  __builtin___clear_cache((char*)code_buffer, (char*)code_buffer + bytes);
}

// --- What the load did ---------------------------------------------------------------------------

static sigjmp_buf out_of_load;
static volatile int signals;
static unsigned first_active;
static unsigned long runs, faults, suppressed, wrong;

static void complain(const char* what, unsigned e) {
  if (++wrong > 20) return;
  printf("%s, word %08x, Zt Z%u, %s, first address %+ld: element %u (active %d, address %+ld) %s\n",
         form->syntax, code[0], target, place->what, (long)(addresses[0] - place->edge), e,
         active(e), (long)(addresses[e] - place->edge), what);
}

static void handle(int signal, siginfo_t* info, void* context) {
  ucontext_t* const uc = context;
  const uint64_t at = (uint64_t)info->si_addr - addresses[first_active];
  static struct vectors in_frame;
  ++signals;
  read_frame(uc, &in_frame);
  if (signal != (addresses[first_active] < place->begin ? SIGSEGV : place->signal)) {
    complain("raises another signal", first_active);
  }
  if (at >= form->memory_bytes) complain("faults at another address", first_active);
  if (uc->uc_mcontext.pc != (uintptr_t)code) complain("faults at another PC", first_active);
  if (memcmp(z_in(&in_frame, 3), before.z3, vector_length()) != 0 ||
      memcmp(z_in(&in_frame, 4), before.z4, vector_length()) != 0 ||
      memcmp(p_in(&in_frame, p_count), before.ffr, vector_length() / 8) != 0) {
    complain("faults, and registers have changed", first_active);
  }
  siglongjmp(out_of_load, 1);
}

static void check_outcome(void) {
  const unsigned char* const result = target == 3 ? after.z3 : after.z4;
  const unsigned element = form->element_bytes;
  int stopped = 0, must_stop = 0, unknown = 0;
  for (unsigned e = 0; e < element_count(); ++e) {
    must_stop |= active(e) && !readable(e);
    const int was_true = bit(before.ffr, e), is_true = bit(after.ffr, e);
    if (was_true && !is_true && !stopped) {
      stopped = 1;
      ++suppressed;
      if (!active(e)) complain("is where the FFR becomes false", e);
      if (!is_qemu && !must_stop) complain("can be read, but the FFR says no", e);
      if (form->first_fault && e == first_active)
        complain("is the first one, but is suppressed", e);
    }
    if (must_stop && was_true && is_true) complain("cannot be read, but the FFR says so", e);
    if (!was_true && is_true) complain("sets the FFR", e);
    unknown |= !was_true || !is_true;
    if (unknown) continue;
    const int64_t value = active(e) ? value_at(addresses[e]) : 0;
    if (memcmp(result + (size_t)e * element, &value, element) != 0)
      complain("has a wrong value", e);
  }
  // Each bit of an element's part of the FFR becomes false with the element.
  for (unsigned n = 0; n < vector_length(); ++n) {
    const int was = before.ffr[n / 8] >> n % 8 & 1, is = after.ffr[n / 8] >> n % 8 & 1;
    if (is != (was && bit(after.ffr, n / element)))
      complain("has a wrong part of the FFR", n / element);
  }
}

static void run_one(unsigned distance) {
  if (is_qemu && !form->first_fault && distance - 1 < form->memory_bytes - 1) return;
  fill(&before, sizeof before);
  const unsigned operand = (unsigned)random_below(operands);
  target = random_below(2) != 0 ? 3 : 4;
  code = code_for((unsigned)(form - forms), target, operand);
  choose_addresses(distance, operand);
  choose_predicate();
  choose_ffr();
  first_active = 0;
  while (first_active < element_count() && !active(first_active)) ++first_active;
  const int must_fault =
      form->first_fault && first_active < element_count() && !readable(first_active);
  if (first_active == element_count()) first_active = 0;
  after = before;
  signals = 0;
  ++runs;
  if (sigsetjmp(out_of_load, 0) == 0) run_load(code, &after);
  if (must_fault != signals) complain(signals != 0 ? "faults" : "does not fault", first_active);
  faults += (unsigned long)signals;
  if (signals == 0) check_outcome();
}

static void run_form(const struct place* at, long rounds) {
  place = at;
  for (unsigned distance = 0; distance <= vector_length() + 9; ++distance) {
    for (long round = 0; round < rounds; ++round) run_one(distance);
  }
}

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  read_forms(argv[1]);
  is_qemu = argc > 2 && strcmp(argv[2], "qemu") == 0;
  const long rounds = argc > 2 && !is_qemu ? strtol(argv[2], NULL, 10) : 1;
  random_state = argc > 3 ? strtoul(argv[3], NULL, 10) : 1;
  printf("seed %lu, %ld rounds\n", random_state, rounds);
  map_places();
  write_code();
  set_handler(SIGSEGV, handle, SA_NODEFER);
  set_handler(SIGBUS, handle, SA_NODEFER);
  for (unsigned f = 0; f < form_count; ++f) {
    form = &forms[f];
    for (unsigned p = 0; p < sizeof places / sizeof places[0]; ++p) {
      if (!is_qemu || places[p].signal == SIGSEGV) run_form(&places[p], rounds);
    }
  }
  printf("%u forms, %lu loads, %lu faults, %lu suppressed, %lu wrong\n", form_count, runs, faults,
         suppressed, wrong);
  return form_count == 0 || faults == 0 || suppressed == 0 || wrong != 0;
}
