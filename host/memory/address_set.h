// A set of addresses, as ranges that neither overlap nor touch.
#pragma once

#include <cstdint>
#include <map>

namespace host {

class address_set {
 public:
  void put(std::uint64_t start, std::uint64_t end);
  void cut(std::uint64_t start, std::uint64_t end);

  [[nodiscard]] bool contains(std::uint64_t address) const;

  // The end of each range by its start, ascending.
  [[nodiscard]] const std::map<std::uint64_t, std::uint64_t>& ranges() const { return ranges_; }

 private:
  std::map<std::uint64_t, std::uint64_t> ranges_;
};

}  // namespace host
