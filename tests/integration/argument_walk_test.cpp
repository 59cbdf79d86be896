/// Every exported function with every handle argument wrong in turn: a null, a handle of
/// each other kind, a block that holds no handle any more. None may crash or succeed.
#include <array>
#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// Kinds of handles that the walk has at hand.
enum Kind : unsigned {
  kEnv = 1,
  kError = 2,
  kService = 4,
  kServer = 8,
  kSession = 16,
  kStatement = 32,
  kBind = 64,
  kDefine = 128,
  kTrans = 256,
  kPool = 512,
  kAnyKind = 1023,
};

/// A handle argument: a good value, and the kinds that the function takes there.
template <class T>
struct Handle {
  T *good;
  unsigned accepted;
};

/// A data pointer that may be null without a crash; the call's status does not matter
/// then.
template <class T>
struct Data {
  T *good;
};

template <class T>
T pass(T value) {
  return value;
}
template <class T>
T *pass(Handle<T> argument) {
  return argument.good;
}
template <class T>
T *pass(Data<T> argument) {
  return argument.good;
}

/// Everything that a call can need, made anew for each.
class World {
 public:
  World(OCIEnv *parent, OCISvcCtx *connected) : env(parent), svc(connected) {
    void *made = nullptr;
    const auto alloc = [&](ub4 type, const void *above) {
      EXPECT_EQ(OCIHandleAlloc(above, &made, type, 0, nullptr), OCI_SUCCESS);
      return made;
    };
    err = static_cast<OCIError *>(alloc(OCI_HTYPE_ERROR, env));
    OCIAttrGet(svc, OCI_HTYPE_SVCCTX, &srv, nullptr, OCI_ATTR_SERVER, err);
    OCIAttrGet(svc, OCI_HTYPE_SVCCTX, &ses, nullptr, OCI_ATTR_SESSION, err);
    trans = static_cast<OCITrans *>(alloc(OCI_HTYPE_TRANS, env));
    pool = static_cast<OCISPool *>(alloc(OCI_HTYPE_SPOOL, env));
    OCIAttrSet(svc, OCI_HTYPE_SVCCTX, trans, 0, OCI_ATTR_TRANS, err);
    stmt = static_cast<OCIStmt *>(alloc(OCI_HTYPE_STMT, env));
    EXPECT_EQ(OCIStmtPrepare(stmt, err, text(kSql), sizeof kSql - 1, OCI_NTV_SYNTAX, 0),
              0);
    EXPECT_EQ(OCIBindByName(stmt, &bind, err, text(":a"), 2, &number, sizeof number,
                            SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
              OCI_SUCCESS);
    EXPECT_EQ(OCIDefineByPos(stmt, &define, err, 1, &number, sizeof number, SQLT_INT,
                             nullptr, nullptr, nullptr, OCI_DEFAULT),
              OCI_SUCCESS);
    std::memset(garbage.data(), 0xEE, 4);  // a tag that no handle has, and no parent
  }

  ~World() {
    OCIHandleFree(stmt, OCI_HTYPE_STMT);
    OCIHandleFree(trans, OCI_HTYPE_TRANS);
    OCIHandleFree(pool, OCI_HTYPE_SPOOL);
    OCIHandleFree(err, OCI_HTYPE_ERROR);
  }
  World(const World &) = delete;
  World &operator=(const World &) = delete;

  static const OraText *text(const char *s) {
    return reinterpret_cast<const OraText *>(s);
  }

  /// What may stand where a handle is expected, with the kind that it is.
  std::vector<std::pair<void *, unsigned>> handles() {
    return {{nullptr, 0},       {zeros.data(), 0}, {garbage.data(), 0}, {env, kEnv},
            {err, kError},      {svc, kService},   {srv, kServer},      {ses, kSession},
            {stmt, kStatement}, {bind, kBind},     {define, kDefine},   {trans, kTrans},
            {pool, kPool}};
  }

  static constexpr char kSql[] = "SELECT :a::int";
  OCIEnv *env;
  OCIError *err = nullptr;
  OCISvcCtx *svc;
  OCIServer *srv = nullptr;
  OCISession *ses = nullptr;
  OCITrans *trans = nullptr;
  OCISPool *pool = nullptr;
  OCIStmt *stmt = nullptr;
  OCIBind *bind = nullptr;
  OCIDefine *define = nullptr;
  sb4 number = 1;
  // What programs hand over to be written.
  void *out = nullptr;
  OCIStmt *newStatement = nullptr;
  OCISvcCtx *newService = nullptr;
  ub4 size = 0;
  ub4 version = 0;
  sb4 code = 0;
  sb4 found = 0;
  std::array<OraText, 512> buffer{};
  std::array<OraText *, 4> names{};
  std::array<ub1, 4> lengths{};
  std::array<OCIBind *, 4> binds{};
  alignas(16) std::array<char, 8192> zeros{};
  alignas(16) std::array<char, 8192> garbage{};
};

class ArgumentWalk : public OciTest {
 protected:
  /// Calls `function` once for each wrong value of each of its handle arguments and for a
  /// null in each of its data arguments. `arguments(world)` is a tuple of good ones.
  template <class Function, class Make>
  void walk(const char *name, Function function, Make arguments) {
    using Tuple = decltype(arguments(std::declval<World &>()));
    walkPositions(name, function, arguments,
                  std::make_index_sequence<std::tuple_size_v<Tuple>>());
  }

 private:
  template <class Function, class Make, std::size_t... Positions>
  void walkPositions(const char *name, Function function, Make arguments,
                     std::index_sequence<Positions...>) {
    (walkPosition<Positions>(name, function, arguments), ...);
  }

  template <std::size_t Position, class Function, class Make>
  void walkPosition(const char *name, Function function, Make arguments) {
    World probe(env(), svchp());
    const auto good = arguments(probe);
    const auto argument = std::get<Position>(good);
    if constexpr (requires { argument.accepted; }) {
      for (std::size_t i = 0; i < probe.handles().size(); ++i) {
        if (probe.handles()[i].second & argument.accepted) continue;
        const sword status = callWithHandle<Position>(function, arguments, i);
        ++calls_;
        EXPECT_TRUE(status == OCI_INVALID_HANDLE || status == OCI_ERROR)
            << name << ", argument " << Position + 1 << ", substitute " << i << ": "
            << status;
      }
    } else if constexpr (requires { argument.good; }) {
      callWithNull<Position>(function, arguments);
      ++calls_;
    }
  }

  template <std::size_t Position, class Function, class Make>
  sword callWithHandle(Function function, Make arguments, std::size_t substitute) {
    World world(env(), svchp());
    auto tuple = arguments(world);
    auto &argument = std::get<Position>(tuple);
    argument.good =
        static_cast<decltype(argument.good)>(world.handles()[substitute].first);
    return call(function, tuple);
  }

  template <std::size_t Position, class Function, class Make>
  void callWithNull(Function function, Make arguments) {
    World world(env(), svchp());
    auto tuple = arguments(world);
    std::get<Position>(tuple).good = nullptr;
    call(function, tuple);
    OCITransRollback(world.svc, world.err, OCI_DEFAULT);
    if (world.newStatement) OCIStmtRelease(world.newStatement, world.err, nullptr, 0, 0);
    if (world.newService) OCILogoff(world.newService, world.err);
  }

  template <class Function, class Tuple>
  static sword call(Function function, const Tuple &tuple) {
    return std::apply([&](auto... argument) { return function(pass(argument)...); },
                      tuple);
  }

 protected:
  int calls_ = 0;
};

template <class T>
Handle<T> handle(T *good, unsigned accepted) {
  return {good, accepted};
}
template <class T>
Data<T> data(T *good) {
  return {good};
}

// clang-format off
TEST_F(ArgumentWalk, EveryHandleArgumentOfEveryFunctionIsChecked) {
  constexpr ub4 kNone = 0;
  const auto err = [](World &w) { return handle(w.err, kError); };
  const auto svc = [](World &w) { return handle(w.svc, kService); };
  const auto stmt = [](World &w) { return handle(w.stmt, kStatement); };
  const std::string target = connectString();
  const OraText *const db = World::text(target.c_str());
  const auto dbLength = static_cast<ub4>(target.size());

#define WALK(function, ...) \
  walk(#function, function, [&]([[maybe_unused]] World &w) { return std::make_tuple(__VA_ARGS__); })

  WALK(OCIHandleAlloc, handle<const void>(w.env, kEnv), data(&w.out), ub4{OCI_HTYPE_ERROR}, std::size_t{0}, static_cast<void **>(nullptr));
  WALK(OCIHandleAlloc, handle<const void>(w.stmt, kStatement), data(&w.out), ub4{OCI_HTYPE_BIND}, std::size_t{0}, static_cast<void **>(nullptr));
  WALK(OCIHandleAlloc, handle<const void>(w.stmt, kStatement), data(&w.out), ub4{OCI_HTYPE_DEFINE}, std::size_t{0}, static_cast<void **>(nullptr));
  // A handle of another kind leaves its environment; what is no handle is refused.
  WALK(OCIHandleFree, handle<void>(nullptr, kAnyKind), ub4{OCI_HTYPE_SERVER});
  WALK(OCIDescriptorAlloc, handle<const void>(w.env, kAnyKind & ~kError), data(&w.out), ub4{OCI_DTYPE_PARAM}, std::size_t{0}, static_cast<void **>(nullptr));
  WALK(OCIDescriptorFree, handle<void>(w.env, 0), ub4{OCI_DTYPE_PARAM});

  WALK(OCIErrorGet, handle<void>(w.err, kError), ub4{1}, data(w.buffer.data()), data(&w.code), data(w.buffer.data()), ub4{512}, ub4{OCI_HTYPE_ERROR});
  WALK(OCIPGErrorGet, handle<void>(w.err, kError), ub4{1}, data(w.buffer.data()), ub4{6}, data(w.buffer.data()), ub4{512}, ub4{OCI_HTYPE_ERROR});

  WALK(OCIAttrGet, handle<const void>(w.svc, kService), ub4{OCI_HTYPE_SVCCTX}, data<void>(&w.out), data(&w.size), ub4{OCI_ATTR_SERVER}, err(w));
  WALK(OCIAttrGet, handle<const void>(w.srv, kServer), ub4{OCI_HTYPE_SERVER}, data<void>(&w.out), data(&w.size), ub4{OCI_ATTR_SERVER_STATUS}, err(w));
  WALK(OCIAttrGet, handle<const void>(w.stmt, kStatement), ub4{OCI_HTYPE_STMT}, data<void>(&w.out), data(&w.size), ub4{OCI_ATTR_STMT_TYPE}, err(w));
  WALK(OCIAttrGet, handle<const void>(w.env, kEnv), ub4{OCI_HTYPE_ENV}, data<void>(&w.out), data(&w.size), ub4{OCI_ATTR_OBJECT}, err(w));
  WALK(OCIAttrGet, handle<const void>(w.trans, kTrans), ub4{OCI_HTYPE_TRANS}, data<void>(&w.out), data(&w.size), ub4{OCI_ATTR_TRANS_NAME}, err(w));
  WALK(OCIAttrGet, handle<const void>(w.bind, 0), ub4{OCI_HTYPE_BIND}, data<void>(&w.out), data(&w.size), ub4{OCI_ATTR_DATA_SIZE}, err(w));
  WALK(OCIAttrSet, handle<void>(w.srv, kServer), ub4{OCI_HTYPE_SERVER}, data<void>(&w.number), ub4{0}, ub4{ZEVOCI_ATTR_CURSOR_STRATEGY}, err(w));
  WALK(OCIAttrSet, handle<void>(w.stmt, kStatement), ub4{OCI_HTYPE_STMT}, data<void>(&w.number), ub4{0}, ub4{OCI_ATTR_PREFETCH_ROWS}, err(w));
  WALK(OCIAttrSet, handle<void>(w.ses, kSession), ub4{OCI_HTYPE_SESSION}, data<void>(w.buffer.data()), ub4{0}, ub4{OCI_ATTR_MODULE}, err(w));
  WALK(OCIAttrSet, handle<void>(w.trans, kTrans), ub4{OCI_HTYPE_TRANS}, data<void>(&w.number), ub4{152}, ub4{OCI_ATTR_TRANS_TIMEOUT}, err(w));
  WALK(OCIAttrSet, handle<void>(w.svc, kService), ub4{OCI_HTYPE_SVCCTX}, handle<void>(w.srv, kServer), ub4{0}, ub4{OCI_ATTR_STMTCACHESIZE + 10000}, err(w));

  WALK(OCIServerAttach, handle(w.srv, kServer), err(w), data(db), sb4{4}, kNone);
  WALK(OCIServerDetach, handle(w.srv, kServer), handle(w.err, kError), ub4{0});
  WALK(OCISessionBegin, svc(w), err(w), handle(w.ses, kSession), ub4{OCI_CRED_RDBMS}, kNone);
  WALK(OCISessionEnd, svc(w), err(w), w.ses, ub4{0});
  WALK(OCILogon, handle(w.env, kEnv), err(w), data(&w.newService), data(World::text("zev")), ub4{3}, data(World::text("zev")), ub4{3}, data(db), dbLength);
  WALK(OCILogon2, handle(w.env, kEnv), err(w), data(&w.newService), data(World::text("zev")), ub4{3}, data(World::text("zev")), ub4{3}, data(db), dbLength, kNone);
  WALK(OCILogoff, svc(w), err(w));
  WALK(OCISessionPoolCreate, handle(w.env, kEnv), err(w), handle(w.pool, kPool), data(w.names.data()), data(&w.size), data(static_cast<const OraText *>(nullptr)), kNone, kNone, kNone, kNone, data(static_cast<OraText *>(nullptr)), kNone, data(static_cast<OraText *>(nullptr)), kNone, ub4{99});
  WALK(OCISessionGet, handle(w.env, kEnv), err(w), data(&w.newService), handle(w.ses, kSession), data(const_cast<OraText *>(db)), dbLength, data(World::text("t")), ub4{1}, data(w.names.data()), data(&w.size), data(static_cast<boolean *>(nullptr)), kNone);
  WALK(OCISessionRelease, svc(w), err(w), data(w.buffer.data()), kNone, kNone);
  WALK(OCIPing, svc(w), err(w), kNone);
  WALK(OCIBreak, handle<void>(w.svc, kService | kServer), err(w));
  WALK(OCIReset, handle<void>(w.svc, kService | kServer), err(w));
  WALK(OCIServerVersion, handle<void>(w.svc, kService), err(w), data(w.buffer.data()), ub4{512}, ub1{OCI_HTYPE_SVCCTX});
  WALK(OCIServerVersion, handle<void>(w.srv, kServer), err(w), data(w.buffer.data()), ub4{512}, ub1{OCI_HTYPE_SERVER});
  WALK(OCIServerRelease, handle<void>(w.svc, kService), err(w), data(w.buffer.data()), ub4{512}, ub1{OCI_HTYPE_SVCCTX}, data(&w.version));
  WALK(OCIPasswordChange, svc(w), err(w), data(World::text("nobody_at_all")), ub4{13}, data(World::text("x")), ub4{1}, data(World::text("y")), ub4{1}, kNone);

  WALK(OCIStmtPrepare, stmt(w), err(w), data(World::text("select 1")), ub4{8}, ub4{OCI_NTV_SYNTAX}, kNone);
  WALK(OCIStmtPrepare2, svc(w), data(&w.newStatement), err(w), data(World::text("select 1")), ub4{8}, data(World::text("k")), ub4{1}, ub4{OCI_NTV_SYNTAX}, kNone);
  WALK(OCIStmtRelease, stmt(w), err(w), data(World::text("k")), ub4{1}, kNone);
  WALK(OCIBindByName, stmt(w), data(&w.bind), err(w), data(World::text(":a")), sb4{2}, data<void>(&w.number), sb4{4}, ub2{SQLT_INT}, data<void>(w.buffer.data()), data(static_cast<ub2 *>(nullptr)), data(static_cast<ub2 *>(nullptr)), kNone, data(&w.size), kNone);
  WALK(OCIBindByPos, stmt(w), data(&w.bind), err(w), ub4{1}, data<void>(&w.number), sb4{4}, ub2{SQLT_INT}, data<void>(w.buffer.data()), data(static_cast<ub2 *>(nullptr)), data(static_cast<ub2 *>(nullptr)), kNone, data(&w.size), kNone);
  WALK(OCIBindDynamic, handle(w.bind, kBind), err(w), data<void>(&w.number), static_cast<OCICallbackInBind>(nullptr), data<void>(&w.number), static_cast<OCICallbackOutBind>(nullptr));
  WALK(OCIBindArrayOfStruct, handle(w.bind, kBind), err(w), ub4{4}, ub4{4}, ub4{4}, ub4{4});
  WALK(OCIStmtGetBindInfo, stmt(w), err(w), ub4{4}, ub4{1}, data(&w.found), data(w.names.data()), data(w.lengths.data()), data(w.names.data()), data(w.lengths.data()), data(w.lengths.data()), data(w.binds.data()));
  WALK(OCIStmtExecute, svc(w), stmt(w), err(w), ub4{1}, kNone, static_cast<const OCISnapshot *>(nullptr), static_cast<OCISnapshot *>(nullptr), kNone);
  WALK(OCIDefineByPos, stmt(w), data(&w.define), err(w), ub4{1}, data<void>(&w.number), sb4{4}, ub2{SQLT_INT}, data<void>(w.buffer.data()), data(static_cast<ub2 *>(nullptr)), data(static_cast<ub2 *>(nullptr)), kNone);
  WALK(OCIDefineArrayOfStruct, handle(w.define, kDefine), err(w), ub4{4}, ub4{4}, ub4{4}, ub4{4});
  WALK(OCIDefineDynamic, handle(w.define, kDefine), err(w), data<void>(&w.number), static_cast<OCICallbackDefine>(nullptr));
  WALK(OCIStmtFetch, stmt(w), err(w), ub4{1}, ub2{OCI_FETCH_NEXT}, kNone);
  WALK(OCIStmtFetch2, stmt(w), err(w), ub4{1}, ub2{OCI_FETCH_NEXT}, sb4{0}, kNone);

  WALK(OCITransStart, svc(w), err(w), uword{0}, kNone);
  WALK(OCITransCommit, svc(w), err(w), kNone);
  WALK(OCITransRollback, svc(w), err(w), kNone);
  WALK(OCITransPrepare, svc(w), err(w), kNone);
#undef WALK

  EXPECT_GT(calls_, 700);
  EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS) << "the connection suffered";
}
// clang-format on

TEST_F(ArgumentWalk, EnvironmentCallsRefuseANullOutput) {
  EXPECT_EQ(OCIEnvInit(nullptr, OCI_DEFAULT, 0, nullptr), OCI_ERROR);
  EXPECT_EQ(
      OCIEnvCreate(nullptr, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
      OCI_ERROR);
  EXPECT_EQ(OCIEnvNlsCreate(nullptr, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0,
                            nullptr, 6, 6),
            OCI_ERROR);
}

}  // namespace
}  // namespace zev::test
