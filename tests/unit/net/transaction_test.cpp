/// Transactions by their flags and names, and the three helpers by the server's state.
#include <cstring>
#include <map>

#include "tests/server/wire_log.h"
#include "tests/unit/core/server_fixture.h"

namespace zev::test {
namespace {

class Transaction : public ServerTest {
 protected:
  OCITrans *link() {
    auto *trans = env.alloc<OCITrans>(OCI_HTYPE_TRANS);
    svchp->trans = trans;
    return trans;
  }
  sword start(ub4 flags) { return OCITransStart(svchp, errhp, 0, flags); }
  std::string run(const std::string &sql) {
    PGresult *result = PQexec(server->conn, sql.c_str());
    const std::string value = PQntuples(result) ? PQgetvalue(result, 0, 0) : "";
    PQclear(result);
    return value;
  }
  PGTransactionStatusType state() const { return PQtransactionStatus(server->conn); }

  /// The SQL that goes over the connection during `work`.
  template <class Work>
  std::vector<std::string> sent(Work work) {
    std::FILE *file = std::tmpfile();
    PQtrace(server->conn, file);
    work();
    PQuntrace(server->conn);
    std::fflush(file);
    std::rewind(file);
    std::string text;
    for (int c; (c = std::fgetc(file)) != EOF;) text += static_cast<char>(c);
    std::fclose(file);
    return parseWireLog(text).sql;
  }
  using Sql = std::vector<std::string>;

  void setXid(OCITrans *trans, long format, std::string_view data, long global) {
    XID xid{};
    xid.formatID = format;
    xid.gtrid_length = global;
    xid.bqual_length = static_cast<long>(data.size()) - global;
    std::memcpy(xid.data, data.data(), data.size());
    ASSERT_EQ(OCIAttrSet(trans, OCI_HTYPE_TRANS, &xid, sizeof xid, OCI_ATTR_XID, errhp),
              OCI_SUCCESS);
  }
};

/// The numbers for start flags, read bit by bit; 0 for flags that are taken.
sb4 modelledRefusal(ub4 flags) {
  const bool isNew = flags & 1, join = flags & 2, resume = flags & 4;
  const ub4 low = flags & 0xff;
  if (low) {
    const int count = isNew + join + resume;
    if (count >= 2) return 24759;
    if (join || resume) return 24755;
    if (low != 1) return 24759;
  }
  const ub4 isolation = flags >> 8 & 0xff;
  if (isolation != 0 && isolation != 1 && isolation != 2 && isolation != 4) return 24760;
  const ub4 type = flags >> 16 & 0xf;
  if ((type & 3) == 3) return 24773;
  if (type) return 24755;
  return flags & 0x300000 ? 24755 : 0;
}

const char *modelledCommand(ub4 flags) {
  return flags & 0x100   ? "SET TRANSACTION READ ONLY "
         : flags & 0x400 ? "SET TRANSACTION ISOLATION LEVEL SERIALIZABLE "
                         : nullptr;
}

TEST_F(Transaction, EveryCombinationOfStartFlagsIsTakenOrRefusedByItsNumber) {
  link();
  std::map<sb4, int> seen;
  for (ub4 high = 0; high < 0x40; ++high) {
    for (ub4 isolation = 0; isolation < 0x100; ++isolation) {
      // The low byte decides alone, so that all of it is tried with each isolation once.
      for (ub4 low = 0; low < (high == 0 ? 0x100u : 2u); ++low) {
        const ub4 flags = high << 16 | isolation << 8 | low;
        const sb4 wanted = modelledRefusal(flags);
        ++seen[wanted];
        if (!wanted && modelledCommand(flags)) continue;  // sends; below
        ASSERT_EQ(start(flags), wanted ? OCI_ERROR : OCI_SUCCESS) << std::hex << flags;
        ASSERT_EQ(codesOf(errhp), wanted ? Codes{wanted} : Codes{}) << std::hex << flags;
      }
    }
  }
  for (const sb4 code : {0, 24755, 24759, 24760, 24773}) EXPECT_GT(seen[code], 0) << code;
}

TEST_F(Transaction, AStartSendsTheIsolationAndNothingElse) {
  link();
  const struct {
    ub4 flags;
    Sql sql;
  } rows[] = {
      {0, {}},
      {OCI_TRANS_NEW, {}},
      {0x200, {}},
      {0x201, {}},
      {0x100, {"SET TRANSACTION READ ONLY "}},
      {0x101, {"SET TRANSACTION READ ONLY "}},
      {0x400, {"SET TRANSACTION ISOLATION LEVEL SERIALIZABLE "}},
      {0x401, {"SET TRANSACTION ISOLATION LEVEL SERIALIZABLE "}},
      {2, {}},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(sent([&] { start(row.flags); }), row.sql) << row.flags;
  }
}

TEST_F(Transaction, TheIsolationHoldsInAnOpenTransaction) {
  link();
  run("begin");
  EXPECT_EQ(start(0x101), OCI_SUCCESS);
  EXPECT_EQ(run("show transaction_read_only"), "on");
  run("rollback");
  run("begin");
  EXPECT_EQ(start(0x401), OCI_SUCCESS);
  EXPECT_EQ(run("show transaction_isolation"), "serializable");
  run("select 1");
  EXPECT_EQ(start(0x400), OCI_SUCCESS);  // no change
  run("rollback; begin; select 1");
  EXPECT_EQ(start(0x400), OCI_ERROR);
  EXPECT_NE(firstText(errhp).find("must be called before any query"), std::string::npos);
}

TEST_F(Transaction, AStartNeedsATransactionHandle) {
  EXPECT_EQ(start(OCI_TRANS_NEW), OCI_INVALID_HANDLE);
  svchp->trans = reinterpret_cast<OCITrans *>(server);
  EXPECT_EQ(start(OCI_TRANS_NEW), OCI_INVALID_HANDLE);
  svchp->trans = nullptr;
}

TEST_F(Transaction, APreparedTransactionIsCommittedByItsName) {
  setXid(link(), 1, "ab", 1);
  run("create table if not exists two_phase (n int); truncate two_phase");
  run("begin; insert into two_phase values (7)");
  EXPECT_EQ(
      sent([&] { EXPECT_EQ(OCITransPrepare(svchp, errhp, OCI_DEFAULT), OCI_SUCCESS); }),
      Sql{"PREPARE TRANSACTION '1.ab'"});
  EXPECT_EQ(run("select count(*) from pg_prepared_xacts where gid = '1.ab'"), "1");
  EXPECT_EQ(run("select count(*) from two_phase"), "0");
  EXPECT_EQ(sent([&] {
              EXPECT_EQ(OCITransCommit(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_SUCCESS)
                  << firstText(errhp);
            }),
            Sql{"COMMIT PREPARED '1.ab'"});
  EXPECT_EQ(run("select n from two_phase"), "7");
}

TEST_F(Transaction, APreparedTransactionIsRolledBackByItsName) {
  OCITrans *trans = link();
  OCIAttrSet(trans, OCI_HTYPE_TRANS, const_cast<OraText *>(asText("name")), 4,
             OCI_ATTR_TRANS_NAME, errhp);
  run("begin; create table two_phase_gone (n int)");
  EXPECT_EQ(OCITransPrepare(svchp, errhp, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(sent([&] {
              EXPECT_EQ(OCITransRollback(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_SUCCESS);
            }),
            Sql{"ROLLBACK PREPARED '0.name'"});
  EXPECT_EQ(run("select to_regclass('two_phase_gone') is null"), "t");
}

TEST_F(Transaction, AnUnknownPreparedTransactionIsTheServersError) {
  setXid(link(), 5, "nobody", 6);
  EXPECT_EQ(OCITransCommit(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{1418});  // 42704, undefined object
}

TEST_F(Transaction, TwoPhaseCallsNeedATransactionHandleWithAnXid) {
  EXPECT_EQ(OCITransCommit(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCITransRollback(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCITransPrepare(svchp, errhp, OCI_DEFAULT), OCI_INVALID_HANDLE);
  link();
  EXPECT_EQ(OCITransCommit(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24762});
  EXPECT_EQ(OCITransRollback(svchp, errhp, OCI_TRANS_TWOPHASE), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24762});
  EXPECT_EQ(OCITransPrepare(svchp, errhp, OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24771});
}

TEST_F(Transaction, CommitAndRollbackAreSentWhateverTheStateAndTheOtherFlags) {
  for (const ub4 flags : {0u, 1u, 0x1000001u}) {
    EXPECT_EQ(sent([&] { EXPECT_EQ(OCITransCommit(svchp, errhp, flags), OCI_SUCCESS); }),
              Sql{"COMMIT"});
    EXPECT_EQ(
        sent([&] { EXPECT_EQ(OCITransRollback(svchp, errhp, flags), OCI_SUCCESS); }),
        Sql{"ROLLBACK"});
  }
}

TEST_F(Transaction, WithoutAConnectionEachCallIsRefused) {
  link();
  OCISessionEnd(svchp, errhp, session, OCI_DEFAULT);
  const auto refused = [&](sword status) {
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{25407});
    ClearErrorHandle(errhp);
  };
  refused(OCITransCommit(svchp, errhp, OCI_DEFAULT));
  refused(OCITransRollback(svchp, errhp, OCI_DEFAULT));
  refused(OCITransPrepare(svchp, errhp, OCI_DEFAULT));
  refused(start(OCI_TRANS_NEW));
  svchp->server = nullptr;
  EXPECT_EQ(OCITransCommit(svchp, errhp, OCI_DEFAULT), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCITransRollback(svchp, errhp, OCI_DEFAULT), OCI_INVALID_HANDLE);
  svchp->server = server;
}

TEST_F(Transaction, ARollbackOnABrokenConnectionKeepsFormerRecords) {
  OCISessionEnd(svchp, errhp, session, OCI_DEFAULT);
  AddErrorRecord(errhp, OCI_ERROR, 1);
  EXPECT_EQ(OCITransRollback(svchp, errhp, OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), (Codes{1, 25407}));
}

TEST_F(Transaction, TheAttributesOfATransactionHaveTheirSizes) {
  OCITrans *trans = link();
  const auto get = [&](ub4 attribute, void *value, ub4 *size) {
    return OCIAttrGet(trans, OCI_HTYPE_TRANS, value, size, attribute, errhp);
  };
  void *block = this;
  ub4 size = 0;
  EXPECT_EQ(get(OCI_ATTR_XID, &block, &size), OCI_SUCCESS);
  EXPECT_EQ(block, nullptr);
  EXPECT_EQ(size, 152u);
  block = this;
  EXPECT_EQ(get(OCI_ATTR_TRANS_NAME, &block, &size), OCI_SUCCESS);
  EXPECT_EQ(block, nullptr);
  EXPECT_EQ(size, 152u);
  setXid(trans, 9, "abcde", 2);
  EXPECT_EQ(get(OCI_ATTR_XID, &block, &size), OCI_SUCCESS);
  EXPECT_EQ(static_cast<XID *>(block)->formatID, 9);
  EXPECT_EQ(get(OCI_ATTR_TRANS_NAME, &block, &size), OCI_SUCCESS);
  EXPECT_EQ(std::string(static_cast<char *>(block), size), "abcde");
  ub4 timeout = 30, read = 0;
  EXPECT_EQ(
      OCIAttrSet(trans, OCI_HTYPE_TRANS, &timeout, 0, OCI_ATTR_TRANS_TIMEOUT, errhp),
      OCI_SUCCESS);
  EXPECT_EQ(get(OCI_ATTR_TRANS_TIMEOUT, &read, &size), OCI_SUCCESS);
  EXPECT_EQ(read, 30u);
  EXPECT_EQ(size, 4u);
}

TEST_F(Transaction, AnXidOfAnotherSizeIsRefused) {
  OCITrans *trans = link();
  XID xid{};
  for (const ub4 size : {0u, 1u, 151u, 153u}) {
    EXPECT_EQ(OCIAttrSet(trans, OCI_HTYPE_TRANS, &xid, size, OCI_ATTR_XID, errhp),
              OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{24750});
  }
  EXPECT_EQ(trans->xid, nullptr);
}

TEST_F(Transaction, ANameTakesUpTo128BytesAndClearsTheRestOfTheXid) {
  OCITrans *trans = link();
  setXid(trans, 9, "abcde", 2);
  const std::string name(200, 'n');
  EXPECT_EQ(OCIAttrSet(trans, OCI_HTYPE_TRANS, const_cast<char *>(name.data()), 200,
                       OCI_ATTR_TRANS_NAME, errhp),
            OCI_SUCCESS);
  EXPECT_EQ(trans->xid->formatID, 0);
  EXPECT_EQ(trans->xid->gtrid_length, 128);
  EXPECT_EQ(trans->xid->bqual_length, 0);
  char *sentName = GetTransactionNameFromXID(trans->xid);
  EXPECT_EQ(sentName, "0." + name.substr(0, 128));
  std::free(sentName);
}

TEST_F(Transaction, NamesCarryTheFormatAndTheBytesAsTheyStand) {
  XID xid{};
  xid.formatID = -2147483647 - 1;
  std::memcpy(xid.data, "x'y\"z", 5);
  xid.gtrid_length = 3;
  xid.bqual_length = 2;
  char *name = GetTransactionNameFromXID(&xid);
  EXPECT_STREQ(name, "-2147483648.x'y\"z");
  std::free(name);
}

TEST_F(Transaction, TheHelpersActByTheServersState) {
  EXPECT_EQ(sent([&] { COMMIT_TRANSACTION(server->conn); }), Sql{});
  EXPECT_EQ(sent([&] { ROLLBACK_TRANSACTION(server); }), Sql{});
  EXPECT_EQ(sent([&] { START_TRANSACTION(server->conn); }), Sql{"BEGIN"});
  EXPECT_EQ(sent([&] { START_TRANSACTION(server->conn); }), Sql{});
  EXPECT_EQ(sent([&] { COMMIT_TRANSACTION(server->conn); }), Sql{"COMMIT"});
  START_TRANSACTION(server->conn);
  EXPECT_EQ(sent([&] { ROLLBACK_TRANSACTION(server); }), Sql{"ROLLBACK"});
  EXPECT_EQ(state(), PQTRANS_IDLE);
}

TEST_F(Transaction, AFailedTransactionIsNotCommittedButRolledBack) {
  run("begin; select 1/0");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  EXPECT_EQ(sent([&] { COMMIT_TRANSACTION(server->conn); }), Sql{});
  EXPECT_EQ(sent([&] { START_TRANSACTION(server->conn); }), Sql{});
  EXPECT_EQ(state(), PQTRANS_INERROR);
  EXPECT_EQ(sent([&] { ROLLBACK_TRANSACTION(server); }), Sql{"ROLLBACK"});
}

TEST_F(Transaction, AServerThatKeepsTransactionsIsNotRolledBackByTheHelper) {
  run("begin");
  server->stmtLevelTx = 1;
  EXPECT_EQ(sent([&] { ROLLBACK_TRANSACTION(server); }), Sql{});
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST(TransactionDeathTest, ARollbackWithoutAServerIsAFault) {
  EXPECT_DEATH(ROLLBACK_TRANSACTION(nullptr), "server != \\(\\(void \\*\\)0\\)");
}

}  // namespace
}  // namespace zev::test
