"""What the template of the Python binding asks about an operation: the words that differ from those of C."""

import textwrap

WIDTH = 110
INDENT = " " * 8

# Of a parameter's kind: its type hint, and what the library is given.
INPUTS = {
    "flag": ("bool", "bool({})"),
    "number": ("int", "number({})"),
    "letter": ("str", "letter_unit({})"),
}
# Of an output's kind: its type in C, its type hint, what the library fills in, how that is passed, what is made of it.
OUTPUTS = {
    "number": ("POINTER(c_int)", "int", "c_int()", "byref({})", "{}.value"),
    "letter": ("POINTER(c_ushort)", "str | None", "c_ushort(NO_LETTER)", "byref({})", "letter_text({}.value)"),
    "text": ("POINTER(c_ushort)", "str", "(c_ushort * size)()", "{}", "text_of({})"),
    "list": ("POINTER(DriveInfoRecord)", "list[DriveInfo]", "(DriveInfoRecord * count)()", "{}", "drive_infos({})"),
}
ENUMERATED = ("style", "type")
# An argument that the class ignores.
WITHOUT_EFFECT = "without effect"


def is_output(parameter):
    return parameter["direction"] == "out"


def outputs(operation):
    return [parameter for parameter in operation["parameters"] if is_output(parameter)]


def result_name(operation):
    """SwitchResult; GetDiskStyleResult."""
    has_own = operation["enumeration"] != operation["c_name"]
    return (operation["enumeration"].title().replace("_", "") if has_own else operation["operation"]) + "Result"


def answer_name(operation):
    return operation["operation"] + "Answer"


def has_enumeration(operation):
    return operation["result_type"] == "int"


def result_hint(operation):
    if operation["result_type"] == "void":
        return "None"
    if operation["result_type"] == "kestova_char":
        return "str | None"
    return "int" if operation["otherwise"] else result_name(operation)


def answer_hint(operation):
    return answer_name(operation) if outputs(operation) else result_hint(operation)


def output_hint(output):
    return output["name"].title() if output["name"] in ENUMERATED else OUTPUTS[output["kind"]][1]


def prototype(operation):
    """A tuple of the types of the result and, behind the handle, of the parameters."""
    result = {"void": "None", "kestova_char": "c_ushort", "int": "c_int"}[operation["result_type"]]
    types = {"flag": "c_int", "number": "c_int", "letter": "c_ushort"}
    parameters = [
        OUTPUTS[parameter["kind"]][0] if is_output(parameter) else types[parameter["kind"]]
        for parameter in operation["parameters"]
    ]
    return f"({result}, {', '.join(parameters)})" if parameters else f"({result},)"


def parameter(given):
    default = " = False" if given["words"] == WITHOUT_EFFECT else f" = {given['default']}" if "default" in given else ""
    return f"{given['name']}: {INPUTS[given['kind']][0]}{default}"


def parameters(operation):
    return ", ".join(["self"] + [parameter(given) for given in operation["parameters"] if not is_output(given)])


def argument(given):
    if is_output(given):
        return OUTPUTS[given["kind"]][3].format(given["name"])
    return INPUTS[given["kind"]][1].format(given["name"])


def result_value(operation):
    return f"named({result_name(operation)}, result)" if has_enumeration(operation) else "letter_text(result)"


def output_value(output):
    value = OUTPUTS[output["kind"]][4].format(output["name"])
    return f"named({output['name'].title()}, {value})" if output["name"] in ENUMERATED else value


def answer(operation):
    """Of a method with outputs: the statement that returns them, broken if it is long."""
    values = ", ".join([result_value(operation)] + [output_value(output) for output in outputs(operation)])
    statement = f"return {answer_name(operation)}({values})"
    return statement if len(statement) <= WIDTH else f"return {answer_name(operation)}(\n    {values}\n)"


def body(operation):
    """The statements of the method."""
    arguments = "".join(", " + argument(given) for given in operation["parameters"])
    call = f'self._call("kestova_{operation["c_name"]}"{arguments})'
    if operation["result_type"] == "void":
        return call
    places = [f"{output['name']} = {OUTPUTS[output['kind']][2]}" for output in outputs(operation)]
    returned = answer(operation) if places else f"return {result_value(operation)}"
    return "\n".join([*places, f"result = {call}", returned])


def meaning(value, is_letter):
    """None: there is none; -1: none; '': it has no letter."""
    shown = {"0": "None", "\0": "''"}[value["value"]] if is_letter else repr(value["value"])
    return f"{shown}: {value['words']}"


def parameter_words(given):
    values = "; ".join(meaning(value, given["kind"] == "letter") for value in given["values"])
    return f"{given['name']}: {given['words']}" + (f" ({values})" if values and is_output(given) else "") + "."


def result_words(operation):
    if operation["result_type"] == "kestova_char":
        values = "; ".join(meaning(value, True) for value in operation["results"])
        return f"Returns {operation['otherwise']} ({values})."
    if operation["otherwise"]:
        return f"Returns {operation['otherwise']}, or a {result_name(operation)}."
    return None


def docstring(operation):
    paragraphs = [operation["summary"] + (" Changes the PC." if operation["changesPc"] else "")]
    if operation["waits"]:
        paragraphs.append("Takes " + operation["waits"] + ".")
    paragraphs += [parameter_words(given) for given in operation["parameters"]]
    paragraphs += filter(None, [result_words(operation)])
    return "\n\n".join(
        textwrap.fill(paragraph, WIDTH, initial_indent=INDENT, subsequent_indent=INDENT) for paragraph in paragraphs
    ).lstrip() + ("\n" + INDENT if len(paragraphs) > 1 else "")


def result_comment(result):
    words = result["words"] + ("; a failure" if result["failure"] else "")
    return textwrap.fill(words, WIDTH, initial_indent="    # ", subsequent_indent="    # ")


FILTERS = {
    "python_" + function.__name__: function
    for function in (
        answer_hint, answer_name, body, docstring, has_enumeration, output_hint, outputs, parameters, prototype,
        result_comment, result_hint, result_name,
    )
}
