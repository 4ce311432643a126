// The public operations of the class as a table. Calls, scripts, help, the list of operations, JSON and the
// words of a result all use its rows: a new operation is a new row.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "manager/kestova.h"
#include "tools/kestova/operations/value.h"

// The form of a value: true or false; a number; a count from 0 to 65536; a letter, or '0' for none; a text; a
// list of objects. Arguments are of the first four kinds.
enum class Kind { Flag, Number, Count, Letter, Text, List };

// Two outcomes that have the same result: one of them leaves this record.
struct TwoOutcomes {
    const WCHAR* record = nullptr;  // null: there is only one
    const char* with = "";
    const char* without = "";
};

// What a program does after a failure.
enum class Advice {
    None,    // it is no failure
    Retry,   // nothing is changed, and the cause may pass: ask again; the same result once more is the answer
    GiveUp,  // nothing is changed, and asking again changes nothing before the PC or the program does
    Undo,    // something may be changed: the remedy says how to see it and to take it back
    GoOn,    // what was asked for is done; the remedy says what is left over
};

// By which programs know it; empty for none.
const char* NameOf(Advice advice);

struct After {
    Advice advice = Advice::None;
    const char* remedy = "";  // what the advice leaves open; empty: nothing
};

// A value in words.
struct Meaning {
    Value value;
    const char* name = "";  // by which programs call it, in capitals
    const char* words = "";
    After after = {};    // a failure has one
    bool vague = false;  // also the answer if a call failed on the way to another one
    TwoOutcomes outcomes = {};
};

struct Parameter {
    std::string name;
    Kind kind = Kind::Number;
    const char* words = "";
    bool output = false;
    std::vector<Meaning> meanings = {};
    Value standard = {};  // default of an optional argument; these come last
};

struct Operation {
    std::string name;
    const char* summary = "";
    std::vector<Parameter> parameters = {};
    std::vector<Meaning> results = {};
    const char* otherwise = "";  // any other result, in words; empty if there is none
    bool changesPc = false;
    const char* waits = "";  // how long it can wait for others; empty: it asks, and is answered
    // Returns the result, nothing for an operation without one. `arguments` has every input by name; outputs
    // are added under theirs.
    Value (*invoke)(Kestova& object, const Values& arguments, Values& outputs) = nullptr;
};

// In the order of the class.
const std::vector<Operation>& Operations();

// The operation of that exact name. Throws WrongUse that suggests the nearest one.
const Operation& FindOperation(std::string_view name);

// "GetDriveLetter DISK PARTITION"; optional arguments are in brackets.
std::string Usage(const Operation& operation);

// Parses the words after the operation's name. Throws WrongUse.
Values ReadArguments(const Operation& operation, const std::vector<std::string>& words);

// The meaning of that value, or null.
const Meaning* FindMeaning(const std::vector<Meaning>& meanings, const Value& value);

// Its words, or those for any other value.
std::string WordsOf(const Value& value, const std::vector<Meaning>& meanings, const char* otherwise = "");

// Whether the result is a failure.
bool IsFailure(const Operation& operation, const Value& result);
