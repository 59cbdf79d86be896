#include "services/file.h"

#include <fcntl.h>
#include <ociap.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>

#include "core/edge_text.h"
#include "core/owned.h"
#include "zevoci/errors.h"
#include "zevoci/trace.h"

namespace {

constexpr sb4 kBadArgument = 30150;
constexpr sb4 kUninitialised = 30162;

/// Read and write for everybody, as far as the process's mask lets them.
constexpr mode_t kPermissions = 0666;

enum TraceLevel { kNarrative = 3, kResult = 4 };

/// What a number of the interface means to the system.
struct Meaning {
  sb8 number;
  int system;
};

// clang-format off
constexpr Meaning kModes[] = {
    {OCI_FILE_READ_ONLY,  O_RDONLY},
    {OCI_FILE_WRITE_ONLY, O_WRONLY},
    {OCI_FILE_READ_WRITE, O_RDWR},
};
/// The system defines O_EXCL only together with O_CREAT.
constexpr Meaning kCreations[] = {
    {OCI_FILE_CREATE,                   O_CREAT},
    {OCI_FILE_EXCL,                     O_CREAT | O_EXCL},
    {OCI_FILE_TRUNC,                    O_TRUNC},
    {OCI_FILE_APPEND,                   O_APPEND},
    {OCI_FILE_CREATE | OCI_FILE_APPEND, O_CREAT | O_APPEND},
};
constexpr Meaning kOrigins[] = {
    {OCI_FILE_SEEK_BEGINNING, SEEK_SET},
    {OCI_FILE_SEEK_CURRENT,   SEEK_CUR},
    {OCI_FILE_SEEK_END,       SEEK_END},
};
constexpr Meaning kErrors[] = {
    {ENOENT, 30152},
    {EEXIST, 30151},
    {EINVAL, 30157},
    {ENOSPC, 30156},
};
// clang-format on
constexpr sb4 kOtherError = 30155;

template <std::size_t Size>
std::optional<int> find(const Meaning (&table)[Size], sb8 number) {
  const auto *row = std::find_if(std::begin(table), std::end(table),
                                 [number](auto &m) { return m.number == number; });
  return row != std::end(table) ? std::optional(row->system) : std::nullopt;
}

sword failBySystem(OCIError *errhp) {
  return TranslateSysFileErrorToOCIError(errhp, errno);
}

/// Whether a call of the layer needs OCIFileInit before it.
enum class Layer { Needed, NotNeeded };

/// The sequence around the work of every file function: handles, trace, and whether the
/// layer is in use.
template <class Work>
sword fileCall(const char *narrative, void *hndl, OCIError *errhp, Layer layer,
               Work &&work) {
  OCIEnv *env = zev::asEnv(hndl);
  if (!env || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  o2pTrace(kNarrative, narrative);
  ClearErrorHandle(errhp);
  const bool ready = layer == Layer::NotNeeded || env->filesInitialised;
  const sword status = ready ? work(env) : zev::fail(errhp, kUninitialised);
  o2pTrace(kResult,
           status == OCI_SUCCESS ? "\tRETURNING SUCCESS\n" : "\tRETURNING ERROR\n");
  return status;
}

/// Makes "path/filename" in `*name`, in the library's encoding.
sword join(const OCIEnv *env, OCIError *errhp, const OraText *path,
           const OraText *filename, zev::Malloced<> *name) {
  const zev::EdgeText directory(env, path), file(env, filename);
  if (!directory) return directory.fail(errhp);
  if (!file) return file.fail(errhp);
  char *joined = nullptr;
  const int length =
      asprintf(&joined, "%.*s/%.*s", static_cast<int>(directory.size()), directory.data(),
               static_cast<int>(file.size()), file.data());
  if (length < 0) return zev::fail(errhp, 16506);
  name->reset(joined);
  return OCI_SUCCESS;
}

sword openNamed(const OCIEnv *env, OCIError *errhp, OCIFileObject **filep,
                const OraText *filename, const OraText *path, ub4 mode, ub4 create) {
  const auto access = find(kModes, mode);
  const auto creation = find(kCreations, create);
  if (!filename || !path || !access || !creation) return zev::fail(errhp, kBadArgument);
  zev::Malloced<> name;
  const sword status = join(env, errhp, path, filename, &name);
  if (status != OCI_SUCCESS) return status;
  auto *file = static_cast<OCIFileObject *>(std::malloc(sizeof(OCIFileObject)));
  if (!file) return zev::fail(errhp, 16506);
  file->descriptor = open(name.get(), *access | *creation, kPermissions);
  *filep = file;
  return file->descriptor == -1 ? failBySystem(errhp) : OCI_SUCCESS;
}

/// Makes the program's record stand for a stream that is open already.
sword openStandard(OCIError *errhp, OCIFileObject *file, sb4 descriptor) {
  if (!file) return zev::fail(errhp, kBadArgument);
  file->descriptor = descriptor;
  return OCI_SUCCESS;
}

/// One read or write; `moved` takes the count of bytes.
template <class Transfer, class Buffer>
sword transferOnce(Transfer transfer, OCIError *errhp, const OCIFileObject *file,
                   Buffer *buf, ub4 count, ub4 *moved) {
  if (!file || !buf || !moved) return zev::fail(errhp, kBadArgument);
  const ssize_t bytes = transfer(file->descriptor, buf, count);
  if (bytes == -1) return failBySystem(errhp);
  *moved = static_cast<ub4>(bytes);
  return OCI_SUCCESS;
}

sword seek(OCIError *errhp, const OCIFileObject *file, uword origin, ubig_ora offset,
           sb1 dir) {
  const auto whence = find(kOrigins, origin);
  const bool knownDirection = dir == OCI_FILE_FORWARD || dir == OCI_FILE_BACKWARD;
  if (!file || !whence || !knownDirection) return zev::fail(errhp, kBadArgument);
  const auto distance =
      static_cast<off_t>(dir == OCI_FILE_BACKWARD ? ubig_ora{0} - offset : offset);
  const off_t place = lseek(file->descriptor, distance, *whence);
  // The one sign of failure, so that only a distance of 0 can show one.
  const auto failure = static_cast<off_t>(static_cast<ubig_ora>(distance) - 1);
  return place == failure ? failBySystem(errhp) : OCI_SUCCESS;
}

/// What the system knows of "path/filename".
struct Examined {
  sword status = OCI_SUCCESS;  ///< not OCI_SUCCESS: the name could not be made
  int error = 0;               ///< errno of the system's answer
  struct stat facts;

  Examined(const OCIEnv *env, OCIError *errhp, const OraText *path,
           const OraText *filename) {
    zev::Malloced<> name;
    status = join(env, errhp, path, filename, &name);
    if (status == OCI_SUCCESS && stat(name.get(), &facts) == -1) error = errno;
  }
};

}  // namespace

extern "C" {

sword TranslateSysFileErrorToOCIError(OCIError *errhp, int error) {
  return zev::fail(errhp, find(kErrors, error).value_or(kOtherError));
}

ZEV_API sword OCIFileInit(void *hndl, OCIError *err) {
  return fileCall("OCIFileInit\n", hndl, err, Layer::NotNeeded, [](OCIEnv *env) {
    env->filesInitialised = 1;
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIFileTerm(void *hndl, OCIError *err) {
  return fileCall("OCIFileTerm\n", hndl, err, Layer::NotNeeded, [](OCIEnv *env) {
    env->filesInitialised = 0;
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIFileOpen(void *hndl, OCIError *err, OCIFileObject **filep,
                          OraText *filename, OraText *path, ub4 mode, ub4 create,
                          ub4 type) {
  const bool standard = type >= OCI_FILE_STDIN && type <= OCI_FILE_STDERR;
  return fileCall("OCIFileOpen\n", hndl, err, standard ? Layer::NotNeeded : Layer::Needed,
                  [&](OCIEnv *env) {
                    if (!filep || type > OCI_FILE_STDERR) {
                      return zev::fail(err, kBadArgument);
                    }
                    return standard
                               ? openStandard(err, *filep,
                                              static_cast<sb4>(type - OCI_FILE_STDIN))
                               : openNamed(env, err, filep, filename, path, mode, create);
                  });
}

ZEV_API sword OCIFileClose(void *hndl, OCIError *err, OCIFileObject *filep) {
  return fileCall("OCIFileClose\n", hndl, err, Layer::Needed, [&](OCIEnv *) {
    if (!filep) return zev::fail(err, kBadArgument);
    if (close(filep->descriptor) == -1) return failBySystem(err);
    std::free(filep);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIFileRead(void *hndl, OCIError *err, OCIFileObject *filep, void *buf,
                          ub4 count, ub4 *bytesread) {
  return fileCall("OCIFileRead\n", hndl, err, Layer::Needed, [&](OCIEnv *) {
    return transferOnce(read, err, filep, buf, count, bytesread);
  });
}

ZEV_API sword OCIFileWrite(void *hndl, OCIError *err, OCIFileObject *filep, void *buf,
                           ub4 count, ub4 *byteswritten) {
  return fileCall("OCIFileWrite\n", hndl, err, Layer::Needed, [&](OCIEnv *) {
    return transferOnce(write, err, filep, buf, count, byteswritten);
  });
}

ZEV_API sword OCIFileFlush(void *hndl, OCIError *err, OCIFileObject *filep) {
  return fileCall("OCIFileFlush\n", hndl, err, Layer::Needed, [&](OCIEnv *) {
    if (!filep) return zev::fail(err, kBadArgument);
    return fsync(filep->descriptor) == -1 ? failBySystem(err) : OCI_SUCCESS;
  });
}

ZEV_API sword OCIFileSeek(void *hndl, OCIError *err, OCIFileObject *filep, uword origin,
                          ubig_ora offset, sb1 dir) {
  return fileCall("OCIFileSeek\n", hndl, err, Layer::Needed,
                  [&](OCIEnv *) { return seek(err, filep, origin, offset, dir); });
}

ZEV_API sword OCIFileExists(void *hndl, OCIError *err, OraText *filename, OraText *path,
                            ub1 *flag) {
  return fileCall("OCIFileExists\n", hndl, err, Layer::Needed, [&](OCIEnv *env) {
    if (!filename || !path || !flag) return zev::fail(err, kBadArgument);
    const Examined file(env, err, path, filename);
    *flag = file.status == OCI_SUCCESS && file.error == 0;
    return file.status;
  });
}

ZEV_API sword OCIFileGetLength(void *hndl, OCIError *err, OraText *filename,
                               OraText *path, ubig_ora *lenp) {
  return fileCall("OCIFileGetLength\n", hndl, err, Layer::Needed, [&](OCIEnv *env) {
    if (!filename || !path || !lenp) return zev::fail(err, kBadArgument);
    const Examined file(env, err, path, filename);
    if (file.status != OCI_SUCCESS) return file.status;
    if (file.error) return TranslateSysFileErrorToOCIError(err, file.error);
    *lenp = static_cast<ubig_ora>(file.facts.st_size);
    return OCI_SUCCESS;
  });
}

}  // extern "C"
