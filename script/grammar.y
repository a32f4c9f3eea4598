/* The grammar of the notation, one rule per level of binding, loosest first.

   The parser is driven by tables that are made when the library is built, for two reasons. A
   grammar that could be read in two ways is found then, as a conflict, which is an error here; it
   does not wait for the script that meets it. And the parser keeps what it has begun in a stack of
   its own on the heap, so that nesting costs memory and never the stack of the program.

   Operators of one level are accepted in any mixture: where the notation wants parentheses, the
   builder says so and knows both operators. Lookahead correction makes the list of what was
   expected exact, and keeps the parser from reducing anything in front of a wrong token. */

%require "3.8"
%language "c++"
%skeleton "lalr1.cc"
%define api.namespace {Calder::Script}
%define api.parser.class {Parser}
%define api.value.type {unsigned}
%define parse.error custom
%define parse.lac full
%parse-param { SyntaxBuilder& build }
%lex-param { SyntaxBuilder& build }

%code requires {
namespace Calder::Script {
class SyntaxBuilder;
}
}

%code {
#include "script/syntax_builder.h"

namespace {

/* A token's value is its index, that of everything else its node. */
int yylex(unsigned* value, Calder::Script::SyntaxBuilder& build) {
    return build.next_token(*value);
}

using Calder::Script::Construct;
using Calder::Script::NodeKind;

}
}

%token END 0 "end of the script"
%token DEFINED_NAME "definition"
%token CHANNEL "channel"
%token STOP "STOP"
%token SKIP "SKIP"
%token RUN "RUN"
%token CHAOS "CHAOS"
%token NAME "name"
%token NUMBER "number"

%token LEFT_PARENTHESIS "("
%token RIGHT_PARENTHESIS ")"
%token LEFT_BRACE "{"
%token RIGHT_BRACE "}"
%token CLOSURE_OPEN "{|"
%token CLOSURE_CLOSE "|}"
%token COMMA ","
%token COLON ":"
%token DOT "."
%token RANGE ".."
%token AT "@"
%token EQUALS "="
%token ARROW "->"
%token RENAMES "<-"
%token LINKS "<->"

%token RENAMING_OPEN "[["
%token RENAMING_CLOSE "]]"
%token SEMICOLON ";"
%token SLIDING_CHOICE "[>"
%token INTERRUPT "/\\"
%token SYNCHRONISING_INTERRUPT_OPEN "/+"
%token SYNCHRONISING_INTERRUPT_CLOSE "+\\"
%token EXTERNAL_CHOICE "[]"
%token SYNCHRONISING_CHOICE_OPEN "[+"
%token SYNCHRONISING_CHOICE_CLOSE "+]"
%token INTERNAL_CHOICE "|~|"
%token PARALLEL_OPEN "[|"
%token PARALLEL_CLOSE "|]"
%token EXCEPTION_CLOSE "|>"
%token LEFT_BRACKET "["
%token RIGHT_BRACKET "]"
%token PARALLEL "||"
%token INTERLEAVING "|||"
%token HIDING "\\"
%token PROJECTION "|\\"

%token BAD "unreadable text"

%%

script:
    %empty
  | script item
  ;

item:
    definition_start term   { build.end_definition($2); }
  | definition_start error  { build.end_definition(Calder::Script::none); }
  | declaration_start channels             { build.add_declaration($2); }
  | declaration_start channels ":" fields  { build.add_declaration($2, $4); }
  | declaration_start error
  | error
  ;

/* Both starts end a recovery from an error: from here on errors are reported again. */
definition_start:
    DEFINED_NAME  { build.start_definition($1); yyerrok; }
  ;

declaration_start:
    CHANNEL  { yyerrok; }
  ;

channels:
    NAME               { $$ = build.list_of(build.leaf(NodeKind::channel, $1)); }
  | channels "," NAME  { $$ = build.extended($1, build.leaf(NodeKind::channel, $3)); }
  ;

fields:
    field             { $$ = build.list_of($1); }
  | fields "." field  { $$ = build.extended($1, $3); }
  ;

field:
    "{" "}"         { $$ = build.leaf(NodeKind::field, $1); }
  | "{" values "}"  { $$ = build.finished($2, NodeKind::field, $1); }
  ;

values:
    value             { $$ = build.list_of($1); }
  | values "," value  { $$ = build.extended($1, $3); }
  ;

value:
    NAME                { $$ = build.leaf(NodeKind::value, $1); }
  | NUMBER              { $$ = build.leaf(NodeKind::value, $1); }
  | NUMBER ".." NUMBER  { $$ = build.reaching(build.leaf(NodeKind::value, $1), $3); }
  ;

event:
    NAME              { $$ = build.leaf(NodeKind::event, $1); }
  | event "." NAME    { $$ = build.reaching($1, $3); }
  | event "." NUMBER  { $$ = build.reaching($1, $3); }
  ;

events:
    event             { $$ = build.list_of($1); }
  | events "," event  { $$ = build.extended($1, $3); }
  ;

set:
    "{" "}"           { $$ = build.leaf(NodeKind::listed_set, $1); }
  | "{" events "}"    { $$ = build.finished($2, NodeKind::listed_set, $1); }
  | "{|" events "|}"  { $$ = build.finished($2, NodeKind::closure_set, $1); }
  | "{|" "|}"         { $$ = build.leaf(NodeKind::closure_set, $1); }
  | "{" set "}"       { $$ = $2; }
  ;

term:
    hiding
  ;

hiding:
    interleaving
  | hiding "\\" set   { $$ = build.chain(Construct::hiding, $2, {$1, $3}); }
  | hiding "|\\" set  { $$ = build.chain(Construct::projection, $2, {$1, $3}); }
  ;

interleaving:
    parallel
  | interleaving "|||" parallel  { $$ = build.chain(Construct::interleaving, $2, {$1, $3}); }
  ;

parallel:
    internal_choice
  | parallel "[|" set "|]" internal_choice
      { $$ = build.chain(Construct::generalised_parallel, $2, {$1, $3, $5}); }
  | parallel "[" set "||" set "]" internal_choice
      { $$ = build.chain(Construct::alphabetised_parallel, $2, {$1, $3, $5, $7}); }
  | parallel "[" links "]" internal_choice
      { $$ = build.chain(Construct::linked_parallel, $2, {$1, $3, $5}); }
  | parallel "[|" set "|>" internal_choice
      { $$ = build.chain(Construct::exception, $2, {$1, $3, $5}); }
  ;

links:
    event "<->" event            { $$ = build.extended(build.list_of($1), $3); }
  | links "," event "<->" event  { $$ = build.extended(build.extended($1, $3), $5); }
  ;

internal_choice:
    external_choice
  | internal_choice "|~|" external_choice
      { $$ = build.chain(Construct::internal_choice, $2, {$1, $3}); }
  ;

external_choice:
    interrupt
  | external_choice "[]" interrupt
      { $$ = build.chain(Construct::external_choice, $2, {$1, $3}); }
  | external_choice "[+" set "+]" interrupt
      { $$ = build.chain(Construct::synchronising_external_choice, $2, {$1, $3, $5}); }
  ;

interrupt:
    sliding_choice
  | interrupt "/\\" sliding_choice
      { $$ = build.chain(Construct::interrupt, $2, {$1, $3}); }
  | interrupt "/+" set "+\\" sliding_choice
      { $$ = build.chain(Construct::synchronising_interrupt, $2, {$1, $3, $5}); }
  ;

sliding_choice:
    sequential_composition
  | sliding_choice "[>" sequential_composition
      { $$ = build.chain(Construct::sliding_choice, $2, {$1, $3}); }
  ;

sequential_composition:
    prefix
  | prefix ";" sequential_composition
      { $$ = build.term(Construct::sequential_composition, $2, {$1, $3}); }
  ;

prefix:
    renaming
  | event "->" prefix  { $$ = build.term(Construct::prefix, $2, {$1, $3}); }
  | set "->" prefix    { $$ = build.term(Construct::event_set_prefix, $2, {$1, $3}); }
  ;

renaming:
    primary
  | renaming "[[" renamings "]]"  { $$ = build.term(Construct::renaming, $2, {$1, $3}); }
  ;

renamings:
    event "<-" event                { $$ = build.extended(build.list_of($1), $3); }
  | renamings "," event "<-" event  { $$ = build.extended(build.extended($1, $3), $5); }
  ;

/* In front of "->" and "." a name is an event, otherwise a process. */
primary:
    "STOP"             { $$ = build.term(Construct::stop, $1, {}); }
  | "SKIP"             { $$ = build.term(Construct::skip, $1, {}); }
  | NAME               { $$ = build.leaf(NodeKind::name, $1); }
  | "RUN" "(" set ")"  { $$ = build.term(Construct::run, $1, {$3}); }
  | "CHAOS" "(" set ")"  { $$ = build.term(Construct::chaos, $1, {$3}); }
  | "(" term ")"       { $$ = build.parenthesised($2); }
  | "||" "(" NAME "," NAME ")" ":" "{" arguments "}" "@" "[" NAME "]" NAME
      { $$ = build.replicated_parallel($1, $9, {$3, $5, $13, $15}); }
  ;

arguments:
    %empty                          { $$ = build.empty_list(); }
  | arguments "(" set "," term ")"  { $$ = build.extended(build.extended($1, $3), $5); }
  ;

%%
