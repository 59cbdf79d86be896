/* A shared object that is no package: it lacks the entry. */
int zevociTestPackageWithoutInit(void);
int zevociTestPackageWithoutInit(void) {
  return 0;
}
