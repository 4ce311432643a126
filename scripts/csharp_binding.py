"""What the template of the C# binding asks for of an operation."""

import textwrap
from xml.sax.saxutils import escape

# The operations of which the template writes an asynchronous variant too: those that take long and those that switch.
ASYNCHRONOUS = {
    "Initialize",
    "GetWinDriveLetters",
    "SetRcvprtActive",
    "SetSystemActive",
    "SetPOneActive",
    "SetPTwoActive",
}

# Outputs that are enumerations.
ENUMERATIONS = {"style": "DiskStyle", "type": "DiskType"}

# Of an output: its type for the caller, its type for the library, the former from the latter, and what it is before the
# library sets it.
OUTPUTS = {
    "number": ("int?", "int", "NumberOf({})", "-1"),
    "letter": ("char?", "ushort", "LetterOf({})", "NoLetter"),
    "text": ("string", "char[]", "TextOf({})", "new char[Room(size)]"),
    "list": ("LetterPlace[]", "LetterPlace[]", "Filled({})", "new LetterPlace[Room(count)]"),
}
# Of an input: its type for the caller, for the library, and the latter from the former.
INPUTS = {
    "flag": ("bool", "int", "{} ? 1 : 0"),
    "number": ("int", "int", "{}"),
    "letter": ("char", "ushort", "{}"),
}
# Inputs that count the room for an output, and what is enough.
ROOMS = {"size": "TextRoom", "count": "PlacesRoom"}


def pascal(name):
    """NOT_LOADED -> NotLoaded."""
    return "".join(word.capitalize() for word in name.split("_"))


def documentation(words, tag, indentation):
    """An element of the XML documentation; the words are escaped here."""
    end = tag.split(" ")[0]
    lines = textwrap.wrap(f"<{tag}>{escape(words)}</{end}>", 110 - indentation, break_on_hyphens=False)
    return "\n".join(" " * indentation + "/// " + line for line in lines)


def output(parameter):
    caller, library, conversion, before = OUTPUTS[parameter["kind"]]
    name = parameter["name"]
    if name in ENUMERATIONS:
        caller, conversion, before = ENUMERATIONS[name], f"({ENUMERATIONS[name]}){{}}", "0"
    is_array = library.endswith("[]")
    return dict(
        name=name,
        words=words_of(parameter),
        declared=f"out {caller} {name}",
        imported=f"[In, Out] {library} {name}" if is_array else f"ref {library} {name}",
        prepared=f"{library} {name}Kept = {before};",
        passed=f"{name}Kept" if is_array else f"ref {name}Kept",
        set=f"{name} = {conversion.format(name + 'Kept')};",
    )


def input(parameter):
    caller, library, conversion = INPUTS[parameter["kind"]]
    name = parameter["name"]
    default = ROOMS.get(name)
    return dict(
        name=name,
        words=words_of(parameter),
        declared=f"{caller} {name}" + (f" = {default}" if default else " = false" if name == "reserved" else ""),
        imported=f"uint {name}" if name == "size" else f"{library} {name}",
        prepared="",
        passed=f"(uint){name}" if name == "size" else conversion.format(name),
        set="",
    )


def words_of(parameter):
    words = parameter["words"][0].upper() + parameter["words"][1:]
    empty = [value["words"] for value in parameter["values"] if value["value"] in ("0", -1)]
    return words + (f"; null: {empty[0]}" if empty else "") + "."


def result(operation):
    """The type for the caller, how it is made of `result`, and its documentation."""
    results = operation["results"]
    if not results:
        return "void", "", ""
    if operation["otherwise"]:
        said = operation["otherwise"][0].upper() + operation["otherwise"][1:]
        for one in results:
            said += f"; {shown(one['value'])}: {one['words']}"
        if isinstance(results[0]["value"], str):
            return "char?", "LetterOf(result)", said + "."
        return "int?", "NumberOf(result)", said + "."
    if {one["name"] for one in results} <= {"YES", "NO"}:
        meanings = [f"{str(one['value'] != 0).lower()}: {one['words']}" for one in results]
        return "bool", "result != 0", "; ".join(meanings) + "."
    name = operation["operation"] + "Result"
    return name, f"({name})result", "What came of it."


def shown(value):
    return "null" if value in ("0", -1) else "'\\0'" if value == "\0" else str(value)


def csharp(operation):
    parameters = [
        (output if parameter["direction"] == "out" else input)(parameter) for parameter in operation["parameters"]
    ]
    result_type, made, result_words = result(operation)
    is_letter = result_type == "char?"
    passed = ", ".join(["Open"] + [parameter["passed"] for parameter in parameters])
    call = f"{'var result = ' if made else ''}Native.kestova_{operation['c_name']}({passed});"
    return dict(
        name=operation["operation"],
        c_name=operation["c_name"],
        summary=operation["summary"]
        + (" Changes the PC." if operation["changesPc"] else "")
        + (f" Takes {operation['waits']}." if operation["waits"] else ""),
        parameters=parameters,
        declared=", ".join(parameter["declared"] for parameter in parameters),
        call="\n".join(textwrap.wrap(call, 108, subsequent_indent=" " * 16)),
        result_type=result_type,
        result_made=made,
        result_words=result_words,
        returned="ushort" if is_letter else "int" if made else "void",
        enumeration=operation["results"] if result_type.endswith("Result") else [],
        is_asynchronous=operation["operation"] in ASYNCHRONOUS,
        is_list=any(parameter["kind"] == "list" for parameter in operation["parameters"]),
    )
