#include "host/translation/register_fields.h"

#include <string_view>

namespace host {
namespace {

// One line for each group of encodings with the same register fields. A pattern runs from bit 31
// down. 0 and 1 are fixed, x is any bit, and each other letter marks a field of five bits:
//   r  general register, read            w  general register, written
//   b  general register, both            p  first of a register pair, both
//   o  first of eight registers          v  vector register or anything else
//   u  not known to this table
// The first line that matches counts, so exceptions come before their group.
constexpr std::string_view patterns[] = {
    // Data processing, immediate
    "xxx100010xxxxxxxxxxxxxrrrrrwwwww",  // ADD, SUB (immediate)
    "xxx100011xxxxxxxxxxxxxrrrrrwwwww",  // ADDG, SUBG, SMAX... (immediate)
    "xxx100100xxxxxxxxxxxxxrrrrrwwwww",  // AND, ORR, EOR, ANDS (immediate)
    "x11100101xxxxxxxxxxxxxxxxxxbbbbb",  // MOVK
    "xxx100101xxxxxxxxxxxxxxxxxxwwwww",  // MOVN, MOVZ
    "x01100110xxxxxxxxxxxxxrrrrrbbbbb",  // BFM
    "xxx100110xxxxxxxxxxxxxrrrrrwwwww",  // SBFM, UBFM
    "x00100111x0rrrrrxxxxxxrrrrrwwwww",  // EXTR

    // System
    "11010100xxxxxxxxxxxxxxxxxxxvvvvv",  // SVC, BRK, HLT...
    "110101010000001100010000xxxrrrrr",  // WFET, WFIT
    "1101010100000xxxxxxxxxxxxxxvvvvv",  // hints, barriers, MSR (immediate)
    "1101010100001xxxxxxxxxxxxxxrrrrr",  // SYS: DC, IC, AT, TLBI
    "1101010100100xxxxxxxxxxxxxxwwwww",  // TSTART, TTEST
    "1101010100101xxxxxxxxxxxxxxwwwww",  // SYSL
    "110101010001xxxxxxxxxxxxxxxrrrrr",  // MSR
    "110101010011xxxxxxxxxxxxxxxwwwww",  // MRS
    "110101010101xxxxxxxxxxxxxxxppppp",  // SYSP, MSRR
    "110101010111xxxxxxxxxxxxxxxppppp",  // MRRS

    // Loads and stores of vector structures
    "0x0011000x000000xxxxxxrrrrrvvvvv",  // LD1..4, ST1..4 (multiple structures)
    "0x0011001x0rrrrrxxxxxxbbbbbvvvvv",  //   post-indexed
    "0x0011010xx0000xxxxxxxrrrrrvvvvv",  // LD1..4, ST1..4 (single structure), LDnR
    "0x0011011xxrrrrrxxxxxxbbbbbvvvvv",  //   post-indexed

    // Memory tags
    "11011001xx1xxxxxxxxxxxbbbbbbbbbb",  // STG, LDG...

    // Exclusive, ordered, compare and swap
    "0x0010000x1pppppxxxxxxrrrrrppppp",  // CASP
    "xx001000000wwwwwxxxxxxrrrrrrrrrr",  // STXR, STLXR
    "xx001000010xxxxxxxxxxxrrrrrwwwww",  // LDXR, LDAXR
    "1x001000001wwwwwxrrrrrrrrrrrrrrr",  // STXP, STLXP
    "1x001000011xxxxxxwwwwwrrrrrwwwww",  // LDXP, LDAXP
    "xx001000100xxxxxxxxxxxrrrrrrrrrr",  // STLR, STLLR
    "xx001000110xxxxxxxxxxxrrrrrwwwww",  // LDAR, LDLAR
    "xx0010001x1bbbbbxxxxxxrrrrrrrrrr",  // CAS
    "xx011001xx0xxxxxxxxx00rrrrrbbbbb",  // LDAPUR, STLUR
    "xx011101xx0xxxxxxxxx10rrrrrvvvvv",  // LDAPUR, STLUR (vector)
    "1x011001xx0bbbbbxxxx10bbbbbbbbbb",  // LDIAPP, STILP, LDAPR, STLR with write-back
    "xx011x01xx0bbbbbxxxx01bbbbbbbbbb",  // CPY, SET: copies and sets of memory
    "00011001xx1bbbbbxxxx00rrrrrbbbbb",  // SWPP, LDCLRP, LDSETP

    // Pairs
    "xx10100x00xxxxxxxrrrrrrrrrrrrrrr",  // STP, STNP, STGP
    "xx10100x01xxxxxxxwwwwwrrrrrwwwww",  // LDP, LDNP, LDPSW
    "xx10100x10xxxxxxxrrrrrbbbbbrrrrr",  // STP, pre- and post-indexed
    "xx10100x11xxxxxxxwwwwwbbbbbwwwww",  // LDP, pre- and post-indexed
    "xx10110x0xxxxxxxxvvvvvrrrrrvvvvv",  // LDP, STP (vector)
    "xx10110x1xxxxxxxxvvvvvbbbbbvvvvv",  //   pre- and post-indexed

    // Single registers
    "1111100110xxxxxxxxxxxxrrrrrvvvvv",  // PRFM (unsigned offset)
    "11111000100xxxxxxxxx00rrrrrvvvvv",  // PRFUM
    "11111000101rrrrrxxxx10rrrrrvvvvv",  // PRFM (register), RPRFM
    "xx11100100xxxxxxxxxxxxrrrrrrrrrr",  // STR (unsigned offset)
    "xx111001xxxxxxxxxxxxxxrrrrrwwwww",  // LDR (unsigned offset)
    "xx111000000xxxxxxxxxx0rrrrrrrrrr",  // STUR, STTR
    "xx111000xx0xxxxxxxxxx0rrrrrwwwww",  // LDUR, LDTR
    "xx111000000xxxxxxxxxx1bbbbbrrrrr",  // STR, pre- and post-indexed
    "xx111000xx0xxxxxxxxxx1bbbbbwwwww",  // LDR, pre- and post-indexed
    "xx111000001rrrrrxxxx10rrrrrrrrrr",  // STR (register)
    "xx111000xx1rrrrrxxxx10rrrrrwwwww",  // LDR (register)
    "11111000001wwwww1xx100rrrrrooooo",  // LD64B, ST64B, ST64BV
    "11111000001wwwww101000rrrrrooooo",  // ST64BV0
    "xx111000xx1rrrrrxxxx00rrrrrwwwww",  // LDADD, LDCLR, LDEOR, LDSET, LDMAX..., SWP, LDAPR
    "11111000xx1xxxxxxxxxx1bbbbbwwwww",  // LDRAA, LDRAB
    "xx111101xxxxxxxxxxxxxxrrrrrvvvvv",  // LDR, STR (vector, unsigned offset)
    "xx111100xx0xxxxxxxxxx0rrrrrvvvvv",  // LDUR, STUR (vector)
    "xx111100xx0xxxxxxxxxx1bbbbbvvvvv",  // LDR, STR (vector), pre- and post-indexed
    "xx111100xx1rrrrrxxxx10rrrrrvvvvv",  // LDR, STR (vector, register)
    "xx111100xx1vvvvvxxxx00rrrrrvvvvv",  // LDFADD... (atomics on vector registers)

    // Data processing, register
    "1101101011000001xxxxxxrrrrrbbbbb",  // PACIA, AUTIA, XPAC...: the destination is signed
    "x1x11010110xxxxxxxxxxxrrrrrwwwww",  // RBIT, REV, CLZ, CLS, CTZ, CNT, ABS
    "x0x11010110rrrrrxxxxxxrrrrrwwwww",  // UDIV, LSLV, CRC32, SUBP, PACGA, SMAX...
    "xxx01010xxxrrrrrxxxxxxrrrrrwwwww",  // AND, ORR, EOR, ANDS (shifted register)
    "xxx01011xxxrrrrrxxxxxxrrrrrwwwww",  // ADD, SUB (shifted and extended register)
    "10111010000xxxxxx00001rrrrr0xxxx",  // RMIF
    "00111010000000000x0010rrrrr01101",  // SETF8, SETF16
    "xxx11010000rrrrr000000rrrrrwwwww",  // ADC, SBC
    "xxx11010000rrrrr001xxxrrrrrwwwww",  // ADDPT, SUBPT
    "xx111010010rrrrrxxxx0xrrrrr0xxxx",  // CCMN, CCMP (register)
    "xx111010010xxxxxxxxx1xrrrrr0xxxx",  // CCMN, CCMP (immediate)
    "xx011010100rrrrrxxxxxxrrrrrwwwww",  // CSEL, CSINC, CSINV, CSNEG
    "xxx11011xxxrrrrrxrrrrrrrrrrwwwww",  // MADD, MSUB, SMADDL, UMULH...

    // Floating point and general registers
    "x0011110xx1xx00x000000vvvvvwwwww",  // FCVTNS, FCVTPS, FCVTMS, FCVTZS, and unsigned
    "x0011110xx10001x000000rrrrrvvvvv",  // SCVTF, UCVTF
    "x0011110xx10010x000000vvvvvwwwww",  // FCVTAS, FCVTAU
    "x0011110xx10x110000000vvvvvwwwww",  // FMOV to general
    "x0011110xx10x111000000rrrrrvvvvv",  // FMOV from general
    "0001111001111110000000vvvvvwwwww",  // FJCVTZS
    "x0011110xx1xxxxx000000uuuuuuuuuu",
    "x0011110xx01100xxxxxxxvvvvvwwwww",  // FCVTZS, FCVTZU (fixed point)
    "x0011110xx00001xxxxxxxrrrrrvvvvv",  // SCVTF, UCVTF (fixed point)
    "x0011110xx0xxxxxxxxxxxuuuuuuuuuu",
    "00011110xx1xxxxxxxxxxxvvvvvvvvvv",  // the rest of scalar floating point
    "00011111xxxxxxxxxxxxxxvvvvvvvvvv",  // FMADD...

    // Vectors and general registers
    "0x001110000xxxxx000011rrrrrvvvvv",  // DUP (general)
    "01001110000xxxxx000111rrrrrvvvvv",  // INS (general)
    "0x001110000xxxxx0010x1vvvvvwwwww",  // SMOV
    "0x001110000xxxxx001111vvvvvwwwww",  // UMOV
    "0xx0111xxxxxxxxxxxxxxxvvvvvvvvvv",  // the rest of Advanced SIMD
    "01x1111xxxxxxxxxxxxxxxvvvvvvvvvv",  //   scalar
    "11001110xxxxxxxxxxxxxxvvvvvvvvvv",  // SHA-512, SHA-3, SM3, SM4

    // SVE, for processors that have it: a client may leave such instructions in a block
    "00000100xx1xxxxx010001rrrrrvvvvv",  // INDEX (scalar, immediate)
    "00000100xx1rrrrr010010vvvvvvvvvv",  // INDEX (immediate, scalar)
    "00000100xx1rrrrr010011rrrrrvvvvv",  // INDEX (scalars)
    "00000100101xxxxx0101xxxxxxxwwwww",  // RDVL
    "000001000x1rrrrr0101xxxxxxxwwwww",  // ADDVL, ADDPL
    "00000100xx10xxxx11100xxxxxxwwwww",  // CNTB, CNTH, CNTW, CNTD
    "00000100xx11xxxx11100xxxxxxbbbbb",  // INCB, DECB...
    "00000100xx1xxxxx1111xxxxxxxbbbbb",  // SQINCB, UQDECB...
    "00000101xx100000001110rrrrrvvvvv",  // DUP (scalar)
    "00000101xx100100001110rrrrrvvvvv",  // INSR (scalar)
    "00000101xx101000101xxxrrrrrvvvvv",  // CPY (scalar)
    "00000101xx10000x101xxxvvvvvwwwww",  // LASTA, LASTB (scalar)
    "00000101xx11000x101xxxvvvvvbbbbb",  // CLASTA, CLASTB (scalar)
    "00100101xx101xxx10001xxxxxxbbbbb",  // INCP, DECP, SQINCP... (scalar)
    "00100101xx100xxx10xxxxxxxxxwwwww",  // CNTP
    "00100101xx1rrrrr00xxxxrrrrrvvvvv",  // WHILELT..., CTERMEQ, CTERMNE
    "10000100x00rrrrr110xxxrrrrrvvvvv",  // PRFB... (scalar and scalar)
    "10000101x00rrrrr110xxxrrrrrvvvvv",
    "1000010xx00rrrrr10xxxxvvvvvvvvvv",  // LDNT1 (vector and scalar)
    "1000010xxx0xxxxx0xxxxxrrrrrvvvvv",  // LD1, LDFF1 (scalar and 32-bit vector), LDR
    "1000010xxx1xxxxx0xxxxxrrrrrvvvvv",
    "1000010xx1xxxxxx1xxxxxrrrrrvvvvv",  // LD1R
    "1010010xxxxrrrrr000xxxrrrrrvvvvv",  // LD1RQ, LD1RO (scalar and scalar)
    "1010010xxxxrrrrr01xxxxrrrrrvvvvv",  // LD1, LDFF1 (scalar and scalar)
    "1010010xxxxrrrrr110xxxrrrrrvvvvv",  // LD2..4, LDNT1 (scalar and scalar)
    "1010010xxxxxxxxxxxxxxxrrrrrvvvvv",  // contiguous loads (scalar and immediate)
    "1100010xx00rrrrr1x0xxxvvvvvvvvvv",  // LDNT1 (vector and scalar)
    "1100010xxxxxxxxx0xxxxxrrrrrvvvvv",  // LD1, LDFF1 (scalar and 64-bit vector)
    "1100010xx1xxxxxx1xxxxxrrrrrvvvvv",
    "1110010110xxxxxx0x0xxxrrrrrvvvvv",  // STR
    "1110010xxxxrrrrr01xxxxrrrrrvvvvv",  // ST1..4, STNT1 (scalar and scalar)
    "1110010xx10xxxxx101xxxvvvvvvvvvv",  // ST1 (vector and immediate)
    "1110010xx11xxxxx101xxxvvvvvvvvvv",
    "1110010xxxxxxxxx1xxxxxrrrrrvvvvv",  // ST1 (scalar and vector; scalar and immediate)
    "1110010xxx0rrrrr001xxxvvvvvvvvvv",  // STNT1 (vector and scalar)
    "xxx0010xxxxxxxxxxxxxxxvvvvvvvvvv",  // all others: vectors and predicates

    // Permanently undefined
    "0000000000000000xxxxxxvvvvvvvvvv",  // UDF
};

struct encoding_group {
  std::uint32_t mask = 0;
  std::uint32_t value = 0;
  register_roles roles{};
};

constexpr role role_of_letter(char letter) {
  switch (letter) {
    case 'r': return role::read;
    case 'w': return role::written;
    case 'b': return role::both;
    case 'p': return role::pair;
    case 'o': return role::octet;
    case 'u': return role::ambiguous;
    default: return role::none;
  }
}

consteval encoding_group parse(std::string_view pattern) {
  if (pattern.size() != 32) throw "a pattern has 32 characters";
  encoding_group group;
  for (unsigned bit = 0; bit < 32; bit++) {
    const char letter = pattern[31 - bit];
    if (letter == '0' || letter == '1') {
      group.mask |= 1u << bit;
      group.value |= static_cast<std::uint32_t>(letter - '0') << bit;
    }
  }
  for (unsigned i = 0; i < field_positions.size(); i++) {
    const std::string_view letters = pattern.substr(27 - field_positions[i], 5);
    group.roles[i] = role_of_letter(letters[0]);
    for (const char letter : letters) {
      if (role_of_letter(letter) != group.roles[i]) throw "a letter must fill its field";
    }
  }
  return group;
}

consteval auto parse_all() {
  std::array<encoding_group, std::size(patterns)> parsed;
  for (std::size_t i = 0; i < parsed.size(); i++) parsed[i] = parse(patterns[i]);
  return parsed;
}

constexpr auto groups = parse_all();

}  // namespace

register_roles roles_of(std::uint32_t word) {
  for (const encoding_group& group : groups) {
    if ((word & group.mask) == group.value) return group.roles;
  }
  return {role::ambiguous, role::ambiguous, role::ambiguous, role::ambiguous};
}

}  // namespace host
