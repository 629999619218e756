#include "host/loading/input_file.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "host/loading/launch_error.h"

namespace host {
namespace {

std::string explain(int error) {
  switch (error) {
    case ENOENT: return "no such file";
    case EISDIR: return "a directory; give a program";
    case EINVAL: return "not a regular file; give a program";
    case EACCES: return "permission denied; it must be readable and executable (chmod +rx)";
    default: return std::strerror(error);
  }
}

[[noreturn]] void fail(const std::string& what, int error) {
  const auto status = error == ENOENT ? exit_status::not_found : exit_status::cannot_run;
  // execve returns EACCES for anything but a regular file.
  const int of_execve = error == EISDIR || error == EINVAL ? EACCES : error;
  throw launch_error(status, what + ": " + explain(error), of_execve);
}

std::string descriptor_path(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}

int kind_error(mode_t mode) {
  if (S_ISREG(mode)) return 0;
  return S_ISDIR(mode) ? EISDIR : EINVAL;
}

// Checks the permission through the descriptor, because QEMU's -L applies to open but not to
// access. A changed root may have no /proc; then only kernels from 5.8 on can answer.
int permission_error(int descriptor) {
  const std::string path = descriptor_path(descriptor);
  if (faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0) return 0;
  if (errno != ENOENT) return errno;
  return faccessat(descriptor, "", X_OK, AT_EACCESS | AT_EMPTY_PATH) == 0 ? 0 : errno;
}

int execution_error(int descriptor) {
  struct stat status = {};
  if (fstat(descriptor, &status) != 0) return errno;
  const int error = kind_error(status.st_mode);
  return error != 0 ? error : permission_error(descriptor);
}

}  // namespace

int execution_error(const std::string& path) {
  // O_PATH, since opening a FIFO for reading would wait for a writer.
  const int descriptor = open(path.c_str(), O_PATH | O_CLOEXEC);
  if (descriptor < 0) return errno;
  const int error = execution_error(descriptor);
  close(descriptor);
  return error;
}

// Delegates to the default constructor, so that the destructor cleans up if something here throws.
input_file::input_file(const std::string& path, const std::string& role) : input_file() {
  path_ = path;
  const std::string what = role + (path.empty() ? "\"\"" : path);
  if (const int error = execution_error(path); error != 0) fail(what, error);
  descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status = {};
  if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) fail(what, errno);
  if (status.st_size == 0) {
    throw launch_error(exit_status::cannot_run, what + ": an empty file; give a program");
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const start = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor_, 0);
  if (start == MAP_FAILED) fail(what, errno);
  bytes_ = {static_cast<const std::byte*>(start), size};
}

input_file::input_file(input_file&& other) noexcept
    : path_(std::move(other.path_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      bytes_(std::exchange(other.bytes_, {})) {}

input_file& input_file::operator=(input_file&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(descriptor_, other.descriptor_);
  std::swap(bytes_, other.bytes_);
  return *this;
}

input_file::~input_file() {
  if (!bytes_.empty()) munmap(const_cast<std::byte*>(bytes_.data()), bytes_.size());
  if (descriptor_ >= 0) close(descriptor_);
}

std::string input_file::real_path() const {
  const std::string link = descriptor_path(descriptor_);
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : path_;
}

}  // namespace host
