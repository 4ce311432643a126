"""The package has what the table of operations and the C header have, with type hints and words."""

import ctypes
import enum
import importlib.metadata
import inspect
import pathlib
import re
import sys
import typing

import pytest
from conftest import table_of_operations

import kestova
from kestova import _library, operations

HEADER = (pathlib.Path(__file__).parents[2] / "kestova/kestova_c.h").read_text()
TABLE = table_of_operations()
METHODS = {
    name.replace("_", ""): method
    for name, method in inspect.getmembers(operations.Operations, inspect.isfunction)
    if not name.startswith("_")
}


def public_functions():
    for name in kestova.__all__:
        member = getattr(kestova, name)
        if inspect.isfunction(member):
            yield name, member
        elif inspect.isclass(member):
            for method_name, method in inspect.getmembers(member, inspect.isfunction):
                if method.__module__.startswith("kestova"):
                    yield f"{name}.{method_name}", method


def enumerators(enumeration):
    """Of the C header, without their prefix."""
    body = re.search(rf"enum kestova_{enumeration} {{(.*?)}};", HEADER, re.DOTALL).group(1)
    pairs = re.findall(rf"KESTOVA_\w*?_?([A-Z]\w*) = ('.'|-?\d+)", re.sub(r"/\*.*?\*/", "", body, flags=re.DOTALL))
    return {name: int(value) for name, value in pairs}


def test_each_operation_has_one_method_of_its_parameters():
    assert set(METHODS) == {operation["operation"].lower() for operation in TABLE}
    for operation in TABLE:
        signature = inspect.signature(METHODS[operation["operation"].lower()])
        inputs = [given for given in operation["parameters"] if given["direction"] == "in"]
        assert list(signature.parameters) == ["self"] + [given["name"] for given in inputs]
        for given in inputs:
            if "default" in given:
                assert signature.parameters[given["name"]].default == given["default"]


def test_each_method_has_the_words_of_the_table():
    for operation in TABLE:
        words = " ".join(METHODS[operation["operation"].lower()].__doc__.split())
        assert words.startswith(operation["summary"])
        assert ("Changes the PC." in words) == operation["changesPc"]
        assert operation["waits"] in words
        for given in operation["parameters"]:
            assert f"{given['name']}: {given['words']}" in words


def test_each_result_with_a_number_has_its_name():
    for operation in TABLE:
        hints = typing.get_type_hints(METHODS[operation["operation"].lower()])
        hint = hints["return"]
        if hasattr(hint, "_fields"):
            hint = typing.get_type_hints(hint)["result"]
        if inspect.isclass(hint) and issubclass(hint, enum.IntEnum):
            assert {member.name: member.value for member in hint} == {
                result["name"]: result["value"] for result in operation["results"]
            }
        else:
            has_letters = any(isinstance(result["value"], str) for result in operation["results"])
            assert hint in ([typing.Optional[str]] if has_letters else [int, type(None)])


def test_each_output_with_names_is_a_member():
    assert typing.get_type_hints(kestova.GetDiskStyleAnswer)["style"] is kestova.Style
    assert typing.get_type_hints(kestova.GetCurrentDiskTypeAnswer)["type"] is kestova.Type
    parameters = [given for operation in TABLE for given in operation["parameters"]]
    for enumeration, name in ((kestova.Style, "style"), (kestova.Type, "type")):
        values = next(given["values"] for given in parameters if given["name"] == name)
        assert {member.name: member.value for member in enumeration} == {
            value["name"]: value["value"] for value in values
        }


def test_codes_of_problems_are_those_of_the_header():
    expected = {name.split("PROBLEM_")[-1]: value for name, value in enumerators("problem_code").items()}
    assert {code.name: code.value for code in kestova.ProblemCode} == expected


def test_each_function_of_the_header_is_declared():
    declared = set(_library.FUNCTIONS) | set(_library.EMULATED_FUNCTIONS) | set(operations.PROTOTYPES)
    assert set(re.findall(r"KESTOVA_CALL (kestova_\w+)\(", HEADER)) == declared


def test_interface_of_the_header_is_the_one_needed():
    assert f"#define KESTOVA_INTERFACE {_library.INTERFACE}\n" in HEADER
    assert _library.load().kestova_interface() == _library.INTERFACE


def test_each_public_function_has_hints_and_words():
    functions = dict(public_functions())
    assert len(functions) > 40
    for name, function in functions.items():
        hints = typing.get_type_hints(function)
        parameters = [given for given in inspect.signature(function).parameters.values() if given.name != "self"]
        assert "return" in hints, name
        assert all(given.name in hints for given in parameters), name
        assert function.__doc__ or function.__name__.startswith("_"), name


def test_package_is_typed_and_has_the_version_of_the_library():
    assert (pathlib.Path(kestova.__file__).parent / "py.typed").exists()
    assert importlib.metadata.version("kestova") == kestova.version()


def test_package_under_test_is_the_installed_one_with_the_library_beside_it():
    folder = pathlib.Path(kestova.__file__).parent
    assert folder.is_relative_to(sys.prefix)
    assert _library.load()._name == str(folder / "libkestova-c.so")


@pytest.mark.parametrize("operation", TABLE, ids=lambda operation: operation["operation"])
def test_describe_each_result_has_the_words_of_the_table(operation):
    for result in operation["results"]:
        value = {"0": None, "\0": ""}.get(result["value"], result["value"])
        assert kestova.describe(operation["operation"], value) == result["words"]
    assert kestova.describe(operation["operation"], 12345) == operation["otherwise"]


def test_describe_unknown_operation_has_no_words():
    assert kestova.describe("Nothing", 0) == ""


def test_structures_have_the_layout_of_c():
    assert ctypes.sizeof(_library.ProblemRecord) == 4 * 4 + 2 * (64 + 512 + 1024)
    assert ctypes.sizeof(operations.DriveInfoRecord) == 12
