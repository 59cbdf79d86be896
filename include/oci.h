/*
 * oci.h: the Oracle Call Interface as this library publishes it.
 */
#ifndef ZEVOCI_OCI_H
#define ZEVOCI_OCI_H

#include <stdarg.h>

#include "nzt.h"
#include "oci1.h"
#include "ociapr.h"
#include "ocidfn.h"
#include "oratypes.h"
#include "orl.h"
#include "oro.h"
#include "ort.h"

/* Called with the value of a key when a thread that set it ends. */
typedef void (*OCIThreadKeyDestFunc)(void *value);

/* Asked for the value of a dynamic bind (OCIBindDynamic), row iter, element index. It
   stores the buffer, its length in bytes, the piece (OCI_ONE_PIECE and kin) and the
   indicator; all stay the program's. Must return OCI_CONTINUE. */
typedef sb4 (*OCICallbackInBind)(void *ictxp, OCIBind *bindp, ub4 iter, ub4 index,
                                 void **bufpp, ub4 *alenp, ub1 *piecep, void **indpp);

/* Asked for the buffer of a returned bind value (OCIBindDynamic): stores where the value,
   its length, indicator and return code go. Must return OCI_CONTINUE. */
typedef sb4 (*OCICallbackOutBind)(void *octxp, OCIBind *bindp, ub4 iter, ub4 index,
                                  void **bufpp, ub4 **alenpp, ub1 *piecep, void **indpp,
                                  ub2 **rcodepp);

/* Asked for the buffer of a fetched value (OCIDefineDynamic), as OCICallbackOutBind. Must
   return OCI_CONTINUE. */
typedef sb4 (*OCICallbackDefine)(void *octxp, OCIDefine *defnp, ub4 iter, void **bufpp,
                                 ub4 **alenpp, ub1 *piecep, void **indpp, ub2 **rcodepp);

/* Given a piece of len bytes read from a large object. Must return OCI_CONTINUE. */
typedef sb4 (*OCICallbackLobRead)(void *ctxp, const void *bufp, ub4 len, ub1 piece);

/* Asked for the next piece to write to a large object: stores its length and place. */
typedef sb4 (*OCICallbackLobWrite)(void *ctxp, void *bufp, ub4 *lenp, ub1 *piece);

/* OCICallbackLobRead with 64-bit lengths; may store another buffer for the next piece. */
typedef sb4 (*OCICallbackLobRead2)(void *ctxp, const void *bufp, oraub8 len, ub1 piece,
                                   void **changed_bufpp, oraub8 *changed_lenp);

/* OCICallbackLobWrite with 64-bit lengths; may store another buffer for the next piece.
 */
typedef sb4 (*OCICallbackLobWrite2)(void *ctxp, void *bufp, oraub8 *lenp, ub1 *piecep,
                                    void **changed_bufpp, oraub8 *changed_lenp);

/* OCICallbackLobRead2 and OCICallbackLobWrite2 for large object number array_iter. */
typedef sb4 (*OCICallbackLobArrayRead)(void *ctxp, ub4 array_iter, const void *bufp,
                                       oraub8 len, ub1 piecep, void **changed_bufpp,
                                       oraub8 *changed_lenp);
typedef sb4 (*OCICallbackLobArrayWrite)(void *ctxp, ub4 array_iter, void *bufp,
                                        oraub8 *lenp, ub1 *piecep, void **changed_bufpp,
                                        oraub8 *changed_lenp);

/* Asked for the next message of OCIAQEnqArray, and given the next one of OCIAQDeqArray,
   with its null structure. */
typedef sb4 (*OCICallbackAQEnq)(void *ctxp, void **payload, void **payload_ind);
typedef sb4 (*OCICallbackAQDeq)(void *ctxp, void **payload, void **payload_ind);

/* Told of a failover: fo_type is OCI_FO_NONE, OCI_FO_SESSION, ..., fo_event OCI_FO_BEGIN,
 * .... */
typedef sb4 (*OCICallbackFailover)(void *svcctx, void *envctx, void *fo_ctx, ub4 fo_type,
                                   ub4 fo_event);

/* Value of OCI_ATTR_FOCBK: the failover callback and its context. */
typedef struct OCIFocbkStruct {
  OCICallbackFailover callback_function;
  void *fo_ctx;
} OCIFocbkStruct;

/* Given the payload of a notification, payload_len bytes at payload, for a subscription.
 */
typedef ub4 (*OCISubscriptionNotify)(void *ctx, OCISubscription *subscrhp, void *payload,
                                     ub4 payload_len, void *desc, ub4 mode);

/* Runs before (OCI_UCBTYPE_ENTRY), beside (OCI_UCBTYPE_REPLACE) or after
   (OCI_UCBTYPE_EXIT) the call that it was registered for; arglist holds that call's
   arguments, hndlp and type what was given at registration. fcode, when and returnCode
   are 13, 1 and 0 whatever the call is. OCI_CONTINUE leaves the status of the call as it
   is, any other result becomes it; the call's own work is done in either case. */
typedef sword (*OCIUserCallback)(void *ctxp, void *hndlp, ub4 type, ub4 fcode, ub4 when,
                                 sword returnCode, sb4 *errnop, va_list arglist);

/* A package's own start on a new environment: registers its callbacks there. The other
   arguments are 0. */
typedef sword (*OCIEnvCallbackType)(OCIEnv *env, ub4 mode, size_t xtramem_sz,
                                    void *usrmemp, OCIUcb *ucbDesc);

/* clang-format off */
/* Return codes. */
#define OCI_CONTINUE                               (-24200)
#define OCI_STILL_EXECUTING                        (-3123)
#define OCI_INVALID_HANDLE                         (-2)
#define OCI_ERROR                                  (-1)
#define OCI_SUCCESS                                0
#define OCI_SUCCESS_WITH_INFO                      1
#define OCI_NEED_DATA                              99
#define OCI_NO_DATA                                100
#define OCI_RESERVED_FOR_INT_USE                   200

/* Handle types. */
#define OCI_HTYPE_ENV                              1
#define OCI_HTYPE_FIRST                            1
#define OCI_HTYPE_ERROR                            2
#define OCI_HTYPE_SVCCTX                           3
#define OCI_HTYPE_STMT                             4
#define OCI_HTYPE_BIND                             5
#define OCI_HTYPE_DEFINE                           6
#define OCI_HTYPE_DESCRIBE                         7
#define OCI_HTYPE_SERVER                           8
#define OCI_HTYPE_AUTHINFO                         9
#define OCI_HTYPE_SESSION                          9
#define OCI_HTYPE_TRANS                            10
#define OCI_HTYPE_COMPLEXOBJECT                    11
#define OCI_HTYPE_SECURITY                         12
#define OCI_HTYPE_SUBSCRIPTION                     13
#define OCI_HTYPE_DIRPATH_CTX                      14
#define OCI_HTYPE_DIRPATH_COLUMN_ARRAY             15
#define OCI_HTYPE_DIRPATH_STREAM                   16
#define OCI_HTYPE_LAST                             17
#define OCI_HTYPE_PROC                             17
#define OCI_HTYPE_CPOOL                            26
#define OCI_HTYPE_SPOOL                            27
#define OCI_HTYPE_ADMIN                            28
#define OCI_HTYPE_SODA_COLLECTION                  30
#define OCI_HTYPE_SODA_DOCUMENT                    31
#define OCI_HTYPE_SODA_COLL_CURSOR                 32
#define OCI_HTYPE_SODA_OPER_OPTIONS                33
#define OCI_HTYPE_SODA_OUTPUT_OPTIONS              34
#define OCI_HTYPE_SODA_DOC_CURSOR                  36

/* Descriptor types. */
#define OCI_DTYPE_FIRST                            50
#define OCI_DTYPE_LOB                              50
#define OCI_DTYPE_SNAP                             51
#define OCI_DTYPE_RSET                             52
#define OCI_DTYPE_PARAM                            53
#define OCI_DTYPE_ROWID                            54
#define OCI_DTYPE_COMPLEXOBJECTCOMP                55
#define OCI_DTYPE_FILE                             56
#define OCI_DTYPE_AQENQ_OPTIONS                    57
#define OCI_DTYPE_AQDEQ_OPTIONS                    58
#define OCI_DTYPE_AQMSG_PROPERTIES                 59
#define OCI_DTYPE_AQAGENT                          60
#define OCI_DTYPE_LOCATOR                          61
#define OCI_DTYPE_DATETIME                         62
#define OCI_DTYPE_INTERVAL_YM                      62
#define OCI_DTYPE_INTERVAL                         63
#define OCI_DTYPE_INTERVAL_DS                      63
#define OCI_DTYPE_AQNFY_DESCRIPTOR                 64
#define OCI_DTYPE_LAST                             64
#define OCI_DTYPE_DATE                             65
#define OCI_DTYPE_TIME                             66
#define OCI_DTYPE_TIME_TZ                          67
#define OCI_DTYPE_TIMESTAMP                        68
#define OCI_DTYPE_TIMESTAMP_TZ                     69
#define OCI_DTYPE_TIMESTAMP_LTZ                    70
#define OCI_DTYPE_CHDES                            77
#define OCI_DTYPE_TABLE_CHDES                      78
#define OCI_DTYPE_ROW_CHDES                        79
#define OCI_DTYPE_CQDES                            80
#define OCI_DTYPE_SHARDING_KEY                     83
#define OCI_DTYPE_JSON                             85
#define OCI_DTYPE_VECTOR                           87

/* Modes of environments, calls, binds and defines. */
#define OCI_DEFAULT                                0
#define OCI_SUSPEND_DEFAULT                        0
#define OCI_BATCH_MODE                             1
#define OCI_MEMORY_CLEARED                         1
#define OCI_MIGRATE                                1
#define OCI_SB2_IND_PTR                            1
#define OCI_SRVRELEASE2_CACHED                     1
#define OCI_THREADED                               1
#define OCI_DATA_AT_EXEC                           2
#define OCI_DYNAMIC_FETCH                          2
#define OCI_EXACT_FETCH                            2
#define OCI_OBJECT                                 2
#define OCI_SUSPEND_POST_CALL                      2
#define OCI_SYSDBA                                 2
#define OCI_EVENTS                                 4
#define OCI_KEEP_FETCH_STATE                       4
#define OCI_LOGON2_STMTCACHE                       4
#define OCI_PIECEWISE                              4
#define OCI_SYSOPER                                4
#define OCI_AUTH                                   8
#define OCI_ENV_NO_MUTEX                           8
#define OCI_PRELIM_AUTH                            8
#define OCI_SCROLLABLE_CURSOR                      8
#define OCI_STMT_SCROLLABLE_READONLY               8
#define OCI_CPW_SYSDBA                             0x10
#define OCI_DESCRIBE_ONLY                          0x10
#define OCI_PREP2_CACHE_SEARCHONLY                 0x10
#define OCI_SHARED                                 0x10
#define OCI_STMTCACHE_DELETE                       0x10
#define OCI_STRLS_CACHE_DELETE                     0x10
#define OCI_COMMIT_ON_SUCCESS                      0x20
#define OCI_CPW_SYSOPER                            0x20
#define OCI_BIND_SOFT                              0x40
#define OCI_NON_BLOCKING                           0x40
#define OCI_NO_UCB                                 0x40
#define OCI_STMT_CACHE                             0x40
#define OCI_BATCH_ERRORS                           0x80
#define OCI_CPW_SYSBKP                             0x80
#define OCI_DEFINE_SOFT                            0x80
#define OCI_NO_MUTEX                               0x80
#define OCI_CPW_SYSDGD                             0x100
#define OCI_PARSE_ONLY                             0x100
#define OCI_CPW_SYSKMT                             0x200
#define OCI_BIND_DEDICATED_REF_CURSOR              0x400
#define OCI_SHOW_DML_WARNINGS                      0x400
#define OCI_PREP2_GET_SQL_ID                       0x2000
#define OCI_UTF16                                  0x4000
#define OCI_NEW_LENGTH_SEMANTICS                   0x20000
#define OCI_RESULT_CACHE                           0x20000
#define OCI_NO_RESULT_CACHE                        0x40000
#define OCI_CPW_SYSASM                             0x800040

/* Credentials of OCISessionBegin. */
#define OCI_CRED_RDBMS                             1
#define OCI_CRED_EXT                               2
#define OCI_CRED_PROXY                             3

/* Language argument of the prepare calls. */
#define OCI_NTV_SYNTAX                             1
#define OCI_V7_SYNTAX                              2
#define OCI_V8_SYNTAX                              3

/* Statement types (OCI_ATTR_STMT_TYPE). */
#define OCI_STMT_UNKNOWN                           0
#define OCI_STMT_SELECT                            1
#define OCI_STMT_UPDATE                            2
#define OCI_STMT_DELETE                            3
#define OCI_STMT_INSERT                            4
#define OCI_STMT_CREATE                            5
#define OCI_STMT_DROP                              6
#define OCI_STMT_ALTER                             7
#define OCI_STMT_BEGIN                             8
#define OCI_STMT_DECLARE                           9
#define OCI_STMT_CALL                              10
#define OCI_STMT_MERGE                             16

/* Attributes of handles and descriptors. */
#define OCI_ATTR_DATA_SIZE                         1
#define OCI_ATTR_FNCODE                            1
#define OCI_ATTR_DATA_TYPE                         2
#define OCI_ATTR_OBJECT                            2
#define OCI_ATTR_DISP_SIZE                         3
#define OCI_ATTR_NONBLOCKING_MODE                  3
#define OCI_ATTR_NAME                              4
#define OCI_ATTR_SQLCODE                           4
#define OCI_ATTR_ENV                               5
#define OCI_ATTR_PRECISION                         5
#define OCI_ATTR_SCALE                             6
#define OCI_ATTR_SERVER                            6
#define OCI_ATTR_IS_NULL                           7
#define OCI_ATTR_SESSION                           7
#define OCI_ATTR_TRANS                             8
#define OCI_ATTR_TYPE_NAME                         8
#define OCI_ATTR_ROW_COUNT                         9
#define OCI_ATTR_SCHEMA_NAME                       9
#define OCI_ATTR_SQLFNCODE                         10
#define OCI_ATTR_SUB_NAME                          10
#define OCI_ATTR_POSITION                          11
#define OCI_ATTR_PREFETCH_ROWS                     11
#define OCI_ATTR_NESTED_PREFETCH_ROWS              12
#define OCI_ATTR_PACKAGE_NAME                      12
#define OCI_ATTR_PREFETCH_MEMORY                   13
#define OCI_ATTR_NESTED_PREFETCH_MEMORY            14
#define OCI_ATTR_CHAR_COUNT                        15
#define OCI_ATTR_FSPRECISION                       16
#define OCI_ATTR_OBJECT_NEWNOTNULL                 16
#define OCI_ATTR_PDSCL                             16
#define OCI_ATTR_LFPRECISION                       17
#define OCI_ATTR_PDFMT                             17
#define OCI_ATTR_PDPRC                             17
#define OCI_ATTR_PARAM_COUNT                       18
#define OCI_ATTR_ROWID                             19
#define OCI_ATTR_CHARSET                           20
#define OCI_ATTR_NCHAR                             21
#define OCI_ATTR_USERNAME                          22
#define OCI_ATTR_PASSWORD                          23
#define OCI_ATTR_STMT_TYPE                         24
#define OCI_ATTR_INTERNAL_NAME                     25
#define OCI_ATTR_EXTERNAL_NAME                     26
#define OCI_ATTR_XID                               27
#define OCI_ATTR_TRANS_LOCK                        28
#define OCI_ATTR_TRANS_NAME                        29
#define OCI_ATTR_HEAPALLOC                         30
#define OCI_ATTR_CHARSET_ID                        31
#define OCI_ATTR_CHARSET_FORM                      32
#define OCI_ATTR_OBJECT_DETECTCHANGE               32
#define OCI_ATTR_MAXDATA_SIZE                      33
#define OCI_ATTR_CACHE_OPT_SIZE                    34
#define OCI_ATTR_CACHE_MAX_SIZE                    35
#define OCI_ATTR_PINOPTION                         36
#define OCI_ATTR_ALLOC_DURATION                    37
#define OCI_ATTR_PIN_DURATION                      38
#define OCI_ATTR_FDO                               39
#define OCI_ATTR_POSTPROCESSING_CALLBACK           40
#define OCI_ATTR_POSTPROCESSING_CONTEXT            41
#define OCI_ATTR_ROWS_RETURNED                     42
#define OCI_ATTR_FOCBK                             43
#define OCI_ATTR_IN_V8_MODE                        44
#define OCI_ATTR_LOBEMPTY                          45
#define OCI_ATTR_SESSLANG                          46
#define OCI_ATTR_VISIBILITY                        47
#define OCI_ATTR_RELATIVE_MSGID                    48
#define OCI_ATTR_SEQUENCE_DEVIATION                49
#define OCI_ATTR_COMPLEXOBJECTCOMP_TYPE            50
#define OCI_ATTR_CONSUMER_NAME                     50
#define OCI_ATTR_COMPLEXOBJECTCOMP_TYPE_LEVEL      51
#define OCI_ATTR_DEQ_MODE                          51
#define OCI_ATTR_COMPLEXOBJECT_LEVEL               52
#define OCI_ATTR_NAVIGATION                        52
#define OCI_ATTR_COMPLEXOBJECT_COLL_OUTOFLINE      53
#define OCI_ATTR_WAIT                              53
#define OCI_ATTR_DEQ_MSGID                         54
#define OCI_ATTR_PRIORITY                          55
#define OCI_ATTR_DELAY                             56
#define OCI_ATTR_EXPIRATION                        57
#define OCI_ATTR_CORRELATION                       58
#define OCI_ATTR_ATTEMPTS                          59
#define OCI_ATTR_RECIPIENT_LIST                    60
#define OCI_ATTR_EXCEPTION_QUEUE                   61
#define OCI_ATTR_ENQ_TIME                          62
#define OCI_ATTR_MSG_STATE                         63
#define OCI_ATTR_AGENT_NAME                        64
#define OCI_ATTR_CACHE_ARRAYFLUSH                  64
#define OCI_ATTR_AGENT_ADDRESS                     65
#define OCI_ATTR_AGENT_PROTOCOL                    66
#define OCI_ATTR_NATIVE_FDES                       67
#define OCI_ATTR_SENDER_ID                         68
#define OCI_ATTR_ORIGINAL_MSGID                    69
#define OCI_ATTR_QUEUE_NAME                        70
#define OCI_ATTR_NFY_MSGID                         71
#define OCI_ATTR_MSG_PROP                          72
#define OCI_ATTR_NUM_DML_ERRORS                    73
#define OCI_ATTR_DML_ROW_OFFSET                    74
#define OCI_ATTR_DATEFORMAT                        75
#define OCI_ATTR_BUF_ADDR                          76
#define OCI_ATTR_BUF_SIZE                          77
#define OCI_ATTR_DIRPATH_MODE                      78
#define OCI_ATTR_DIRPATH_NOLOG                     79
#define OCI_ATTR_DIRPATH_PARALLEL                  80
#define OCI_ATTR_NUM_ROWS                          81
#define OCI_ATTR_COL_COUNT                         82
#define OCI_ATTR_STREAM_OFFSET                     83
#define OCI_ATTR_SHARED_HEAPALLOC                  84
#define OCI_ATTR_SERVER_GROUP                      85
#define OCI_ATTR_MIGSESSION                        86
#define OCI_ATTR_NOCACHE                           87
#define OCI_ATTR_MEMPOOL_SIZE                      88
#define OCI_ATTR_MEMPOOL_INSTNAME                  89
#define OCI_ATTR_MEMPOOL_APPNAME                   90
#define OCI_ATTR_MEMPOOL_HOMENAME                  91
#define OCI_ATTR_MEMPOOL_MODEL                     92
#define OCI_ATTR_MODES                             93
#define OCI_ATTR_SUBSCR_NAME                       94
#define OCI_ATTR_SUBSCR_CALLBACK                   95
#define OCI_ATTR_SUBSCR_CTX                        96
#define OCI_ATTR_SUBSCR_PAYLOAD                    97
#define OCI_ATTR_SUBSCR_NAMESPACE                  98
#define OCI_ATTR_PROXY_CREDENTIALS                 99
#define OCI_ATTR_DISP_NAME                         100
#define OCI_ATTR_INITIAL_CLIENT_ROLES              100
#define OCI_ATTR_UNK                               101
#define OCI_ATTR_NUM_COLS                          102
#define OCI_ATTR_LIST_COLUMNS                      103
#define OCI_ATTR_COL_PROPERTIES                    104
#define OCI_ATTR_RDBA                              104
#define OCI_ATTR_CLUSTERED                         105
#define OCI_ATTR_PARTITIONED                       106
#define OCI_ATTR_INDEX_ONLY                        107
#define OCI_ATTR_LIST_ARGUMENTS                    108
#define OCI_ATTR_LIST_SUBPROGRAMS                  109
#define OCI_ATTR_REF_TDO                           110
#define OCI_ATTR_LINK                              111
#define OCI_ATTR_MIN                               112
#define OCI_ATTR_MAX                               113
#define OCI_ATTR_INCR                              114
#define OCI_ATTR_CACHE                             115
#define OCI_ATTR_ORDER                             116
#define OCI_ATTR_HW_MARK                           117
#define OCI_ATTR_TYPE_SCHEMA                       118
#define OCI_ATTR_TIMESTAMP                         119
#define OCI_ATTR_NUM_ATTRS                         120
#define OCI_ATTR_NUM_PARAMS                        121
#define OCI_ATTR_OBJID                             122
#define OCI_ATTR_PTYPE                             123
#define OCI_ATTR_PARAM                             124
#define OCI_ATTR_OVERLOAD_ID                       125
#define OCI_ATTR_TABLESPACE                        126
#define OCI_ATTR_TDO                               127
#define OCI_ATTR_LTYPE                             128
#define OCI_ATTR_PARSE_ERROR_OFFSET                129
#define OCI_ATTR_IS_TEMPORARY                      130
#define OCI_ATTR_IS_TYPED                          131
#define OCI_ATTR_DURATION                          132
#define OCI_ATTR_IS_INVOKER_RIGHTS                 133
#define OCI_ATTR_OBJ_NAME                          134
#define OCI_ATTR_OBJ_SCHEMA                        135
#define OCI_ATTR_OBJ_ID                            136
#define OCI_ATTR_TRANS_TIMEOUT                     142
#define OCI_ATTR_SERVER_STATUS                     143
#define OCI_ATTR_STATEMENT                         144
#define OCI_ATTR_DEQCOND                           146
#define OCI_ATTR_RESERVED_2                        147
#define OCI_ATTR_SUBSCR_RECPT                      148
#define OCI_ATTR_SUBSCR_RECPTPROTO                 149
#define OCI_ATTR_LDAP_HOST                         153
#define OCI_ATTR_LDAP_PORT                         154
#define OCI_ATTR_BIND_DN                           155
#define OCI_ATTR_LDAP_CRED                         156
#define OCI_ATTR_WALL_LOC                          157
#define OCI_ATTR_LDAP_AUTH                         158
#define OCI_ATTR_LDAP_CTX                          159
#define OCI_ATTR_SERVER_DNS                        160
#define OCI_ATTR_DN_COUNT                          161
#define OCI_ATTR_SERVER_DN                         162
#define OCI_ATTR_MAXCHAR_SIZE                      163
#define OCI_ATTR_CURRENT_POSITION                  164
#define OCI_ATTR_RESERVED_3                        165
#define OCI_ATTR_RESERVED_4                        166
#define OCI_ATTR_DIGEST_ALGO                       168
#define OCI_ATTR_CERTIFICATE                       169
#define OCI_ATTR_SIGNATURE_ALGO                    170
#define OCI_ATTR_CANONICAL_ALGO                    171
#define OCI_ATTR_PRIVATE_KEY                       172
#define OCI_ATTR_DIGEST_VALUE                      173
#define OCI_ATTR_SIGNATURE_VAL                     174
#define OCI_ATTR_SIGNATURE                         175
#define OCI_ATTR_STMTCACHESIZE                     176
#define OCI_ATTR_CONN_NOWAIT                       178
#define OCI_ATTR_CONN_BUSY_COUNT                   179
#define OCI_ATTR_CONN_OPEN_COUNT                   180
#define OCI_ATTR_CONN_TIMEOUT                      181
#define OCI_ATTR_STMT_STATE                        182
#define OCI_ATTR_CONN_MIN                          183
#define OCI_ATTR_CONN_MAX                          184
#define OCI_ATTR_CONN_INCR                         185
#define OCI_ATTR_NUM_OPEN_STMTS                    188
#define OCI_ATTR_DESCRIBE_NATIVE                   189
#define OCI_ATTR_BIND_COUNT                        190
#define OCI_ATTR_HANDLE_POSITION                   191
#define OCI_ATTR_RESERVED_5                        192
#define OCI_ATTR_SERVER_BUSY                       193
#define OCI_ATTR_SUBSCR_RECPTPRES                  195
#define OCI_ATTR_TRANSFORMATION                    196
#define OCI_ATTR_ROWS_FETCHED                      197
#define OCI_ATTR_SCN_BASE                          198
#define OCI_ATTR_SCN_WRAP                          199
#define OCI_ATTR_RESERVED_6                        200
#define OCI_ATTR_READONLY_TXN                      201
#define OCI_ATTR_RESERVED_7                        202
#define OCI_ATTR_ERRONEOUS_COLUMN                  203
#define OCI_ATTR_RESERVED_8                        204
#define OCI_ATTR_ASM_VOL_SPRT                      205
#define OCI_ATTR_SPOOL_STMTCACHESIZE               208
#define OCI_ATTR_OVERLOAD                          210
#define OCI_ATTR_LEVEL                             211
#define OCI_ATTR_HAS_DEFAULT                       212
#define OCI_ATTR_IOMODE                            213
#define OCI_ATTR_RADIX                             214
#define OCI_ATTR_NUM_ARGS                          215
#define OCI_ATTR_TYPECODE                          216
#define OCI_ATTR_COLLECTION_TYPECODE               217
#define OCI_ATTR_STMT_IS_RETURNING                 218
#define OCI_ATTR_VERSION                           218
#define OCI_ATTR_IS_INCOMPLETE_TYPE                219
#define OCI_ATTR_IS_SYSTEM_TYPE                    220
#define OCI_ATTR_IS_PREDEFINED_TYPE                221
#define OCI_ATTR_IS_TRANSIENT_TYPE                 222
#define OCI_ATTR_IS_SYSTEM_GENERATED_TYPE          223
#define OCI_ATTR_CURRENT_SCHEMA                    224
#define OCI_ATTR_HAS_NESTED_TABLE                  224
#define OCI_ATTR_HAS_LOB                           225
#define OCI_ATTR_SUBSCR_QOSFLAGS                   225
#define OCI_ATTR_HAS_FILE                          226
#define OCI_ATTR_COLLECTION_ELEMENT                227
#define OCI_ATTR_SUBSCR_TIMEOUT                    227
#define OCI_ATTR_NUM_TYPE_ATTRS                    228
#define OCI_ATTR_LIST_TYPE_ATTRS                   229
#define OCI_ATTR_SUBSCR_CQ_QOSFLAGS                229
#define OCI_ATTR_NUM_TYPE_METHODS                  230
#define OCI_ATTR_SUBSCR_CQ_REGID                   230
#define OCI_ATTR_LIST_TYPE_METHODS                 231
#define OCI_ATTR_SUBSCR_NTFN_GROUPING_CLASS        231
#define OCI_ATTR_MAP_METHOD                        232
#define OCI_ATTR_SUBSCR_NTFN_GROUPING_VALUE        232
#define OCI_ATTR_ORDER_METHOD                      233
#define OCI_ATTR_SUBSCR_NTFN_GROUPING_TYPE         233
#define OCI_ATTR_NUM_ELEMS                         234
#define OCI_ATTR_ENCAPSULATION                     235
#define OCI_ATTR_SUBSCR_NTFN_GROUPING_REPEAT_COUNT 235
#define OCI_ATTR_IS_SELFISH                        236
#define OCI_ATTR_IS_VIRTUAL                        237
#define OCI_ATTR_IS_INLINE                         238
#define OCI_ATTR_IS_CONSTANT                       239
#define OCI_ATTR_HAS_RESULT                        240
#define OCI_ATTR_IS_CONSTRUCTOR                    241
#define OCI_ATTR_IS_DESTRUCTOR                     242
#define OCI_ATTR_IS_OPERATOR                       243
#define OCI_ATTR_IS_MAP                            244
#define OCI_ATTR_IS_ORDER                          245
#define OCI_ATTR_IS_RNDS                           246
#define OCI_ATTR_IS_RNPS                           247
#define OCI_ATTR_IS_WNDS                           248
#define OCI_ATTR_IS_WNPS                           249
#define OCI_ATTR_DESC_PUBLIC                       250
#define OCI_ATTR_CACHE_CLIENT_CONTEXT              251
#define OCI_ATTR_UCI_CONSTRUCT                     252
#define OCI_ATTR_UCI_DESTRUCT                      253
#define OCI_ATTR_UCI_COPY                          254
#define OCI_ATTR_UCI_PICKLE                        255
#define OCI_ATTR_UCI_UNPICKLE                      256
#define OCI_ATTR_UCI_REFRESH                       257
#define OCI_ATTR_IS_SUBTYPE                        258
#define OCI_ATTR_SUPERTYPE_SCHEMA_NAME             259
#define OCI_ATTR_SUPERTYPE_NAME                    260
#define OCI_ATTR_LIST_OBJECTS                      261
#define OCI_ATTR_NCHARSET_ID                       262
#define OCI_ATTR_LIST_SCHEMAS                      263
#define OCI_ATTR_MAX_PROC_LEN                      264
#define OCI_ATTR_MAX_COLUMN_LEN                    265
#define OCI_ATTR_CURSOR_COMMIT_BEHAVIOR            266
#define OCI_ATTR_MAX_CATALOG_NAMELEN               267
#define OCI_ATTR_CATALOG_LOCATION                  268
#define OCI_ATTR_SAVEPOINT_SUPPORT                 269
#define OCI_ATTR_NOWAIT_SUPPORT                    270
#define OCI_ATTR_AUTOCOMMIT_DDL                    271
#define OCI_ATTR_LOCKING_MODE                      272
#define OCI_ATTR_APPCTX_SIZE                       273
#define OCI_ATTR_APPCTX_LIST                       274
#define OCI_ATTR_APPCTX_NAME                       275
#define OCI_ATTR_APPCTX_ATTR                       276
#define OCI_ATTR_APPCTX_VALUE                      277
#define OCI_ATTR_CLIENT_IDENTIFIER                 278
#define OCI_ATTR_IS_FINAL_TYPE                     279
#define OCI_ATTR_IS_INSTANTIABLE_TYPE              280
#define OCI_ATTR_IS_FINAL_METHOD                   281
#define OCI_ATTR_IS_INSTANTIABLE_METHOD            282
#define OCI_ATTR_IS_OVERRIDING_METHOD              283
#define OCI_ATTR_DESC_SYNBASE                      284
#define OCI_ATTR_CHAR_USED                         285
#define OCI_ATTR_CHAR_SIZE                         286
#define OCI_ATTR_EDITION                           288
#define OCI_ATTR_CQ_QUERYID                        304
#define OCI_ATTR_SPOOL_TIMEOUT                     308
#define OCI_ATTR_SPOOL_GETMODE                     309
#define OCI_ATTR_SPOOL_BUSY_COUNT                  310
#define OCI_ATTR_SPOOL_OPEN_COUNT                  311
#define OCI_ATTR_CONDITION                         342
#define OCI_ATTR_COMMENT                           343
#define OCI_ATTR_VALUE                             344
#define OCI_ATTR_EVAL_CONTEXT_OWNER                345
#define OCI_ATTR_EVAL_CONTEXT_NAME                 346
#define OCI_ATTR_EVALUATION_FUNCTION               347
#define OCI_ATTR_VAR_TYPE                          348
#define OCI_ATTR_VAR_VALUE_FUNCTION                349
#define OCI_ATTR_VAR_METHOD_FUNCTION               350
#define OCI_ATTR_ACTION_CONTEXT                    351
#define OCI_ATTR_LIST_TABLE_ALIASES                352
#define OCI_ATTR_LIST_VARIABLE_TYPES               353
#define OCI_ATTR_TABLE_NAME                        356
#define OCI_ATTR_MODULE                            366
#define OCI_ATTR_ACTION                            367
#define OCI_ATTR_CLIENT_INFO                       368
#define OCI_ATTR_COLLECT_CALL_TIME                 369
#define OCI_ATTR_CALL_TIME                         370
#define OCI_ATTR_ECONTEXT_ID                       371
#define OCI_ATTR_ADMIN_PFILE                       389
#define OCI_ATTR_SUBSCR_PORTNO                     390
#define OCI_ATTR_DBNAME                            391
#define OCI_ATTR_INSTNAME                          392
#define OCI_ATTR_SERVICENAME                       393
#define OCI_ATTR_DBDOMAIN                          399
#define OCI_ATTR_CHNF_ROWIDS                       402
#define OCI_ATTR_CHNF_OPERATIONS                   403
#define OCI_ATTR_CHDES_DBNAME                      405
#define OCI_ATTR_CHDES_NFYTYPE                     406
#define OCI_ATTR_NFY_FLAGS                         406
#define OCI_ATTR_CHDES_XID                         407
#define OCI_ATTR_MSG_DELIVERY_MODE                 407
#define OCI_ATTR_CHDES_TABLE_CHANGES               408
#define OCI_ATTR_CHDES_TABLE_NAME                  409
#define OCI_ATTR_CHDES_TABLE_OPFLAGS               410
#define OCI_ATTR_CHDES_TABLE_ROW_CHANGES           411
#define OCI_ATTR_CHDES_ROW_ROWID                   412
#define OCI_ATTR_CHDES_ROW_OPFLAGS                 413
#define OCI_ATTR_CHNF_REGHANDLE                    414
#define OCI_ATTR_CQDES_OPERATION                   422
#define OCI_ATTR_CQDES_TABLE_CHANGES               423
#define OCI_ATTR_CQDES_QUERYID                     424
#define OCI_ATTR_DRIVER_NAME                       424
#define OCI_ATTR_ENV_NLS_LANGUAGE                  424
#define OCI_ATTR_CHDES_QUERIES                     425
#define OCI_ATTR_CONNECTION_CLASS                  425
#define OCI_ATTR_ENV_NLS_TERRITORY                 425
#define OCI_ATTR_PURITY                            426
#define OCI_ATTR_SEND_TIMEOUT                      435
#define OCI_ATTR_RECEIVE_TIMEOUT                   436
#define OCI_ATTR_DEFAULT_LOBPREFETCH_SIZE          438
#define OCI_ATTR_LOBPREFETCH_LENGTH                440
#define OCI_ATTR_SUBSCR_IPADDR                     452
#define OCI_ATTR_UB8_ROW_COUNT                     457
#define OCI_ATTR_SPOOL_AUTH                        460
#define OCI_ATTR_INVISIBLE_COL                     461
#define OCI_ATTR_LTXID                             462
#define OCI_ATTR_DML_ROW_COUNT_ARRAY               469
#define OCI_ATTR_MAX_OPEN_CURSORS                  471
#define OCI_ATTR_ERROR_IS_RECOVERABLE              472
#define OCI_ATTR_TRANSACTION_IN_PROGRESS           484
#define OCI_ATTR_DBOP                              485
#define OCI_ATTR_SPOOL_MAX_LIFETIME_SESSION        490
#define OCI_ATTR_BREAK_ON_NET_TIMEOUT              495
#define OCI_ATTR_SHARDING_KEY                      496
#define OCI_ATTR_SUPER_SHARDING_KEY                497
#define OCI_ATTR_MAX_IDENTIFIER_LEN                500
#define OCI_ATTR_FIXUP_CALLBACK                    501
#define OCI_ATTR_SQL_ID                            504
#define OCI_ATTR_SPOOL_WAIT_TIMEOUT                506
#define OCI_ATTR_LOB_REMOTE                        520
#define OCI_ATTR_PDBNAME                           524
#define OCI_ATTR_CALL_TIMEOUT                      531
#define OCI_ATTR_JSON_COL                          534
#define OCI_ATTR_SODA_COLL_NAME                    535
#define OCI_ATTR_SODA_COLL_DESCRIPTOR              536
#define OCI_ATTR_SODA_CTNT_SQL_TYPE                549
#define OCI_ATTR_SODA_KEY                          563
#define OCI_ATTR_SODA_LASTMOD_TIMESTAMP            564
#define OCI_ATTR_SODA_CREATE_TIMESTAMP             565
#define OCI_ATTR_SODA_VERSION                      566
#define OCI_ATTR_SODA_CONTENT                      567
#define OCI_ATTR_SODA_JSON_CHARSET_ID              568
#define OCI_ATTR_SODA_DETECT_JSON_ENC              569
#define OCI_ATTR_SODA_MEDIA_TYPE                   571
#define OCI_ATTR_SODA_CTNT_FORMAT                  572
#define OCI_ATTR_SODA_FETCH_ARRAY_SIZE             573
#define OCI_ATTR_SODA_FILTER                       576
#define OCI_ATTR_SODA_SKIP                         577
#define OCI_ATTR_SODA_LIMIT                        578
#define OCI_ATTR_SODA_LOCK                         579
#define OCI_ATTR_SPOOL_MAX_USE_SESSION             580
#define OCI_ATTR_LOB_TYPE                          591
#define OCI_ATTR_SODA_DOC_COUNT                    593
#define OCI_ATTR_SPOOL_MAX_PER_SHARD               602
#define OCI_ATTR_JSON_DOM_MUTABLE                  609
#define OCI_ATTR_OSON_COL                          623
#define OCI_ATTR_SODA_METADATA_CACHE               624
#define OCI_ATTR_SODA_HINT                         627
#define OCI_ATTR_TOKEN                             636
#define OCI_ATTR_IAM_PRIVKEY                       637
#define OCI_ATTR_TOKEN_CBK                         638
#define OCI_ATTR_TOKEN_CBKCTX                      639
#define OCI_ATTR_PING_INTERVAL                     655
#define OCI_ATTR_TOKEN_ISBEARER                    657
#define OCI_ATTR_DOMAIN_SCHEMA                     659
#define OCI_ATTR_DOMAIN_NAME                       660
#define OCI_ATTR_SODA_JSON_DESC                    675
#define OCI_ATTR_LIST_ANNOTATIONS                  686
#define OCI_ATTR_NUM_ANNOTATIONS                   687
#define OCI_ATTR_ANNOTATION_KEY                    688
#define OCI_ATTR_ANNOTATION_VALUE                  689
#define OCI_ATTR_SERVER_TYPE                       694
#define OCI_ATTR_VECTOR_DIMENSION                  695
#define OCI_ATTR_VECTOR_DATA_FORMAT                696
#define OCI_ATTR_VECTOR_PROPERTY                   697
#define OCI_ATTR_VECTOR_SPARSE_DIMENSION           717

/* Values of some attributes. */
#define OCI_ATTR_PURITY_DEFAULT                    0
#define OCI_ATTR_COL_PROPERTY_IS_IDENTITY          1
#define OCI_ATTR_COL_PROPERTY_IS_GEN_ALWAYS        2
#define OCI_ATTR_VECTOR_COL_PROPERTY_IS_SPARSE     2
#define OCI_ATTR_COL_PROPERTY_IS_GEN_BY_DEF_ON_NULL 4

/* Fetch orientations. */
#define OCI_FETCH_CURRENT                          1
#define OCI_FETCH_NEXT                             2
#define OCI_FETCH_FIRST                            4
#define OCI_FETCH_LAST                             8
#define OCI_FETCH_PRIOR                            0x10
#define OCI_FETCH_ABSOLUTE                         0x20
#define OCI_FETCH_RELATIVE                         0x40
#define OCI_FETCH_RESERVED                         0x80

/* Pieces of a dynamic value. */
#define OCI_ONE_PIECE                              0
#define OCI_FIRST_PIECE                            1
#define OCI_NEXT_PIECE                             2
#define OCI_LAST_PIECE                             3

/* Flags of the transaction calls. */
#define OCI_TRANS_NEW                              0x1
#define OCI_TRANS_JOIN                             0x2
#define OCI_TRANS_RESUME                           0x4
#define OCI_TRANS_SESSIONLESS                      0x10
#define OCI_TRANS_STARTMASK                        0xFF
#define OCI_TRANS_READONLY                         0x100
#define OCI_TRANS_READWRITE                        0x200
#define OCI_TRANS_SERIALIZABLE                     0x400
#define OCI_TRANS_ISOLMASK                         0xFF00
#define OCI_TRANS_LOOSE                            0x10000
#define OCI_TRANS_TIGHT                            0x20000
#define OCI_TRANS_TYPEMASK                         0xF0000
#define OCI_TRANS_NOMIGRATE                        0x100000
#define OCI_TRANS_SEPARABLE                        0x200000
#define OCI_TRANS_TWOPHASE                         0x1000000

/* Sizes and limits. */
#define OCI_SQLSTATE_SIZE                          5
#define OCI_MAX_VAL_SIZE                           22
#define OCI_ROWID_LEN                              23
#define OCI_MAX_FNS                                100
#define OCI_NLS_MAXBUFSZ                           100
#define OCI_LOB_CONTENTTYPE_MAXSIZE                128
#define OCI_ERROR_MAXMSG_SIZE                      1024
#define OCI_LOBMAXSIZE                             4294967295U

/* Values of OCI_ATTR_SERVER_STATUS. */
#define OCI_SERVER_NOT_CONNECTED                   0
#define OCI_SERVER_NORMAL                          1

/* How OCIDescribeAny names its object. */
#define OCI_OTYPE_NAME                             1
#define OCI_OTYPE_REF                              2
#define OCI_OTYPE_PTR                              3

/* Kinds of described objects. */
#define OCI_PTYPE_UNK                              0
#define OCI_PTYPE_TABLE                            1
#define OCI_PTYPE_VIEW                             2
#define OCI_PTYPE_PROC                             3
#define OCI_PTYPE_FUNC                             4
#define OCI_PTYPE_PKG                              5
#define OCI_PTYPE_TYPE                             6
#define OCI_PTYPE_SYN                              7
#define OCI_PTYPE_SEQ                              8
#define OCI_PTYPE_COL                              9
#define OCI_PTYPE_ARG                              10
#define OCI_PTYPE_LIST                             11
#define OCI_PTYPE_TYPE_ATTR                        12
#define OCI_PTYPE_TYPE_COLL                        13
#define OCI_PTYPE_TYPE_METHOD                      14
#define OCI_PTYPE_TYPE_ARG                         15
#define OCI_PTYPE_TYPE_RESULT                      16
#define OCI_PTYPE_SCHEMA                           17
#define OCI_PTYPE_DATABASE                         18
#define OCI_PTYPE_RULE                             19
#define OCI_PTYPE_RULE_SET                         20
#define OCI_PTYPE_EVALUATION_CONTEXT               21
#define OCI_PTYPE_TABLE_ALIAS                      22
#define OCI_PTYPE_VARIABLE_TYPE                    23
#define OCI_PTYPE_NAME_VALUE                       24

/* Kinds of parameter lists. */
#define OCI_LTYPE_UNK                              0
#define OCI_LTYPE_COLUMN                           1
#define OCI_LTYPE_ARG_PROC                         2
#define OCI_LTYPE_ARG_FUNC                         3
#define OCI_LTYPE_SUBPRG                           4
#define OCI_LTYPE_TYPE_ATTR                        5
#define OCI_LTYPE_TYPE_METHOD                      6
#define OCI_LTYPE_TYPE_ARG_PROC                    7
#define OCI_LTYPE_TYPE_ARG_FUNC                    8
#define OCI_LTYPE_SCH_OBJ                          9
#define OCI_LTYPE_DB_SCH                           10
#define OCI_LTYPE_TYPE_SUBTYPE                     11
#define OCI_LTYPE_TABLE_ALIAS                      12
#define OCI_LTYPE_VARIABLE_TYPE                    13
#define OCI_LTYPE_NAME_VALUE                       14

/* Kinds of parameters. */
#define OCI_PARAM_IN                               1
#define OCI_PARAM_OUT                              2

/* Modes of session and connection pools. */
#define OCI_SPOOL_ATTRVAL_WAIT                     0
#define OCI_SESSGET_SPOOL                          1
#define OCI_SESSRLS_DROPSESS                       1
#define OCI_SPC_REINITIALIZE                       1
#define OCI_SPD_FORCE                              1
#define OCI_SPOOL_ATTRVAL_NOWAIT                   1
#define OCI_SESSRLS_RETAG                          2
#define OCI_SPC_HOMOGENEOUS                        2
#define OCI_SPOOL_ATTRVAL_FORCEGET                 2
#define OCI_SPOOL_ATTRVAL_TIMEDWAIT                3
#define OCI_SESSGET_STMTCACHE                      4
#define OCI_SESSRLS_MULTIPROPERTY_TAG              4
#define OCI_SPC_STMTCACHE                          4
#define OCI_SESSGET_CREDPROXY                      8
#define OCI_SPC_NO_RLB                             8
#define OCI_SESSGET_CREDEXT                        0x10
#define OCI_SESSGET_SPOOL_MATCHANY                 0x20
#define OCI_SESSGET_PURITY_NEW                     0x40
#define OCI_SESSGET_PURITY_SELF                    0x80
#define OCI_SESSGET_SYSDBA                         0x100
#define OCI_SESSGET_CPOOL                          0x200
#define OCI_SESSGET_MULTIPROPERTY_TAG              0x400

/* Large object modes. */
#define OCI_LOB_BUFFER_FREE                        1
#define OCI_LOB_READONLY                           1
#define OCI_TEMP_BLOB                              1
#define OCI_LOB_BUFFER_NOFREE                      2
#define OCI_LOB_READWRITE                          2
#define OCI_TEMP_CLOB                              2
#define OCI_TEMP_NCLOB                             3

/* File modes. */
#define OCI_FILE_READONLY                          1

/* Globalisation information and conversions. */
#define OCI_NLS_CS_IANA_TO_ORA                     0
#define OCI_NLS_CS_ORA_TO_IANA                     1
#define OCI_NLS_CHARSET_MAXBYTESZ                  91
#define OCI_NLS_CHARSET_ID                         93
#define OCI_NLS_NCHARSET_ID                        94

/* Character set numbers. */
#define OCI_UTF16ID                                1000

/* When a user callback runs. */
#define OCI_UCBTYPE_ENTRY                          1
#define OCI_UCBTYPE_EXIT                           2
#define OCI_UCBTYPE_REPLACE                        3

/* Function codes of user callbacks. */
#define OCI_FNCODE_INITIALIZE                      1
#define OCI_FNCODE_HANDLEALLOC                     2
#define OCI_FNCODE_HANDLEFREE                      3
#define OCI_FNCODE_DESCRIPTORALLOC                 4
#define OCI_FNCODE_DESCRIPTORFREE                  5
#define OCI_FNCODE_ENVINIT                         6
#define OCI_FNCODE_SERVERATTACH                    7
#define OCI_FNCODE_SERVERDETACH                    8
#define OCI_FNCODE_SESSIONBEGIN                    10
#define OCI_FNCODE_SESSIONEND                      11
#define OCI_FNCODE_PASSWORDCHANGE                  12
#define OCI_FNCODE_STMTPREPARE                     13
#define OCI_FNCODE_BINDDYNAMIC                     17
#define OCI_FNCODE_BINDOBJECT                      18
#define OCI_FNCODE_BINDARRAYOFSTRUCT               20
#define OCI_FNCODE_STMTEXECUTE                     21
#define OCI_FNCODE_DEFINEOBJECT                    25
#define OCI_FNCODE_DEFINEDYNAMIC                   26
#define OCI_FNCODE_DEFINEARRAYOFSTRUCT             27
#define OCI_FNCODE_STMTFETCH                       28
#define OCI_FNCODE_STMTGETBIND                     29
#define OCI_FNCODE_DESCRIBEANY                     32
#define OCI_FNCODE_TRANSSTART                      33
#define OCI_FNCODE_TRANSDETACH                     34
#define OCI_FNCODE_TRANSCOMMIT                     35
#define OCI_FNCODE_ERRORGET                        37
#define OCI_FNCODE_LOBOPENFILE                     38
#define OCI_FNCODE_LOBCLOSEFILE                    39
#define OCI_FNCODE_LOBCOPY                         42
#define OCI_FNCODE_LOBAPPEND                       43
#define OCI_FNCODE_LOBERASE                        44
#define OCI_FNCODE_LOBLENGTH                       45
#define OCI_FNCODE_LOBTRIM                         46
#define OCI_FNCODE_LOBREAD                         47
#define OCI_FNCODE_LOBWRITE                        48
#define OCI_FNCODE_SVCCTXBREAK                     50
#define OCI_FNCODE_SERVERVERSION                   51
#define OCI_FNCODE_KERBATTRSET                     52
#define OCI_FNCODE_ATTRGET                         54
#define OCI_FNCODE_ATTRSET                         55
#define OCI_FNCODE_PARAMSET                        56
#define OCI_FNCODE_PARAMGET                        57
#define OCI_FNCODE_STMTGETPIECEINFO                58
#define OCI_FNCODE_LDATOSVCCTX                     59
#define OCI_FNCODE_STMTSETPIECEINFO                61
#define OCI_FNCODE_TRANSFORGET                     62
#define OCI_FNCODE_TRANSPREPARE                    63
#define OCI_FNCODE_TRANSROLLBACK                   64
#define OCI_FNCODE_DEFINEBYPOS                     65
#define OCI_FNCODE_BINDBYPOS                       66
#define OCI_FNCODE_BINDBYNAME                      67
#define OCI_FNCODE_LOBASSIGN                       68
#define OCI_FNCODE_LOBISEQUAL                      69
#define OCI_FNCODE_LOBISINIT                       70
#define OCI_FNCODE_LOBENABLEBUFFERING              71
#define OCI_FNCODE_LOBCHARSETID                    72
#define OCI_FNCODE_LOBCHARSETFORM                  73
#define OCI_FNCODE_LOBFILESETNAME                  74
#define OCI_FNCODE_LOBFILEGETNAME                  75
#define OCI_FNCODE_LOGON                           76
#define OCI_FNCODE_LOGOFF                          77
#define OCI_FNCODE_LOBDISABLEBUFFERING             78
#define OCI_FNCODE_LOBFLUSHBUFFER                  79
#define OCI_FNCODE_LOBLOADFROMFILE                 80
#define OCI_FNCODE_LOBOPEN                         81
#define OCI_FNCODE_LOBCLOSE                        82
#define OCI_FNCODE_LOBISOPEN                       83
#define OCI_FNCODE_LOBFILEISOPEN                   84
#define OCI_FNCODE_LOBFILEEXISTS                   85
#define OCI_FNCODE_LOBFILECLOSEALL                 86
#define OCI_FNCODE_LOBCREATETEMP                   87
#define OCI_FNCODE_LOBFREETEMP                     88
#define OCI_FNCODE_LOBISTEMP                       89
#define OCI_FNCODE_AQENQ                           90
#define OCI_FNCODE_AQDEQ                           91
#define OCI_FNCODE_RESET                           92
#define OCI_FNCODE_SVCCTXTOLDA                     93
#define OCI_FNCODE_LOBLOCATORASSIGN                94
#define OCI_FNCODE_UBINDBYNAME                     95
#define OCI_FNCODE_AQLISTEN                        96
#define OCI_FNCODE_SVC2HST                         97
#define OCI_FNCODE_SVCRH                           98
#define OCI_FNCODE_TRANSMULTIPREPARE               99
#define OCI_FNCODE_CPOOLCREATE                     100
#define OCI_FNCODE_CPOOLDESTROY                    101
#define OCI_FNCODE_LOGON2                          102
#define OCI_FNCODE_ROWIDTOCHAR                     103
#define OCI_FNCODE_SPOOLCREATE                     104
#define OCI_FNCODE_SPOOLDESTROY                    105
#define OCI_FNCODE_SESSIONGET                      106
#define OCI_FNCODE_SESSIONRELEASE                  107
#define OCI_FNCODE_STMTPREPARE2                    108
#define OCI_FNCODE_STMTRELEASE                     109
#define OCI_FNCODE_AQENQARRAY                      110
#define OCI_FNCODE_AQDEQARRAY                      111
#define OCI_FNCODE_LOBCOPY2                        112
#define OCI_FNCODE_LOBERASE2                       113
#define OCI_FNCODE_LOBLENGTH2                      114
#define OCI_FNCODE_LOBLOADFROMFILE2                115
#define OCI_FNCODE_LOBREAD2                        116
#define OCI_FNCODE_LOBTRIM2                        117
#define OCI_FNCODE_LOBWRITE2                       118
#define OCI_FNCODE_LOBGETSTORAGELIMIT              119
#define OCI_FNCODE_DBSTARTUP                       120
#define OCI_FNCODE_DBSHUTDOWN                      121
#define OCI_FNCODE_LOBARRAYREAD                    122
#define OCI_FNCODE_LOBARRAYWRITE                   123

/* Failover events. */
#define OCI_FO_END                                 1
#define OCI_FO_NONE                                1
#define OCI_FO_ABORT                               2
#define OCI_FO_SESSION                             2
#define OCI_FO_REAUTH                              4
#define OCI_FO_SELECT                              4
#define OCI_FO_BEGIN                               8
#define OCI_FO_TXNAL                               8
#define OCI_FO_ERROR                               16

/* Advanced queuing. */
#define OCI_DEQ_WAIT_FOREVER                       (-1)
#define OCI_MSG_NO_EXPIRATION                      (-1)
#define OCI_DEQ_NO_WAIT                            0
#define OCI_MSG_NO_DELAY                           0
#define OCI_MSG_READY                              0
#define OCI_DEQ_BROWSE                             1
#define OCI_DEQ_FIRST_MSG                          1
#define OCI_DEQ_IMMEDIATE                          1
#define OCI_ENQ_IMMEDIATE                          1
#define OCI_MSG_WAITING                            1
#define OCI_DEQ_LOCKED                             2
#define OCI_DEQ_NEXT_TRANSACTION                   2
#define OCI_DEQ_ON_COMMIT                          2
#define OCI_ENQ_BEFORE                             2
#define OCI_ENQ_ON_COMMIT                          2
#define OCI_MSG_PROCESSED                          2
#define OCI_DEQ_NEXT_MSG                           3
#define OCI_DEQ_REMOVE                             3
#define OCI_ENQ_TOP                                3
#define OCI_MSG_EXPIRED                            3

/* Subscriptions. */
#define OCI_SUBSCR_CQ_QOS_QUERY                    1
#define OCI_SUBSCR_QOS_RELIABLE                    1
#define OCI_SUBSCR_CQ_QOS_BEST_EFFORT              2
#define OCI_SUBSCR_QOS_PURGE_ON_NTFN               16

/* Security. */
#define OCI_SECURE_NOTIFICATION                    536870912

/* Document collections. */
#define OCI_SODA_ATOMIC_COMMIT                     1
#define OCI_SODA_AS_STORED                         2
#define OCI_SODA_AS_AL32UTF8                       4
#define OCI_SODA_COLL_CREATE_MAP                   65536
#define OCI_SODA_INDEX_DROP_FORCE                  65536

/* JSON formats. */
#define OCI_JSON_FORMAT_JSON                       0
#define OCI_JSON_FORMAT_OSON                       1

/* Attributes of this library's own. */

/* ub1 on OCIServer: not 0 asks the server to undo a failing statement alone, so that its
   transaction stays open. The server must know the parameter zev_stmt_level_tx. */
#define ZEVOCI_ATTR_STMT_LEVEL_TX                  5000

/* ub4 on OCIServer and OCIStmt: how a SELECT reads. 0 as the server handle says, 1 through a
   declared cursor WITH HOLD, which outlives the transaction, 2 through a portal. */
#define ZEVOCI_ATTR_CURSOR_STRATEGY                5001

/* ub1 on OCIEnv: 0 and 3 make empty text NULL, 4 keeps it empty; reads as 3 or 4. */
#define ZEVOCI_ATTR_VARCHARS                       5002

/* ub4 on OCIServer and OCIStmt: what surrounds the declaration of a cursor. 0 a transaction is
   begun, 5 nothing is sent, 6 it is committed. */
#define ZEVOCI_ATTR_HOLD_POLICY                    5003
/* clang-format on */

#include "ociap.h"
#include "ociextp.h"
#include "ori.h"

#endif /* ZEVOCI_OCI_H */
