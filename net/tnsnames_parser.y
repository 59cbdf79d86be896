/* A tnsnames.ora file. Far more is understood than used: of an entry only the first host,
   the first port and the first sid are kept. */
%code requires {
#include "net/tnsnames.h"
}
%code {
#include <cstdlib>

namespace {

int yylex(YYSTYPE *value) {
  const int token = tnsnameslex();
  *value = tnsnameslval;
  return token;
}

void yyerror(const char *message) {
  tnsnameserror(message);
}

}  // namespace

using namespace zev::tnsnames;
}

%require "3.8"
%define api.prefix {tns}
%define api.pure full
%define api.value.type {union TnsnamesValue}
%define parse.error verbose

%token <str> IDENT 258 INET_IP 259 SCONST 260
%token <number> INTEGER 261
%token ADDRESS ADDRESS_LIST BACKUP BASIC COMMUNITY CONNECT_DATA DECNET DEDICATED DELAY
       DESCRIPTION DESCRIPTION_LIST FAILOVER FAILOVER_MODE FALSE_P GLOBAL_NAME HOST HS
       INSTANCE_NAME IPC KEY LOAD_BALANCE METHOD NO NODE NONE OBJECT OFF OK ON PORT
       PRECONNECT PRESENTATION PROTOCOL RDB_DATABASE RECV_BUF_SIZE RETRIES SDU SECURITY
       SELECT SEND_BUF_SIZE SERVER SERVICE_NAME SESSION SHARED SID SOURCE_ROUTE
       SSL_SERVER_CERT_DN TCP TRUE_P TYPE TYPE_OF_SERVICE YES

%type <list> tns_name_entries description_params address_entry_params
%type <service> tns_name_entry description_list_entry description_entries
%type <service> description_entry
%type <node> description_param address_entry_param
%type <address> address_list_entry address_entries address_entry
%type <host> host_entry
%type <port> port_entry
%type <sid> connect_data connect_data_params connect_data_param sid_entry
%type <str> host_value

/* What stands before a syntax error. */
%destructor { std::free($$); } <str>
%destructor { ReleaseOCINode($$); } <node> <host> <port> <address> <sid> <service>
%destructor { releaseNodes($$); } <list>

%%

tns:
    tns_name_entries        { tnsnames_parsetree_list = $1; }
  ;

tns_name_entries:
    tns_name_entry
      { if (!($$ = appended(nullptr, $1))) YYNOMEM; }
  | tns_name_entries tns_name_entry
      { if (!($$ = appended($1, $2))) YYNOMEM; }
  ;

tns_name_entry:
    IDENT '=' description_list_entry  { $$ = $3; $$->name = $1; }
  | IDENT '=' description_entry       { $$ = $3; $$->name = $1; }
  ;

description_list_entry:
    '(' DESCRIPTION_LIST '=' description_entries ')'  { $$ = $4; }
  ;

/* The first description wins. */
description_entries:
    description_entry
  | description_entries description_entry  { $$ = $1; ReleaseOCINetServiceName($2); }
  ;

description_entry:
    '(' DESCRIPTION '=' description_params ')'
      { if (!($$ = makeService($4))) YYNOMEM; }
  ;

description_params:
    description_param
      { if (!($$ = appended(nullptr, $1))) YYNOMEM; }
  | description_params description_param
      { if (!($$ = appended($1, $2))) YYNOMEM; }
  ;

description_param:
    opt_description_params  { $$ = nullptr; }
  | address_list_entry      { $$ = $1; }
  | address_entry           { $$ = $1; }
  | connect_data            { $$ = $1; }
  ;

opt_description_params:
    failover_entry
  | load_balance_entry
  | recv_buf_size_entry
  | sdu_entry
  | send_buf_size_entry
  | source_route_entry
  | type_of_service_entry
  | security_entry
  ;

address_list_entry:
    '(' ADDRESS_LIST '=' address_entries ')'  { $$ = $4; }
  ;

/* The first address wins. */
address_entries:
    address_entry
  | address_entries address_entry  { $$ = $1; ReleaseOCIAddress($2); }
  ;

address_entry:
    '(' ADDRESS '=' address_entry_params ')'
      { if (!($$ = makeAddress($4))) YYNOMEM; }
  ;

address_entry_params:
    address_entry_param
      { if (!($$ = appended(nullptr, $1))) YYNOMEM; }
  | address_entry_params address_entry_param
      { if (!($$ = appended($1, $2))) YYNOMEM; }
  ;

address_entry_param:
    protocol_entry   { $$ = nullptr; }
  | key_entry        { $$ = nullptr; }
  | community_entry  { $$ = nullptr; }
  | object_entry     { $$ = nullptr; }
  | node_entry       { $$ = nullptr; }
  | host_entry       { $$ = $1; }
  | port_entry       { $$ = $1; }
  ;

host_entry:
    '(' HOST '=' host_value ')'  { if (!($$ = makeHost($4))) YYNOMEM; }
  ;

host_value:
    INET_IP
  | IDENT
  ;

port_entry:
    '(' PORT '=' INTEGER ')'  { if (!($$ = makePort($4))) YYNOMEM; }
  ;

connect_data:
    '(' CONNECT_DATA '=' connect_data_params ')'  { $$ = $4; }
  ;

/* The first sid wins. */
connect_data_params:
    connect_data_param
  | connect_data_params connect_data_param
      {
        $$ = $1 ? $1 : $2;
        if ($1) ReleaseOCISid($2);
      }
  ;

connect_data_param:
    failover_mode_entry  { $$ = nullptr; }
  | global_name_entry    { $$ = nullptr; }
  | hs_entry             { $$ = nullptr; }
  | instance_name_entry  { $$ = nullptr; }
  | rdb_database_entry   { $$ = nullptr; }
  | server_entry         { $$ = nullptr; }
  | service_name_entry   { $$ = nullptr; }
  | presentation_entry   { $$ = nullptr; }
  | sid_entry
  ;

sid_entry:
    '(' SID '=' IDENT ')'  { if (!($$ = makeSid($4))) YYNOMEM; }
  ;

failover_mode_entry:
    '(' FAILOVER_MODE '=' failover_mode_values ')'
  ;

failover_mode_values:
    failover_mode_value
  | failover_mode_values failover_mode_value
  ;

failover_mode_value:
    backup_entry
  | type_entry
  | method_entry
  | retries_entry
  | delay_entry
  ;

security_entry:
    '(' SECURITY '=' ssl_server_cert_dn_entry ')'
  ;

/* Parameters whose values do not matter. */

protocol_entry:            '(' PROTOCOL '=' protocol_value ')' ;
failover_entry:            '(' FAILOVER '=' boolean_value ')' ;
load_balance_entry:        '(' LOAD_BALANCE '=' boolean_value ')' ;
source_route_entry:        '(' SOURCE_ROUTE '=' boolean_value ')' ;
recv_buf_size_entry:       '(' RECV_BUF_SIZE '=' INTEGER ')' ;
send_buf_size_entry:       '(' SEND_BUF_SIZE '=' INTEGER ')' ;
sdu_entry:                 '(' SDU '=' INTEGER ')' ;
backup_entry:              '(' BACKUP '=' ')' ;
type_entry:                '(' TYPE '=' type_value ')' ;
method_entry:              '(' METHOD '=' method_value ')' ;
retries_entry:             '(' RETRIES '=' INTEGER ')' ;
delay_entry:               '(' DELAY '=' INTEGER ')' ;
hs_entry:                  '(' HS '=' OK ')' ;
server_entry:              '(' SERVER '=' server_value ')' ;
key_entry:                 '(' KEY '=' IDENT ')'                  { std::free($4); } ;
community_entry:           '(' COMMUNITY '=' IDENT ')'            { std::free($4); } ;
object_entry:              '(' OBJECT '=' IDENT ')'               { std::free($4); } ;
node_entry:                '(' NODE '=' IDENT ')'                 { std::free($4); } ;
type_of_service_entry:     '(' TYPE_OF_SERVICE '=' IDENT ')'      { std::free($4); } ;
global_name_entry:         '(' GLOBAL_NAME '=' IDENT ')'          { std::free($4); } ;
instance_name_entry:       '(' INSTANCE_NAME '=' IDENT ')'        { std::free($4); } ;
rdb_database_entry:        '(' RDB_DATABASE '=' IDENT ')'         { std::free($4); } ;
service_name_entry:        '(' SERVICE_NAME '=' IDENT ')'         { std::free($4); } ;
presentation_entry:        '(' PRESENTATION '=' IDENT ')'         { std::free($4); } ;
ssl_server_cert_dn_entry:  '(' SSL_SERVER_CERT_DN '=' SCONST ')'  { std::free($4); } ;

protocol_value:  TCP | IPC | DECNET ;
boolean_value:   ON | OFF | YES | NO | TRUE_P | FALSE_P ;
type_value:      SESSION | SELECT | NONE ;
method_value:    BASIC | PRECONNECT ;
server_value:    DEDICATED | SHARED ;

%%
