#include "core_fixture.h"

namespace zev::test {
namespace {

class Attributes : public testing::Test {
 protected:
  sword get(const void *handle, ub4 type, ub4 attribute, void *value,
            ub4 *size = nullptr) {
    return OCIAttrGet(handle, type, value, size, attribute, env.errhp());
  }
  sword set(void *handle, ub4 type, ub4 attribute, void *value, ub4 size = 0) {
    return OCIAttrSet(handle, type, value, size, attribute, env.errhp());
  }
  Codes codes() const { return codesOf(env.errhp()); }

  template <class T>
  T read(const void *handle, ub4 type, ub4 attribute) {
    T value{};
    EXPECT_EQ(get(handle, type, attribute, &value), OCI_SUCCESS);
    return value;
  }

  Environment env;
  OCIServer *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  OCISvcCtx *service = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  OCISession *session = env.alloc<OCISession>(OCI_HTYPE_SESSION);
  OCITrans *trans = env.alloc<OCITrans>(OCI_HTYPE_TRANS);
  OCIStmt *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  char value[256] = {};
};

TEST_F(Attributes, ReadingNeedsHandleValueAndErrorHandle) {
  EXPECT_EQ(get(nullptr, OCI_HTYPE_ENV, 2, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(get(env.get(), OCI_HTYPE_ENV, 2, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIAttrGet(env.get(), 1, value, nullptr, 2, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(
      OCIAttrGet(env.get(), 1, value, nullptr, 2, reinterpret_cast<OCIError *>(stmt)),
      OCI_INVALID_HANDLE);
}

TEST_F(Attributes, WritingNeedsHandleAndErrorHandle) {
  EXPECT_EQ(set(nullptr, OCI_HTYPE_ENV, 5002, value), OCI_ERROR);
  EXPECT_EQ(OCIAttrSet(env.get(), OCI_HTYPE_ENV, value, 0, 5002, nullptr), OCI_ERROR);
}

TEST_F(Attributes, AParentThatIsNoEnvironmentIsRefused) {
  auto *bind = env.alloc<OCIBind>(OCI_HTYPE_BIND, stmt);
  EXPECT_EQ(get(bind, OCI_HTYPE_BIND, 1, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(set(bind, OCI_HTYPE_BIND, 1, value), OCI_ERROR);
}

TEST_F(Attributes, WithoutAParentOnlyAnEnvironmentIsWritten) {
  for (const ub4 type : {0u, 2u, 3u, 4u, 8u, 9u, 53u}) {
    EXPECT_EQ(set(env.get(), type, 5002, value), OCI_ERROR) << type;
  }
  EXPECT_EQ(set(env.get()->errh, OCI_HTYPE_ENV, 5002, value), OCI_ERROR);
  EXPECT_EQ(set(env.get(), OCI_HTYPE_ENV, 5002, value), OCI_SUCCESS);
}

TEST_F(Attributes, TypesWithoutAttributesAreRefusedOnReadWithoutARecord) {
  for (const ub4 type : {0u, 2u, 11u, 17u, 20u, 26u, 27u, 28u, 30u, 50u, 54u, 1000u}) {
    EXPECT_EQ(get(env.errhp(), type, 1, value), OCI_ERROR) << type;
    EXPECT_EQ(codes(), Codes{}) << type;
  }
}

TEST_F(Attributes, TypesThatAreRefusedOnWriteLeaveNoRecord) {
  for (const ub4 type :
       {2u, 7u, 11u, 12u, 13u, 14u, 15u, 16u, 17u, 18u, 19u, 26u, 28u, 29u}) {
    EXPECT_EQ(set(server, type, 1, value), OCI_ERROR) << type;
    EXPECT_EQ(codes(), Codes{}) << type;
  }
}

TEST_F(Attributes, WritesToOtherTypesAreLetPassAndChangeNothing) {
  for (const ub4 type :
       {0u, 20u, 21u, 22u, 23u, 24u, 25u, 30u, 31u, 49u, 50u, 53u, 100u, 0xffffffffu}) {
    EXPECT_EQ(set(server, type, OCI_ATTR_NONBLOCKING_MODE, value), OCI_SUCCESS) << type;
    EXPECT_EQ(server->nonBlocking, 0) << type;
  }
}

TEST_F(Attributes, BothDoorsClearFormerRecords) {
  AddErrorRecord(env.errhp(), OCI_ERROR, 1);
  get(env.get(), OCI_HTYPE_ENV, OCI_ATTR_OBJECT, value);
  EXPECT_EQ(codes(), Codes{});
  AddErrorRecord(env.errhp(), OCI_ERROR, 1);
  set(env.get(), OCI_HTYPE_ENV, 5002, value);
  EXPECT_EQ(codes(), Codes{});
}

struct FailureForm {
  const char *name;
  ub4 type;
  sb4 onRead;  ///< number of the record, 0 for none
  sb4 onWrite;
};

TEST_F(Attributes, AnUnknownAttributeFailsInEachHandlesOwnForm) {
  const FailureForm forms[] = {
      {"OCIEnv", OCI_HTYPE_ENV, 24328, 24328},
      {"OCISvcCtx", OCI_HTYPE_SVCCTX, 0, 0},
      {"OCIServer", OCI_HTYPE_SERVER, 24328, 24328},
      {"OCISession", OCI_HTYPE_SESSION, 24315, 0},
      {"OCIStmt", OCI_HTYPE_STMT, 24328, 24328},
      {"OCITrans", OCI_HTYPE_TRANS, 24315, 24315},
  };
  void *handles[] = {env.get(), service, server, session, stmt, trans};
  for (std::size_t i = 0; i < std::size(forms); ++i) {
    const FailureForm &form = forms[i];
    for (const ub4 attribute : {0u, 9999u}) {
      EXPECT_EQ(get(handles[i], form.type, attribute, value), OCI_ERROR) << form.name;
      EXPECT_EQ(codes(), form.onRead ? Codes{form.onRead} : Codes{}) << form.name;
      EXPECT_EQ(set(handles[i], form.type, attribute, value), OCI_ERROR) << form.name;
      EXPECT_EQ(codes(), form.onWrite ? Codes{form.onWrite} : Codes{}) << form.name;
    }
  }
}

TEST_F(Attributes, BindsAndDefinesRefuseEveryAttributeWithoutARecord) {
  auto *bind = env.alloc<OCIBind>(OCI_HTYPE_BIND, stmt);
  auto *define = env.alloc<OCIDefine>(OCI_HTYPE_DEFINE, stmt);
  ub4 size = 0;
  for (ub4 attribute = 0; attribute < 400; ++attribute) {
    EXPECT_EQ(Get_OCIBind(bind, value, &size, attribute, env.errhp()), OCI_ERROR);
    EXPECT_EQ(Set_OCIBind(bind, value, 0, attribute, env.errhp()), OCI_ERROR);
    EXPECT_EQ(Get_OCIDefine(define, value, &size, attribute, env.errhp()), OCI_ERROR);
    EXPECT_EQ(Set_OCIDefine(define, value, 0, attribute, env.errhp()), OCI_ERROR);
  }
  EXPECT_EQ(codes(), Codes{});
}

TEST_F(Attributes, AHandleOfAnotherKindIsRefusedByEachPair) {
  EXPECT_EQ(get(server, OCI_HTYPE_ENV, 2, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(set(server, OCI_HTYPE_ENV, 5002, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(get(env.get(), OCI_HTYPE_SERVER, 3, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(set(service, OCI_HTYPE_SERVER, 3, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(get(server, OCI_HTYPE_SVCCTX, 6, value), OCI_ERROR);
  EXPECT_EQ(set(server, OCI_HTYPE_SVCCTX, 6, nullptr), OCI_ERROR);
  EXPECT_EQ(get(server, OCI_HTYPE_SESSION, 22, value), OCI_ERROR);
  EXPECT_EQ(set(server, OCI_HTYPE_SESSION, 22, value, 1), OCI_ERROR);
  EXPECT_EQ(get(server, OCI_HTYPE_TRANS, 27, value), OCI_INVALID_HANDLE);
  EXPECT_EQ(set(server, OCI_HTYPE_TRANS, 27, value, 152), OCI_INVALID_HANDLE);
  EXPECT_EQ(codes(), Codes{});
}

TEST_F(Attributes, OnlyTheObjectModeOfAnEnvironmentIsRead) {
  EXPECT_EQ(read<ub4>(env.get(), OCI_HTYPE_ENV, OCI_ATTR_OBJECT), 0u);
  Environment object(OCI_OBJECT);
  EXPECT_EQ(read<ub4>(object.get(), OCI_HTYPE_ENV, OCI_ATTR_OBJECT), 1u);
  EXPECT_EQ(set(env.get(), OCI_HTYPE_ENV, OCI_ATTR_OBJECT, value), OCI_ERROR);
  EXPECT_EQ(codes(), Codes{24328});
}

TEST_F(Attributes, EmptyTextIsNullFor0And3AndNotFor4) {
  for (int wanted = 0; wanted < 256; ++wanted) {
    const ub1 before = env.get()->oracleVarchars;
    ub1 content = static_cast<ub1>(wanted);
    const bool known = wanted == 0 || wanted == 3 || wanted == 4;
    EXPECT_EQ(set(env.get(), OCI_HTYPE_ENV, 5002, &content),
              known ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(codes(), known ? Codes{} : Codes{24328});
    EXPECT_EQ(env.get()->oracleVarchars, known ? wanted != 4 : before);
    EXPECT_EQ(read<ub1>(env.get(), OCI_HTYPE_ENV, 5002),
              env.get()->oracleVarchars ? 3 : 4);
  }
  EXPECT_EQ(set(env.get(), OCI_HTYPE_ENV, 5002, nullptr), OCI_INVALID_HANDLE);
}

TEST_F(Attributes, WritingTheNonblockingModeTogglesIt) {
  EXPECT_EQ(set(server, OCI_HTYPE_SERVER, OCI_ATTR_NONBLOCKING_MODE, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(read<ub1>(server, OCI_HTYPE_SERVER, OCI_ATTR_NONBLOCKING_MODE), 1);
  EXPECT_EQ(set(server, OCI_HTYPE_SERVER, OCI_ATTR_NONBLOCKING_MODE, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(read<ub1>(server, OCI_HTYPE_SERVER, OCI_ATTR_NONBLOCKING_MODE), 0);
}

TEST_F(Attributes, AServersParentIsReadAndNotWritten) {
  EXPECT_EQ(read<OCIEnv *>(server, OCI_HTYPE_SERVER, OCI_ATTR_ENV), env.get());
  EXPECT_EQ(set(server, OCI_HTYPE_SERVER, OCI_ATTR_ENV, env.get()), OCI_ERROR);
  EXPECT_EQ(codes(), Codes{24328});
}

TEST_F(Attributes, AServerWithoutAConnectionIsNotConnected) {
  EXPECT_EQ(read<ub4>(server, OCI_HTYPE_SERVER, OCI_ATTR_SERVER_STATUS), 0u);
  EXPECT_EQ(set(server, OCI_HTYPE_SERVER, OCI_ATTR_SERVER_STATUS, value), OCI_ERROR);
  EXPECT_EQ(codes(), Codes{24328});
}

TEST_F(Attributes, AttributeOneHundredTwentyNineIsWrittenWithoutEffectAndNotRead) {
  EXPECT_EQ(set(server, OCI_HTYPE_SERVER, 129, value), OCI_SUCCESS);
  EXPECT_EQ(get(server, OCI_HTYPE_SERVER, 129, value), OCI_ERROR);
  EXPECT_EQ(codes(), Codes{24328});
}

TEST_F(Attributes, StatementLevelRollbackNeedsAConnection) {
  EXPECT_EQ(read<ub1>(server, OCI_HTYPE_SERVER, 5000), 0);
  ub1 on = 1;
  EXPECT_EQ(set(server, OCI_HTYPE_SERVER, 5000, &on), OCI_ERROR);
  EXPECT_EQ(firstText(env.errhp()), "Unexpected NULL PGresult");
  EXPECT_EQ(server->stmtLevelTx, 0);
}

TEST_F(Attributes, CursorStrategyAndHoldPolicyTakeTheirValuesOnly) {
  for (ub4 wanted = 0; wanted < 10; ++wanted) {
    const bool strategy = wanted < 3;
    const ub4 strategyBefore = server->cursorStrategy;
    EXPECT_EQ(set(server, OCI_HTYPE_SERVER, 5001, &wanted),
              strategy ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(codes(), strategy ? Codes{} : Codes{24328});
    EXPECT_EQ(read<ub4>(server, OCI_HTYPE_SERVER, 5001),
              strategy ? wanted : strategyBefore);

    const bool policy = wanted == 0 || wanted == 5 || wanted == 6;
    const ub4 policyBefore = server->holdPolicy;
    EXPECT_EQ(set(server, OCI_HTYPE_SERVER, 5003, &wanted),
              policy ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(codes(), policy ? Codes{} : Codes{24328});
    EXPECT_EQ(read<ub4>(server, OCI_HTYPE_SERVER, 5003), policy ? wanted : policyBefore);
  }
}

TEST_F(Attributes, VariablesSetAServersDefaultsAtAllocation) {
  EXPECT_EQ(server->cursorStrategy, 0u);
  EXPECT_EQ(server->defaultParams, 1);
  const Variable hold("OCI_WITH_HOLD", "");
  const Variable plain("NODEFAULTPARAMS", "");
  EXPECT_EQ(server->cursorStrategy, 0u);
  auto *later = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  EXPECT_EQ(later->cursorStrategy, 1u);
  EXPECT_EQ(later->defaultParams, 0);
}

TEST_F(Attributes, TheSizeIsLeftAloneWhereItIsNotGiven) {
  ub4 size = 4711;
  get(env.get(), OCI_HTYPE_ENV, OCI_ATTR_OBJECT, value, &size);
  get(server, OCI_HTYPE_SERVER, 5001, value, &size);
  EXPECT_EQ(size, 4711u);
}

}  // namespace
}  // namespace zev::test
