/*
 * ociap.h: the functions of the Oracle Call Interface that this library implements.
 *
 * Unless a comment says otherwise, a function returns OCI_SUCCESS, or OCI_INVALID_HANDLE
 * for a null or wrong handle (nothing is recorded then), or OCI_ERROR with a record on
 * errhp that OCIErrorGet reads. Text lengths are in bytes and do not count a terminator.
 */
#ifndef ZEVOCI_OCIAP_H
#define ZEVOCI_OCIAP_H

#include "oci.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Environment and handles ---- */

/* Settles the process-wide modes; not needed before OCIEnvCreate. The memory callbacks
   are kept and never called. OCI_ERROR when called twice without OCITerminate, and for
   OCI_EVENTS. */
sword OCIInitialize(ub4 mode, void *ctxp, void *(*malocfp)(void *ctxp, size_t size),
                    void *(*ralocfp)(void *ctxp, void *memptr, size_t newsize),
                    void (*mfreefp)(void *ctxp, void *memptr));

/* Ends what OCIInitialize began; mode must be OCI_DEFAULT. Environments stay as they are.
 */
sword OCITerminate(ub4 mode);

/* Makes an environment with the process's modes; see OCIEnvCreate. */
sword OCIEnvInit(OCIEnv **envhpp, ub4 mode, size_t xtramemsz, void **usrmempp);

/* Makes an environment, the owner of all other handles. xtramemsz bytes of zeroed memory
   for the program are handed out through usrmempp and live as long as the environment.
   The memory callbacks are accepted and not called. On OCI_ERROR *envhpp is null. */
sword OCIEnvCreate(OCIEnv **envhpp, ub4 mode, void *ctxp,
                   void *(*malocfp)(void *ctxp, size_t size),
                   void *(*ralocfp)(void *ctxp, void *memptr, size_t newsize),
                   void (*mfreefp)(void *ctxp, void *memptr), size_t xtramemsz,
                   void **usrmempp);

/* OCIEnvCreate with a client encoding: charset 1 to 40 is the library's own encoding
   number, 0 takes it from NLS_LANG and the locale. ncharset is ignored. */
sword OCIEnvNlsCreate(OCIEnv **envhpp, ub4 mode, void *ctxp,
                      void *(*malocfp)(void *ctxp, size_t size),
                      void *(*ralocfp)(void *ctxp, void *memptr, size_t newsize),
                      void (*mfreefp)(void *ctxp, void *memptr), size_t xtramemsz,
                      void **usrmempp, ub2 charset, ub2 ncharset);

/* Allocates a handle of an OCI_HTYPE_* type under an environment (binds and defines:
   under a statement), with xtramem_sz bytes of zeroed memory for the program. */
sword OCIHandleAlloc(const void *parenth, void **hndlpp, ub4 type, size_t xtramem_sz,
                     void **usrmempp);

/* Frees a handle and all that it owns. Bind and define handles live as long as their
   statement and are refused. */
sword OCIHandleFree(void *hndlp, ub4 type);

/* Allocates a descriptor of an OCI_DTYPE_* type under an environment. */
sword OCIDescriptorAlloc(const void *parenth, void **descpp, ub4 type, size_t xtramem_sz,
                         void **usrmempp);

/* Frees a descriptor; the type must fit it. */
sword OCIDescriptorFree(void *descp, ub4 type);

/* ---- Errors ---- */

/* Reads record recordno, counted from 1, of an error handle (type OCI_HTYPE_ERROR) or of
   the environment above hndlp (any other type): its Oracle number, and up to bufsiz - 1
   bytes of its text with a terminator. sqlstate is not written. OCI_NO_DATA past the last
   record. */
sword OCIErrorGet(void *hndlp, ub4 recordno, OraText *sqlstate, sb4 *errcodep,
                  OraText *bufp, ub4 bufsiz, ub4 type);

/* As OCIErrorGet, with the server's own words and SQLSTATE. An addition to the published
   interface. OCI_NO_DATA also for a record that no server error made. */
sword OCIPGErrorGet(void *hndlp, ub4 recordno, OraText *sqlstate, ub4 sqlstatesiz,
                    OraText *bufp, ub4 bufsiz, ub4 type);

/* ---- Attributes ---- */

/* Reads an OCI_ATTR_* attribute of a handle of type trghndltyp into *attributep, in the
   width of that attribute. *sizep, which may be null, is written for texts and blocks,
   otherwise left alone or set to 0. An unknown attribute is OCI_ERROR, with a record for
   most handle types. */
sword OCIAttrGet(const void *trgthndlp, ub4 trghndltyp, void *attributep, ub4 *sizep,
                 ub4 attrtype, OCIError *errhp);

/* Sets an OCI_ATTR_* attribute from *attributep, in the width of that attribute; the
   value is copied, handles are referred to. size counts for text attributes (in bytes)
   and OCI_ATTR_XID. */
sword OCIAttrSet(void *trgthndlp, ub4 trghndltyp, void *attributep, ub4 size,
                 ub4 attrtype, OCIError *errhp);

/* ---- Connections ---- */

/* Says where a server is: "[//]host[:port][/database]" or a "postgresql://" URI;
   dblink_len 0 or below means localhost, port 5444, database "zev". Nothing is sent; the
   connection is made by OCISessionBegin. A text with a "/" before its first ":" is looked
   up in $HOME/.tnsnames.ora or $TNS_ADMIN/tnsnames.ora. Record 24309 when the server is
   attached already, 12154 without a file, 12555 when it cannot be opened, 12227 when it
   has a syntax error. */
sword OCIServerAttach(OCIServer *srvhp, OCIError *errhp, const OraText *dblink,
                      sb4 dblink_len, ub4 mode);

/* Forgets the address; a connection that is still open stays until the handle is freed.
   Record 24324 when the server is not attached. */
sword OCIServerDetach(OCIServer *srvhp, OCIError *errhp, ub4 mode);

/* Connects the server of svchp as the user of usrhp. mode takes OCI_STMT_CACHE. A failure
   to connect is record 12154 with the client library's own text. */
sword OCISessionBegin(OCISvcCtx *svchp, OCIError *errhp, OCISession *usrhp, ub4 credt,
                      ub4 mode);

/* Closes the connection of the service context's server. */
sword OCISessionEnd(OCISvcCtx *svchp, OCIError *errhp, OCISession *usrhp, ub4 mode);

/* Attaches and begins a session in one call; *svchp is the new service context, null on
   failure. A null username or dbname is record 21560. */
sword OCILogon(OCIEnv *envhp, OCIError *errhp, OCISvcCtx **svchp, const OraText *username,
               ub4 uname_len, const OraText *password, ub4 passwd_len,
               const OraText *dbname, ub4 dbname_len);

/* OCILogon with modes, of which OCI_LOGON2_STMTCACHE has an effect. */
sword OCILogon2(OCIEnv *envhp, OCIError *errhp, OCISvcCtx **svchp,
                const OraText *username, ub4 uname_len, const OraText *password,
                ub4 passwd_len, const OraText *dbname, ub4 dbname_len, ub4 mode);

/* Ends the session and frees the service context, its server and its session. */
sword OCILogoff(OCISvcCtx *svchp, OCIError *errhp);

/* ---- Pools ---- */

/* Fills a session pool. OCI_SPC_HOMOGENEOUS logs on sessMin times as userid to connStr
   and lets OCISessionGet log on until sessMax sessions were made in all; OCI_DEFAULT logs
   on nobody. *poolName is a block that the program frees, *poolNameLen counts its
   terminator. Only the first pool of an environment hands out sessions. Record 21560
   without poolName or poolNameLen, 30475 for OCI_SPC_REINITIALIZE and OCI_SPC_STMTCACHE,
   24300 for other modes. */
sword OCISessionPoolCreate(OCIEnv *envhp, OCIError *errhp, OCISPool *spoolhp,
                           OraText **poolName, ub4 *poolNameLen, const OraText *connStr,
                           ub4 connStrLen, ub4 sessMin, ub4 sessMax, ub4 sessIncr,
                           OraText *userid, ub4 useridLen, OraText *password,
                           ub4 passwordLen, ub4 mode);

/* Does nothing; sessions live as long as their environment or until OCILogoff. */
sword OCISessionPoolDestroy(OCISPool *spoolhp, OCIError *errhp, ub4 mode);

/* A session in *svchp. OCI_SESSGET_SPOOL takes one of the pool, which OCI_ERROR without a
   record says is exhausted; a session that was made with the pool is ended by OCILogoff,
   one that was added by OCISessionRelease. OCI_DEFAULT and OCI_SESSGET_STMTCACHE log on
   to dbName as authhp's user. Tags are not looked at and found is not written. */
sword OCISessionGet(OCIEnv *envhp, OCIError *errhp, OCISvcCtx **svchp,
                    OCIAuthInfo *authhp, OraText *dbName, ub4 dbName_len,
                    const OraText *tagInfo, ub4 tagInfo_len, OraText **retTagInfo,
                    ub4 *retTagInfo_len, boolean *found, ub4 mode);

/* Ends a session of OCISessionGet as OCILogoff does; it does not return to its pool. mode
   must be OCI_DEFAULT. Record 24421 for another session. */
sword OCISessionRelease(OCISvcCtx *svchp, OCIError *errhp, OraText *tag, ub4 tag_len,
                        ub4 mode);

/* Connection pools are not offered: OCI_ERROR without a record. */
sword OCIConnectionPoolCreate(OCIEnv *envhp, OCIError *errhp, OCICPool *poolhp,
                              OraText **poolName, sb4 *poolNameLen, const OraText *dblink,
                              sb4 dblinkLen, ub4 connMin, ub4 connMax, ub4 connIncr,
                              const OraText *poolUserName, sb4 poolUserLen,
                              const OraText *poolPassword, sb4 poolPassLen, ub4 mode);
sword OCIConnectionPoolDestroy(OCICPool *poolhp, OCIError *errhp, ub4 mode);

/* ---- Services of a connection ---- */

/* One round trip to the server; record 1041 when it fails. mode must be OCI_DEFAULT. */
sword OCIPing(OCISvcCtx *svchp, OCIError *errhp, ub4 mode);

/* Cancels what the connection of a service context or server is doing. The one call meant
   for another thread. Records nothing. */
sword OCIBreak(void *hndlp, OCIError *errhp);

/* Takes the pending result after OCIBreak, and rolls the transaction back unless it has
 * rows. */
sword OCIReset(void *hndlp, OCIError *errhp);

/* The server's version text, cut at bufsz bytes (without a terminator when cut). hndltype
   is OCI_HTYPE_SVCCTX or OCI_HTYPE_SERVER. */
sword OCIServerVersion(void *hndlp, OCIError *errhp, OraText *bufp, ub4 bufsz,
                       ub1 hndltype);

/* OCIServerVersion with the number: major << 24 | minor << 20 | patch << 12. */
sword OCIServerRelease(void *hndlp, OCIError *errhp, OraText *bufp, ub4 bufsz,
                       ub1 hndltype, ub4 *version);

/* Reports the client version that programs may rely on: 11.0.1.1.0. No argument may be
 * null. */
void OCIClientVersion(sword *major, sword *minor, sword *update, sword *patch,
                      sword *port_update);

/* Changes the password of a user; with OCI_AUTH a session is begun first where there is
 * none. */
sword OCIPasswordChange(OCISvcCtx *svchp, OCIError *errhp, const OraText *user_name,
                        ub4 usernm_len, const OraText *opasswd, ub4 opasswd_len,
                        const OraText *npasswd, ub4 npasswd_len, ub4 mode);

/* ---- Statements ---- */

/* Gives a statement its text; nothing is sent. language is OCI_NTV_SYNTAX or
   OCI_V7_SYNTAX, mode OCI_DEFAULT. Binds, defines and server objects of the former text
   go away. */
sword OCIStmtPrepare(OCIStmt *stmtp, OCIError *errhp, const OraText *stmt, ub4 stmt_len,
                     ub4 language, ub4 mode);

/* Makes a statement handle with its text, entered under key in the service context's
   statement cache where that is on; with OCI_PREP2_CACHE_SEARCHONLY looks a key up. */
sword OCIStmtPrepare2(OCISvcCtx *svchp, OCIStmt **stmtp, OCIError *errhp,
                      const OraText *stmt, ub4 stmt_len, const OraText *key, ub4 key_len,
                      ub4 language, ub4 mode);

/* Gives a statement of OCIStmtPrepare2 back, tagged with key; OCI_STRLS_CACHE_DELETE
   takes it out of the cache. */
sword OCIStmtRelease(OCIStmt *stmtp, OCIError *errhp, const OraText *key, ub4 key_len,
                     ub4 mode);

/* Ties a placeholder, named with its colon, to a buffer that is read at each execute; the
   buffers stay the program's. placeh_len -1 takes a terminated name. value_sz is the size
   in bytes of one value (SQLT_STR: the terminator included) and the stride of an array;
   dty a SQLT_* code; indp an array of sb2 (-1 sends NULL), alenp of lengths in bytes,
   each of which may be null. The new bind handle goes to *bindpp. A placeholder that is
   not in the statement is record 16952. */
sword OCIBindByName(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp,
                    const OraText *placeholder, sb4 placeh_len, void *valuep,
                    sb4 value_sz, ub2 dty, void *indp, ub2 *alenp, ub2 *rcodep,
                    ub4 maxarr_len, ub4 *curelep, ub4 mode);

/* OCIBindByName with the placeholder's position in the text, counted from 1. A position
   that is not in the statement is record 28553. */
sword OCIBindByPos(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp, ub4 position,
                   void *valuep, sb4 value_sz, ub2 dty, void *indp, ub2 *alenp,
                   ub2 *rcodep, ub4 maxarr_len, ub4 *curelep, ub4 mode);

/* Registers the callbacks that supply and take the values of a bind. */
sword OCIBindDynamic(OCIBind *bindp, OCIError *errhp, void *ictxp,
                     OCICallbackInBind icbfp, void *octxp, OCICallbackOutBind ocbfp);

/* Sets the distances in bytes between the values, indicators, lengths and return codes of
   successive rows of a bind. */
sword OCIBindArrayOfStruct(OCIBind *bindp, OCIError *errhp, ub4 pvskip, ub4 indskip,
                           ub4 alskip, ub4 rcskip);

/* Lists the placeholders of a statement from number startloc on, in arrays of size
   elements. *found is their count, or size minus the count (negative) when the arrays are
   too short. The names belong to the environment. OCI_NO_DATA when there is none. */
sword OCIStmtGetBindInfo(OCIStmt *stmtp, OCIError *errhp, ub4 size, ub4 startloc,
                         sb4 *found, OraText *bvnp[], ub1 bvnl[], OraText *invp[],
                         ub1 inpl[], ub1 dupl[], OCIBind **hndl);

/* Runs a prepared statement: rows rowoff to iters - 1 of its binds, or for a SELECT the
   first iters rows into its defines (0 only opens it). OCI_NO_DATA when a SELECT has
   fewer rows. mode is OCI_DEFAULT, OCI_DESCRIBE_ONLY, OCI_PARSE_ONLY, OCI_EXACT_FETCH,
   OCI_COMMIT_ON_SUCCESS or OCI_STMT_SCROLLABLE_READONLY. Records: 24337 for an unprepared
   statement, 24333 for iters 0 on other than a SELECT, 25407 for a broken connection,
   1422 for too many rows of an exact fetch, and the server's own. A transaction is begun
   where none is open; DDL ends it. A server error rolls it back. The snapshots are not
   used. */
sword OCIStmtExecute(OCISvcCtx *svchp, OCIStmt *stmtp, OCIError *errhp, ub4 iters,
                     ub4 rowoff, const OCISnapshot *snap_in, OCISnapshot *snap_out,
                     ub4 mode);

/* Ties a column, counted from 1, to a buffer that each fetch writes: an array with one
   element of value_sz bytes a row. indp (sb2: -1 for NULL), rlenp (ub2, bytes) and rcodep
   (ub2: 1405 for NULL, 1406 for a value cut off) are arrays too, each of which may be
   null. Define every column from the first on: fetching stops at the first one without a
   define. */
sword OCIDefineByPos(OCIStmt *stmtp, OCIDefine **defnpp, OCIError *errhp, ub4 position,
                     void *valuep, sb4 value_sz, ub2 dty, void *indp, ub2 *rlenp,
                     ub2 *rcodep, ub4 mode);

/* Sets the distances in bytes between the values, indicators, lengths and return codes of
   successive rows of a define. */
sword OCIDefineArrayOfStruct(OCIDefine *defnp, OCIError *errhp, ub4 pvskip, ub4 indskip,
                             ub4 rlskip, ub4 rcskip);

/* Registers the callback that supplies the buffers of a define. */
sword OCIDefineDynamic(OCIDefine *defnp, OCIError *errhp, void *octxp,
                       OCICallbackDefine ocbfp);

/* Fetches the next nrows rows (0 cancels the cursor). OCI_NO_DATA when fewer came, with
   those in the defines and their number in OCI_ATTR_ROWS_FETCHED. Records: 24338 before
   an execute, 24391 for an orientation that the statement does not allow, 24374 with no
   defines. */
sword OCIStmtFetch(OCIStmt *stmtp, OCIError *errhp, ub4 nrows, ub2 orientation, ub4 mode);

/* OCIStmtFetch with all orientations; those other than OCI_FETCH_NEXT need a statement
   executed with OCI_STMT_SCROLLABLE_READONLY. */
sword OCIStmtFetch2(OCIStmt *stmtp, OCIError *errhp, ub4 nrows, ub2 orientation,
                    sb4 fetchOffset, ub4 mode);

/* ---- Describing ---- */

/* A new descriptor of what stands at position pos, counted from 1: of a statement
   (htype OCI_HTYPE_STMT), the column of its result; of a parameter that is a list
   (OCI_DTYPE_PARAM), its element. OCIAttrGet with OCI_DTYPE_PARAM reads it;
   OCIDescriptorFree frees it. Records: 24334 for a position that does not exist and for
   a statement that is not a query, 24338 before an execute, 24316 for another htype. */
sword OCIParamGet(const void *hndlp, ub4 htype, OCIError *errhp, void **parmdpp, ub4 pos);

/* Describes a table by its exact name (OCI_OTYPE_NAME, info_level 0, OCI_PTYPE_TABLE);
   OCI_ATTR_PARAM of dschp then gives the description. The transaction that this opens is
   the program's to end. Records: 1009 without a name, 4043 for an unknown table, 3001 for
   objects that are not supported, 24332 for an unknown objptr_typ, 25407 without a
   connection. */
sword OCIDescribeAny(OCISvcCtx *svchp, OCIError *errhp, void *objptr, ub4 objnm_len,
                     ub1 objptr_typ, ub1 info_level, ub1 objtyp, OCIDescribe *dschp);

/* ---- Large objects ----

   Amounts and offsets are in bytes; csid and csfrm are not used. A large object lives in
   a transaction: each call but OCILobOpen and OCILobClose opens one where there is none,
   and the program ends it. Every failure of the server is record 1733. */

/* Opens a locator for reading and writing until OCILobClose or the end of the
   transaction, which must be open. mode is not used. Without it each call opens and
   closes the object for itself. */
sword OCILobOpen(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub1 mode);

/* Closes a locator; one that is not open is left as it is. */
sword OCILobClose(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp);

/* The size of the large object. */
sword OCILobGetLength(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 *lenp);

/* Reads up to *amtp bytes behind the first offset bytes, and stores in *amtp how many
   there were. cbfp is called after each piece of bufl bytes with OCI_FIRST_PIECE or
   OCI_NEXT_PIECE, and must return OCI_CONTINUE; with the last one, which may be empty, it
   gets OCI_LAST_PIECE. Without cbfp everything stands in bufp; more than fits there is
   OCI_NEED_DATA. On a locator that was not opened by OCILobOpen the result is always
   OCI_SUCCESS once the object is open; *amtp then tells what came. */
sword OCILobRead(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 *amtp,
                 ub4 offset, void *bufp, ub4 bufl, void *ctxp, OCICallbackLobRead cbfp,
                 ub2 csid, ub1 csfrm);

/* Cuts the large object to newlen bytes, which must not be more than it has. */
sword OCILobTrim(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 newlen);

/* Writes *amtp bytes at the end, and stores in *amtp how many were written. The arguments
   behind bufp are not used. */
sword OCILobWriteAppend(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 *amtp,
                        void *bufp, ub4 buflen, ub1 piece, void *ctxp,
                        OCICallbackLobWrite cbfp, ub2 csid, ub1 csfrm);

/* ---- Transactions ---- */

/* Sets the properties of the transaction; one is open from the first statement on. The
   service context must have a transaction handle. */
sword OCITransStart(OCISvcCtx *svchp, OCIError *errhp, uword timeout, ub4 flags);

/* Commits; with OCI_TRANS_TWOPHASE commits the prepared transaction of the handle's XID.
 */
sword OCITransCommit(OCISvcCtx *svchp, OCIError *errhp, ub4 flags);

/* Rolls back; with OCI_TRANS_TWOPHASE rolls the prepared transaction of the handle's XID
 * back. */
sword OCITransRollback(OCISvcCtx *svchp, OCIError *errhp, ub4 flags);

/* Prepares the current transaction for commit under the XID of the transaction handle. */
sword OCITransPrepare(OCISvcCtx *svchp, OCIError *errhp, ub4 flags);

/* ---- Dates ----

   OCIDate is computed on the client. A null argument is record 21560 with its number.
   Languages are ignored: names are English. */

/* The date num_days later, at midnight. */
sword OCIDateAddDays(OCIError *err, const OCIDate *date, sb4 num_days, OCIDate *result);

/* The date num_months later, with its time. The last day of a month stays the last day;
   other days stay as they are, also where the month has none such. */
sword OCIDateAddMonths(OCIError *err, const OCIDate *date, sb4 num_months,
                       OCIDate *result);

sword OCIDateAssign(OCIError *err, const OCIDate *from, OCIDate *to);

/* Stores what is wrong with a date, as OCI_DATE_ bits; 0 for a good one. */
sword OCIDateCheck(OCIError *err, const OCIDate *date, uword *valid);

/* Stores -1, 0 or 1. Days behind the end of a shorter month before, such as the 31st of
   March, compare as those of the month after. OCI_ERROR without a record for years that
   are too early. */
sword OCIDateCompare(OCIError *err, const OCIDate *date1, const OCIDate *date2,
                     sword *result);

/* Stores date1 less date2 in days, whatever their times. */
sword OCIDateDaysBetween(OCIError *err, const OCIDate *date1, const OCIDate *date2,
                         sb4 *num_days);

/* Reads text by a format such as "DD-MON-YYYY HH24:MI:SS". What the format leaves out is
   the present year, February, the first, midnight. Records: those of the format, 1839 for
   a day that the month has not. */
sword OCIDateFromText(OCIError *err, const OraText *date_str, ub4 d_str_length,
                      const OraText *fmt, ub1 fmt_length, const OraText *lang_name,
                      ub4 lang_length, OCIDate *date);

/* The last day of the date's month, with its time. */
sword OCIDateLastDay(OCIError *err, const OCIDate *date, OCIDate *last_day);

/* The first day of that name behind the date, with its time. Record 1846 for a name that
   does not begin with three letters of a day. */
sword OCIDateNextDay(OCIError *err, const OCIDate *date, const OraText *day_p,
                     ub4 day_length, OCIDate *next_day);

/* Now, in local time. */
sword OCIDateSysDate(OCIError *err, OCIDate *sys_date);

/* Writes text by a format, cut to *buf_size bytes with its terminator. */
sword OCIDateToText(OCIError *err, const OCIDate *date, const OraText *fmt,
                    ub1 fmt_length, const OraText *lang_name, ub4 lang_length,
                    ub4 *buf_size, OraText *buf);

/* Not supported: OCI_ERROR. */
sword OCIDateZoneToZone(OCIError *err, const OCIDate *date1, const OraText *zon1,
                        ub4 zon1_length, const OraText *zon2, ub4 zon2_length,
                        OCIDate *date2);

/* ---- Dates and times in descriptors ----

   hndl is the environment or the session. A null argument is record 21560 with its
   number, a wrong descriptor OCI_INVALID_HANDLE, a descriptor without a value record
   16384 where it is read. Languages are ignored: names are English. */

/* Copies a value between descriptors of one type; record 932 for two types. */
sword OCIDateTimeAssign(void *hndl, OCIError *err, const OCIDateTime *from,
                        OCIDateTime *to);

/* Stores what is wrong with a value, as OCI_DT_ bits; 0 for a good one. */
sword OCIDateTimeCheck(void *hndl, OCIError *err, const OCIDateTime *date, ub4 *valid);

/* Stores -1, 0 or 1. Record 1870 for two types. */
sword OCIDateTimeCompare(void *hndl, OCIError *err, const OCIDateTime *date1,
                         const OCIDateTime *date2, sword *result);

/* Makes a value of the descriptor's type from its parts; timezone ends in a NUL, whatever
   timezone_length is, and null means that of the local zone. The record's number tells
   the part that is out of range. */
sword OCIDateTimeConstruct(void *hndl, OCIError *err, OCIDateTime *datetime, sb2 year,
                           ub1 month, ub1 day, ub1 hour, ub1 min, ub1 sec, ub4 fsec,
                           OraText *timezone, size_t timezone_length);

/* Stores the value of indate in outdate, as outdate's type. */
sword OCIDateTimeConvert(void *hndl, OCIError *err, OCIDateTime *indate,
                         OCIDateTime *outdate);

/* Reads the bytes that OCIDateTimeToArray writes, as the external type that is given.
   reftz must not be null. Record 1866 for a type that is none of dates. */
sword OCIDateTimeFromArray(void *hndl, OCIError *err, const ub1 *inarray, ub4 len,
                           ub1 type, OCIDateTime *datetime, const OCIInterval *reftz,
                           ub1 fsprec);

/* Reads text by a format, or by that of the descriptor's type where fmt is null. */
sword OCIDateTimeFromText(void *hndl, OCIError *err, const OraText *date_str,
                          size_t dstr_length, const OraText *fmt, ub1 fmt_length,
                          const OraText *lang_name, size_t lang_length,
                          OCIDateTime *datetime);

sword OCIDateTimeGetDate(void *hndl, OCIError *err, const OCIDateTime *datetime,
                         sb2 *year, ub1 *month, ub1 *day);

/* Stores the time of day and its fraction; record 1878 and zeros for a plain date. */
sword OCIDateTimeGetTime(void *hndl, OCIError *err, OCIDateTime *datetime, ub1 *hour,
                         ub1 *min, ub1 *sec, ub4 *fsec);

/* Writes the zone as "+HH:MM" and stores its length; *buflen comes in as 7 or more.
   Record 1878 for a type without a zone. */
sword OCIDateTimeGetTimeZoneName(void *hndl, OCIError *err, const OCIDateTime *datetime,
                                 ub1 *buf, ub4 *buflen);

/* Stores hour and minute of the zone. Record 1878 for a type without one. */
sword OCIDateTimeGetTimeZoneOffset(void *hndl, OCIError *err, const OCIDateTime *datetime,
                                   sb1 *hour, sb1 *min);

/* Stores a value later by the interval; a day behind the end of its month is cut.
   Records: 932 for values that were not set, 21560 for results out of range. */
sword OCIDateTimeIntervalAdd(void *hndl, OCIError *err, OCIDateTime *datetime,
                             OCIInterval *inter, OCIDateTime *outdatetime);

/* The same with the interval negated, which stays so. */
sword OCIDateTimeIntervalSub(void *hndl, OCIError *err, OCIDateTime *datetime,
                             OCIInterval *inter, OCIDateTime *outdatetime);

/* Stores indate1 less indate2 as days and time. */
sword OCIDateTimeSubtract(void *hndl, OCIError *err, OCIDateTime *indate1,
                          OCIDateTime *indate2, OCIInterval *inter);

/* Now, in local time and whole seconds. */
sword OCIDateTimeSysTimeStamp(void *hndl, OCIError *err, OCIDateTime *sys_date);

/* Writes the value's bytes: 4 of a date, 7 with the time, 13 with fraction and zone, then
   in UTC. *len comes in as the room; 1891 where it is too little. reftz must not be null.
 */
sword OCIDateTimeToArray(void *hndl, OCIError *err, const OCIDateTime *datetime,
                         const OCIInterval *reftz, ub1 *outarray, ub4 *len, ub1 fsprec);

/* Writes text by a format, or by that of the descriptor's type where fmt is null, cut to
 *buf_size bytes with its terminator. *buf_size goes out as the length. */
sword OCIDateTimeToText(void *hndl, OCIError *err, const OCIDateTime *date,
                        const OraText *fmt, ub1 fmt_length, ub1 fsprec,
                        const OraText *lang_name, size_t lang_length, ub4 *buf_size,
                        OraText *buf);

/* ---- Threads ----

   hndl is the environment, or a session below it. Objects belong to that environment and
   go with it at the latest; an environment must not make or destroy objects in two
   threads at once. A null or wrong object is OCI_INVALID_HANDLE. */

/* Nothing to do before the first thread. */
void OCIThreadProcessInit(void);

/* Always 1: the library may be used by several threads. */
boolean OCIThreadIsMulti(void);

/* OCIThreadInit marks the environment; OCIThreadTerm fails with 30135 without the mark,
   which stays set. */
sword OCIThreadInit(void *hndl, OCIError *err);
sword OCIThreadTerm(void *hndl, OCIError *err);

/* Make and destroy the identity of a thread, at first that of none. *tid is null after a
   failure (16506: no memory) and once it is destroyed; so it is with the other objects.
 */
sword OCIThreadIdInit(void *hndl, OCIError *err, OCIThreadId **tid);
sword OCIThreadIdDestroy(void *hndl, OCIError *err, OCIThreadId **tid);

/* Give an identity that of another, of no thread, of the calling thread. */
sword OCIThreadIdSet(void *hndl, OCIError *err, OCIThreadId *tidDest,
                     OCIThreadId *tidSrc);
sword OCIThreadIdSetNull(void *hndl, OCIError *err, OCIThreadId *tid);
sword OCIThreadIdGet(void *hndl, OCIError *err, OCIThreadId *tid);

/* Whether two identities are of the same thread, and whether one is of none: 1 or 0. */
sword OCIThreadIdSame(void *hndl, OCIError *err, OCIThreadId *tid1, OCIThreadId *tid2,
                      boolean *result);
sword OCIThreadIdNull(void *hndl, OCIError *err, OCIThreadId *tid, boolean *result);

/* Make and destroy the handle of a thread; destroying it does not touch the thread. */
sword OCIThreadHndInit(void *hndl, OCIError *err, OCIThreadHandle **thnd);
sword OCIThreadHndDestroy(void *hndl, OCIError *err, OCIThreadHandle **thnd);

/* Starts a thread that runs start(arg) and then the destructors of the keys that it has
   set; tid and tHnd become those of the thread. 30135 when the system makes no thread. */
sword OCIThreadCreate(void *hndl, OCIError *err, void (*start)(void *), void *arg,
                      OCIThreadId *tid, OCIThreadHandle *tHnd);

/* Waits for the end of a thread, once. 30135 for a handle of no thread, of one that was
   joined, and of the calling thread. */
sword OCIThreadJoin(void *hndl, OCIError *err, OCIThreadHandle *tHnd);

/* Marks a handle as no longer in use; the thread runs on. 30135 the second time. */
sword OCIThreadClose(void *hndl, OCIError *err, OCIThreadHandle *tHnd);

/* Makes tHnd the handle of the calling thread. */
sword OCIThreadHandleGet(void *hndl, OCIError *err, OCIThreadHandle *tHnd);

/* Make and destroy a mutex; one that is held is released first. 24320 when the system
   makes no mutex. */
sword OCIThreadMutexInit(void *hndl, OCIError *err, OCIThreadMutex **mutex);
sword OCIThreadMutexDestroy(void *hndl, OCIError *err, OCIThreadMutex **mutex);

/* Wait for a mutex, and release it. A thread that holds it must not wait for it. */
sword OCIThreadMutexAcquire(void *hndl, OCIError *err, OCIThreadMutex *mutex);
sword OCIThreadMutexRelease(void *hndl, OCIError *err, OCIThreadMutex *mutex);

/* Make and destroy a key, under which each thread keeps a value of its own, at first
   null. destFn, unless it is null, is given the value at the end of a thread made by
   OCIThreadCreate; destroying the key runs nothing. 30135 when the system has no key
   left. */
sword OCIThreadKeyInit(void *hndl, OCIError *err, OCIThreadKey **key,
                       OCIThreadKeyDestFunc destFn);
sword OCIThreadKeyDestroy(void *hndl, OCIError *err, OCIThreadKey **key);

/* The calling thread's value of a key. A thread that sets several keys with destructors
   keeps the destructor of the one set last. */
sword OCIThreadKeyGet(void *hndl, OCIError *err, OCIThreadKey *key, void **pValue);
sword OCIThreadKeySet(void *hndl, OCIError *err, OCIThreadKey *key, void *value);

/* ---- Files ----

   hndl is the environment. A failure is recorded alone: 30162 before OCIFileInit, 30150
   for a null or unknown argument, and by what the system says 30151 (the file exists),
   30152 (it does not), 30156 (no space), 30157 (invalid), 30155 (anything else). */

sword OCIFileInit(void *hndl, OCIError *err);
sword OCIFileTerm(void *hndl, OCIError *err);

/* Opens path/filename by the OCI_FILE_* numbers of mode, create and type; a new file may
   be read and written by everybody whom the process's mask lets. *filep is a new object,
   also after a failure of the system. For OCI_FILE_STDIN, OCI_FILE_STDOUT and
   OCI_FILE_STDERR it must be an object already, and then stands for that stream; this
   needs no OCIFileInit. */
sword OCIFileOpen(void *hndl, OCIError *err, OCIFileObject **filep, OraText *filename,
                  OraText *path, ub4 mode, ub4 create, ub4 type);

/* Closes a file and frees its object; after a failure the object is still there. */
sword OCIFileClose(void *hndl, OCIError *err, OCIFileObject *filep);

/* Read or write at most count bytes; the counts tell how many it were, 0 at the end. */
sword OCIFileRead(void *hndl, OCIError *err, OCIFileObject *filep, void *buf, ub4 count,
                  ub4 *bytesread);
sword OCIFileWrite(void *hndl, OCIError *err, OCIFileObject *filep, void *buf, ub4 count,
                   ub4 *byteswritten);

/* Waits until what was written is on the disk. */
sword OCIFileFlush(void *hndl, OCIError *err, OCIFileObject *filep);

/* Moves to offset bytes from origin in the direction dir. A failure of the system shows
   only with an offset of 0. */
sword OCIFileSeek(void *hndl, OCIError *err, OCIFileObject *filep, uword origin,
                  ubig_ora offset, sb1 dir);

/* Whether path/filename is there (1 or 0), and its size in bytes. */
sword OCIFileExists(void *hndl, OCIError *err, OraText *filename, OraText *path,
                    ub1 *flag);
sword OCIFileGetLength(void *hndl, OCIError *err, OraText *filename, OraText *path,
                       ubig_ora *lenp);

/* ---- Memory and context values ---- */

/* size bytes of zeroed memory, until OCIMemoryFree. dur must be OCI_DURATION_SESSION or
   OCI_DURATION_STATEMENT, and ends nothing. OCI_ERROR records nothing. */
sword OCIMemoryAlloc(void *hndl, OCIError *err, void **mem, OCIDuration dur, ub4 size,
                     ub4 flags);

/* Frees a block of OCIMemoryAlloc, or nothing. */
sword OCIMemoryFree(void *hndl, OCIError *err, void *mem);

/* Keeps a value with an environment or a session, until that is freed, under a key of 1
   to 64 bytes; a terminator ends the key earlier. An older value of the key is covered.
   OCI_ERROR for a bad key or a null value records nothing; 24316 for other handles. */
sword OCIContextSetValue(void *hndl, OCIError *err, OCIDuration duration, ub1 *key,
                         ub1 keylen, void *ctx_value);

/* The value set last under a key; without one *ctx_value stays as it is. */
sword OCIContextGetValue(void *hndl, OCIError *err, ub1 *key, ub1 keylen,
                         void **ctx_value);

/* ---- External procedures: there is no calling session ---- */

/* Sets its results to null. */
sword ociepgoe(OCIExtProcContext *with_context, OCIEnv **envh, OCISvcCtx **svch,
               OCIError **errh);

/* Always -1: no error can be raised. */
size_t ocieperr(OCIExtProcContext *with_context, int errnum);

/* ---- Encodings ----

   Character set numbers are the library's own encoding numbers, 0 to 40. */

/* Copies the name of the encoding id to buf, filled up with zeros; without a terminator
   when it takes all of buflen. An unknown number gives an empty name. */
sword OCINlsCharSetIdToName(void *envhp, OraText *buf, size_t buflen, ub2 id);

/* The number of an encoding's name in any spelling; 6 (UTF-8) for a name that is not
   known, among them the vendor's, and 0 for null. */
ub2 OCINlsCharSetNameToId(void *envhp, const OraText *name);

/* Stores in val as 16 bits the encoding number that the process environment gives:
   OCI_NLS_CHARSET_ID by the third part of NLS_LANG, OCI_NLS_NCHARSET_ID by NLS_NCHAR; 0
   without it. *rsize becomes 2. Other items and a null val give OCI_ERROR. */
sword OCINlsEnvironmentVariableGet(void *val, size_t size, ub2 item, ub2 charset,
                                   size_t *rsize);

/* Converts srclen bytes at srcp between two encodings, into at most dstlen bytes at dstp,
   which may be null; nothing is terminated. *rsize tells the bytes of the whole result.
   OCI_ERROR without a record when the system does not convert between the two. */
sword OCINlsCharSetConvert(void *hndl, OCIError *errhp, ub2 dstid, void *dstp,
                           size_t dstlen, ub2 srcid, const void *srcp, size_t srclen,
                           size_t *rsize);

/* The same between the environment's encoding and UTF-8, all sizes in bytes. Failures are
   recorded on the environment hndl. */
sword OCICharSetToUnicode(void *hndl, ub2 *dst, size_t dstlen, const OraText *src,
                          size_t srclen, size_t *rsize);
sword OCIUnicodeToCharSet(void *hndl, OraText *dst, size_t dstlen, const ub2 *src,
                          size_t srclen, size_t *rsize);

/* ---- Multibyte and wide text ----

   hndl is an environment, which gives the encoding of multibyte text and takes the
   failures. A wide character of UTF-8 text is its code point. */

/* Converts src to wide characters. At most dstsz characters and a terminator that fits go
   to dst, from at most dstsz bytes of src. With a null dst or a dstsz of 0 the srcsz
   bytes are measured. *rsize becomes the count of characters. */
sword OCIMultiByteInSizeToWideChar(void *hndl, OCIWchar *dst, size_t dstsz,
                                   const OraText *src, size_t srcsz, size_t *rsize);

/* Characters of a terminated text. A status of failure is extended to the result's size.
 */
size_t OCIMultiByteStrlen(void *hndl, const OraText *str);

/* Columns of a terminated text on a terminal; n is not used. */
size_t OCIMultiByteStrnDisplayLength(void *hndl, const OraText *str, size_t n);

/* Characters of a terminated wide string; 0 for null. */
size_t OCIWideCharStrlen(void *hndl, const OCIWchar *wstr);

/* Compare two wide strings, as strcmp does, over the length of wstr2, or over the smaller
   of the two lengths; flag is not used. */
int OCIWideCharStrcmp(void *hndl, const OCIWchar *wstr1, const OCIWchar *wstr2, int flag);
int OCIWideCharStrncmp(void *hndl, const OCIWchar *wstr1, size_t len1,
                       const OCIWchar *wstr2, size_t len2, int flag);

/* Not supported: -1, or null for a pointer. */
boolean OCICharSetConversionIsReplacementUsed(void *hndl);
size_t OCIMultiByteStrCaseConversion(void *hndl, OraText *dststr, const OraText *srcstr,
                                     ub4 flag);
size_t OCIMultiByteStrcat(void *hndl, OraText *dststr, const OraText *srcstr);
int OCIMultiByteStrcmp(void *hndl, const OraText *str1, const OraText *str2, int flag);
size_t OCIMultiByteStrcpy(void *hndl, OraText *dststr, const OraText *srcstr);
size_t OCIMultiByteStrncat(void *hndl, OraText *dststr, const OraText *srcstr, size_t n);
int OCIMultiByteStrncmp(void *hndl, const OraText *str1, size_t len1, const OraText *str2,
                        size_t len2, int flag);
size_t OCIMultiByteStrncpy(void *hndl, OraText *dststr, const OraText *srcstr, size_t n);
sword OCIMultiByteToWideChar(void *hndl, OCIWchar *dst, const OraText *src,
                             size_t *rsize);
sword OCINlsGetInfo(void *hndl, OCIError *errhp, OraText *buf, size_t buflen, ub2 item);
sword OCINlsNameMap(void *hndl, OraText *buf, size_t buflen, const OraText *srcbuf,
                    ub4 flag);
sword OCINlsNumericInfoGet(void *hndl, OCIError *errhp, sb4 *val, ub2 item);
sword OCIWideCharInSizeToMultiByte(void *hndl, OraText *dst, size_t dstsz,
                                   const OCIWchar *src, size_t srcsz, size_t *rsize);
boolean OCIWideCharIsAlnum(void *hndl, OCIWchar wc);
boolean OCIWideCharIsAlpha(void *hndl, OCIWchar wc);
boolean OCIWideCharIsCntrl(void *hndl, OCIWchar wc);
boolean OCIWideCharIsDigit(void *hndl, OCIWchar wc);
boolean OCIWideCharIsGraph(void *hndl, OCIWchar wc);
boolean OCIWideCharIsLower(void *hndl, OCIWchar wc);
boolean OCIWideCharIsPrint(void *hndl, OCIWchar wc);
boolean OCIWideCharIsPunct(void *hndl, OCIWchar wc);
boolean OCIWideCharIsSingleByte(void *hndl, OCIWchar wc);
boolean OCIWideCharIsSpace(void *hndl, OCIWchar wc);
boolean OCIWideCharIsUpper(void *hndl, OCIWchar wc);
boolean OCIWideCharIsXdigit(void *hndl, OCIWchar wc);
size_t OCIWideCharMultiByteLength(void *hndl, OCIWchar wc);
size_t OCIWideCharStrCaseConversion(void *hndl, OCIWchar *wdststr,
                                    const OCIWchar *wsrcstr, ub4 flag);
size_t OCIWideCharStrcat(void *hndl, OCIWchar *wdststr, const OCIWchar *wsrcstr);
OCIWchar *OCIWideCharStrchr(void *hndl, const OCIWchar *wstr, OCIWchar wc);
size_t OCIWideCharStrcpy(void *hndl, OCIWchar *wdststr, const OCIWchar *wsrcstr);
size_t OCIWideCharStrncat(void *hndl, OCIWchar *wdststr, const OCIWchar *wsrcstr,
                          size_t n);
size_t OCIWideCharStrncpy(void *hndl, OCIWchar *wdststr, const OCIWchar *wsrcstr,
                          size_t n);
OCIWchar *OCIWideCharStrrchr(void *hndl, const OCIWchar *wstr, OCIWchar wc);
OCIWchar OCIWideCharToLower(void *hndl, OCIWchar wc);
sword OCIWideCharToMultiByte(void *hndl, OraText *dst, const OCIWchar *src,
                             size_t *rsize);
OCIWchar OCIWideCharToUpper(void *hndl, OCIWchar wc);

/* ---- Not supported ----

   These exist so that programs load. A call of one writes a line that names it to the
   standard error stream and ends the process with status 1, unless the environment
   variable ZEV_OCI_UIFCTN_RET_OK is set: then it returns OCI_SUCCESS and leaves its
   output arguments as they are. */

sword OCIDurationBegin(OCIEnv *env, OCIError *err, const OCISvcCtx *svc,
                       OCIDuration parent, OCIDuration *dur);
sword OCIDurationEnd(OCIEnv *env, OCIError *err, const OCISvcCtx *svc,
                     OCIDuration duration);
sword OCILobAppend(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *dst_locp,
                   OCILobLocator *src_locp);
sword OCILobArrayRead(OCISvcCtx *svchp, OCIError *errhp, ub4 *array_iter,
                      OCILobLocator **locp_arr, oraub8 *byte_amt_arr,
                      oraub8 *char_amt_arr, oraub8 *offset_arr, void **bufp_arr,
                      oraub8 *bufl_arr, ub1 piece, void *ctxp,
                      OCICallbackLobArrayRead cbfp, ub2 csid, ub1 csfrm);
sword OCILobArrayWrite(OCISvcCtx *svchp, OCIError *errhp, ub4 *array_iter,
                       OCILobLocator **locp_arr, oraub8 *byte_amt_arr,
                       oraub8 *char_amt_arr, oraub8 *offset_arr, void **bufp_arr,
                       oraub8 *bufl_arr, ub1 piece, void *ctxp,
                       OCICallbackLobArrayWrite cbfp, ub2 csid, ub1 csfrm);
sword OCILobAssign(OCIEnv *envhp, OCIError *errhp, const OCILobLocator *src_locp,
                   OCILobLocator **dst_locpp);
sword OCILobCharSetForm(OCIEnv *envhp, OCIError *errhp, const OCILobLocator *locp,
                        ub1 *csfrm);
sword OCILobCharSetId(OCIEnv *envhp, OCIError *errhp, const OCILobLocator *locp,
                      ub2 *csid);
sword OCILobCopy(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *dst_locp,
                 OCILobLocator *src_locp, ub4 amount, ub4 dst_offset, ub4 src_offset);
sword OCILobCopy2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *dst_locp,
                  OCILobLocator *src_locp, oraub8 amount, oraub8 dst_offset,
                  oraub8 src_offset);
sword OCILobCreateTemporary(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                            ub2 csid, ub1 csfrm, ub1 lobtype, boolean cache,
                            OCIDuration duration);
sword OCILobDisableBuffering(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp);
sword OCILobEnableBuffering(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp);
sword OCILobErase(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 *amount,
                  ub4 offset);
sword OCILobErase2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, oraub8 *amount,
                   oraub8 offset);
sword OCILobFileClose(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *filep);
sword OCILobFileCloseAll(OCISvcCtx *svchp, OCIError *errhp);
sword OCILobFileExists(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *filep,
                       boolean *flag);
sword OCILobFileGetName(OCIEnv *envhp, OCIError *errhp, const OCILobLocator *filep,
                        OraText *dir_alias, ub2 *d_length, OraText *filename,
                        ub2 *f_length);
sword OCILobFileIsOpen(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *filep,
                       boolean *flag);
sword OCILobFileOpen(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *filep, ub1 mode);
sword OCILobFileSetName(OCIEnv *envhp, OCIError *errhp, OCILobLocator **filepp,
                        const OraText *dir_alias, ub2 d_length, const OraText *filename,
                        ub2 f_length);
sword OCILobFlushBuffer(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 flag);
sword OCILobFreeTemporary(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp);
sword OCILobGetChunkSize(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                         ub4 *chunksizep);
sword OCILobGetLength2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                       oraub8 *lenp);
sword OCILobGetStorageLimit(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                            oraub8 *limitp);
sword OCILobIsEqual(OCIEnv *envhp, const OCILobLocator *x, const OCILobLocator *y,
                    boolean *is_equal);
sword OCILobIsOpen(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, boolean *flag);
sword OCILobIsTemporary(OCIEnv *envhp, OCIError *errhp, OCILobLocator *locp,
                        boolean *is_temporary);
sword OCILobLoadFromFile(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *dst_locp,
                         OCILobLocator *src_filep, ub4 amount, ub4 dst_offset,
                         ub4 src_offset);
sword OCILobLoadFromFile2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *dst_locp,
                          OCILobLocator *src_filep, oraub8 amount, oraub8 dst_offset,
                          oraub8 src_offset);
sword OCILobLocatorAssign(OCISvcCtx *svchp, OCIError *errhp,
                          const OCILobLocator *src_locp, OCILobLocator **dst_locpp);
sword OCILobLocatorIsInit(OCIEnv *envhp, OCIError *errhp, const OCILobLocator *locp,
                          boolean *is_initialized);
sword OCILobRead2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                  oraub8 *byte_amtp, oraub8 *char_amtp, oraub8 offset, void *bufp,
                  oraub8 bufl, ub1 piece, void *ctxp, OCICallbackLobRead2 cbfp, ub2 csid,
                  ub1 csfrm);
sword OCILobTrim2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, oraub8 newlen);
sword OCILobWrite(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub4 *amtp,
                  ub4 offset, void *bufp, ub4 buflen, ub1 piece, void *ctxp,
                  OCICallbackLobWrite cbfp, ub2 csid, ub1 csfrm);
sword OCILobWrite2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                   oraub8 *byte_amtp, oraub8 *char_amtp, oraub8 offset, void *bufp,
                   oraub8 buflen, ub1 piece, void *ctxp, OCICallbackLobWrite2 cbfp,
                   ub2 csid, ub1 csfrm);
sword OCILobWriteAppend2(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                         oraub8 *byte_amtp, oraub8 *char_amtp, void *bufp, oraub8 buflen,
                         ub1 piece, void *ctxp, OCICallbackLobWrite2 cbfp, ub2 csid,
                         ub1 csfrm);
sword OCIParamSet(void *hdlp, ub4 htyp, OCIError *errhp, const void *dscp, ub4 dtyp,
                  ub4 pos);
sword OCIStmtGetPieceInfo(const OCIStmt *stmtp, OCIError *errhp, void **hndlpp,
                          ub4 *typep, ub1 *in_outp, ub4 *iterp, ub4 *idxp, ub1 *piecep);
sword OCIStmtSetPieceInfo(void *hndlp, ub4 type, OCIError *errhp, const void *bufp,
                          ub4 *alenp, ub1 piece, const void *indp, ub2 *rcodep);

/* ---- Numbers ----

   Arithmetic on the client to 40 decimals and as many digits. A result may be one of the
   operands. Bytes that are no number are OCI_ERROR without a record; a null argument is
   record 21560. What has no result (a division by zero, the root of a negative number)
   gives zero and a warning on standard error. */

/* Number by one, up and down. */
sword OCINumberInc(OCIError *err, OCINumber *number);
sword OCINumberDec(OCIError *err, OCINumber *number);

sword OCINumberAdd(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                   OCINumber *result);
sword OCINumberSub(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                   OCINumber *result);
sword OCINumberMul(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                   OCINumber *result);
sword OCINumberDiv(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                   OCINumber *result);

/* The remainder of the quotient that is cut to an integer. */
sword OCINumberMod(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                   OCINumber *result);

/* Powers. */
sword OCINumberIntPower(OCIError *err, const OCINumber *base, const sword exp,
                        OCINumber *result);
sword OCINumberPower(OCIError *err, const OCINumber *base, const OCINumber *number,
                     OCINumber *result);

/* Times ten to the power of nDig. */
sword OCINumberShift(OCIError *err, const OCINumber *number, const sword nDig,
                     OCINumber *result);

sword OCINumberNeg(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberAbs(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberCeil(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberFloor(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberSqrt(OCIError *err, const OCINumber *number, OCINumber *result);

/* Angles are in radians. */
sword OCINumberSin(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberCos(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberTan(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberArcSin(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberArcCos(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberArcTan(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberArcTan2(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                       OCINumber *result);
sword OCINumberHypSin(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberHypCos(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberHypTan(OCIError *err, const OCINumber *number, OCINumber *result);

sword OCINumberExp(OCIError *err, const OCINumber *number, OCINumber *result);
sword OCINumberLn(OCIError *err, const OCINumber *number, OCINumber *result);

/* The logarithm of number to a base. */
sword OCINumberLog(OCIError *err, const OCINumber *base, const OCINumber *number,
                   OCINumber *result);

/* Rounds to nDigs digits; to none gives zero and OCI_ERROR. */
sword OCINumberPrec(OCIError *err, const OCINumber *number, eword nDigs,
                    OCINumber *result);

/* Rounds to decplace decimals, 0 to 37; with 38 result stays as it was. Records: 3001 for
   fewer, 1426 for more. */
sword OCINumberRound(OCIError *err, const OCINumber *number, sword decplace,
                     OCINumber *result);

/* Cuts to decplace decimals, or to tens and so on where it is negative. */
sword OCINumberTrunc(OCIError *err, const OCINumber *number, sword decplace,
                     OCINumber *result);

void OCINumberSetZero(OCIError *err, OCINumber *num);
void OCINumberSetPi(OCIError *err, OCINumber *num);
sword OCINumberAssign(OCIError *err, const OCINumber *from, OCINumber *to);
sword OCINumberCmp(OCIError *err, const OCINumber *number1, const OCINumber *number2,
                   sword *result);
sword OCINumberIsZero(OCIError *err, const OCINumber *number, boolean *result);
sword OCINumberSign(OCIError *err, const OCINumber *number, sword *result);
sword OCINumberIsInt(OCIError *err, const OCINumber *number, boolean *result);

/* Stores the integer part in 1, 2 or 4 bytes. One out of range, as the outermost values
   are, is record 22053, or 22054 below, and OCI_SUCCESS. */
sword OCINumberToInt(OCIError *err, const OCINumber *number, uword rsl_length,
                     uword rsl_flag, void *rsl);

/* From an integer of 1, 2, 4 or 8 bytes, of which 15 digits count. */
sword OCINumberFromInt(OCIError *err, const void *inum, uword inum_length,
                       uword inum_s_flag, OCINumber *number);

/* To and from float and double, of which 15 digits count. Record 22053 for a number that
   is too large. */
sword OCINumberToReal(OCIError *err, const OCINumber *number, uword rsl_length,
                      void *rsl);
sword OCINumberToRealArray(OCIError *err, const OCINumber **number, uword elems,
                           uword rsl_length, void *rsl);
sword OCINumberFromReal(OCIError *err, const void *rnum, uword rnum_length,
                        OCINumber *number);

/* Writes the digits into the places of a format, 9, 0 and D, with "," for G, blanks in
   front; *buf_size comes in as the room and goes out as the length. The format TM9 writes
   all digits. Records: 22061 for a bad format, 22065 for one that is too short. */
sword OCINumberToText(OCIError *err, const OCINumber *number, const OraText *fmt,
                      ub4 fmt_length, const OraText *nls_params, ub4 nls_p_length,
                      ub4 *buf_size, OraText *buf);

/* Reads text, in which "," must stand where the format has G: 22061 and 22062 if not. */
sword OCINumberFromText(OCIError *err, const OraText *str, ub4 str_length,
                        const OraText *fmt, ub4 fmt_length, const OraText *nls_params,
                        ub4 nls_p_length, OCINumber *number);

/* ---- Intervals ----

   Between descriptors of one kind, year-month or day-second; record 932 for any other,
   and for values that were not set. A null argument is record 21560. */

/* Sums and differences; whole days are taken out of the seconds, and of a difference
   months of 30 days out of the days. */
sword OCIIntervalAdd(void *hndl, OCIError *err, OCIInterval *addend1,
                     OCIInterval *addend2, OCIInterval *result);
sword OCIIntervalSubtract(void *hndl, OCIError *err, OCIInterval *minuend,
                          OCIInterval *subtrahend, OCIInterval *result);

sword OCIIntervalAssign(void *hndl, OCIError *err, const OCIInterval *inpinter,
                        OCIInterval *outinter);

/* -1, 0 or 1; a month counts 30 days. */
sword OCIIntervalCompare(void *hndl, OCIError *err, OCIInterval *inter1,
                         OCIInterval *inter2, sword *result);

/* Times a number and by it; a divisor of zero is OCI_ERROR without a record. */
sword OCIIntervalMultiply(void *hndl, OCIError *err, const OCIInterval *inter,
                          OCINumber *nfactor, OCIInterval *result);
sword OCIIntervalDivide(void *hndl, OCIError *err, OCIInterval *dividend,
                        OCINumber *divisor, OCIInterval *result);

/* Days, or years in a year-month interval. */
sword OCIIntervalFromNumber(void *hndl, OCIError *err, OCIInterval *interval,
                            OCINumber *number);
sword OCIIntervalToNumber(void *hndl, OCIError *err, const OCIInterval *interval,
                          OCINumber *number);

/* Reads "3 04:05:06.5" or "1 2", years and months, which ends in a NUL; record 1891 for
   any other text. */
sword OCIIntervalFromText(void *hndl, OCIError *err, const OraText *inpstring,
                          size_t str_len, OCIInterval *result);

/* Writes "+03 04:05:06.000" or "+01-02" with its terminator, whatever buflen is. */
sword OCIIntervalToText(void *hndl, OCIError *err, const OCIInterval *interval,
                        ub1 lfprec, ub1 fsprec, OraText *buffer, size_t buflen,
                        size_t *resultlen);

/* The displacement "+05:30" of a zone; record 16384 out of range. */
sword OCIIntervalFromTZ(void *hndl, OCIError *err, const OraText *inpstring,
                        size_t str_len, OCIInterval *result);

/* The parts; fsec comes in as seconds and goes out as 0. */
sword OCIIntervalGetDaySecond(void *hndl, OCIError *err, sb4 *dy, sb4 *hr, sb4 *mm,
                              sb4 *ss, sb4 *fsec, const OCIInterval *interval);
sword OCIIntervalSetDaySecond(void *hndl, OCIError *err, sb4 dy, sb4 hr, sb4 mm, sb4 ss,
                              sb4 fsec, OCIInterval *result);
sword OCIIntervalGetYearMonth(void *hndl, OCIError *err, sb4 *yr, sb4 *mnth,
                              const OCIInterval *interval);
sword OCIIntervalSetYearMonth(void *hndl, OCIError *err, sb4 yr, sb4 mnth,
                              OCIInterval *result);

/* Stores what is out of range as bits of OCI_INTER_INVALID_HOUR and the like. */
sword OCIIntervalCheck(void *hndl, OCIError *err, const OCIInterval *interval,
                       ub4 *valid);

/* ---- Strings ----

   Text of variable length in environments of object mode; record 21301 in others. A
   string is made where *lhs or *str is null, and freed by OCIStringResize to 0. A null
   argument is record 21560. */

sword OCIStringAllocSize(OCIEnv *env, OCIError *err, const OCIString *vs, ub4 *allocsize);
sword OCIStringAssign(OCIEnv *env, OCIError *err, const OCIString *rhs, OCIString **lhs);

/* Copies text that ends in a NUL; OCI_ERROR for one that is longer than rhs_len. */
sword OCIStringAssignText(OCIEnv *env, OCIError *err, const OraText *rhs, ub4 rhs_len,
                          OCIString **lhs);

/* The text, which stays the string's; null outside object mode. */
OraText *OCIStringPtr(OCIEnv *env, const OCIString *vs);

/* Gives a string room for new_size bytes and forgets its text. */
sword OCIStringResize(OCIEnv *env, OCIError *err, ub4 new_size, OCIString **str);

/* The length of the text. */
ub4 OCIStringSize(OCIEnv *env, const OCIString *vs);

/* ---- User callbacks ----

   Functions that run before, instead of or after the calls of an environment. The packages
   (shared objects) that ORA_OCI_UCBPKG names are loaded when an environment is made: of
   PACKAGE.so the function PACKAGEInit is called, which calls OCISharedLibInit. */

/* Registers callback for the function with code fcode (OCI_FNCODE_*) and the stage when
   (OCI_UCBTYPE_*) of the environment hndlp. Several run in the order of registration;
   nothing takes one back. OCI_ERROR, with nothing recorded, for a code that is none. */
sword OCIUserCallbackRegister(void *hndlp, ub4 type, void *ehndlp,
                              OCIUserCallback callback, void *ctxp, ub4 fcode, ub4 when,
                              OCIUcb *ucbDesc);

/* A registration cannot be read back: always OCI_ERROR. */
sword OCIUserCallbackGet(void *hndlp, ub4 type, void *ehndlp, ub4 fcode, ub4 when,
                         OCIUserCallback *callbackp, void **ctxpp, OCIUcb *ucbDesc);

/* Calls envCallback(metaCtx, 0, 0, 0, 0), metaCtx being the environment, and returns its
   result. The other arguments are not looked at. */
sword OCISharedLibInit(void *metaCtx, void *libCtx, ub4 argfmt, sword argc, void **argv,
                       OCIEnvCallbackType envCallback);

#ifdef __cplusplus
}
#endif

#endif /* ZEVOCI_OCIAP_H */
