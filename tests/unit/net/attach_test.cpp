/// Where to connect, and who: without any connection.
#include <algorithm>

#include "tests/unit/core/core_fixture.h"

namespace zev::test {
namespace {

class Attach : public testing::TestWithParam<ub4> {
 protected:
  /// ASCII in the environment's encoding.
  std::string edge(std::string_view text) const {
    return env.get()->utf16 ? utf16(text) : std::string(text);
  }
  sword attach(const std::string &target) {
    return OCIServerAttach(server, errhp, asText(target), static_cast<sb4>(target.size()),
                           OCI_DEFAULT);
  }
  // No file of this machine's is asked for a name.
  Variable home{"HOME", nullptr}, admin{"TNS_ADMIN", nullptr};
  Environment env{GetParam()};
  OCIError *errhp = env.errhp();
  OCIServer *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
};

TEST_P(Attach, StoresTheConnectStringAndItsParts) {
  EXPECT_EQ(attach(edge("//host:5432/db")), OCI_SUCCESS);
  EXPECT_EQ(server->attached, 1);
  EXPECT_STREQ(server->dblink, "//host:5432/db");
  EXPECT_EQ(server->dblinkLen, 14u);
  EXPECT_STREQ(server->host, "host");
  EXPECT_STREQ(server->port, "5432");
  EXPECT_STREQ(server->dbname, "db");
  EXPECT_EQ(server->uri, nullptr);
  EXPECT_EQ(server->conn, nullptr);
}

TEST_P(Attach, AnEmptyPortOrDatabaseIsNotReplaced) {
  EXPECT_EQ(attach(edge("host")), OCI_SUCCESS);
  EXPECT_STREQ(server->port, "");
  EXPECT_STREQ(server->dbname, "");
}

TEST_P(Attach, WithoutAConnectStringTheDefaultsHold) {
  for (const sb4 length : {0, -1, -1000}) {
    auto *other = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
    EXPECT_EQ(OCIServerAttach(other, errhp, asText("x"), length, OCI_DEFAULT),
              OCI_SUCCESS);
    EXPECT_STREQ(other->host, "localhost");
    EXPECT_STREQ(other->port, "5444");
    EXPECT_STREQ(other->dbname, "zev");
    EXPECT_EQ(other->dblink, nullptr);
  }
}

TEST_P(Attach, AUriTakesNoDefaults) {
  EXPECT_EQ(attach(edge("postgres://h/d")), OCI_SUCCESS);
  EXPECT_STREQ(server->uri, "postgres://h/d");
  EXPECT_EQ(server->host, nullptr);
  EXPECT_EQ(server->port, nullptr);
  EXPECT_EQ(server->dbname, nullptr);
}

TEST_P(Attach, ANameThatIsNotKnownFailsAndLeavesTheServerFree) {
  EXPECT_EQ(attach(edge("a/b:c")), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{12154});
  EXPECT_EQ(server->attached, 0);
  EXPECT_EQ(attach(edge("h")), OCI_SUCCESS);
  EXPECT_EQ(codesOf(errhp), Codes{});
}

TEST_P(Attach, ASecondAttachFailsAndLeavesTheFirst) {
  EXPECT_EQ(attach(edge("h")), OCI_SUCCESS);
  AddErrorRecord(errhp, OCI_ERROR, 1);
  EXPECT_EQ(attach(edge("i")), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24309});
  EXPECT_STREQ(server->host, "h");
}

TEST_P(Attach, DetachForgetsTheAddressOnce) {
  attach(edge("h:1/d"));
  EXPECT_EQ(OCIServerDetach(server, errhp, OCI_DEFAULT), OCI_SUCCESS);
  for (const char *part :
       {server->dblink, server->host, server->port, server->dbname, server->uri}) {
    EXPECT_EQ(part, nullptr);
  }
  EXPECT_EQ(server->dblinkLen, 0u);
  EXPECT_EQ(OCIServerDetach(server, errhp, OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24324});
  EXPECT_EQ(attach(edge("i")), OCI_SUCCESS);
}

TEST_P(Attach, ModesAreIgnored) {
  for (const ub4 mode : {0u, 1u, 0xffffffffu}) {
    EXPECT_EQ(OCIServerAttach(server, errhp, nullptr, 0, mode), OCI_SUCCESS);
    EXPECT_EQ(OCIServerDetach(server, errhp, mode), OCI_SUCCESS);
  }
}

TEST_P(Attach, AServerBelowNoEnvironmentIsInvalid) {
  server->parenth = errhp;
  EXPECT_EQ(attach("h"), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIServerDetach(server, errhp, OCI_DEFAULT), OCI_INVALID_HANDLE);
  server->parenth = env.get();
}

INSTANTIATE_TEST_SUITE_P(Encodings, Attach, testing::Values(OCI_DEFAULT, OCI_UTF16),
                         [](const auto &p) { return p.param ? "Utf16" : "Utf8"; });

TEST(AttachUtf16, TextBeyondAsciiArrivesInUtf8) {
  Environment env(OCI_UTF16);
  auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  const std::string target("\xe4\0/\0\xac\x20", 6);
  EXPECT_EQ(OCIServerAttach(server, env.errhp(), asText(target), 6, OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_STREQ(server->host, "\xc3\xa4");
  EXPECT_STREQ(server->dbname, "\xe2\x82\xac");
  EXPECT_EQ(server->dblinkLen, 6u);
}

TEST(AttachUtf16, BrokenTextIsRecordedAndLeavesTheServerFree) {
  const struct {
    std::string target;
    const char *text;
  } rows[] = {
      {"abc", "An incomplete multibyte sequence has been encountered in the input"},
      {std::string("\0\xdc", 2),
       "An invalid multibyte sequence has been encountered in the input"},
  };
  for (const auto &row : rows) {
    Environment env(OCI_UTF16);
    auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
    EXPECT_EQ(OCIServerAttach(server, env.errhp(), asText(row.target),
                              static_cast<sb4>(row.target.size()), OCI_DEFAULT),
              OCI_ERROR);
    EXPECT_EQ(firstText(env.errhp()), row.text);
    EXPECT_EQ(server->attached, 0);
  }
}

class SessionAttributes : public Attach {
 protected:
  sword set(ub4 attribute, const std::string &text) {
    return set(attribute, text, text.size());
  }
  sword set(ub4 attribute, const std::string &text, std::size_t size) {
    return OCIAttrSet(session, OCI_HTYPE_SESSION, const_cast<char *>(text.data()),
                      static_cast<ub4>(size), attribute, errhp);
  }
  OCISession *session = env.alloc<OCISession>(OCI_HTYPE_SESSION);
};

TEST_P(SessionAttributes, TextsAreStoredInTheLibrarysEncoding) {
  EXPECT_EQ(set(OCI_ATTR_USERNAME, edge("scott")), OCI_SUCCESS);
  EXPECT_EQ(set(OCI_ATTR_PASSWORD, edge("tiger")), OCI_SUCCESS);
  EXPECT_EQ(set(OCI_ATTR_MODULE, edge("app")), OCI_SUCCESS);
  EXPECT_STREQ(session->username, "scott");
  EXPECT_STREQ(session->password, "tiger");
  EXPECT_STREQ(session->module, "app");
}

TEST_P(SessionAttributes, TheLengthBoundsNameAndPassword) {
  const std::string text = edge("scottish");
  const std::size_t size = edge("scott").size();
  EXPECT_EQ(set(OCI_ATTR_USERNAME, text, size), OCI_SUCCESS);
  EXPECT_EQ(set(OCI_ATTR_PASSWORD, text, size), OCI_SUCCESS);
  EXPECT_STREQ(session->username, "scott");
  EXPECT_STREQ(session->password, "scott");
}

TEST_P(SessionAttributes, ATerminatorInsideEndsTheText) {
  const std::string text = edge(std::string_view("ab\0cd", 5));
  for (const ub4 attribute : {OCI_ATTR_USERNAME, OCI_ATTR_PASSWORD, OCI_ATTR_MODULE}) {
    EXPECT_EQ(set(attribute, text), OCI_SUCCESS);
  }
  EXPECT_STREQ(session->username, "ab");
  EXPECT_STREQ(session->module, "ab");
}

TEST_P(SessionAttributes, LengthZeroOrNullClears) {
  for (const ub4 attribute : {OCI_ATTR_USERNAME, OCI_ATTR_PASSWORD, OCI_ATTR_MODULE}) {
    set(attribute, edge("x"));
    EXPECT_EQ(set(attribute, edge("y"), 0), OCI_SUCCESS);
    set(attribute, edge("x"));
    EXPECT_EQ(OCIAttrSet(session, OCI_HTYPE_SESSION, nullptr, 5, attribute, errhp),
              OCI_SUCCESS);
  }
  EXPECT_EQ(session->username, nullptr);
  EXPECT_EQ(session->password, nullptr);
  EXPECT_EQ(session->module, nullptr);
}

TEST_P(SessionAttributes, TheNameIsReadAsACopyOfTheCallers) {
  set(OCI_ATTR_USERNAME, edge("scott"));
  char *name = nullptr;
  ub4 size = 0;
  EXPECT_EQ(
      OCIAttrGet(session, OCI_HTYPE_SESSION, &name, &size, OCI_ATTR_USERNAME, errhp),
      OCI_SUCCESS);
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(std::string(name, size), edge("scott"));
  EXPECT_NE(name, session->username);
  std::free(name);
}

TEST_P(SessionAttributes, WithoutANameNothingIsWritten) {
  char here;
  char *name = &here;
  ub4 size = 7;
  EXPECT_EQ(
      OCIAttrGet(session, OCI_HTYPE_SESSION, &name, &size, OCI_ATTR_USERNAME, errhp),
      OCI_SUCCESS);
  EXPECT_EQ(name, &here);
  EXPECT_EQ(size, 7u);
}

TEST_P(SessionAttributes, OtherTextsAreNotRead) {
  char *value = nullptr;
  for (const ub4 attribute :
       {23u, 366u, 86u, 99u, 100u, 169u, 273u, 275u, 300u, 367u, 369u}) {
    EXPECT_EQ(OCIAttrGet(session, OCI_HTYPE_SESSION, &value, nullptr, attribute, errhp),
              OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{24315});
  }
}

TEST_P(SessionAttributes, SomeAreTakenWithoutEffect) {
  const Codes taken = {86, 99, 100, 169, 273, 275, 276, 277, 278, 300, 367, 368, 369};
  for (ub4 attribute = 0; attribute < 500; ++attribute) {
    if (attribute == 22 || attribute == 23 || attribute == 366) continue;
    const bool known =
        std::find(taken.begin(), taken.end(), static_cast<sb4>(attribute)) != taken.end();
    EXPECT_EQ(set(attribute, "x"), known ? OCI_SUCCESS : OCI_ERROR) << attribute;
    EXPECT_EQ(codesOf(errhp), Codes{});
  }
}

INSTANTIATE_TEST_SUITE_P(Encodings, SessionAttributes,
                         testing::Values(OCI_DEFAULT, OCI_UTF16),
                         [](const auto &p) { return p.param ? "Utf16" : "Utf8"; });

TEST(SessionAttributesUtf16, BrokenTextIsRecordedOnTheEnvironmentAndTheOldValueIsGone) {
  Environment env(OCI_UTF16);
  auto *session = env.alloc<OCISession>(OCI_HTYPE_SESSION);
  std::string name = utf16("a");
  OCIAttrSet(session, OCI_HTYPE_SESSION, name.data(), 2, OCI_ATTR_USERNAME, env.errhp());
  EXPECT_EQ(OCIAttrSet(session, OCI_HTYPE_SESSION, name.data(), 1, OCI_ATTR_USERNAME,
                       env.errhp()),
            OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{});
  EXPECT_EQ(firstText(env.get()->errh),
            "An incomplete multibyte sequence has been encountered in the input");
  EXPECT_EQ(session->username, nullptr);
}

class ServiceAttributes : public testing::Test {
 protected:
  sword get(ub4 attribute, void *value, ub4 *size = nullptr) {
    return OCIAttrGet(service, OCI_HTYPE_SVCCTX, value, size, attribute, env.errhp());
  }
  sword set(ub4 attribute, void *value) {
    return OCIAttrSet(service, OCI_HTYPE_SVCCTX, value, 0, attribute, env.errhp());
  }
  Environment env;
  OCISvcCtx *service = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  OCIServer *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  OCISession *session = env.alloc<OCISession>(OCI_HTYPE_SESSION);
  void *value = this;
};

TEST_F(ServiceAttributes, LinksAreReadBackAndMayBeCleared) {
  const struct {
    ub4 attribute;
    void *handle, *wrong;
  } rows[] = {{OCI_ATTR_SERVER, server, session}, {OCI_ATTR_SESSION, session, server}};
  for (const auto &row : rows) {
    EXPECT_EQ(get(row.attribute, &value), OCI_INVALID_HANDLE);
    EXPECT_EQ(value, this);
    EXPECT_EQ(set(row.attribute, row.handle), OCI_SUCCESS);
    ub4 size = 9;
    EXPECT_EQ(get(row.attribute, &value, &size), OCI_SUCCESS);
    EXPECT_EQ(value, row.handle);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(set(row.attribute, row.wrong), OCI_ERROR);
    EXPECT_EQ(get(row.attribute, &value), OCI_SUCCESS);
    EXPECT_EQ(value, row.handle);
    EXPECT_EQ(set(row.attribute, nullptr), OCI_SUCCESS);
    EXPECT_EQ(get(row.attribute, &value), OCI_INVALID_HANDLE);
    value = this;
  }
}

TEST_F(ServiceAttributes, TheParentIsReadAndNotWritten) {
  EXPECT_EQ(get(OCI_ATTR_ENV, &value), OCI_SUCCESS);
  EXPECT_EQ(value, env.get());
  EXPECT_EQ(set(OCI_ATTR_ENV, env.get()), OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{});
}

TEST_F(ServiceAttributes, SomeAreReadWithoutWritingAnything) {
  for (const ub4 attribute :
       {OCI_ATTR_TRANS, OCI_ATTR_IN_V8_MODE, OCI_ATTR_STMTCACHESIZE}) {
    ub4 size = 9;
    EXPECT_EQ(get(attribute, &value, &size), OCI_SUCCESS);
    EXPECT_EQ(value, this);
    EXPECT_EQ(size, 0u);
  }
}

TEST_F(ServiceAttributes, OfTheRestOnlyTransactionAndCacheSizeAreWritten) {
  auto *trans = env.alloc<OCITrans>(OCI_HTYPE_TRANS);
  EXPECT_EQ(set(OCI_ATTR_TRANS, trans), OCI_SUCCESS);
  EXPECT_EQ(service->trans, trans);
  EXPECT_EQ(set(OCI_ATTR_TRANS, nullptr), OCI_SUCCESS);
  ub4 cacheSize = 20;
  EXPECT_EQ(set(OCI_ATTR_STMTCACHESIZE, &cacheSize), OCI_SUCCESS);
  EXPECT_EQ(set(OCI_ATTR_IN_V8_MODE, &cacheSize), OCI_ERROR);
}

TEST_F(ServiceAttributes, AServerThatIsMissingOrForgedIsInvalid) {
  OCIServer *found = nullptr;
  EXPECT_EQ(getServerHandleFromService(&found, service, env.errhp()), OCI_INVALID_HANDLE);
  set(OCI_ATTR_SERVER, server);
  EXPECT_EQ(getServerHandleFromService(&found, service, env.errhp()), OCI_SUCCESS);
  EXPECT_EQ(found, server);
  EXPECT_EQ(getServerHandleFromService(&found, nullptr, env.errhp()), OCI_INVALID_HANDLE);
}

TEST_F(ServiceAttributes, AContextWithoutServerBeginsNoSession) {
  EXPECT_EQ(OCISessionBegin(service, env.errhp(), session, OCI_CRED_RDBMS, 0), OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{24314});
  set(OCI_ATTR_SERVER, server);  // which is not attached
  EXPECT_EQ(OCISessionBegin(service, env.errhp(), session, OCI_CRED_RDBMS, 0), OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{24314});
}

TEST(ClientVersion, IsTheSameWhateverTheServer) {
  sword part[5] = {-1, -1, -1, -1, -1};
  OCIClientVersion(&part[0], &part[1], &part[2], &part[3], &part[4]);
  EXPECT_EQ(std::vector<sword>(part, part + 5), (std::vector<sword>{11, 0, 1, 1, 0}));
}

}  // namespace
}  // namespace zev::test
