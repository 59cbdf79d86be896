#include <utility>

#include "zevoci/connection.h"
#include "zevoci/errors.h"

namespace {

/// A handle of an unfinished logon, freed unless it is kept.
template <class T>
class Pending {
 public:
  explicit Pending(ub4 type) : type_(type) {}
  ~Pending() {
    if (handle_) OCIHandleFree(handle_, type_);
  }
  Pending(const Pending &) = delete;
  Pending &operator=(const Pending &) = delete;

  sword alloc(OCIEnv *env) {
    void *made = nullptr;
    const sword status = OCIHandleAlloc(env, &made, type_, 0, nullptr);
    handle_ = static_cast<T *>(made);
    return status;
  }
  T *get() const { return handle_; }
  T *keep() {
    T *kept = handle_;
    handle_ = nullptr;
    return kept;
  }

 private:
  ub4 type_;
  T *handle_ = nullptr;
};

sword setText(OCISession *session, const OraText *text, ub4 length, ub4 attribute,
              OCIError *errhp) {
  const sword status = OCIAttrSet(session, OCI_HTYPE_SESSION, const_cast<OraText *>(text),
                                  length, attribute, errhp);
  // A text that cannot be converted is recorded on the environment, whose records go when
  // the logon is undone.
  OCIError *environments = zev::parentEnv(session)->errh;
  if (status != OCI_SUCCESS && environments->records) {
    ClearErrorHandle(errhp);
    std::swap(errhp->records, environments->records);
  }
  return status;
}

struct Credentials {
  const OraText *username;
  ub4 usernameLength;
  const OraText *password;
  ub4 passwordLength;
};

sword beginSession(OCIEnv *env, OCIError *errhp, OCISvcCtx *service,
                   const Credentials &user) {
  Pending<OCISession> session(OCI_HTYPE_SESSION);
  sword status = session.alloc(env);
  if (status != OCI_SUCCESS) return status;
  status = setText(session.get(), user.username, user.usernameLength, OCI_ATTR_USERNAME,
                   errhp);
  if (status != OCI_SUCCESS) return status;
  status = setText(session.get(), user.password, user.passwordLength, OCI_ATTR_PASSWORD,
                   errhp);
  if (status != OCI_SUCCESS) return status;
  status = OCISessionBegin(service, errhp, session.get(), OCI_CRED_RDBMS, OCI_DEFAULT);
  if (status != OCI_SUCCESS && status != OCI_SUCCESS_WITH_INFO) return status;
  const sword linked =
      OCIAttrSet(service, OCI_HTYPE_SVCCTX, session.get(), 0, OCI_ATTR_SESSION, errhp);
  if (linked != OCI_SUCCESS) return linked;
  session.keep();
  return status;
}

}  // namespace

extern "C" ZEV_API sword OCILogon(OCIEnv *envhp, OCIError *errhp, OCISvcCtx **svchp,
                                  const OraText *username, ub4 uname_len,
                                  const OraText *password, ub4 passwd_len,
                                  const OraText *dbname, ub4 dbname_len) {
  if (!zev::asEnv(envhp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (!svchp) return OCI_ERROR;
  *svchp = nullptr;
  if (!username) return zev::failArgument(errhp, "4");
  if (!dbname) return zev::failArgument(errhp, "8");

  Pending<OCIServer> server(OCI_HTYPE_SERVER);
  sword status = server.alloc(envhp);
  if (status != OCI_SUCCESS) return status;
  status = OCIServerAttach(server.get(), errhp, dbname, static_cast<sb4>(dbname_len),
                           OCI_DEFAULT);
  if (status != OCI_SUCCESS) return status;
  Pending<OCISvcCtx> service(OCI_HTYPE_SVCCTX);
  status = service.alloc(envhp);
  if (status != OCI_SUCCESS) return status;

  // From here on the server stays with the environment, also after a failure: a program
  // that found it through the service context may hold it.
  OCIServer *kept = server.keep();
  status = OCIAttrSet(service.get(), OCI_HTYPE_SVCCTX, kept, 0, OCI_ATTR_SERVER, errhp);
  if (status != OCI_SUCCESS) return status;
  status = beginSession(envhp, errhp, service.get(),
                        {username, uname_len, password, passwd_len});
  if (status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO) *svchp = service.keep();
  return status;
}

extern "C" ZEV_API sword OCILogon2(OCIEnv *envhp, OCIError *errhp, OCISvcCtx **svchp,
                                   const OraText *username, ub4 uname_len,
                                   const OraText *password, ub4 passwd_len,
                                   const OraText *dbname, ub4 dbname_len, ub4 mode) {
  const sword status = OCILogon(envhp, errhp, svchp, username, uname_len, password,
                                passwd_len, dbname, dbname_len);
  const bool connected = status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO;
  if (connected && mode & OCI_LOGON2_STMTCACHE && zev::asService(*svchp)) {
    (*svchp)->stmtCacheEnabled = 1;
  }
  return status;
}

extern "C" ZEV_API sword OCILogoff(OCISvcCtx *svchp, OCIError *errhp) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  void *server = nullptr;
  void *session = nullptr;
  sword status =
      OCIAttrGet(svchp, OCI_HTYPE_SVCCTX, &server, nullptr, OCI_ATTR_SERVER, errhp);
  if (status != OCI_SUCCESS) return status;
  status =
      OCIAttrGet(svchp, OCI_HTYPE_SVCCTX, &session, nullptr, OCI_ATTR_SESSION, errhp);
  if (status != OCI_SUCCESS) return status;

  OCISessionEnd(svchp, errhp, nullptr, OCI_DEFAULT);
  OCIServerDetach(static_cast<OCIServer *>(server), errhp, OCI_DEFAULT);
  OCIHandleFree(server, OCI_HTYPE_SERVER);
  OCIHandleFree(session, OCI_HTYPE_SESSION);
  return OCIHandleFree(svchp, OCI_HTYPE_SVCCTX);
}
