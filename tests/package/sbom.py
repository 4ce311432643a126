#!/usr/bin/python3
"""Whether a package's list of its contents keeps to the rules of SPDX 2.3 and is true: every file of the folder with
its sums, every program with what is linked into it, no reference that leads nowhere.

usage: sbom.py FOLDER DOCUMENT
"""
import hashlib
import json
import pathlib
import re
import sys

PROGRAMS = {"Kestova.dll", "Logging.dll", "kestova.exe", "kestova"}
IN_TOOL = {"SPDXRef-Package-libcli11-dev", "SPDXRef-Package-nlohmann-json3-dev"}
RELATIONS = {"DESCRIBES", "CONTAINS", "STATIC_LINK", "DYNAMIC_LINK", "RUNTIME_DEPENDENCY_OF"}
NEEDED = {
    "document": {"spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo"},
    "package": {"SPDXID", "name", "versionInfo", "downloadLocation", "licenseConcluded", "licenseDeclared",
                "copyrightText"},
    "file": {"SPDXID", "fileName", "checksums", "licenseConcluded", "copyrightText"},
}


def header_problems(document):
    if document["spdxVersion"] != "SPDX-2.3" or document["dataLicense"] != "CC0-1.0":
        yield "neither the version nor the licence of the data is that of SPDX 2.3"
    if not re.fullmatch(r"https?://[^#\s]+", document["documentNamespace"]):
        yield f"{document['documentNamespace']} is not the name of a document"
    if not re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", document["creationInfo"]["created"]):
        yield f"{document['creationInfo']['created']} is not a date"


def field_problems(document):
    for kind, entries in (("document", [document]), ("package", document["packages"]), ("file", document["files"])):
        for entry in entries:
            for field in sorted(NEEDED[kind] - {name for name, value in entry.items() if value}):
                yield f"{entry.get('SPDXID')}: {field} is missing"


def reference_problems(document):
    identifiers = [entry["SPDXID"] for entry in [document, *document["packages"], *document["files"]]]
    for identifier in sorted({name for name in identifiers if identifiers.count(name) > 1}):
        yield f"{identifier} is there more than once"
    for identifier in identifiers:
        if not re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", identifier):
            yield f"{identifier} is not an identifier"
    for relation in document["relationships"]:
        ends = {relation["spdxElementId"], relation["relatedSpdxElement"]}
        if not ends <= set(identifiers) or relation["relationshipType"] not in RELATIONS:
            yield f"{relation} leads nowhere"


def sum_problems(document, folder, document_name):
    listed = {entry["fileName"].removeprefix("./"): entry for entry in document["files"]}
    present = {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()} - {document_name}
    for name in sorted(present ^ set(listed)):
        yield f"{name}: in one of the package and its list alone"
    for name in sorted(present & set(listed)):
        sums = {entry["algorithm"]: entry["checksumValue"] for entry in listed[name]["checksums"]}
        content = (folder / name).read_bytes()
        if sums != {"SHA1": hashlib.sha1(content).hexdigest(), "SHA256": hashlib.sha256(content).hexdigest()}:
            yield f"{name}: other sums"
    first = sorted(hashlib.sha1((folder / name).read_bytes()).hexdigest() for name in present)
    code = document["packages"][0]["packageVerificationCode"]["packageVerificationCodeValue"]
    if code != hashlib.sha1("".join(first).encode()).hexdigest():
        yield f"{code} is not the verification code"


def link_problems(document):
    for entry in document["files"]:
        program = pathlib.PurePosixPath(entry["fileName"]).name
        linked = {relation["relatedSpdxElement"] for relation in document["relationships"]
                  if relation["spdxElementId"] == entry["SPDXID"] and relation["relationshipType"] == "STATIC_LINK"}
        # The runtime of the compiler is in each, and the headers in the tool.
        needed = IN_TOOL if program.startswith("kestova") else set()
        if "bin/" in entry["fileName"] and program in PROGRAMS and not linked > needed:
            yield f"{entry['fileName']}: what is linked into it is not all there: {sorted(linked)}"


def main(folder, document_name):
    document = json.loads((folder / document_name).read_text())
    problems = [*header_problems(document), *field_problems(document), *reference_problems(document),
                *sum_problems(document, folder, document_name), *link_problems(document)]
    if problems:
        sys.exit("\n".join(f"{document_name}: {problem}" for problem in problems))
    print(f"{document_name}: {len(document['files'])} files, {len(document['packages'])} packages")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]), sys.argv[2])
