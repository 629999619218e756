// The programs that make processes share this.
#pragma once

#include <errno.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

// Prints how the child with this number ended.
static inline void tell_end(const char* what, pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) {
    printf("%s: no child, error %d\n", what, errno);
  } else if (WIFEXITED(status)) {
    printf("%s: exit %d\n", what, WEXITSTATUS(status));
  } else {
    printf("%s: signal %d\n", what, WTERMSIG(status));
  }
}

// Runs the statement in a child. The statement must not return.
#define IN_CHILD(what, statement)  \
  do {                             \
    const pid_t child = fork();    \
    if (child == 0) {              \
      statement;                   \
      printf("error %d\n", errno); \
      _exit(1);                    \
    }                              \
    tell_end(what, child);         \
  } while (0)
