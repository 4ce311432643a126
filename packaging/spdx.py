#!/usr/bin/python3
"""Writes what a package has in it as SPDX 2.3: its files with their sums, and the Debian packages whose code is linked
into its programs or loaded by them, as the linker's maps and the package database have it.

usage: spdx.py NAME VERSION FOLDER FILE LOADED BUILD_FOLDER...

FOLDER holds the files of the package; FILE is the document's path in it. LOADED is a list of packages, separated by
commas, of which libraries are loaded at run time. A map stands in a build folder. SOURCE_DATE_EPOCH is the date.
"""
import datetime
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

# Headers alone, which no map names; they are in the tool.
HEADERS_IN_TOOL = ("libcli11-dev", "nlohmann-json3-dev")
TOOLS = ("kestova", "kestova.exe")
PROGRAMS = ("Kestova.dll", "KestovaC.dll", "Logging.dll", *TOOLS)
LIBRARY_FOR_C = re.compile(r"libkestova-c\.so(\.\d+){3}")
UNKNOWN = "NOASSERTION"


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True, env={**os.environ, "LC_ALL": "C"}).stdout


def package_of(file):
    """The Debian package that a file belongs to, which may be below a folder that is now a link to one of /usr."""
    path = os.path.realpath(file)
    found = subprocess.run(["dpkg-query", "--search", path, path.removeprefix("/usr")], capture_output=True, text=True)
    if not found.stdout:
        sys.exit(f"spdx: no package has {path}, which is linked into what is packed")
    return found.stdout.split(":")[0]


def archives(linker_map):
    """The archives of the system with a member that was linked."""
    text = linker_map.read_text(errors="replace")
    members = text.split("\n\nDiscarded input sections")[0].split("\n\nMemory Configuration")[0]
    return sorted({os.path.realpath(path) for path in re.findall(r"^(/usr/[^(\s]+\.a)\(", members, re.M)})


def map_of(program, builds):
    """The map beside a program of a build. Programs of the same name are told apart by their bytes."""
    for build in builds:
        built = build / "bin" / program.name
        if not built.exists() or built.read_bytes() == program.read_bytes():
            return build / f"{program.name}.map"
    sys.exit(f"spdx: no build folder has {program}")


def shared_libraries(program):
    """Those that a program of Linux itself names."""
    if program.suffix in (".dll", ".exe"):
        return []
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", output_of("readelf", "--dynamic", program))
    return [file for file in re.findall(r"=> (/\S+)", output_of("ldd", program)) if pathlib.Path(file).name in needed]


def has_tool_in_it(program):
    """The library for C of Linux has the parts of the tool that read descriptions."""
    return program.name in TOOLS or LIBRARY_FOR_C.fullmatch(program.name) is not None


def is_linked(path):
    """Whether the file is a program or library of the package, and no text or import library."""
    return (path.name in PROGRAMS and "bin" in path.parts) or LIBRARY_FOR_C.fullmatch(path.name) is not None


def linked_packages(program, linker_map):
    """Pairs of a relation and a package."""
    statically = {package_of(file) for file in archives(linker_map)}
    statically.update(HEADERS_IN_TOOL if has_tool_in_it(program) else ())
    dynamically = {package_of(file) for file in shared_libraries(program)}
    return sorted([("STATIC_LINK", package) for package in statically] +
                  [("DYNAMIC_LINK", package) for package in dynamically])


def identifier(kind, name):
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def file_entry(folder, path):
    content = path.read_bytes()
    name = path.relative_to(folder).as_posix()
    sums = [{"algorithm": algorithm.upper(), "checksumValue": hashlib.new(algorithm, content).hexdigest()}
            for algorithm in ("sha1", "sha256")]
    return {"SPDXID": identifier("File", name), "fileName": f"./{name}", "checksums": sums,
            "licenseConcluded": UNKNOWN, "licenseInfoInFiles": [UNKNOWN], "copyrightText": UNKNOWN}


def debian_package(name):
    fields = output_of("dpkg-query", "--show", "--showformat", "${Version}\\n${Architecture}\\n${Maintainer}\\n", name)
    version, architecture, supplier = fields.splitlines()[:3]
    return {"SPDXID": identifier("Package", name), "name": name, "versionInfo": version, "filesAnalyzed": False,
            "supplier": f"Organization: {supplier}", "downloadLocation": UNKNOWN, "licenseConcluded": UNKNOWN,
            "licenseDeclared": UNKNOWN, "copyrightText": UNKNOWN,
            "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                              "referenceLocator": f"pkg:deb/debian/{name}@{version}?arch={architecture}"}]}


def product_package(name, version, files, document_name):
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in files)
    code = hashlib.sha1("".join(sums).encode()).hexdigest()
    return {"SPDXID": identifier("Package", name), "name": name, "versionInfo": version, "filesAnalyzed": True,
            "packageVerificationCode": {"packageVerificationCodeValue": code,
                                        "packageVerificationCodeExcludedFiles": [f"./{document_name}"]},
            "downloadLocation": UNKNOWN, "licenseConcluded": UNKNOWN, "licenseDeclared": UNKNOWN,
            "licenseInfoFromFiles": [UNKNOWN], "copyrightText": UNKNOWN}


def relation(element, kind, related):
    return {"spdxElementId": element, "relationshipType": kind, "relatedSpdxElement": related}


def document(name, version, folder, document_name, loaded, builds):
    paths = sorted(path for path in folder.rglob("*")
                   if path.is_file() and path.relative_to(folder).as_posix() != document_name)
    files = [file_entry(folder, path) for path in paths]
    product = product_package(name, version, files, document_name)
    relations = [relation("SPDXRef-DOCUMENT", "DESCRIBES", product["SPDXID"])]
    relations += [relation(product["SPDXID"], "CONTAINS", entry["SPDXID"]) for entry in files]
    packages = set(loaded)
    for path, entry in zip(paths, files):
        if path.is_symlink() or not is_linked(path):
            continue
        for kind, package in linked_packages(path, map_of(path, builds)):
            packages.add(package)
            relations.append(relation(entry["SPDXID"], kind, identifier("Package", package)))
    relations += [relation(identifier("Package", package), "RUNTIME_DEPENDENCY_OF", product["SPDXID"])
                  for package in loaded]
    date = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc)
    code = product["packageVerificationCode"]["packageVerificationCodeValue"]
    return {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
            "name": f"{name}-{version}",
            "documentNamespace": f"https://kestova.invalid/spdx/{name}-{version}-{code}",
            "creationInfo": {"created": date.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: spdx.py"]},
            "packages": [product] + [debian_package(package) for package in sorted(packages)], "files": files,
            "relationships": relations}


def main(words):
    if len(words) < 6:
        sys.exit(__doc__)
    name, version, folder, document_name, loaded = words[:5]
    packages = sorted(filter(None, re.split(r"[, ]+", loaded)))
    builds = [pathlib.Path(word) for word in words[5:]]
    made = document(name, version, pathlib.Path(folder), document_name, packages, builds)
    (pathlib.Path(folder) / document_name).write_text(json.dumps(made, indent=1) + "\n")


if __name__ == "__main__":
    main(sys.argv[1:])
