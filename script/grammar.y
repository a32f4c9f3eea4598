/* The grammar of the notation.

   Values and processes share one grammar: what a name stands for is not known while reading, and
   `if`, `let`, calls and parentheses serve both. Which of the two is wanted where is checked when
   names are resolved.

   The parser is driven by tables that are made when the library is built, for two reasons. A
   grammar that could be read in two ways is found then, as a conflict, which is an error here; it
   does not wait for the script that meets it. And the parser keeps what it has begun in a stack of
   its own on the heap, so that nesting costs memory and never the stack of the program.

   Operators on values stand in one rule per level of binding, because between `<` and `>` a
   comparison needs parentheses. Operators on terms stand in the list of precedences, loosest
   first, because `if`, `let` and the replicated forms extend as far to the right as they can.
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
using Calder::Script::none;
using Calder::Script::Question;

}
}

%token END 0 "end of the script"
%token FILE_END "end of an included file"
%token DEFINED_NAME "definition"
%token LOCAL_NAME "local definition"
%token CHANNEL "channel"
%token DATATYPE "datatype"
%token INCLUDE "include"
%token ASSERT "assert"
%token ASSERT_NOT "not of an assertion"
%token STOP "STOP"
%token SKIP "SKIP"
%token RUN "RUN"
%token CHAOS "CHAOS"
%token LET "let"
%token WITHIN "within"
%token IF "if"
%token THEN "then"
%token ELSE "else"
%token NAME "name"
%token NUMBER "number"
%token TEXT "text in quotes"

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
%token BAR "|"
%token RENAMES "<-"
%token LINKS "<->"
%token OUTPUT "!"
%token INPUT "?"
%token CHOSEN_INPUT "$"

%token EQUAL_TO "=="
%token DIFFERS "!="
%token LESS "<"
%token AT_MOST "<="
%token GREATER ">"
%token AT_LEAST ">="
%token PLUS "+"
%token MINUS "-"
%token TIMES "*"
%token DIVIDE "/"
%token MODULO "%"
%token CARET "^"
%token HASH "#"

%token RENAMING_OPEN "[["
%token RENAMING_CLOSE "]]"
%token RIGHT_BRACKET "]"
%token SYNCHRONISING_INTERRUPT_CLOSE "+\\"
%token SYNCHRONISING_CHOICE_CLOSE "+]"
%token PARALLEL_CLOSE "|]"
%token EXCEPTION_CLOSE "|>"
%token PARALLEL "||"
%token PAIRED_PARALLEL "|| (a, p)"

%token REFINES_TRACES "[T="
%token REFINES_FAILURES "[F="
%token REFINES_FAILURES_DIVERGENCES "[FD="
%token QUESTION_OPEN ":["

%token BAD "unreadable text"

%token HIDING "\\"
%token PROJECTION "|\\"
%token INTERLEAVING "|||"
%token PARALLEL_OPEN "[|"
%token LEFT_BRACKET "["
%token INTERNAL_CHOICE "|~|"
%token EXTERNAL_CHOICE "[]"
%token SYNCHRONISING_CHOICE_OPEN "[+"
%token INTERRUPT "/\\"
%token SYNCHRONISING_INTERRUPT_OPEN "/+"
%token SLIDING_CHOICE "[>"
%token SEMICOLON ";"
%token ARROW "->"
%token GUARD "&"
%token OR "or"
%token AND "and"
%token NOT "not"

%precedence OPEN
%left HIDING PROJECTION
%left INTERLEAVING
%left PARALLEL_OPEN LEFT_BRACKET
%left INTERNAL_CHOICE
%left EXTERNAL_CHOICE SYNCHRONISING_CHOICE_OPEN
%left INTERRUPT SYNCHRONISING_INTERRUPT_OPEN
%left SLIDING_CHOICE
%right SEMICOLON
%right ARROW GUARD
%left OR
%left AND
%precedence NOT

%%

script:
    %empty
  | script item
  ;

item:
    definition             { build.end_definition($1); }
  | definition_start error { build.lose_definition($1); }
  | declaration_start channels             { build.add_declaration($2, none); }
  | declaration_start channels ":" dotted  { build.add_declaration($2, $4); }
  | declaration_start error
  | datatype_start NAME "=" alternatives   { build.add_datatype($2, $4); }
  | datatype_start error
  | assert_start question                  { build.add_assertion($1, $2); }
  | assert_start error                     { build.lose_assertion($1); }
  | FILE_END
  | error
  ;

/* These end a recovery from an error: from here on errors are reported again. */
definition_start:
    DEFINED_NAME  { $$ = $1; yyerrok; }
  ;

declaration_start:
    CHANNEL  { yyerrok; }
  ;

datatype_start:
    DATATYPE  { yyerrok; }
  ;

assert_start:
    ASSERT  { $$ = $1; yyerrok; }
  ;

definition:
    definition_start "=" term                 { $$ = build.definition($1, none, $3); }
  | definition_start "(" terms ")" "=" term   { $$ = build.definition($1, $3, $6); }
  ;

local_definition:
    LOCAL_NAME "=" term                { $$ = build.definition($1, none, $3); }
  | LOCAL_NAME "(" terms ")" "=" term  { $$ = build.definition($1, $3, $6); }
  ;

local_definitions:
    local_definition                    { $$ = build.list_of($1); }
  | local_definitions local_definition  { $$ = build.extended($1, $2); }
  ;

/* What an assertion asks, which is no term: a refinement binds looser than all operators. */
question:
    term "[T=" term                   { $$ = build.refinement(Question::trace_refinement, $1, $2, $3); }
  | term "[F=" term                   { $$ = build.refinement(Question::failures_refinement, $1, $2, $3); }
  | term "[FD=" term                  { $$ = build.refinement(Question::failures_divergences_refinement, $1, $2, $3); }
  | term ":[" words "]"               { $$ = build.question($1, $2, $3, none); }
  | term ":[" words "]" ":" term      { $$ = build.question($1, $2, $3, $6); }
  | ASSERT_NOT question               { $$ = build.negated($2); }
  | "(" question ")"                  { $$ = build.parenthesised_question($2); }
  ;

/* Those of a question are words nowhere else. Their value is the last one's token. */
words:
    NAME
  | words NAME  { $$ = $2; }
  ;

channels:
    NAME               { $$ = build.list_of(build.leaf(NodeKind::channel, $1)); }
  | channels "," NAME  { $$ = build.extended($1, build.leaf(NodeKind::channel, $3)); }
  ;

alternatives:
    dotted                   { $$ = build.list_of($1); }
  | alternatives "|" dotted  { $$ = build.extended($1, $3); }
  ;

terms:
    term            { $$ = build.list_of($1); }
  | terms "," term  { $$ = build.extended($1, $3); }
  ;

/* Values and processes without an operator. */
primary:
    "STOP"                { $$ = build.term(Construct::stop, $1, {}); }
  | "SKIP"                { $$ = build.term(Construct::skip, $1, {}); }
  | "RUN" "(" term ")"    { $$ = build.term(Construct::run, $1, {$3}); }
  | "CHAOS" "(" term ")"  { $$ = build.term(Construct::chaos, $1, {$3}); }
  | NAME                  { $$ = build.leaf(NodeKind::name, $1); }
  | NUMBER                { $$ = build.leaf(NodeKind::number, $1); }
  | NAME "(" terms ")"    { $$ = build.finished($3, NodeKind::call, $1, $4); }
  | "(" term ")"          { $$ = build.parenthesised($2); }
  | tuple
  | "<" ">"               { $$ = build.spanning(NodeKind::sequence, $1, $2); }
  | "<" elements ">"      { $$ = build.finished($2, NodeKind::sequence, $1, $3); }
  | "<" elements "|" element_qualifiers ">"
      { $$ = build.comprehension(NodeKind::sequence, $1, $2, $4, $5); }
  | "{" "}"               { $$ = build.spanning(NodeKind::set, $1, $2); }
  | "{" members "}"       { $$ = build.finished($2, NodeKind::set, $1, $3); }
  | "{" members "|" qualifiers "}"
      { $$ = build.comprehension(NodeKind::set, $1, $2, $4, $5); }
  | "{|" "|}"             { $$ = build.spanning(NodeKind::closure, $1, $2); }
  | "{|" terms "|}"       { $$ = build.finished($2, NodeKind::closure, $1, $3); }
  | "{|" terms "|" qualifiers "|}"
      { $$ = build.comprehension(NodeKind::closure, $1, $2, $4, $5); }
  | PAIRED_PARALLEL "(" NAME "," NAME ")" ":" "{" pairs "}" "@" "[" NAME "]" NAME
      { $$ = build.paired_parallel($1, $9); }
  ;

tuple:
    "(" term "," terms ")"  { $$ = build.tuple($1, $2, $4, $5); }
  ;

/* Of an alphabetised parallel: a set and a process each. */
pairs:
    %empty                      { $$ = build.empty_list(); }
  | pairs "(" term "," term ")" { $$ = build.extended(build.extended($1, $3), $5); }
  ;

element:
    concatenation
  | concatenation ".." concatenation  { $$ = build.operation(NodeKind::range, $2, {$1, $3}); }
  ;

elements:
    element               { $$ = build.list_of($1); }
  | elements "," element  { $$ = build.extended($1, $3); }
  ;

member:
    term
  | concatenation ".." concatenation  { $$ = build.operation(NodeKind::range, $2, {$1, $3}); }
  ;

members:
    member              { $$ = build.list_of($1); }
  | members "," member  { $$ = build.extended($1, $3); }
  ;

element_qualifier:
    concatenation "<-" concatenation  { $$ = build.operation(NodeKind::generator, $2, {$1, $3}); }
  | concatenation
  ;

element_qualifiers:
    element_qualifier                         { $$ = build.list_of($1); }
  | element_qualifiers "," element_qualifier  { $$ = build.extended($1, $3); }
  ;

qualifier:
    concatenation "<-" term  { $$ = build.operation(NodeKind::generator, $2, {$1, $3}); }
  | concatenation ":" term   { $$ = build.operation(NodeKind::generator, $2, {$1, $3}); }
  | term
  ;

qualifiers:
    qualifier                 { $$ = build.list_of($1); }
  | qualifiers "," qualifier  { $$ = build.extended($1, $3); }
  ;

/* Events, channels and values with fields. */
dotted:
    primary
  | dotted "." primary       { $$ = build.dotted($1, $2, $3); }
  | dotted "." "-" NUMBER    { $$ = build.dotted($1, $2, build.negative_number($3, $4)); }
  ;

renaming:
    dotted
  | renaming "[[" renamings "]]"
      { $$ = build.term(Construct::renaming, $2, {$1, $3}); }
  | renaming "[[" renamings "|" qualifiers "]]"
      { $$ = build.term(Construct::renaming, $2, {$1, build.qualified($4, $3, $5)}); }
  ;

renamings:
    dotted "<-" dotted                { $$ = build.list_of(build.operation(NodeKind::pair, $2, {$1, $3})); }
  | renamings "," dotted "<-" dotted  { $$ = build.extended($1, build.operation(NodeKind::pair, $4, {$3, $5})); }
  ;

size:
    renaming
  | "#" size  { $$ = build.operation(NodeKind::operation, $1, {$2}); }
  ;

signed:
    size
  | "-" signed  { $$ = build.negative($1, $2); }
  ;

product:
    signed
  | product "*" signed  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | product "/" signed  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | product "%" signed  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  ;

sum:
    product
  | sum "+" product  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | sum "-" product  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  ;

concatenation:
    sum
  | concatenation "^" sum  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  ;

comparison:
    concatenation
  | concatenation "==" concatenation  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | concatenation "!=" concatenation  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | concatenation "<" concatenation   { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | concatenation "<=" concatenation  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | concatenation ">" concatenation   { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  | concatenation ">=" concatenation  { $$ = build.operation(NodeKind::operation, $2, {$1, $3}); }
  ;

/* What stands before "->". A bare event or set is the first of its forms. */
communication:
    dotted  { $$ = build.list_of($1); }
  | communication "!" concatenation
      { $$ = build.extended($1, build.operation(NodeKind::output, $2, {$3})); }
  | inputs
  ;

inputs:
    communication "?" pattern
      { $$ = build.extended($1, build.operation(NodeKind::input, $2, {$3})); }
  | communication "?" pattern ":" primary
      { $$ = build.extended($1, build.operation(NodeKind::input, $2, {$3, $5})); }
  | communication "$" pattern
      { $$ = build.extended($1, build.operation(NodeKind::chosen_input, $2, {$3})); }
  | communication "$" pattern ":" primary
      { $$ = build.extended($1, build.operation(NodeKind::chosen_input, $2, {$3, $5})); }
  | inputs "." primary
      { $$ = build.extended($1, build.operation(NodeKind::output, $2, {$3})); }
  ;

pattern:
    NAME   { $$ = build.leaf(NodeKind::name, $1); }
  | tuple
  ;

links:
    dotted "<->" dotted            { $$ = build.list_of(build.operation(NodeKind::pair, $2, {$1, $3})); }
  | links "," dotted "<->" dotted  { $$ = build.extended($1, build.operation(NodeKind::pair, $4, {$3, $5})); }
  ;

term:
    comparison
  | "not" term        { $$ = build.operation(NodeKind::operation, $1, {$2}); }
  | term "and" term   { $$ = build.operation(NodeKind::conjunction, $2, {$1, $3}); }
  | term "or" term    { $$ = build.operation(NodeKind::disjunction, $2, {$1, $3}); }
  | communication "->" term
      { $$ = build.prefix($2, $1, $3); }
  | term "&" term
      { $$ = build.chain(Construct::guard, $2, {$1, $3}); }
  | term ";" term
      { $$ = build.chain(Construct::sequential_composition, $2, {$1, $3}); }
  | term "[>" term
      { $$ = build.chain(Construct::sliding_choice, $2, {$1, $3}); }
  | term "/\\" term
      { $$ = build.chain(Construct::interrupt, $2, {$1, $3}); }
  | term "/+" dotted "+\\" term           %prec SYNCHRONISING_INTERRUPT_OPEN
      { $$ = build.chain(Construct::synchronising_interrupt, $2, {$1, $3, $5}); }
  | term "[]" term
      { $$ = build.chain(Construct::external_choice, $2, {$1, $3}); }
  | term "[+" dotted "+]" term            %prec SYNCHRONISING_CHOICE_OPEN
      { $$ = build.chain(Construct::synchronising_external_choice, $2, {$1, $3, $5}); }
  | term "|~|" term
      { $$ = build.chain(Construct::internal_choice, $2, {$1, $3}); }
  | term "[|" dotted "|]" term            %prec PARALLEL_OPEN
      { $$ = build.chain(Construct::generalised_parallel, $2, {$1, $3, $5}); }
  | term "[|" dotted "|>" term            %prec PARALLEL_OPEN
      { $$ = build.chain(Construct::exception, $2, {$1, $3, $5}); }
  | term "[" dotted "||" dotted "]" term  %prec LEFT_BRACKET
      { $$ = build.chain(Construct::alphabetised_parallel, $2, {$1, $3, $5, $7}); }
  | term "[" links "]" term               %prec LEFT_BRACKET
      { $$ = build.chain(Construct::linked_parallel, $2, {$1, $3, $5}); }
  | term "|||" term
      { $$ = build.chain(Construct::interleaving, $2, {$1, $3}); }
  | term "\\" dotted
      { $$ = build.chain(Construct::hiding, $2, {$1, $3}); }
  | term "|\\" dotted
      { $$ = build.chain(Construct::projection, $2, {$1, $3}); }
  | "if" term "then" term "else" term     %prec OPEN
      { $$ = build.operation(NodeKind::conditional, $1, {$2, $4, $6}); }
  | "let" local_definitions "within" term %prec OPEN
      { $$ = build.operation(NodeKind::let, $1, {$2, $4}); }
  | "[]" qualifiers "@" term              %prec OPEN
      { $$ = build.replicated(Construct::external_choice, $1, {}, $2, $4); }
  | "[+" dotted "+]" qualifiers "@" term  %prec OPEN
      { $$ = build.replicated(Construct::synchronising_external_choice, $1, {$2}, $4, $6); }
  | "|~|" qualifiers "@" term             %prec OPEN
      { $$ = build.replicated(Construct::internal_choice, $1, {}, $2, $4); }
  | "[|" dotted "|]" qualifiers "@" term  %prec OPEN
      { $$ = build.replicated(Construct::generalised_parallel, $1, {$2}, $4, $6); }
  | "|||" qualifiers "@" term             %prec OPEN
      { $$ = build.replicated(Construct::interleaving, $1, {}, $2, $4); }
  | ";" qualifiers "@" term               %prec OPEN
      { $$ = build.replicated(Construct::sequential_composition, $1, {}, $2, $4); }
  | "[" links "]" qualifiers "@" term     %prec OPEN
      { $$ = build.replicated(Construct::linked_parallel, $1, {$2}, $4, $6); }
  | "||" qualifiers "@" "[" term "]" term %prec OPEN
      { $$ = build.replicated(Construct::alphabetised_parallel, $1, {$5}, $2, $7); }
  ;

%%
