/*
 * A program as it would be written against an installed tree: makes an environment and
 * prints the client version. Needs no server.
 */
#include <oci.h>
#include <stdio.h>

int main(void) {
  OCIEnv *env = NULL;
  OCIError *err = NULL;
  sword major = 0, minor = 0, update = 0, patch = 0, port = 0;

  if (OCIEnvCreate(&env, OCI_DEFAULT, NULL, NULL, NULL, NULL, 0, NULL) != OCI_SUCCESS) {
    fputs("no environment\n", stderr);
    return 1;
  }
  if (OCIHandleAlloc(env, (void **)&err, OCI_HTYPE_ERROR, 0, NULL) != OCI_SUCCESS) {
    fputs("no error handle\n", stderr);
    return 1;
  }
  OCIClientVersion(&major, &minor, &update, &patch, &port);
  printf("%d.%d.%d.%d.%d\n", major, minor, update, patch, port);
  return OCIHandleFree(env, OCI_HTYPE_ENV) == OCI_SUCCESS ? 0 : 1;
}
