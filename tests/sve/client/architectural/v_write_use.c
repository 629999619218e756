// Writes V0 and then uses Z0 in the way that the argument names, many times and in two threads.
#include <pthread.h>
#include <string.h>

struct use {
  void (*code)(void* memory);
  const char* name;
};
extern const struct use v_write_uses[], v_write_uses_end[];

static void* repeat(void* use) {
  _Alignas(16) static _Thread_local unsigned char memory[1024];
  for (int i = 0; i < 100; ++i) ((const struct use*)use)->code(memory);
  return NULL;
}

int main(int argc, char** argv) {
  const struct use* use = v_write_uses;
  while (use != v_write_uses_end && (argc < 2 || strcmp(use->name, argv[1]) != 0)) ++use;
  if (use == v_write_uses_end) return 2;
  pthread_t thread;
  pthread_create(&thread, NULL, repeat, (void*)use);
  repeat((void*)use);
  pthread_join(thread, NULL);
  return 0;
}
