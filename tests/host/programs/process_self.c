// Checks what the files under /proc/self tell a program about itself. The emulator does not show
// them as a kernel does, so nothing is compared: the program prints what is wrong. Its status is
// the number of faults.
//
// process_self PATH COMM ARGUMENTS...: PATH is this program's path, COMM the process's name.
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

static int wrong;

static void expect(int condition, const char* what) {
  if (condition) return;
  printf("wrong: %s\n", what);
  wrong++;
}

static size_t read_file(const char* path, char* buffer, size_t size) {
  const int fd = open(path, O_RDONLY);
  size_t filled = 0;
  for (ssize_t got; (got = read(fd, buffer + filled, size - 1 - filled)) > 0;) {
    filled += (size_t)got;
  }
  buffer[filled] = '\0';
  close(fd);
  return filled;
}

static void* target_of(void* path) {
  static char target[4096];
  const ssize_t length = readlink(path, target, sizeof target - 1);
  target[length < 0 ? 0 : length] = '\0';
  return target;
}

static void executable(const char* own) {
  char path[128];
  const char* const forms[] = {"/proc/self/exe", "/proc/thread-self/exe", "/proc/%d/exe",
                               "/proc/self/task/%d/exe", "/proc/%d/task/%d/exe"};
  struct stat mine, found;
  stat(own, &mine);
  for (unsigned i = 0; i < sizeof forms / sizeof forms[0]; i++) {
    snprintf(path, sizeof path, forms[i], getpid(), getpid());
    expect(strcmp(target_of(path), own) == 0, path);
    expect(stat(path, &found) == 0 && found.st_ino == mine.st_ino, path);
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    expect(fd >= 0 && fstat(fd, &found) == 0 && found.st_ino == mine.st_ino, path);
    expect((fcntl(fd, F_GETFD) & FD_CLOEXEC) != 0, "close-on-exec");
    close(fd);
  }
  const int directory = open("/proc/self", O_RDONLY | O_DIRECTORY);
  char target[16];
  expect(fstatat(directory, "exe", &found, 0) == 0 && found.st_ino == mine.st_ino, "fstatat");
  expect(readlinkat(directory, "exe", target, 5) == 5 && memcmp(target, own, 5) == 0, "cut link");
  close(directory);
  const long got = syscall(SYS_readlinkat, AT_FDCWD, "/proc/self/exe", 8, 10);
  expect(got < 0 && errno == EFAULT, "unwritable buffer");
  expect(lstat("/proc/self/exe", &found) == 0 && S_ISLNK(found.st_mode), "lstat");
  pthread_t thread;
  void* seen = NULL;
  pthread_create(&thread, NULL, target_of, (void*)"/proc/thread-self/exe");
  pthread_join(thread, &seen);
  expect(strcmp(seen, own) == 0, "in a thread");
}

static void command_line(int argc, char** argv, const char* comm) {
  char buffer[4096];
  char name[16] = "";
  const size_t size = read_file("/proc/self/cmdline", buffer, sizeof buffer);
  const char* at = buffer;
  for (int i = 0; i < argc; i++) {
    expect(strcmp(at, argv[i]) == 0, "cmdline");
    at += strlen(at) + 1;
  }
  expect(at == buffer + size, "cmdline's size");
  argv[argc - 1][0] = '!';  // as a program does to change its title
  read_file("/proc/self/cmdline", buffer, sizeof buffer);
  expect(buffer[size - strlen(argv[argc - 1]) - 1] == '!', "a changed cmdline");
  prctl(PR_GET_NAME, name);
  expect(strncmp(name, comm, 15) == 0, "PR_GET_NAME");  // the kernel keeps 15
}

static void auxiliary_vector(char** environment) {
  static char buffer[4096];
  while (*environment != NULL) environment++;
  const size_t size = read_file("/proc/self/auxv", buffer, sizeof buffer);
  expect(size > 64 && memcmp(buffer, environment + 1, size) == 0, "auxv");
}

// --- maps --------------------------------------------------------------------------------------

struct line {
  uintptr_t start, end;
  char permissions[5];
  char name[4096];
};

static int next_line(FILE* maps, struct line* line) {
  char text[4352];
  while (fgets(text, sizeof text, maps) != NULL) {
    line->name[0] = '\0';
    // NOLINTNEXTLINE(cert-err34-c): the kernel writes these numbers, and they fit
    if (sscanf(text, "%lx-%lx %4s %*x %*s %*u %4095[^\n]", &line->start, &line->end,
               line->permissions, line->name) >= 3) {
      return 1;
    }
  }
  return 0;
}

// The mapping that holds an address; its name is "none" if there is none.
static struct line line_of(uintptr_t address) {
  const struct line none = {0, 0, "", "none"};
  struct line line = none;
  FILE* maps = fopen("/proc/self/maps", "r");
  while (next_line(maps, &line)) {
    if (address >= line.start && address < line.end) break;
    line = none;
  }
  fclose(maps);
  return line;
}

static int has(uintptr_t address, const char* permissions, const char* name) {
  const struct line line = line_of(address);
  const int same = strcmp(line.permissions, permissions) == 0 && strcmp(line.name, name) == 0;
  if (!same) printf("%#lx is %s %s\n", address, line.permissions, line.name);
  return same;
}

// Looks at the file name alone, because the folder may have any name.
static int is_foreign(const char* path) {
  static const char* const foreign[] = {"tessaly", "counting_client.so", "libstdc++.so",
                                        "libgcc_s.so"};
  const char* const slash = strrchr(path, '/');
  for (unsigned i = 0; slash != NULL && i < sizeof foreign / sizeof foreign[0]; i++) {
    if (strncmp(slash + 1, foreign[i], strlen(foreign[i])) == 0) return 1;
  }
  return 0;
}

static void no_foreign_mappings(void) {
  struct line line;
  uintptr_t last = 0;
  FILE* maps = fopen("/proc/self/maps", "r");
  while (next_line(maps, &line)) {
    expect(line.start >= last && line.end > line.start, "order of mappings");
    last = line.end;
    expect(!is_foreign(line.name), line.name);
  }
  fclose(maps);
}

static void mappings(const char* own) {
  static int data = 1;
  int local = 1;
  const size_t part = 65536;
  const size_t size = 3 * part;
  char* const area = mmap(NULL, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  expect(has((uintptr_t)&mappings, "r-xp", own), "code");
  expect(has((uintptr_t)&data, "rw-p", own), "data");
  expect(has((uintptr_t)&local, "rw-p", "[stack]"), "stack");
  expect(has((uintptr_t)sbrk(65536), "rw-p", "[heap]"), "heap");
  const uintptr_t start = (uintptr_t)area;
  mprotect(area + part, part, PROT_NONE);
  munmap(area + 2 * part, part);
  expect(has(start, "r--p", ""), "area");
  expect(has(start + part, "---p", ""), "protected area");
  expect(strcmp(line_of(start + 2 * part).name, "none") == 0, "unmapped area");
  char* const moved = mremap(area, part, size, MREMAP_MAYMOVE);
  expect(has((uintptr_t)moved + size - 1, "r--p", ""), "moved area");
  no_foreign_mappings();
}

static int count_module(struct dl_phdr_info* info, size_t size, void* count) {
  (void)size;
  for (int i = 0; i < info->dlpi_phnum; i++) {
    const ElfW(Phdr)* const header = &info->dlpi_phdr[i];
    const uintptr_t address = info->dlpi_addr + header->p_vaddr;
    if (header->p_type != PT_LOAD) continue;
    expect(line_of(address).start != 0, "a segment of a library");
    ++*(int*)count;
  }
  return 0;
}

int main(int argc, char** argv, char** environment) {
  int segments = 0;
  if (argc < 4) return 100;
  executable(argv[1]);
  mappings(argv[1]);
  dl_iterate_phdr(count_module, &segments);
  expect(segments >= 2, "segments");
  auxiliary_vector(environment);
  command_line(argc, argv, argv[2]);
  return wrong;
}
