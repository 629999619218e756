"""The floor of a fast path: the least number of A64 instructions that a call of its handler takes.

A vector is processed in groups of 16 bytes, the size of the vector registers of a processor without
SVE. A group takes

    1 for the load of each operand, including the old value of a merging destination
    1 for the mask of a governing predicate: CMTST, or AND with the constant 1
    the operation, from OPERATIONS
    1 for the select by the mask
    1 for the store

A call also takes CALL, SIZE_TEST, REGISTER for each register operand, the entry of IMMEDIATES for
each immediate, and FLAGS or COUNT where they apply. LDP and STP move two groups in one instruction.
The floor ignores that, so a handler may be below it.

The keys of OPERATIONS, NO_FLOOR and MISSES are the fast path and its size, as in sve_add_zpz.S. The
first pattern that matches counts.
"""

import fnmatch
import re

CALL = 6  # the call, the store of the word: 2, the jump to the fast path, the result, the return
SIZE_TEST = {"S": 2, "D": 4, "H": 6, "B": 6, "Q": 8}  # a compare and a branch for each size tested
REGISTER = 6  # its field, the two halves of its record: 3, the address of its array: 2
IMMEDIATE = 3  # its field, its extension, its broadcast
IMMEDIATES = {"LogicalMask": 30, "SImmShifted": 6, "UImmShifted": 4}
COUNT = 20  # for PTRUE and WHILE: the number of true elements, and the flags it determines
FLAGS = 40  # a call, three scans that end in their first eight bytes, the update of NZCV

# The instructions of the operation for a group, and the vector loads if those are not one for each
# operand.
OPERATIONS = [
    ("sve_[su]m??_zpz.D", 2, None),  # CMGT or CMHI, and BSL
    ("sve_cmp*", 2, None),  # and one to copy the result: the flags take the old pg, which may be pd
    ("sve_sel_*", 0, None),
    ("sve_movprfx_*", 0, None),
    ("sve_cpy_*", 0, None),
    ("sve_dup*", 0, 0),
    ("sve_fdup*", 0, 0),
    ("sve_lsl_zpz.D", 3, None),  # USHL, CMHI, AND
    ("sve_lsl_zpz.?", 2, None),  # UMIN, USHL
    ("sve_lsr_zpz.D", 4, None),  # NEG, USHL, CMHI, AND
    ("sve_lsr_zpz.?", 3, None),  # UMIN, NEG, USHL
    ("sve_asr_zpz.?", 3, None),  # UMIN, NEG, SSHL
    ("sve_sxt?_zpz.?", 2, None),  # SHL, SSHR
    ("sve_rbit_zpz.[HSD]", 2, None),  # RBIT, REV16 to REV64
    ("sve_adr_*", 2, None),  # USHL, ADD
    # Permutes may read the register they write, so their result is copied: 1 more.
    ("sve_?unpk*", 2, 0.5),  # USHLL or USHLL2
    ("sve_punpk*", 2, None),
    ("sve_zip?_*", 2, 1),
    ("sve_uzp?_*", 2, None),
    ("sve_rev_??.D", 2, None),  # EXT
    ("sve_rev_*", 3, None),  # REV64, EXT
    ("sve_ext_zzi.?", 3, None),  # two copies, and the load from them
    ("sve_ldr_zri.?", 0, 1),
    ("sve_str_zri.?", 0, 1),
    ("sve_rdffr_pp.?", 0, None),
    ("sve_ptrue_*", 3, 0),  # the numbers of the elements, CMHS, AND
    ("sve_while*", 3, 0),
    ("sve_bic_pppp.?", 1, None),
    ("sve_???_pppp.?", 3, None),  # two CMTST, and the operation
]

# Fast paths that have only one size, and do not test it.
BY_NAME = (r"_(and|orr|eor|bic)_(zzz|zi)|dupm|movprfx_zz|_adr_|unpk|_ext_|_(inc|dec)[hwd]_zii|rdffr|"
           r"wrffr|setffr|pfalse|pppp|xtw_|revw")

BY_ELEMENT = "a loop over elements that branches on the predicate"
FLAGS_BY_ELEMENT = BY_ELEMENT + ", because an inactive one must not raise flags"
NO_FLOOR = [
    ("sve_?div*", BY_ELEMENT),
    ("sve_mul_*.D", BY_ELEMENT + ": there is no vector multiply of doublewords"),
    ("sve_m[als][adbs]_zpzz.D", BY_ELEMENT + ": there is no vector multiply of doublewords"),
    ("sve_asr_zp?.D", BY_ELEMENT),
    ("sve_*_vpz.?", BY_ELEMENT + ", in the order of the reduction"),
    ("sve_*lastb_*", "a scan that ends at a match"),
    ("sve_tbl_*", "a loop over elements: each index may select any element of the table"),
    ("sve_ptest*", "scans that end at a match"),
    ("sve_brk*", "a scan that ends at a match"),
    ("sve_pnext*", "a scan that ends at a match"),
    ("sve_ldr_pri*", "bits in memory become bytes"),
    ("sve_str_pri*", "bytes become bits in memory"),
    ("sve_ld1r[bhws]*", "one element is loaded, if any is active"),
    ("sve_ld1rd*", "one element is loaded, if any is active"),
    ("sve_ld[1234fn]*", BY_ELEMENT + ", because inactive memory must not be accessed"),
    ("sve_st[1234n]*", BY_ELEMENT + ", because inactive memory must not be accessed"),
    ("sve_*_r*", "scalar arithmetic"),
    ("sve_fdiv*", FLAGS_BY_ELEMENT),
    ("sve_f[!d]*", FLAGS_BY_ELEMENT),
    ("sve_[su]cvtf_*", FLAGS_BY_ELEMENT),
]

PERMUTE = "a loop over elements, for which the compiler uses more shuffles than necessary"
MISSES = [
    ("sve_cmp*", "on these operands, the scan for a true element ends late"),
    ("sve_rbit_*", "the compiler has no operator for RBIT, so bits are exchanged in steps"),
    ("sve_zip*", PERMUTE),
    ("sve_uzp*", PERMUTE),
    ("sve_rev_*", PERMUTE),
    ("sve_fdup_*", "the constant is expanded in all three formats, and only one is used"),
]


def first_match(table, key):
    return next((entry[1:] for entry in table if fnmatch.fnmatchcase(key, entry[0])), None)


def vector_loads(operands):
    """The number of vectors that are read: all except a destination that is only written."""
    merging_over = "PgM" in operands and any(o.startswith("Zd<") for o in operands)
    sources = [o for o in operands if re.match(r"Z(n|m|a|dn|da)([A-Z<]|$)", o)]
    return len(sources) + merging_over


def group_instructions(key, path, operands):
    operation, loads = first_match(OPERATIONS, key) or (1, None)
    if loads is None:
        loads = vector_loads(operands)
    predicates = len([o for o in operands if re.match(r"P(g|gM|gZ|n|m)($|<)", o)])
    governed = any(o.startswith("Pg") for o in operands) or path.startswith("sve_sel")
    return loads + predicates + (2 if governed else 0) + operation + 1


def floor(path, size, operands, vector_bytes):
    """The floor in instructions, and the reason if there is none."""
    key = f"{path}.{size}"
    reason = first_match(NO_FLOOR, key)
    if reason:
        return None, reason[0]
    registers = [o for o in operands if re.match(r"[ZPRBV]", o) and o != "Pattern5"]
    immediates = [o for o in operands if o not in registers]
    call = CALL + REGISTER * len(registers) + sum(IMMEDIATES.get(i, IMMEDIATE) for i in immediates)
    if not re.search(BY_NAME, path):
        call += SIZE_TEST.get(size, 0)
    if path.startswith("sve_cmp"):
        call += FLAGS
    if path.startswith(("sve_while", "sve_ptrue")):
        call += COUNT
    groups = vector_bytes // 16
    return call + round(groups * group_instructions(key, path, operands)), None


def reason_for_miss(path, size):
    return (first_match(MISSES, f"{path}.{size}") or ["not known"])[0]
