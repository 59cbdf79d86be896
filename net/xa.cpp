/// Handles of a connection that an XA open string describes, for the XA layer of a
/// transaction manager. The XA protocol itself is not here.
#include <xa.h>

#include <cstring>

#include "net/xa_open_string.h"
#include "zevoci/trace.h"

namespace {

/// An open string must be shorter.
constexpr std::size_t kOpenStringBound = 256;

/// A NUL-terminated text that is part of an open string, or made of its parts.
class Text {
 public:
  Text() = default;
  explicit Text(std::string_view content) { *this += content; }

  Text &operator+=(std::string_view more) {
    length_ += more.copy(data_ + length_, more.size());
    return *this;
  }
  const char *data() const { return data_; }
  bool empty() const { return length_ == 0; }
  ub4 length() const { return static_cast<ub4>(length_); }
  std::string_view view() const { return {data_, length_}; }

 private:
  char data_[kOpenStringBound + sizeof "//:/"] = {};
  std::size_t length_ = 0;
};

OraText *bytes(const Text &text) {
  return reinterpret_cast<OraText *>(const_cast<char *>(text.data()));
}

/// An open string taken apart, as the calls need it.
struct Target {
  Text host, port, database, user, password, module;
  bool understood = false;

  explicit Target(const zev::XaOpenString &parsed)
      : host(parsed.host),
        port(parsed.port),
        database(parsed.database),
        module(parsed.module) {
    const std::size_t slash = parsed.account.find('/');
    if (slash == parsed.account.npos) return;
    user = Text(parsed.account.substr(0, slash));
    password = Text(parsed.account.substr(slash + 1));
    understood = true;
  }

  Text connectText() const {
    if (host.empty() || port.empty()) return database;
    Text text("//");
    text += host.view();
    text += ":";
    text += port.view();
    text += "/";
    text += database.view();
    return text;
  }
};

/// Whether a call went well; traces `failure` where it did not.
bool done(sword status, const char *failure) {
  if (status >= 0) return true;
  ocitrace(kTraceSession, nullptr, "%s() failed\n", failure);
  return false;
}

/// The handles of one connection; all is undone at the end unless the connection was
/// kept.
class Connection {
 public:
  Connection() = default;
  ~Connection() {
    if (env_ && !kept_) undo();
  }
  Connection(const Connection &) = delete;
  Connection &operator=(const Connection &) = delete;

  /// False, after a trace line, as soon as one step fails.
  bool open(const Target &target) {
    return createEnvironment() && allocate() && attach(target) && authenticate(target);
  }

  OCISvcCtx *keep() {
    kept_ = true;
    return service_;
  }

 private:
  bool createEnvironment() {
    return done(
        OCIEnvCreate(&env_, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
        "OCIEnvCreate");
  }

  template <class T>
  bool allocate(T *&handle, ub4 type, const char *failure) {
    void *made = nullptr;
    if (!done(OCIHandleAlloc(env_, &made, type, 0, nullptr), failure)) return false;
    handle = static_cast<T *>(made);
    return true;
  }

  bool allocate() {
    return allocate(error_, OCI_HTYPE_ERROR, "OCIHandleAlloc(OCI_HTYPE_ERROR)") &&
           allocate(service_, OCI_HTYPE_SVCCTX, "OCIHandleAlloc(OCI_HTYPE_SVCCTX)") &&
           allocate(session_, OCI_HTYPE_SESSION, "OCIHandleAlloc(OCI_HTYPE_SESSION)") &&
           allocate(server_, OCI_HTYPE_SERVER, "OCIHandleAlloc(OCI_HTYPE_SERVER)");
  }

  bool attach(const Target &target) {
    const Text text = target.connectText();
    ocitrace(kTraceSession, nullptr, "db_uri [%s]\n", text.data());
    attached_ = done(OCIServerAttach(server_, error_, bytes(text),
                                     static_cast<sb4>(text.length()), OCI_DEFAULT),
                     "OCIServerAttach");
    return attached_ && link(server_, OCI_ATTR_SERVER, "OCIAttrSet(OCI_ATTR_SERVER)");
  }

  bool authenticate(const Target &target) {
    return setText(target.user, OCI_ATTR_USERNAME, "OCIAttrSet(OCI_ATTR_USERNAME)") &&
           setText(target.password, OCI_ATTR_PASSWORD, "OCIAttrSet(OCI_ATTR_PASSWORD)") &&
           setText(target.module, OCI_ATTR_MODULE, "OCIAttrSet(OCI_ATTR_MODULE)") &&
           done(OCISessionBegin(service_, error_, session_, OCI_CRED_RDBMS, OCI_DEFAULT),
                "OCISessionBegin") &&
           linkSession();
  }

  bool linkSession() {
    if (link(session_, OCI_ATTR_SESSION, "OCIAttrSet(OCI_ATTR_SESSION)")) return true;
    OCISessionEnd(service_, error_, session_, OCI_DEFAULT);
    return false;
  }

  bool link(void *handle, ub4 attribute, const char *failure) {
    return done(OCIAttrSet(service_, OCI_HTYPE_SVCCTX, handle, 0, attribute, error_),
                failure);
  }

  bool setText(const Text &text, ub4 attribute, const char *failure) {
    return done(OCIAttrSet(session_, OCI_HTYPE_SESSION, bytes(text), text.length(),
                           attribute, error_),
                failure);
  }

  void undo() {
    if (attached_) OCIServerDetach(server_, error_, OCI_DEFAULT);
    if (session_) OCIHandleFree(session_, OCI_HTYPE_SESSION);
    if (server_) OCIHandleFree(server_, OCI_HTYPE_SERVER);
    if (service_) OCIHandleFree(service_, OCI_HTYPE_SVCCTX);
    if (error_) OCIHandleFree(error_, OCI_HTYPE_ERROR);
    OCIHandleFree(env_, OCI_HTYPE_ENV);
    OCITerminate(OCI_DEFAULT);
  }

  OCIEnv *env_ = nullptr;
  OCIError *error_ = nullptr;
  OCISvcCtx *service_ = nullptr;
  OCISession *session_ = nullptr;
  OCIServer *server_ = nullptr;
  bool attached_ = false;
  bool kept_ = false;
};

}  // namespace

extern "C" {

ZEV_API OCIEnv *xaoEnv(OraText *) {
  OCIEnv *env = nullptr;
  const sword status =
      OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  return status < 0 ? nullptr : env;
}

ZEV_API OCISvcCtx *xaoSvcCtx(OraText *open_string) {
  ocitrace(kTraceSession, nullptr, "xaoSvcCtx() started\n");
  const auto *text = reinterpret_cast<const char *>(open_string);
  const std::size_t length = text ? strnlen(text, kOpenStringBound) : kOpenStringBound;
  if (length == kOpenStringBound) {
    done(OCI_ERROR, "xa_parse_connection_str");
    return nullptr;
  }
  const Target target(zev::parseXaOpenString({text, length}));
  if (!target.understood) {
    done(OCI_ERROR, "xa_parse_connection_str");
    return nullptr;
  }
  ocitrace(kTraceSession, nullptr, "host[%s] port[%s] db[%s] user[%s] app[%s]\n",
           target.host.data(), target.port.data(), target.database.data(),
           target.user.data(), target.module.data());
  Connection connection;
  if (!connection.open(target)) return nullptr;
  ocitrace(kTraceSession, nullptr, "xaoSvcCtx() complete\n");
  return connection.keep();
}

}  // extern "C"
