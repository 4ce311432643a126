"""Writes the C interface and the bindings from the table of operations.

usage: bindings.py KESTOVA SOURCES [FOLDER]

KESTOVA is the tool, which knows the table; SOURCES is the root of the sources. Each template (*.j2) has one file, which
stands in the list below and is written there, or in the same place below FOLDER.
"""

import json
import pathlib
import re
import subprocess
import sys
import textwrap

import csharp_binding
import jinja2

import python_binding

FILES = {
    "c/templates/kestova_c.h.j2": "kestova/kestova_c.h",
    "c/templates/operations.cpp.j2": "c/operations.cpp",
    "c/templates/results.cpp.j2": "c/results.cpp",
    "docs/templates/result-codes.md.j2": "docs/result-codes.md",
    "csharp/templates/Kestova.cs.j2": "csharp/Kestova.cs",
    "python/templates/operations.py.j2": "python/kestova/operations.py",
}

# The enumerations whose names would say nothing to who does not know the class.
ENUMERATIONS = {
    "SetRcvprtActive": "switch",
    "SetSystemActive": "switch_back",
    "SetPOneActive": "switch_p_one",
    "SetPTwoActive": "switch_p_two",
}

# Rows of manager/guard.h that several operations share.
ENDINGS = {
    "ActiveOrvoBootPartition": "ActivePartition",
    "ActiveGPTSystemPartition": "ActivePartition",
    "AssignRecoveryPartition": "AssignPartition",
    "AssignWinREPartition": "AssignPartition",
    "DisableOrvoBootPartition": "DisablePartition",
    "DisableGPTSystemPartition": "DisablePartition",
}

# Operations of which one at a time may run in a process: they share files and registry keys.
ONE_AT_A_TIME = """static std::mutex turn;
            const std::scoped_lock alone(turn);
            """
SERIALISED = {"GetWinDriveLetters": ONE_AT_A_TIME}

# What a program does after a failure.
ADVICE = {
    "retry": "nothing is changed, and the cause may pass: ask again; the same result once more is the answer",
    "give-up": "nothing is changed, and asking again changes nothing before the PC or the program does",
    "undo": "something may be changed: what follows says how to see it and to take it back",
    "go-on": "what was asked for is done; what follows says what is left over",
}

WIDTH = 110


# The last record of each result, as the sweep of faults has found it.
CLOSING_RECORDS = "tests/sweep/closing_records.tsv"


def closing_records(root):
    """Of an operation and a result, "another" for one that has no meaning: its last records."""
    records = {}
    for line in (root / CLOSING_RECORDS).read_text().splitlines():
        if not line.startswith("#"):
            operation, result, record = line.split("\t")
            records.setdefault((operation, result), []).append(shown_record(record))
    return records


def shown_record(record):
    """As the log has it, with values in braces and blanks for tabs: "ERROR Kestova::SetActive End. iRet = {result}"."""
    level, text = record.split(" ", 1)
    text = re.sub(r"\{\w+ the (\w+)\}|\{the (\w+)\}", lambda value: "{" + (value[1] or value[2]) + "}", text)
    text = re.sub(r"^\{string (.*)\}$", r"\1", text).replace("{string }", "{}")
    return {"1": "ERROR", "4": "TRACE"}[level] + " " + re.sub(r"(\\t)+", " ", text)


def snake(name):
    """SetBIOSHibernationPartitionID -> set_bios_hibernation_partition_id."""
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


def sentence(words):
    return words[0].upper() + words[1:]


def literal(text):
    return json.dumps(text)


def number(value):
    return ord(value) if isinstance(value, str) else value


# Of a parameter: its declaration in C, the type that the class writes, and how the interface keeps it.
INPUTS = {"flag": "int {}", "letter": "kestova_char {}", "number": "int {}"}
OUTPUTS = {
    "number": ("int *{}", "int&", "NumberOutput{{{}}}"),
    "letter": ("kestova_char *{}", "WCHAR&", "LetterOutput{{{}}}"),
    "text": ("kestova_char *{}", "Text&", "TextOutput{{{}, size}}"),
    "list": ("kestova_drive_info *{}", "DriveInfos&", "DriveInfosOutput{{{}, count}}"),
}
ENUMERATED = {
    "style": ("int *{}", "THardDiskType&", "StyleOutput{{{}}}"),
    "type": ("int *{}", "tagDiskTypeEnum&", "TypeOutput{{{}}}"),
}
# What an input is for the class, where that differs.
CLASS_TYPES = {"reserved": "{} != 0", "letter": "static_cast<WCHAR>({})"}


def is_output(parameter):
    return parameter["direction"] == "out"


def kept_output(parameter):
    return ENUMERATED.get(parameter["name"]) or OUTPUTS[parameter["kind"]]


def declaration(parameter):
    if is_output(parameter):
        return kept_output(parameter)[0].format(parameter["name"])
    if parameter["name"] == "size":
        return "unsigned int size"
    return INPUTS[parameter["kind"]].format(parameter["name"])


def class_argument(parameter):
    if is_output(parameter) and parameter["kind"] in ("text", "list"):
        return parameter["name"] + "Kept.data()"
    if is_output(parameter):
        return parameter["name"] + "Kept"
    return CLASS_TYPES.get(parameter["name"], "{}").format(parameter["name"])


def block_comment(paragraphs):
    lines = [line for paragraph in paragraphs for line in textwrap.wrap(paragraph, WIDTH - 3)]
    return "/* " + "\n * ".join(lines) + " */"


def parameter_words(parameter):
    words = f"{parameter['name']}: {parameter['words']}"
    if parameter["kind"] == "text":
        words += "; cut to `size`"
    meanings = [f"{shown_value(value['value'])} {value['words']}" for value in parameter["values"]]
    if is_output(parameter) and meanings:
        words += " (" + ", ".join(meanings) + ")"
    return words + "."


def shown_value(value):
    return "''" if value == "" else f"'{value}'" if isinstance(value, str) else str(value)


def meaning(result):
    """The words of a result, with what to do after a failure."""
    if not result["failure"]:
        return result["words"]
    return f"{result['words']}; a failure: {result['advice']}" + (f", {result['remedy']}" if result["remedy"] else "")


def enumerator(enumeration, result):
    """One of C, below a comment with its words."""
    value = f"'{result['value']}'" if isinstance(result["value"], str) and result["value"] != "\0" else number(result["value"])
    comment = "/* " + "\n     * ".join(textwrap.wrap(meaning(result), WIDTH - 7)) + " */"
    return f"{comment}\n    KESTOVA_{enumeration.upper()}_{result['name']} = {value}"


def comment(operation):
    paragraphs = [operation["summary"] + (" Changes the PC." if operation["changesPc"] else "")]
    if operation["waits"]:
        paragraphs.append("Takes " + operation["waits"] + ".")
    paragraphs += [parameter_words(parameter) for parameter in operation["parameters"]]
    if operation["otherwise"]:
        paragraphs.append("Returns " + operation["otherwise"] + ", or one of the results above.")
    return block_comment(paragraphs)


def prepared(operation):
    """The operation with what the templates ask for."""
    name = operation["operation"]
    outputs = [parameter for parameter in operation["parameters"] if is_output(parameter)]
    inputs = [parameter for parameter in operation["parameters"] if not is_output(parameter)]
    enumeration = ENUMERATIONS.get(name, snake(name))
    results = [
        dict(result, number=number(result["value"]), lines=enumerator(enumeration, result))
        for result in operation["results"]
    ]
    is_letter = any(isinstance(result["value"], str) for result in operation["results"])
    kept = "".join(f", {kept_output(output)[1]} {output['name']}Kept" for output in outputs)
    call = f"object.{name}({', '.join(map(class_argument, operation['parameters']))})"
    return dict(
        operation,
        c_name=snake(name),
        enumeration=enumeration,
        results=results,
        result_type="kestova_char" if is_letter else "int" if results else "void",
        declared=", ".join(["kestova *handle"] + [declaration(parameter) for parameter in operation["parameters"]]),
        ending=f"ending::{ENDINGS.get(name, name)}" if results else "0",
        lambda_head=f"[{'=' if inputs else ''}](Kestova& object{kept})",
        body=SERIALISED.get(name, "") + (f"return {call};" if results else f"{call};\n            return 0;"),
        passed="".join(f",\n        {kept_output(output)[2].format(output['name'])}" for output in outputs),
        comment=comment(operation),
    )


def enumerated_outputs(operations):
    return [
        dict(parameter, operation=operation["operation"], c_name=operation["c_name"])
        for operation in operations
        for parameter in operation["parameters"]
        if parameter["name"] in ENUMERATED
    ]


def main():
    tool, root, written = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[-1])
    lines = subprocess.run([tool, "operations", "--json"], check=True, stdout=subprocess.PIPE, text=True).stdout
    operations = [prepared(json.loads(line)) for line in lines.splitlines()]
    templates = jinja2.Environment(
        loader=jinja2.FileSystemLoader(root), undefined=jinja2.StrictUndefined, keep_trailing_newline=True
    )
    templates.filters.update(sentence=sentence, literal=literal, meaning=meaning, snake=snake, **python_binding.FILTERS)
    templates.filters.update({name: getattr(csharp_binding, name) for name in ("csharp", "pascal", "documentation")})
    for template, file in FILES.items():
        text = templates.get_template(template).render(
            operations=operations,
            outputs=enumerated_outputs(operations),
            advice=ADVICE,
            records=closing_records(root),
        )
        (written / file).parent.mkdir(parents=True, exist_ok=True)
        (written / file).write_text(text)


if __name__ == "__main__":
    main()
