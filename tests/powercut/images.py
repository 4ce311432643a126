#!/usr/bin/env python3
"""Cuts the power at every point of every boot switch of a disk image, and requires that the image can be used.

    images.py TOOL [--sample COUNT] [--seed SEED] [--figures FILE]

Each switch runs once under strace, which says what the tool writes, flushes, renames and removes. From that follow the
states in which a power cut can leave the disk: what was flushed is there; of what was not, any part is, in any order, and
one write may be torn between its sectors. Each state is put on a disk of its own and looked at: before anything else runs
the partition table is readable and one partition is active; the tool shows it without writing; after `recover` all of the
switch is there or nothing, and the file system is consistent; and both `boot recovery` and `boot system` work at once.

Without --sample every state is looked at. Exit status: 0 if all are as they must be, 1 if not.
"""
import argparse
import concurrent.futures
import datetime
import itertools
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SECTOR = 512
JOURNAL = "disk.img.kestova-journal"
CALLS = "openat,pwrite64,write,fsync,fdatasync,rename,unlink"

# The commands that lead to where a switch starts, the switch, and the partitions that `boot system` can boot after it.
SWITCHES = [
    ([], "boot recovery", {2}),
    ([], "call SetPOneActive", {2}),
    (["boot recovery"], "boot system", {2}),
    (["boot recovery"], "call SetPTwoActive", {2}),
    (["call SetActive 3"], "boot recovery", {3}),
    (["call SetActive 3"], "call SetPOneActive", {3}),
    (["call SetActive 3", "boot recovery"], "boot system", {3}),
    (["call SetActive 3", "boot recovery"], "call SetPTwoActive", {2, 3}),
]


class Wrong(Exception):
    """A state that is not as it must be."""


def run(*words, cwd):
    result = subprocess.run(words, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            text=True, errors="replace")
    return result.returncode, result.stdout


def must(*words, cwd):
    status, said = run(*words, cwd=cwd)
    if status != 0:
        raise Wrong(f"{' '.join(map(str, words))} ended with {status}: {said.strip()[-300:]}")
    return said


def copy(image, folder):
    must("cp", "--sparse=always", str(image), str(folder / "disk.img"), cwd=folder)


# --- what the tool does to the disk ---

def events(tool, folder, command):
    """Runs the command; (what, file, offset, bytes) of each call that touches the image or its folder, in order."""
    trace = folder / "trace"
    # Not the process that opens virtual disks: its calls would interrupt the lines of the others.
    must("strace", "-y", "-xx", "-s", "16777216", "-e", f"trace={CALLS}", "-o", str(trace),
         tool, "--image", "disk.img", *command.split(), cwd=folder)
    found = []
    for line in trace.read_text().splitlines():
        match = re.match(r"(\w+)\((.*)\) = (\d+)", line)
        if match is None:
            continue
        call, words = match[1], match[2]
        texts = [bytes.fromhex(text.replace("\\x", "")) for text in re.findall(r'["<]((?:\\x[0-9a-f]{2})*)[">]', words)]
        names = [os.path.basename(text.decode(errors="replace")) for text in texts]
        if call == "openat" and "O_CREAT" in words:
            found.append(("create", names[1], 0, b""))
        elif call == "pwrite64" and names[0] == "disk.img":
            found.append(("write", names[0], int(words.rsplit(",", 1)[1]), texts[1]))
        elif call == "write" and names[0].startswith("disk.img.kestova-"):
            found.append(("write", names[0], 0, texts[1]))
        elif call in ("fsync", "fdatasync"):
            found.append(("flush", names[0], 0, b""))
        elif call in ("rename", "unlink"):
            found.append((call, names[0], 0, names[-1].encode()))
    trace.unlink()
    return found


# --- the states in which a cut can leave the disk ---

def tears(write):
    """The write as it is when the power fails in the middle of it: its first sector, all but its last, its last."""
    offset, content = write
    if len(content) <= SECTOR:
        return []
    return [(offset, content[:SECTOR]), (offset, content[:-SECTOR]), (offset + len(content) - SECTOR, content[-SECTOR:])]


def parts(pending):
    """Any part of the writes, with at most one of them torn."""
    for count in range(len(pending) + 1):
        for chosen in itertools.combinations(pending, count):
            yield list(chosen)
            for torn in range(count):
                for tear in tears(chosen[torn]):
                    yield [*chosen[:torn], *chosen[torn + 1:], tear]


class Folder:
    """The files beside the image: as they are in memory, and as they can be on the disk.

    A name is on the disk for certain once the folder is flushed, a file's content once the file is."""

    def __init__(self, name):
        self.name, self.memory, self.flushed, self.disk = name, {}, set(), [{}]

    def contents(self, name):
        content = self.memory[name]
        return {content} if name in self.flushed else {b"", content[:len(content) // 2], content}

    def do(self, what, name, content):
        memory, disk = self.memory, self.disk
        if what in ("create", "write"):
            memory[name] = memory.get(name, b"") + content
            self.flushed.discard(name)
            disk += [{**files, name: part} for files in disk for part in self.contents(name)]
        elif what == "rename":
            new = content.decode()
            memory[new] = memory.pop(name)
            if name in self.flushed:
                self.flushed.add(new)
            disk += [{**without(files, name), new: files[name]} for files in disk if name in files]
        elif what == "unlink":
            del memory[name]
            disk += [without(files, name) for files in disk]
        elif name == self.name:
            self.disk = [dict(zip(memory, each)) for each in itertools.product(*map(self.contents, memory))]
        elif name in memory:
            self.flushed.add(name)
            self.disk = [files for files in disk if files.get(name, memory[name]) == memory[name]]


def without(files, name):
    return {key: value for key, value in files.items() if key != name}


def states(happened, folder):
    """Each (writes to the image, files beside it) that a cut at some point can leave, once."""
    seen, found = set(), []
    flushed, pending, files = [], [], Folder(folder)

    def add():
        for part in parts(pending):
            for beside in files.disk:
                key = (tuple(flushed + part), tuple(sorted(beside.items())))
                if key not in seen:
                    seen.add(key)
                    found.append((flushed + part, beside))

    add()
    for what, name, offset, content in happened:
        if name != "disk.img":
            files.do(what, name, content)
        elif what == "write":
            pending.append((offset, content))
        else:
            flushed, pending = flushed + pending, []
        add()
    return found


# --- what must be true of a state ---

def active(folder):
    table = json.loads(must("sfdisk", "--json", "disk.img", cwd=folder))["partitiontable"]
    return [number for number, entry in enumerate(table["partitions"], 1) if entry.get("bootable")]


def require(condition, words):
    if not condition:
        raise Wrong(words)


def consistent(folder):
    must("dd", "if=disk.img", "of=volume", "bs=1M", "skip=1", "count=60", "conv=sparse", "status=none", cwd=folder)
    must("ntfsfix", "--no-action", "volume", cwd=folder)
    (folder / "volume").unlink()


def settled(folder, wanted):
    require(not (folder / JOURNAL).exists(), "the journal is still there")
    require(len(active(folder)) == 1 and active(folder)[0] in wanted, f"active: {active(folder)}, not {wanted}")
    consistent(folder)


def content(folder, ranges):
    with open(folder / "disk.img", "rb") as image:
        return [os.pread(image.fileno(), length, offset) for offset, length in ranges]


class Switch:
    def __init__(self, tool, image, folder, start, command, systems):
        self.tool, self.command, self.systems = tool, command, systems
        self.image = folder / "before.img"
        copy(image, folder)
        for step in start:
            must(tool, "--image", "disk.img", *step.split(), cwd=folder)
        os.replace(folder / "disk.img", self.image)
        copy(self.image, folder)
        self.active = active(folder)
        happened = events(tool, folder, command)
        self.states = states(happened, folder.name)
        self.ranges = sorted({(offset, len(data)) for what, name, offset, data in happened
                              if (what, name) == ("write", "disk.img")})
        self.after = content(folder, self.ranges)
        self.active += active(folder)
        copy(self.image, folder)
        self.before = content(folder, self.ranges)
        (folder / "disk.img").unlink()

    def put(self, state, folder):
        for old in folder.iterdir():
            old.unlink()
        copy(self.image, folder)
        writes, beside = state
        with open(folder / "disk.img", "r+b") as image:
            for offset, data in writes:
                os.pwrite(image.fileno(), data, offset)
        for name, data in beside.items():
            (folder / name).write_bytes(data)

    def check(self, state):
        """What is wrong with the state, or nothing."""
        with tempfile.TemporaryDirectory(prefix="kestova-cut-") as name:
            folder = pathlib.Path(name)
            try:
                self.look(state, folder)
                self.recover(state, folder)
                for first, second in (("boot recovery", "boot system"), ("boot system", "boot recovery")):
                    self.put(state, folder)
                    for command in (first, second):
                        must(self.tool, "--image", "disk.img", *command.split(), cwd=folder)
                        settled(folder, {1} if command == "boot recovery" else self.systems)
            except Wrong as wrong:
                return str(wrong)
        return None

    def look(self, state, folder):
        self.put(state, folder)
        require(len(active(folder)) == 1, f"active before anything runs: {active(folder)}")
        before = content(folder, self.ranges)
        must(self.tool, "--image", "disk.img", "--json", "status", cwd=folder)
        require(content(folder, self.ranges) == before, "status has written")
        require((folder / JOURNAL).exists() == (JOURNAL in state[1]), "status has removed the journal")

    def recover(self, state, folder):
        self.put(state, folder)
        must(self.tool, "--image", "disk.img", "recover", cwd=folder)
        require(content(folder, self.ranges) in (self.before, self.after), "part of the switch is left")
        settled(folder, set(self.active))


def described(state):
    writes, beside = state
    return (f"writes {', '.join(f'{len(data)} at {offset}' for offset, data in writes) or 'none'}; "
            f"beside it {', '.join(f'{name} ({len(data)} bytes)' for name, data in beside.items()) or 'nothing'}")


def main():
    words = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    words.add_argument("tool")
    words.add_argument("--sample", type=int, metavar="COUNT", help="look at that many states, chosen at random")
    words.add_argument("--seed", type=int, default=1)
    words.add_argument("--figures", metavar="FILE", help="append the result: date, commit, states, wrong ones")
    words = words.parse_args()
    tool = os.path.abspath(words.tool)

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # which removes the temporary folders
    with tempfile.TemporaryDirectory(prefix="kestova-cuts-") as name:
        top = pathlib.Path(name)
        image = top / "factory.img"
        must(str(ROOT / "tests/images/make-factory-mbr"), str(image), cwd=top)
        switches = []
        for number, (start, command, systems) in enumerate(SWITCHES):
            folder = top / str(number)
            folder.mkdir()
            switches.append(Switch(tool, image, folder, start, command, systems))
        chosen = [(switch, state) for switch in switches for state in switch.states]
        count = len(chosen)
        if words.sample is not None and words.sample < count:
            chosen = random.Random(words.seed).sample(chosen, words.sample)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            results = list(pool.map(lambda one: one[0].check(one[1]), chosen))

    wrong = [(switch, state, said) for (switch, state), said in zip(chosen, results) if said is not None]
    for switch, state, said in wrong:
        print(f"WRONG: {switch.command}: {described(state)}\n    {said}")
    print(f"{len(SWITCHES)} switches of an image, {len(chosen)} of {count} states after a power cut (seed {words.seed}): "
          f"{len(wrong)} wrong")
    if words.figures is not None:
        commit = must("git", "describe", "--always", "--dirty", cwd=ROOT).strip()
        with open(words.figures, "a") as figures:
            print(datetime.date.today(), commit, len(chosen), len(wrong), sep="\t", file=figures)
    return 1 if wrong or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
