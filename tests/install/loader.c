/*
 * A driver as it is written for clients of several versions: loads the library under each
 * of the names given, looks its functions up and prints the client version.
 */
#include <dlfcn.h>
#include <oci.h>
#include <stdio.h>
#include <string.h>

typedef void (*ClientVersion)(sword *, sword *, sword *, sword *, sword *);

/* The function under that name, or null. A data pointer is its address (POSIX). */
static ClientVersion look_up(const char *library) {
  ClientVersion function = NULL;
  void *handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  void *symbol = handle ? dlsym(handle, "OCIClientVersion") : NULL;
  if (!symbol) fprintf(stderr, "%s\n", dlerror());
  memcpy(&function, &symbol, sizeof function);
  return function;
}

int main(int argc, char **argv) {
  ClientVersion first = argc > 1 ? look_up(argv[1]) : NULL;
  sword part[5];
  int i;

  if (!first) return 1;
  for (i = 2; i < argc; ++i) {
    if (look_up(argv[i]) != first) return 2;
  }
  first(&part[0], &part[1], &part[2], &part[3], &part[4]);
  printf("%d.%d.%d.%d.%d of one library\n", part[0], part[1], part[2], part[3], part[4]);
  return 0;
}
