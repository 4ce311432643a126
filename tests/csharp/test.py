#!/usr/bin/python3
"""Compiles the C# binding, runs its tests and its example, compares its answers with the tool's, and reads the
module for PowerShell, which nothing here can run.

usage: test.py BUILD_FOLDER WORK_FOLDER
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
STRICT = ["mcs", "-langversion:5", "-warn:4", "-warnaserror"]

# The arguments with which an operation is compared, for each combination of kinds of inputs.
ARGUMENTS = {
    ("flag",): ["False"],
    ("number",): ["1", "2", "99"],
    ("letter",): ["C", "D", "X"],
    ("number", "number"): ["0 1", "0 2", "0 5", "1 1", "-1 99"],
    (): [""],
}
TOOL_WORDS = {"False": "0"}


def run(*words, status=0, **options):
    done = subprocess.run(words, stdout=subprocess.PIPE, text=True, **options)
    if done.returncode != status:
        sys.exit(f"{' '.join(map(str, words))[:300]}: status {done.returncode}\n{done.stdout}")
    return done.stdout


def compile_all(folder):
    shutil.copy(ROOT / "csharp/Kestova.dll.config", folder)
    library = folder / "Kestova.dll"
    run(*STRICT, "-target:library", f"-doc:{folder}/Kestova.xml", f"-out:{library}", ROOT / "csharp/Kestova.cs")
    sources = sorted((ROOT / "tests/csharp").glob("*.cs"))
    run(*STRICT, f"-out:{folder}/Tests.exe", f"-r:{library}", *sources)
    run(*STRICT, f"-out:{folder}/Recovery.exe", f"-r:{library}", ROOT / "examples/Recovery.cs")


def calls_of(operation):
    inputs = [parameter for parameter in operation["parameters"] if parameter["direction"] == "in"]
    kinds = tuple(parameter["kind"] for parameter in inputs if parameter["name"] not in ("size", "count"))
    return [f"{operation['operation']} {words}".strip() for words in ARGUMENTS[kinds]]


def value(answered):
    """A number that is nowhere is null in C#, as a letter is."""
    return None if answered in (-1, "0") else answered


def answer(line):
    said = json.loads(line)
    outputs = {name: value(output) for name, output in said["outputs"].items()}
    return dict(result=said["result"], outputs=outputs, log=said["log"])


def compare_answers(tool, operations, tests):
    compared = 0
    calls = [call for operation in operations for call in calls_of(operation)]
    for machine in machines(tool):
        answers = run("mono", tests, "answers", machine, *calls).splitlines()
        if len(answers) != len(calls):
            sys.exit(f"{machine}: {len(answers)} answers to {len(calls)} calls")
        for call, line in zip(calls, answers):
            words = [TOOL_WORDS.get(word, word) for word in call.split()]
            command = [tool, "--pc", machine, "--quiet", "call", "--json", "--", *words]
            expected = subprocess.run(command, stdout=subprocess.PIPE, text=True).stdout
            if answer(expected) != answer(line):
                sys.exit(f"{machine}: {call}\ntool: {answer(expected)}\nC#:   {answer(line)}")
            compared += 1
    return compared


def machines(tool):
    return [json.loads(line)["name"] for line in run(tool, "pcs", "--json").splitlines()]


def run_example(tool, expected, program):
    """It says what the one in C++ says, but for the file, which a program cannot read, and the words of a failure."""
    for machine in machines(tool):
        other = subprocess.run([expected, machine], stdout=subprocess.PIPE, text=True)
        lines = run("mono", program, machine, status=other.returncode).splitlines()
        others = other.stdout.splitlines()
        if lines[0] != others[0] or (other.returncode == 0 and lines[-1] != others[-1]):
            sys.exit(f"the example on {machine} says: {lines}")


def follow_page(folder):
    """The program and the commands of the page, after which it says what the page says."""
    page = (ROOT / "docs/csharp.md").read_text()
    (folder / "Switch.cs").write_text(re.search(r"```csharp\n(.*?)```", page, flags=re.DOTALL).group(1))
    commands, said = re.search(r"```\n(mcs .*?)```.*?```\n(.*?)```", page, flags=re.DOTALL).groups()
    # The test of the Debian package takes the page at its word.
    if run("bash", "-ec", commands.replace("/usr/share/kestova", str(ROOT)), cwd=folder) != said:
        sys.exit("docs/csharp.md: its program says something else")


def read_powershell(operations, tests):
    """Says what in the module does not fit the table, the C# members, or itself."""
    module = (ROOT / "powershell/Kestova/Kestova.psm1").read_text()
    manifest = (ROOT / "powershell/Kestova/Kestova.psd1").read_text()
    example = (ROOT / "examples/Recovery.ps1").read_text()
    code = re.sub(r"(?s:<#.*?#>)|^\s*#.*$", "", module, flags=re.MULTILINE)
    members = {tuple(line.split()) for line in run("mono", tests, "members").splitlines()}
    table = {operation["operation"]: operation for operation in operations}
    functions = dict(re.findall(r"^function ([\w-]+) \{\n(.*?)^\}", code, flags=re.DOTALL | re.MULTILINE))
    exported = re.findall(r"'([\w-]+-Kestova\w+)'", manifest)
    wrong = []

    def require(condition, words):
        if not condition:
            wrong.append(words)

    version = re.search(r"project\(Kestova VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
    require(f"ModuleVersion     = '{version}'" in manifest, f"the manifest's version is not {version}")
    require(set(exported) == {name for name in functions if "-Kestova" in name}, f"exported: {exported}")
    last = code.strip().splitlines()[-1]
    require(last == "Export-ModuleMember -Function " + ", ".join(exported), f"the module ends with: {last}")
    for name in exported:
        require("[CmdletBinding(" in functions[name] and "param(" in functions[name], f"{name} has no parameters")
    for member in re.findall(r"\$manager\.(\w+)", code + example):
        require(("Manager", member) in members, f"there is no Manager.{member}")
    for kind, member in re.findall(r"\[Kestova\.(\w+)\]::(\w+)", code + example):
        require((kind, member) in members, f"there is no {kind}.{member}")
    for name, passed in re.findall(r"\$manager\.(\w+)\(([^)]*)\)", code + example):
        expected = len([p for p in table[name]["parameters"] if p["name"] != "reserved"]) if name in table else 0
        require(len(passed.split(",")) * bool(passed) == expected, f"{name} takes {expected} arguments, not ({passed})")
    switch = functions["Set-KestovaBoot"]
    require("SupportsShouldProcess = $true" in switch, "Set-KestovaBoot has no -WhatIf")
    require(switch.index("ShouldProcess(") < switch.index("Open-Manager"), "Set-KestovaBoot acts before it asks")
    targets = re.search(r"\[ValidateSet\('(\w+)', '(\w+)'\)\]", switch).groups()
    named = dict(zip(targets, re.findall(r"\$operation = '(\w+)'", switch)))
    require(named == {"Recovery": "SetRcvprtActive", "System": "SetSystemActive"}, f"the targets switch by {named}")
    for name in named.values():
        require(name in table and table[name]["changesPc"], f"the table has no {name} that changes the PC")
        pair = f"$operation = '{name}'\n            $result = $manager.{name}()"
        require(pair in switch, f"{name} is described by another")
    status = functions["Get-KestovaStatus"]
    for name in re.findall(r"\$manager\.(\w+)\(", status):
        require(name not in table or not table[name]["changesPc"], f"Get-KestovaStatus changes the PC by {name}")
    for text, where in ((module, "the module"), (example, "the example")):
        for opening, closing in ("{}", "()", "[]"):
            require(text.count(opening) == text.count(closing), f"{where}: {opening}{closing} are unbalanced")
    for name in re.findall(r"\b\w+-Kestova\w+", example):
        require(name in exported, f"the example uses {name}, which is not exported")
    if wrong:
        sys.exit("\n".join(["PowerShell:"] + wrong))


def main():
    build, folder = map(pathlib.Path, sys.argv[1:])
    tool = build / "tools/kestova/kestova"
    folder.mkdir(parents=True, exist_ok=True)
    os.environ["LD_LIBRARY_PATH"] = str((build / "c").resolve())
    os.environ.pop("KESTOVA_PC", None)
    operations = [json.loads(line) for line in run(tool, "operations", "--json").splitlines()]
    compile_all(folder)
    passed = run("mono", folder / "Tests.exe").splitlines()[-1]
    compared = compare_answers(tool, operations, folder / "Tests.exe")
    run_example(tool, build / "examples/recovery", folder / "Recovery.exe")
    follow_page(folder)
    read_powershell(operations, folder / "Tests.exe")
    print(f"{passed}; {compared} answers are the tool's; the example and the page run; the PowerShell module was read, not run")


if __name__ == "__main__":
    main()
