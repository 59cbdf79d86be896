#include "zevoci/parameter.h"

#include "stmt_fixture.h"

namespace zevtest {
namespace {

/// A table with a column and an argument in its list.
zev::ParamTree<OCITableParamHandle> makeTable(const OCIEnv *env) {
  auto table = zev::newParamHandle<OCITableParamHandle>(kTableParam);
  table->objectId = 4000000001u;
  table->tablespace = 1663;
  table->isTemporary = 1;
  auto list = zev::newParamHandle<OCIListParamHandle>(kListParam);
  list->handles = lappend(list->handles,
                          zev::newParamHandle<OCIParamHandle>(kArgumentParam).release());
  auto column = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  EXPECT_TRUE(zev::giveParamText(env, column->name, "id"));
  column->dataSize = 22;
  column->scale = -1;
  list->handles = lappend(list->handles, column.release());
  table->columns = list.release();
  return table;
}

/// A parameter around a body.
OCIParam *wrap(Session &s, OCIParamHandle *body, OCIStmt *source = nullptr) {
  OCIParam *param = nullptr;
  EXPECT_EQ(zev::wrapParam(s.env, s.errhp, zev::ParamTree<>(body), source, &param),
            OCI_SUCCESS);
  return param;
}

TEST(ParameterTree, ACopyIsDeepAndHasNoAnswers) {
  Session s;
  auto table = makeTable(s.env);
  auto *column =
      static_cast<OCIColumnParamHandle *>(list_nth(table->columns->handles, 1));
  column->name.answer = column;
  const zev::ParamTree<> copy(CopyOCIParamHandle(table.get()));
  const auto *whole = static_cast<OCITableParamHandle *>(copy.get());
  ASSERT_NE(whole->columns, table->columns);
  EXPECT_EQ(whole->objectId, 4000000001u);
  EXPECT_EQ(whole->tablespace, 1663u);
  ASSERT_EQ(list_length(whole->columns->handles), 2);
  const auto *same =
      static_cast<OCIColumnParamHandle *>(list_nth(whole->columns->handles, 1));
  ASSERT_NE(same, column);
  ASSERT_NE(same->name.value, column->name.value);
  EXPECT_STREQ(same->name.value, "id");
  EXPECT_EQ(same->name.answer, nullptr);
  EXPECT_EQ(same->scale, -1);
}

TEST(ParameterTree, NothingAndUnknownKindsAreNotCopied) {
  EXPECT_EQ(CopyOCIParamHandle(nullptr), nullptr);
  const OCIParamHandle unknown{7};
  EXPECT_EQ(CopyOCIParamHandle(&unknown), nullptr);
  FreeOCIParamHandle(nullptr);
}

TEST(ParameterTree, AListCountsNoArguments) {
  Session s;
  const auto table = makeTable(s.env);
  OCIParam *list = wrap(s, Copy_OCIListParamHandle(table->columns));
  void *element = nullptr;
  ASSERT_EQ(OCIParamGet(list, OCI_DTYPE_PARAM, s.errhp, &element, 1), OCI_SUCCESS);
  EXPECT_EQ(static_cast<OCIParam *>(element)->body->kind, kColumnParam);
  EXPECT_EQ(OCIParamGet(list, OCI_DTYPE_PARAM, s.errhp, &element, 2), OCI_ERROR);
  EXPECT_EQ(element, nullptr);
  EXPECT_EQ(s.takeRecord(), 24334);
}

TEST(ParameterAttributes, AnAnswerIsOneBlockOfItsSource) {
  Session s;
  auto column = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  ASSERT_TRUE(zev::giveParamText(s.env, column->name, "salary"));
  OCIParam *param = wrap(s, column.release(), s.stmt);
  char *first = nullptr, *second = nullptr;
  ub4 size = 0;
  ASSERT_EQ(Get_OCIParam(param, &first, &size, OCI_ATTR_NAME, s.errhp), OCI_SUCCESS);
  ASSERT_EQ(Get_OCIParam(param, &second, &size, OCI_ATTR_NAME, s.errhp), OCI_SUCCESS);
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "salary");
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(list_length(s.stmt->memCache), 1);
  EXPECT_EQ(list_length(s.env->memCache), 0);
}

TEST(ParameterAttributes, WideTextsEndInAWideTerminator) {
  Session s(OCI_UTF16);
  auto column = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  ASSERT_TRUE(zev::giveParamText(s.env, column->typeName, "int4"));
  OCIParam *param = wrap(s, column.release());
  char *value = nullptr;
  ub4 size = 0;
  ASSERT_EQ(Get_OCIParam(param, &value, &size, OCI_ATTR_TYPE_NAME, s.errhp), OCI_SUCCESS);
  EXPECT_EQ(std::string(value, size + 2), utf16("int4") + std::string(2, '\0'));
  EXPECT_EQ(list_length(s.env->memCache), 1);
}

TEST(ParameterAttributes, PrecisionIsOfTheKindThatTheFlagNames) {
  Session s;
  auto column = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  auto *raw = column.get();
  raw->implicitPrecision = 12;
  raw->explicitPrecision = 34;
  OCIParam *param = wrap(s, column.release());
  ub1 value = 0;
  ub4 size = 2;
  ASSERT_EQ(Get_OCIParam(param, &value, &size, OCI_ATTR_PRECISION, s.errhp), OCI_SUCCESS);
  EXPECT_EQ(value, 34);
  EXPECT_EQ(size, 0u) << "the length is zeroed on entry";
  raw->precisionIsImplicit = 1;
  ASSERT_EQ(Get_OCIParam(param, &value, &size, OCI_ATTR_PRECISION, s.errhp), OCI_SUCCESS);
  EXPECT_EQ(value, 12);
}

TEST(ParameterAttributes, TypeReferencesNeedAnObjectEnvironment) {
  Session plain, objects(OCI_OBJECT);
  for (Session *s : {&plain, &objects}) {
    OCIParam *table = wrap(*s, makeTable(s->env).release());
    OCIParam *column =
        wrap(*s, zev::newParamHandle<OCIColumnParamHandle>(kColumnParam).release());
    const bool good = s == &objects;
    void *value = s;
    EXPECT_EQ(Get_OCIParam(column, &value, nullptr, OCI_ATTR_REF_TDO, s->errhp),
              good ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(value, s) << "a column writes nothing";
    EXPECT_EQ(s->takeRecord(), good ? kNoRecord : 21301);
    EXPECT_EQ(Get_OCIParam(table, &value, nullptr, OCI_ATTR_REF_TDO, s->errhp),
              good ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(value, good ? nullptr : static_cast<void *>(s));
    EXPECT_EQ(s->takeRecord(), good ? kNoRecord : 21301);
  }
}

TEST(ParameterAttributes, HandlesAndBodiesAreChecked) {
  Session s;
  void *value = nullptr;
  OCIParam *param =
      wrap(s, zev::newParamHandle<OCIParamHandle>(kArgumentParam).release());
  EXPECT_EQ(Get_OCIParam(param, &value, nullptr, OCI_ATTR_NAME, s.errhp), OCI_SUCCESS);
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(Get_OCIParam(param, nullptr, nullptr, OCI_ATTR_NAME, s.errhp), OCI_ERROR);
  EXPECT_EQ(Get_OCIParam(param, &value, nullptr, OCI_ATTR_NAME, nullptr), OCI_ERROR);
  EXPECT_EQ(Get_OCIArgumentParamHandle(param, &value, nullptr, 4, s.errhp), OCI_ERROR);
  param->body->kind = 4;
  EXPECT_EQ(Get_OCIParam(param, &value, nullptr, OCI_ATTR_NAME, s.errhp),
            OCI_INVALID_HANDLE);
  FreeOCIParamHandle(param->body);
  param->body = nullptr;
  EXPECT_EQ(Get_OCIParam(param, &value, nullptr, OCI_ATTR_NAME, s.errhp),
            OCI_INVALID_HANDLE);
}

}  // namespace
}  // namespace zevtest
