/* A block that calls one routine with placeholders for all its arguments. */
%code requires {
#include "stmt/block.h"
}
%code {
#include <cstdio>
#include <cstdlib>
#include <new>

#include "stmt/block_scanner.h"

namespace {

int yylex(YYSTYPE *value) {
  return blocklex(value, zev::blockScanner());
}

void yyerror(const char *message) {
  std::fprintf(stderr, "%s\n", message);
}

char *joined(char *name, char *parameters) {
  return cat_str(5, make_str("CALL"), name, make_str("("), parameters, make_str(");"));
}

callableStmt *makeCall(char *returnParam, char *name, char *parameters) {
  auto *node = static_cast<callableStmt *>(std::calloc(1, sizeof(callableStmt)));
  if (!node) throw std::bad_alloc();
  node->tag = kCallableStmtTag;
  node->name = make_str(name);
  node->text = joined(name, parameters);
  node->hasReturn = returnParam != nullptr;
  node->returnParam = returnParam;
  return node;
}

}  // namespace
}

%define api.pure full
%define parse.error verbose

%union {
  char *str;
  callableStmt *stmt;
}

%token <str> IDENT 258 PARAM 259
%token BEGIN_P 260 END 261

%type <stmt> stmt BeginStmt
%type <str> opt_param_list param_list

%destructor { std::free($$); } <str>
%destructor { ReleaseOCICallableStmt($$); } <stmt>

%%

oci_stmt:
    stmt                  { parse_stmt_node = $1; }
  ;

stmt:
    BeginStmt             { $$ = $1; }
  | %empty                { $$ = nullptr; }
  ;

BeginStmt:
    BEGIN_P IDENT '(' opt_param_list ')' ';' END opt_termination
                          { $$ = makeCall(nullptr, $2, $4); }
  | BEGIN_P PARAM ':' '=' IDENT '(' opt_param_list ')' ';' END opt_termination
                          { $$ = makeCall($2, $5, $7); }
  ;

opt_param_list:
    param_list            { $$ = $1; }
  | %empty                { $$ = make_str(""); }
  ;

param_list:
    PARAM                 { $$ = $1; }
  | param_list ',' PARAM  { $$ = cat_str(3, $1, make_str(","), $3); }
  ;

opt_termination:
    ';'
  | %empty
  ;

%%
