#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/memory_cache.h"
#include "stmt/block.h"
#include "stmt/execute_bulk.h"
#include "stmt/portal.h"
#include "stmt/result.h"
#include "stmt/statement_text.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"

namespace {

struct Keyword {
  const char *word;
  ub2 type;
};

// The first that the text begins with decides.
constexpr Keyword kKeywords[] = {
    {"SELECT", OCI_STMT_SELECT},   {"UPDATE", OCI_STMT_UPDATE},
    {"DELETE", OCI_STMT_DELETE},   {"INSERT", OCI_STMT_INSERT},
    {"CREATE", OCI_STMT_CREATE},   {"DROP", OCI_STMT_DROP},
    {"ALTER", OCI_STMT_ALTER},     {"BEGIN", OCI_STMT_BEGIN},
    {"DECLARE", OCI_STMT_DECLARE}, {"TRUNCATE", STMT_TRUNCATE},
    {"COMMENT", STMT_COMMENT},     {"GRANT", STMT_GRANT},
    {"REVOKE", STMT_REVOKE},
};

sword failCleared(OCIError *errhp, sb4 code) {
  ClearErrorHandle(errhp);
  return zev::fail(errhp, code);
}

bool isLanguage(ub4 language) {
  return language == OCI_NTV_SYNTAX || language == OCI_V7_SYNTAX;
}

/// Drops what the former text left on the server. A failure does not stop the new one.
void dropServerObjects(OCIStmt *stmt, OCIError *errhp) {
  if (stmt->cursor && stmt->service && stmt->service->server) {
    if (deallocateCursor(stmt->service->server, stmt, errhp, 1) != 0) {
      zev::freeText(stmt->cursor->stmtName);
      zev::freeText(stmt->cursor->portalName);
    }
  }
  if (!stmt->preparedName) return;
  ZEV_ASSERT(stmt->pgPreparedServer, "stmtp->pgPreparedServer != ((void *)0)");
  deallocateStatement(stmt->pgPreparedServer, errhp, stmt->preparedName);
  zev::freeText(stmt->preparedName);
  stmt->pgPreparedServer = nullptr;
}

/// Takes a statement back to where it has neither text nor binds nor server objects.
void forgetStatement(OCIStmt *stmt, OCIError *errhp) {
  zev::freeBinds(stmt);
  zev::freeDefines(stmt);
  zev::freeListAndMembers(stmt->placeholderNames);
  zev::freeText(stmt->callText);
  zev::freeText(stmt->returnParam);
  zev::freeText(stmt->procName);
  zev::freeText(stmt->stmtText);
  stmt->textLen = 0;
  stmt->isCallable = 0;
  stmt->hasReturn = 0;
  zev::dropResults(stmt);
  zev::abandonBulk(stmt);
  dropServerObjects(stmt, errhp);
  stmt->prepared = 0;
  stmt->argModesKnown = 0;
  stmt->hasOutParams = 0;
  stmt->arrayRowCount = 0;
  stmt->executed = 0;
}

sword takeText(OCIStmt *stmt, OCIError *errhp, const OraText *text, ub4 length) {
  const zev::EdgeText edge(zev::parentEnv(stmt), text, length);
  if (!edge) return edge.fail(errhp);
  const zev::Malloced<> copy(makeString(edge.data(), edge.size()));
  if (!copy) return zev::fail(errhp, 16506);
  zev::Malloced<> trimmed(strtrim(copy.get()));
  if (!trimmed || !*trimmed.get()) return zev::fail(errhp, 24373);
  stmt->textLen = static_cast<ub4>(std::strlen(trimmed.get()));
  stmt->stmtText = trimmed.release();
  return OCI_SUCCESS;
}

struct ReleaseBlock {
  void operator()(callableStmt *node) const noexcept { ReleaseOCICallableStmt(node); }
};

/// Makes a statement the call that its block holds. False when it holds none.
bool takeCallBlock(OCIStmt *stmt) {
  const std::unique_ptr<callableStmt, ReleaseBlock> node(zev::parseBlock(stmt->stmtText));
  if (!node) return false;
  stmt->isCallable = 1;
  stmt->hasReturn = node->hasReturn;
  stmt->procName = std::exchange(node->name, nullptr);
  stmt->callText = std::exchange(node->text, nullptr);
  stmt->returnParam = std::exchange(node->returnParam, nullptr);
  return true;
}

sword prepare(OCIStmt *stmt, OCIError *errhp, const OraText *text, ub4 length,
              ub4 language) {
  forgetStatement(stmt, errhp);
  const sword status = takeText(stmt, errhp, text, length);
  if (status != OCI_SUCCESS) return status;
  stmt->language = language;
  stmt->mode = OCI_DEFAULT;
  stmt->stmtType = GetStatementType(stmt->stmtText);
  if (stmt->stmtType == OCI_STMT_BEGIN && !takeCallBlock(stmt)) {
    zev::freeText(stmt->stmtText);
    stmt->textLen = 0;
    return zev::fail(errhp, 13780);
  }
  stmt->paramCount = 0;
  stmt->prepared = 1;
  stmt->executed = 0;
  stmt->serverPrepared = 0;
  stmt->pgPreparedServer = nullptr;
  return OCI_SUCCESS;
}

}  // namespace

extern "C" ub2 GetStatementType(const char *text) {
  for (const Keyword &keyword : kKeywords) {
    if (oci_strncasecmp(text, keyword.word, std::strlen(keyword.word)) == 0) {
      return keyword.type;
    }
  }
  return STMT_UNKNOWN;
}

extern "C" ZEV_API sword OCIStmtPrepare(OCIStmt *stmtp, OCIError *errhp,
                                        const OraText *stmt, ub4 stmt_len, ub4 language,
                                        ub4 mode) {
  if (!zev::asStmt(stmtp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;
  if (!stmt) return zev::failArgument(errhp, "3");
  if (!stmt_len) return failCleared(errhp, 24373);
  if (mode != OCI_DEFAULT) return failCleared(errhp, 24300);
  if (stmtp->fromPrepare2) return OCI_INVALID_HANDLE;
  if (!isLanguage(language)) return OCI_ERROR;
  ocitrace(kTracePrepare, "OCIStmtPrepare", "stmtp(%p) %*.*s\n",
           static_cast<void *>(stmtp), static_cast<int>(stmt_len),
           static_cast<int>(stmt_len), reinterpret_cast<const char *>(stmt));

  return zev::runFrame(
      zev::frame::kStmtPrepare, env, errhp,
      [&](sword &status) {
        const sword outcome = prepare(stmtp, errhp, stmt, stmt_len, language);
        if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
        status = outcome;
        return zev::Leave::AtOnce;
      },
      stmtp, errhp, stmt, stmt_len, language, mode);
}
