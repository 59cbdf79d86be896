/// The strings of object mode, which binds and defines of SQLT_VST point to.
#include <ociap.h>

#include <cstdlib>
#include <cstring>

#include "core/arguments.h"
#include "core/edge_text.h"
#include "core/owned.h"
#include "zevoci/errors.h"
#include "zevoci/string_value.h"

namespace {

bool isObjectMode(const OCIEnv *env) {
  return env->mode & OCI_OBJECT;
}

/// The checks of all calls with an error handle, then `work`.
template <class Work>
sword stringCall(OCIEnv *env, OCIError *errhp,
                 std::initializer_list<zev::Argument> arguments, const Work &work) {
  if (!zev::asEnv(env) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (!isObjectMode(env)) return zev::fail(errhp, 21301);
  if (zev::checkArguments(errhp, arguments) != OCI_SUCCESS) return OCI_ERROR;
  return work();
}

/// The string of `*place`, a new one where there is none; null without memory.
OCIString *ensureString(OCIString **place) {
  if (!*place) *place = static_cast<OCIString *>(std::calloc(1, sizeof(OCIString)));
  return *place;
}

/// A copy of a text of `size` bytes with its terminator; null without memory.
zev::Malloced<> copyOf(const OCIEnv *env, const OraText *text, std::size_t size) {
  const std::size_t terminator = zev::terminatorSize(env);
  zev::Malloced<> copy(static_cast<char *>(std::malloc(size + terminator)));
  if (!copy) return copy;
  std::memcpy(copy.get(), text, size);
  std::memset(copy.get() + size, 0, terminator);
  return copy;
}

/// Gives a string a copy of a text up to its end, and `length` as its length.
sword setText(const OCIEnv *env, OCIError *errhp, OCIString **place, const OraText *text,
              ub4 length) {
  OCIString *const string = ensureString(place);
  if (!string) return zev::fail(errhp, 16506);
  const std::size_t size = zev::textLength(env, text);
  zev::Malloced<> copy = copyOf(env, text, size);
  if (!copy) return OCI_INVALID_HANDLE;
  std::free(string->text);
  string->allocatedSize = static_cast<ub4>(size);
  string->length = length;
  string->text = reinterpret_cast<OraText *>(copy.release());
  return OCI_SUCCESS;
}

void freeString(OCIString *&string) {
  if (string) std::free(string->text);
  std::free(string);
  string = nullptr;
}

}  // namespace

extern "C" {

ZEV_API sword OCIStringAllocSize(OCIEnv *env, OCIError *err, const OCIString *vs,
                                 ub4 *allocsize) {
  return stringCall(env, err, {{vs, "3"}, {allocsize, "4"}}, [&] {
    *allocsize = vs->allocatedSize;
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIStringAssign(OCIEnv *env, OCIError *err, const OCIString *rhs,
                              OCIString **lhs) {
  return stringCall(env, err, {{rhs, "3"}, {lhs, "4"}}, [&] {
    static constexpr char16_t kEmpty[] = u"";
    const auto *empty = reinterpret_cast<const OraText *>(kEmpty);
    return setText(env, err, lhs, rhs->text ? rhs->text : empty, rhs->length);
  });
}

ZEV_API sword OCIStringAssignText(OCIEnv *env, OCIError *err, const OraText *rhs,
                                  ub4 rhs_len, OCIString **lhs) {
  return stringCall(env, err, {{rhs, "3"}, {lhs, "5"}}, [&]() -> sword {
    const std::size_t length = zev::textLength(env, rhs);
    if (rhs_len < length) return OCI_ERROR;
    return setText(env, err, lhs, rhs, static_cast<ub4>(length));
  });
}

ZEV_API OraText *OCIStringPtr(OCIEnv *env, const OCIString *vs) {
  return vs && zev::asEnv(env) && isObjectMode(env) ? vs->text : nullptr;
}

ZEV_API sword OCIStringResize(OCIEnv *env, OCIError *err, ub4 new_size, OCIString **str) {
  return stringCall(env, err, {{str, "4"}}, [&]() -> sword {
    if (new_size == 0) {
      freeString(*str);
      return OCI_SUCCESS;
    }
    // Room for the terminator of a text that fills it.
    const std::size_t room = new_size + zev::terminatorSize(env);
    zev::Malloced<> text(static_cast<char *>(std::calloc(room, 1)));
    OCIString *const string = text ? ensureString(str) : nullptr;
    if (!string) return zev::fail(err, 16506);
    std::free(string->text);
    *string = {new_size, 0, reinterpret_cast<OraText *>(text.release())};
    return OCI_SUCCESS;
  });
}

ZEV_API ub4 OCIStringSize(OCIEnv *env, const OCIString *vs) {
  if (!vs) return 0;
  if (!zev::asEnv(env)) return static_cast<ub4>(OCI_INVALID_HANDLE);
  return isObjectMode(env) ? vs->length : static_cast<ub4>(OCI_ERROR);
}

}  // extern "C"
