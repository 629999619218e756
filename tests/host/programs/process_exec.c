// Tests that execve does what the kernel's does. The program executes itself, and the first
// argument says what the new program reports.
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/host/programs/children.h"

extern char** environ;
static const char* self;  // a path that names this program
static char directory[] = "/tmp/process_exec.XXXXXX";

// --- In the new program ------------------------------------------------------------------------

// Prints only the last component of a path, because the directory's name differs in each run.
static void tell_arguments(int argc, char** argv) {
  printf("%d arguments:", argc);
  for (int i = 0; i < argc; i++) {
    const char* name = argv[i][0] == '/' ? strrchr(argv[i], '/') : argv[i];
    printf(" <%s>", name);
  }
  puts("");
}

// Leaves out the emulator's own variables, which the program passes on.
static void tell_environment(void) {
  for (char** at = environ; *at != NULL; at++) {
    if (strncmp(*at, "QEMU_", 5) != 0) printf("environment <%s>\n", *at);
  }
}

static void tell_signals(void) {
  sigset_t mask;
  sigprocmask(SIG_SETMASK, NULL, &mask);
  for (int signal = 1; signal < 32; signal++) {
    struct sigaction action;
    sigaction(signal, NULL, &action);
    if (sigismember(&mask, signal)) printf("%d is blocked\n", signal);
    if (action.sa_handler == SIG_IGN) printf("%d is ignored\n", signal);
    if (action.sa_handler != SIG_IGN && action.sa_handler != SIG_DFL) {
      printf("%d is handled\n", signal);
    }
  }
}

static void tell_descriptors(void) {
  printf("open:");
  for (int fd = 3; fd < 64; fd++) {
    if (fcntl(fd, F_GETFD) >= 0) printf(" %d", fd);
  }
  puts("");
}

static const char* own_name(void) {
  const unsigned long address = getauxval(AT_EXECFN);
  const char* name = NULL;
  memcpy(&name, &address, sizeof name);
  return name;
}

static int report(int argc, char** argv) {
  const char* what = argc > 1 ? argv[1] : "";
  if (strcmp(what, "environment") == 0) tell_environment();
  if (strcmp(what, "signals") == 0) tell_signals();
  if (strcmp(what, "descriptors") == 0) tell_descriptors();
  if (strcmp(what, "number") == 0) {
    printf("same number %d\n", getpid() == strtol(argv[2], NULL, 10));
    return 22;
  }
  if (strcmp(what, "name") == 0) return strcmp(own_name(), argv[2]) != 0;
  if (strcmp(what, "thread") == 0) printf("leader %d\n", getpid() == gettid());
  tell_arguments(argc, argv);
  return 21;
}

// --- In the old program ------------------------------------------------------------------------

static void arguments_and_environment(void) {
  char* some[] = {"another name", "", "two words", "-c", "--", NULL};
  char* none[] = {NULL};
  char* extra[16] = {"A=b", "LD=", "noequals"};
  int count = 3;
  for (char** at = environ; *at != NULL && count < 15; at++) {
    if (strncmp(*at, "QEMU_", 5) == 0) extra[count++] = *at;
  }
  char* environment[] = {"zero", "environment", NULL};
  IN_CHILD("arguments", execve(self, some, environ));
  IN_CHILD("no arguments", execve(self, none, environ));
  IN_CHILD("environment", execve(self, environment, extra));
}

static void handle(int signal) { (void)signal; }

static void set_signals_and_execute(void) {
  const int blocked[] = {SIGUSR1, SIGTERM, SIGSEGV};
  const int ignored[] = {SIGUSR2, SIGHUP, SIGFPE};
  sigset_t mask;
  sigemptyset(&mask);
  for (int i = 0; i < 3; i++) sigaddset(&mask, blocked[i]);
  sigprocmask(SIG_SETMASK, &mask, NULL);
  for (int i = 0; i < 3; i++) signal(ignored[i], SIG_IGN);
  signal(SIGINT, handle);
  signal(SIGILL, handle);
  execl(self, "zero", "signals", NULL);
}

static void set_descriptors_and_execute(void) {
  dup2(1, 10);
  fcntl(1, F_DUPFD_CLOEXEC, 11);
  dup2(1, 12);
  execl(self, "zero", "descriptors", NULL);
}

static void same_process(void) {
  char number[16];
  snprintf(number, sizeof number, "%d", getpid());
  execl(self, "zero", "number", number, NULL);
}

static void* execute_in_thread(void* argument) {
  execl(self, "zero", "thread", NULL);
  return argument;
}

static void* sleep_for_ever(void* argument) {
  pause();
  return argument;
}

static void execute_among_threads(void) {
  pthread_t thread;
  for (int i = 0; i < 3; i++) pthread_create(&thread, NULL, sleep_for_ever, NULL);
  pthread_create(&thread, NULL, execute_in_thread, NULL);
  pause();
}

static const char* put(const char* name, const char* content, mode_t mode) {
  static char paths[16][64];
  static int used;
  char* path = paths[used++];
  snprintf(path, sizeof paths[0], "%s/%s", directory, name);
  FILE* file = fopen(path, "w");
  fputs(content, file);
  fclose(file);
  chmod(path, mode);
  return path;
}

static void scripts(void) {
  char line[300];
  char interpreter[64];  // a script cannot name its interpreter by a long path or one with spaces
  snprintf(interpreter, sizeof interpreter, "%s/interpreter", directory);
  if (symlink(self, interpreter) != 0) perror(interpreter);
  snprintf(line, sizeof line, "#! %s one  argument \nno matter", interpreter);
  const char* script = put("script", line, 0755);
  snprintf(line, sizeof line, "#!%s", script);
  const char* nested = put("nested", line, 0755);
  printf("chdir %d\n", chdir(directory));
  IN_CHILD("script", execl("script", "lost", "x", NULL));
  IN_CHILD("nested", execl("./nested", "lost", "y", NULL));
  snprintf(line, sizeof line, "#!%s", nested);
  for (int i = 0; i < 5; i++) {
    char name[16];
    snprintf(name, sizeof name, "deep%d", i);
    snprintf(line, sizeof line, "#!%s", put(name, line, 0755));
  }
  IN_CHILD("too deep", execl("deep4", "x", NULL));
}

// The program goes on after an execve that fails.
static void errors(void) {
  static const char* texts[] = {"", "#!\n", "#!/does/not/exist\n", "text\n", "\177ELF"};
  for (int i = 0; i < 5; i++) {
    char name[16];
    snprintf(name, sizeof name, "wrong%d", i);
    execl(put(name, texts[i], 0755), "x", NULL);
    printf("wrong %d: error %d\n", i, errno);
  }
  static const char* paths[] = {"", "/does/not/exist", "/proc", "script/x", "/dev/null"};
  for (int i = 0; i < 5; i++) {
    execl(paths[i], "x", NULL);
    printf("%s: error %d\n", paths[i], errno);
  }
  char* const unreadable[] = {"x", (char*)8, NULL};
  syscall(SYS_execve, 8, unreadable, environ);
  printf("path: error %d\n", errno);
  syscall(SYS_execve, self, 8, environ);
  printf("arguments: error %d\n", errno);
  syscall(SYS_execve, self, unreadable, environ);
  printf("argument: error %d\n", errno);
}

static void spawns(void) {
  pid_t child = 0;
  char* arguments[] = {"spawned", "descriptors", NULL};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, 1, 20);
  const int error = posix_spawn(&child, self, &actions, NULL, arguments, environ);
  tell_end("spawned", child);
  printf("spawn %d\n", error);
  child = vfork();
  if (child == 0) {
    execl(self, "vforked", NULL);
    _exit(1);
  }
  tell_end("vforked", child);
  child = vfork();
  if (child == 0) _exit(33);
  tell_end("vforked alone", child);
}

static volatile int spinning = 1;

static void* spin(void* argument) {
  while (spinning) free(malloc(100));
  return argument;
}

static void spawns_among_threads(void) {
  pthread_t threads[2];
  for (int i = 0; i < 2; i++) pthread_create(&threads[i], NULL, spin, NULL);
  spawns();
  spinning = 0;
  for (int i = 0; i < 2; i++) pthread_join(threads[i], NULL);
}

static void by_descriptor(void) {
  const int fd = open(self, O_RDONLY);
  char* arguments[] = {"by descriptor", NULL};
  IN_CHILD("fexecve", fexecve(fd, arguments, environ));
}

// qemu-user has no execveat, so there is nothing to compare with: the table has the results. The
// launcher leaves some refusals to the kernel, and there qemu-user's answer is ENOSYS instead.
static int execveat_as_known(void) {
  const int kept = open(self, O_RDONLY);
  const int closed = open(self, O_RDONLY | O_CLOEXEC);
  const int at = open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const int script = open(put("script", "#!/does/not/matter\n", 0755), O_RDONLY | O_CLOEXEC);
  char link[64];
  snprintf(link, sizeof link, "%s/link", directory);
  if (symlink(self, link) != 0) return 1;
  const struct {
    int fd, flags;
    const char *path, *name;
    int error;  // 0: it is executed, and its name is `name`, or the path if that is null
  } table[] = {
      {at, 0, "link", "/dev/fd/%d/link", 0},
      {at, AT_SYMLINK_NOFOLLOW, "link", "", ELOOP},
      {AT_FDCWD, 0, link, NULL, 0},
      {kept, AT_EMPTY_PATH, "", "/dev/fd/%d", 0},
      {closed, AT_EMPTY_PATH, "", "/dev/fd/%d", 0},
      {script, AT_EMPTY_PATH, "", "", ENOENT},
      {kept, 0, "", "", ENOENT},
      {kept, 0, "x", "", ENOTDIR},
      {99, AT_EMPTY_PATH, "", "", EBADF},
      {kept, AT_EMPTY_PATH | 1, "", "", EINVAL},
  };
  syscall(SYS_execveat, -1, "", NULL, NULL, 0);
  const int refusal = errno == ENOSYS ? ENOSYS : 0;
  int wrong = 0;
  for (unsigned i = 0; i < sizeof table / sizeof table[0]; i++) {
    char name[80];
    snprintf(name, sizeof name, table[i].name != NULL ? table[i].name : link, table[i].fd);
    char* arguments[] = {"zero", "name", name, NULL};
    const pid_t child = fork();
    if (child == 0) {
      syscall(SYS_execveat, table[i].fd, table[i].path, arguments, environ, table[i].flags);
      _exit(errno);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const int error = WEXITSTATUS(status);
    if (error == table[i].error || (error == refusal && table[i].error != 0)) continue;
    printf("execveat %u: error %d\n", i, error);
    wrong++;
  }
  return wrong;
}

static void remove_all(void) {
  char command[64];
  snprintf(command, sizeof command, "rm -r %s", directory);
  printf("system %d\n", system(command));
}

int main(int argc, char** argv) {
  setbuf(stdout, NULL);
  const int all = argc == 2 && strcmp(argv[1], "start") == 0;
  const int some = argc == 2 && strcmp(argv[1], "execveat") == 0;
  if (!all && !some) return report(argc, argv);
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  path[length] = '\0';
  self = path;
  if (mkdtemp(directory) == NULL) return 1;
  if (some) {
    const int wrong = execveat_as_known();
    remove_all();
    return wrong;
  }
  arguments_and_environment();
  IN_CHILD("signals", set_signals_and_execute());
  IN_CHILD("descriptors", set_descriptors_and_execute());
  IN_CHILD("same process", same_process());
  IN_CHILD("threads", execute_among_threads());
  scripts();
  errors();
  spawns();
  spawns_among_threads();
  by_descriptor();
  remove_all();
  return 0;
}
