%code requires {
// Grammar of the job language: the header section, the position records
// and variable declarations, then the instruction section with its header
// keys and the instruction lines between NOP and END. A pure parser: the
// state of a read is its driver's.
#include "job/JobReadDriver.h"
typedef void *yyscan_t;
}

%code {
int qrxjoblex(QRXJOBSTYPE *value, yyscan_t scanner);
void qrxjoberror(qrx::JobReadDriver &driver, yyscan_t scanner, const char *message);
}

%define api.pure full
%define api.prefix {qrxjob}
%define api.value.type {qrx::JobTokenValue}
%parse-param {qrx::JobReadDriver &driver} {yyscan_t scanner}
%lex-param {yyscan_t scanner}

%token T_DIR T_JOB T_NAME T_POS T_NPOS T_POSTYPE T_PULSE T_INSTRUCTION
%token T_INTV T_FLOATV T_BOOLV T_NUMBER T_IDENT T_EOL T_BAD
%token T_DATE T_ROBOTTYPE T_DOUBLEROBOT T_PROVERSION T_NOP T_END T_LINE

%%

file
    : header declarations instructionSection
    ;

header
    : T_DIR T_EOL T_JOB T_EOL T_NAME T_EOL T_POS T_EOL T_NPOS T_EOL T_POSTYPE T_EOL T_PULSE T_EOL
        { driver.setName($5.view()); }
    ;

declarations
    : %empty
    | declarations declaration T_EOL
    ;

declaration
    : T_IDENT '=' values                { if (!driver.addRecord($1.view(), $1.line)) YYABORT; }
    | T_INTV T_IDENT '=' T_NUMBER       { if (!driver.addVariable(0, $2.view(), $4.view())) YYABORT; }
    | T_FLOATV T_IDENT '=' T_NUMBER     { if (!driver.addVariable(1, $2.view(), $4.view())) YYABORT; }
    | T_BOOLV T_IDENT '=' T_NUMBER      { if (!driver.addVariable(2, $2.view(), $4.view())) YYABORT; }
    ;

values
    : value
    | values ',' value
    ;

value
    : T_NUMBER                          { driver.addValue($1.view(), true); }
    | T_IDENT                           { driver.addValue($1.view(), false); }
    ;

instructionSection
    : T_INSTRUCTION T_EOL headerKeys
      T_NOP T_EOL                       { driver.addInstruction("NOP", $4.line); }
      instructions
      T_END                             { driver.addInstruction("END", $8.line); }
      lineEnds
    ;

headerKeys
    : %empty
    | headerKeys headerKey T_EOL
    ;

headerKey
    : T_DATE                            { driver.setHeader(3, $1.view()); }
    | T_ROBOTTYPE                       { driver.setHeader(0, $1.view()); }
    | T_DOUBLEROBOT                     { driver.setHeader(1, $1.view()); }
    | T_PROVERSION                      { driver.setHeader(2, $1.view()); }
    ;

instructions
    : %empty
    | instructions T_LINE               { if (!driver.addInstruction($2.view(), $2.line)) YYABORT; }
      T_EOL
    ;

lineEnds
    : %empty
    | lineEnds T_EOL
    ;

%%

void qrxjoberror(qrx::JobReadDriver &driver, yyscan_t, const char *message)
{
    driver.error(message);
}
