// Accessible pages between two pages that can't be accessed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

class GuardedMemory {
 public:
  explicit GuardedMemory(std::size_t pages = 1) : size_(pages * page_size()) {
    void* map =
        mmap(nullptr, size_ + 2 * page_size(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    begin_ = static_cast<unsigned char*>(map) + page_size();
    mprotect(begin_, size_, PROT_READ | PROT_WRITE);
  }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  ~GuardedMemory() { munmap(begin_ - page_size(), size_ + 2 * page_size()); }

  static std::size_t page_size() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

  unsigned char* data() const { return begin_; }
  std::size_t size() const { return size_; }
  // Addresses of the first byte and of the byte after the last.
  std::uint64_t begin() const { return reinterpret_cast<std::uint64_t>(begin_); }
  std::uint64_t end() const { return begin() + size_; }

  void fill(unsigned char value) const { std::memset(begin_, value, size_); }

 private:
  std::size_t size_;
  unsigned char* begin_;
};
