#include <cstring>
#include <string>

#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/wire.h"
#include "zevoci/connection.h"

namespace {

/// The texts run to their own ends; their lengths are those of the program's encoding.
std::string terminated(const zev::EdgeText &edge) {
  return edge.data() ? std::string(edge.data()) : std::string();
}

struct Link {
  OCIServer *server = nullptr;
  OCISession *session = nullptr;
};

sword findLink(OCISvcCtx *svchp, OCIError *errhp, Link &link) {
  const sword status = getServerHandleFromService(&link.server, svchp, errhp);
  if (status != OCI_SUCCESS) return status;
  void *session = nullptr;
  const sword found =
      OCIAttrGet(svchp, OCI_HTYPE_SVCCTX, &session, nullptr, OCI_ATTR_SESSION, errhp);
  link.session = zev::asSession(session);
  return found;
}

/// Makes sure that the server is connected; with OCI_AUTH a session is begun where it is
/// not.
sword connect(OCISvcCtx *svchp, OCIError *errhp, const Link &link, ub4 mode) {
  if (PQstatus(link.server->conn) == CONNECTION_OK) return OCI_SUCCESS;
  if (mode & OCI_AUTH) {
    return OCISessionBegin(svchp, errhp, link.session, OCI_CRED_RDBMS, OCI_DEFAULT);
  }
  return zev::fail(errhp, 25407, PQerrorMessage(link.server->conn));
}

sword changePassword(const Link &link, OCIError *errhp, const std::string &user,
                     const std::string &password) {
  const std::string command = "ALTER ROLE " + user + " WITH PASSWORD '" + password + "';";
  const zev::PgResult result = zev::wire::exec(link.server->conn, command.c_str());
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    return zev::failFromServer(errhp, result.get());
  }
  return OCI_SUCCESS;
}

}  // namespace

extern "C" ZEV_API sword OCIPasswordChange(OCISvcCtx *svchp, OCIError *errhp,
                                           const OraText *user_name, ub4 usernm_len,
                                           const OraText *opasswd, ub4 opasswd_len,
                                           const OraText *npasswd, ub4 npasswd_len,
                                           ub4 mode) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (mode != OCI_DEFAULT && !(mode & OCI_AUTH)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kPasswordChange, env, errhp,
      [&](sword &status) {
        const auto leaveWith = [&status](sword outcome) {
          status = outcome;
          return zev::Leave::AtOnce;
        };
        Link link;
        sword outcome = findLink(svchp, errhp, link);
        if (outcome != OCI_SUCCESS) return leaveWith(outcome);
        outcome = connect(svchp, errhp, link, mode);
        if (outcome != OCI_SUCCESS) return leaveWith(outcome);

        const zev::EdgeText user(env, user_name, usernm_len);
        if (!user) return leaveWith(user.fail(errhp));
        const zev::EdgeText former(env, opasswd, opasswd_len);
        if (!former) return leaveWith(former.fail(errhp));
        const zev::EdgeText password(env, npasswd, npasswd_len);
        if (!password) return leaveWith(password.fail(errhp));

        const std::string userName = terminated(user);
        outcome = changePassword(link, errhp, userName, terminated(password));
        if (outcome != OCI_SUCCESS) return leaveWith(outcome);
        if (link.session->username && userName == link.session->username) {
          outcome =
              OCIAttrSet(link.session, OCI_HTYPE_SESSION, const_cast<OraText *>(npasswd),
                         npasswd_len, OCI_ATTR_PASSWORD, errhp);
          if (outcome != OCI_SUCCESS) status = outcome;
        }
        return zev::Leave::ThroughExitCallbacks;
      },
      svchp, errhp, user_name, usernm_len, opasswd, opasswd_len, npasswd, npasswd_len,
      mode);
}
