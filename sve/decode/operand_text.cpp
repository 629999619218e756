#include "sve/decode/operand_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <initializer_list>
#include <iterator>
#include <utility>
#include <vector>

#include "sve/decode/immediates.h"
#include "sve/decode/pattern.h"

namespace sve {

namespace {

std::string joined(std::initializer_list<std::string_view> texts) {
  std::string result;
  for (const std::string_view text : texts) result += text;
  return result;
}

}  // namespace

std::uint32_t word_fields::mask(char letter) const {
  std::uint32_t result = 0;
  for (const char c : pattern_) result = (result << 1) | std::uint32_t{c == letter};
  return result;
}

int word_fields::value(char letter) const {
  return static_cast<int>(gather_bits(word_.value_or(0), mask(letter)));
}

int word_fields::signed_value(char letter) const {
  const int unused = 32 - width(letter);
  return unused == 32 ? 0
                      : static_cast<int>(static_cast<unsigned>(value(letter)) << unused) >> unused;
}

int word_fields::width(char letter) const { return std::popcount(mask(letter)); }

std::string word_fields::reg(const char* kind, char letter) const {
  if (have_values()) return joined({kind, std::to_string(value(letter))});
  const std::string name = letter == 'd' ? destination_ : std::string(1, letter);
  return joined({"<", kind, name, ">"});
}

namespace {

using placed_text = std::pair<place, std::string>;

// A line has one destination. If its function takes the register's old value as a separate
// argument, a later descriptor of the same register stands for that argument.
class arrangement {
 public:
  explicit arrangement(const word_fields& fields) : fields_(fields) {}

  void add(const operand_text& operand) {
    if (operand.stands != place::destination) {
      put(operand.stands, operand);
    } else if (!has_destination_) {
      has_destination_ = true;
      put(place::destination, operand);
      put(operand.again, operand);
    } else if (operand.again != place::unwritten) {
      put(place::in_order, operand);
    }
  }

  std::string text() {
    std::ranges::stable_sort(texts_, {}, &placed_text::first);
    std::string result;
    for (const auto& [stands, text] : texts_) {
      if (!result.empty() && !joins_the_operand_before(text)) result += ", ";
      if (stands == place::base) result += "[";
      result += text;
    }
    if (!texts_.empty() && texts_.back().first >= place::base) result += "]";
    return result;
  }

 private:
  void put(place stands, const operand_text& operand) {
    if (stands == place::unwritten) return;
    if (std::string text = operand.write(fields_); !text.empty())
      texts_.emplace_back(stands, std::move(text));
  }

  const word_fields& fields_;
  std::vector<placed_text> texts_;
  bool has_destination_ = false;
};

const char* destination_of(std::span<const operand_text> operands) {
  const auto named = std::ranges::find_if(
      operands, [](const operand_text& operand) { return operand.destination != nullptr; });
  return named == operands.end() ? "d" : named->destination;
}

std::string with_size(std::string_view reg, unsigned size) {
  static constexpr std::array suffixes{".B", ".H", ".S", ".D", ".Q", ""};
  return joined({reg, suffixes[size]});
}

std::string number(int value) { return joined({"#", std::to_string(value)}); }

// The fewest digits that identify the value, with at least one after the point.
std::string floating(double value) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), value, std::chars_format::fixed).ptr;
  const std::string text(digits.begin(), end);
  return joined({"#", text, text.find('.') == std::string::npos ? ".0" : ""});
}

// LSL by 0 is not written.
std::string extended(extension how, unsigned shift) {
  static constexpr std::array names{"LSL", "UXTW", "SXTW"};
  if (how == LSL && shift == 0) return "";
  const std::string amount = shift == 0 ? "" : joined({" #", std::to_string(shift)});
  return joined({", ", names[how], amount});
}

// The size of the smallest element that a logical immediate repeats, at least a byte.
element_size size_of_mask(std::uint64_t mask) {
  element_size size = D;
  for (int bits = 32; bits >= 8 && std::rotl(mask, bits) == mask; bits /= 2)
    size = element_size{size - 1U};
  return size;
}

}  // namespace

std::string write_operands(std::string_view pattern, std::span<const operand_text> operands,
                           std::optional<std::uint32_t> word) {
  const word_fields fields(pattern, destination_of(operands), word);
  arrangement arranged(fields);
  for (const operand_text& operand : operands) arranged.add(operand);
  return arranged.text();
}

namespace written {

std::string vector(const word_fields& fields, char letter, unsigned size) {
  return with_size(fields.reg("Z", letter), size);
}

// {Z1.B, Z2.B}. More than two are {Z1.B-Z3.B} unless the numbers wrap round to 0.
std::string vectors(const word_fields& fields, char letter, unsigned size, int count) {
  const auto one = [&](int i) {
    if (!fields.have_values()) {
      const std::string number = count > 1 ? std::to_string(i + 1) : "";
      return with_size(joined({"<Z", std::string(1, letter), number, ">"}), size);
    }
    return with_size(joined({"Z", std::to_string((fields.value(letter) + i) % 32)}), size);
  };
  const bool wraps = fields.value(letter) + count > 32;
  if (fields.have_values() && count > 2 && !wraps)
    return joined({"{", one(0), "-", one(count - 1), "}"});
  std::string result = joined({"{", one(0)});
  for (int i = 1; i < count; ++i) result += joined({", ", one(i)});
  return result + "}";
}

std::string predicate(const word_fields& fields, char letter, unsigned code) {
  static constexpr std::array suffixes{".B", ".H", ".S", ".D", "/M", "/Z", "", ""};
  return joined({fields.reg("P", letter), suffixes[code]});
}

std::string general(const word_fields& fields, char letter, unsigned size) {
  const char* const kind = size == D ? "X" : "W";
  if (fields.have_values() && fields.value(letter) == 31) return joined({kind, "ZR"});
  return fields.reg(kind, letter);
}

std::string general_or_sp(const word_fields& fields, char letter, unsigned size) {
  const char* const kind = size == D ? "X" : "W";
  const char* const stack_pointer = size == D ? "SP" : "WSP";
  if (!fields.have_values())
    return joined({"<", kind, std::string(1, letter), "|", stack_pointer, ">"});
  return fields.value(letter) == 31 ? stack_pointer : fields.reg(kind, letter);
}

std::string scalar(const word_fields& fields, char letter, unsigned size) {
  static constexpr std::array kinds{"B", "H", "S", "D"};
  return fields.reg(kinds[size], letter);
}

std::string immediate(const word_fields& fields, const char* name, int value) {
  return fields.have_values() ? number(value) : name;
}

// 0 is written with its shift, because the value alone does not show the shift.
std::string shifted(const word_fields& fields, int value) {
  if (!fields.have_values()) return "#<imm>{, <shift>}";
  const bool shift = fields.value('h') != 0;
  if (value == 0 && shift) return "#0, LSL #8";
  return number(shift ? value * 256 : value);
}

std::string predicate_pattern(const word_fields& fields) {
  static constexpr std::array named{"POW2", "VL1", "VL2",  "VL3",  "VL4",  "VL5",   "VL6",
                                    "VL7",  "VL8", "VL16", "VL32", "VL64", "VL128", "VL256"};
  if (!fields.have_values()) return "{, <pattern>}";
  const int pattern = fields.value('p');
  if (pattern < std::ssize(named)) return named[static_cast<std::size_t>(pattern)];
  switch (pattern) {
    case 29: return "MUL4";
    case 30: return "MUL3";
    case 31: return fields.value('k') == 0 ? "" : "ALL";
    default: return number(pattern);
  }
}

std::string multiplier(const word_fields& fields) {
  if (!fields.have_values()) return "{, MUL #<imm>}";
  const int encoded = fields.value('k');
  return encoded == 0 ? "" : joined({"MUL ", number(encoded + 1)});
}

// Load or store, the level of the cache, and whether to keep the data there. An operation on a
// level that does not exist is written as a number.
std::string prefetch_operation(const word_fields& fields) {
  if (!fields.have_values()) return "<prfop>";
  const int operation = fields.value('o');
  const int level = (operation >> 1 & 3) + 1;
  if (level > 3) return number(operation);
  return joined({operation < 8 ? "PLDL" : "PSTL", std::to_string(level),
                 (operation & 1) != 0 ? "STRM" : "KEEP"});
}

std::string in_halves(const word_fields& fields, unsigned halves) {
  if (!fields.have_values()) return "<const>";
  return joined({"#", std::to_string(halves / 2), halves % 2 == 0 ? ".0" : ".5"});
}

std::string fp_immediate(const word_fields& fields) {
  if (!fields.have_values()) return "#<const>";
  return floating(std::bit_cast<double>(expand_fp_immediate(fields.value('i'), 64, 52)));
}

std::string logical_mask(const word_fields& fields) {
  if (!fields.have_values()) return "#<const>";
  const std::uint64_t mask = expand_logical_immediate(fields.value('i'));
  const std::uint64_t element = mask >> (64 - (8U << size_of_mask(mask)));
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), element, 16).ptr;
  return joined({"#0x", {digits.data(), end}});
}

std::string destination_of_mask(const word_fields& fields) {
  if (!fields.have_values()) return joined({fields.reg("Z", 'd'), ".<T>"});
  return vector(fields, 'd', size_of_mask(expand_logical_immediate(fields.value('i'))));
}

std::string element_number(const word_fields& fields) {
  if (!fields.have_values()) return "[<imm>]";
  return joined({"[", std::to_string(fields.value('i')), "]"});
}

std::string index(const word_fields& fields, unsigned shift) {
  return joined({general(fields, 'm', D), extended(LSL, shift)});
}

std::string offsets(const word_fields& fields, unsigned size, extension how, unsigned shift) {
  return joined({vector(fields, 'm', size), extended(how, shift)});
}

std::string bytes(const word_fields& fields, int value) {
  if (!fields.have_values()) return "{, #<imm>}";
  return value == 0 ? "" : number(value);
}

std::string mul_vl(const word_fields& fields, int value) {
  if (!fields.have_values()) return "{, #<imm>, MUL VL}";
  return value == 0 ? "" : joined({number(value), ", MUL VL"});
}

}  // namespace written
}  // namespace sve
