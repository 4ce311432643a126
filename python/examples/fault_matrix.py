#!/usr/bin/env python3
"""What becomes of a switch to the recovery partition if one platform call fails: each call in turn, as a picture.

usage: fault_matrix.py PC PICTURE.svg

A row of the picture is a platform call, a column the first, second, third ... time that the switch makes it. A cell has
the result of the switch if that call fails, and says more under the pointer.
"""

import collections
import sys
import typing
import xml.etree.ElementTree as xml

import kestova

COLOURS = {0: "#b7e1a1", 1: "#fde3a7", 2: "#f9c37b", 3: "#a9cdf0", 4: "#f2a6a0", 5: "#d9534f"}
WIDTH, HEIGHT, MARGIN, LABELS = 24, 18, 10, 300  # of a cell, around the picture, and of the names of calls


class Call(typing.NamedTuple):
    name: str
    nth: int

    def fault(self):
        """With a code with which such a call can fail: COM's or Windows' own."""
        is_com = "::" in self.name or self.name.startswith("Co")
        return f"{self.name}#{self.nth}={'E_FAIL' if is_com else 'ERROR_ACCESS_DENIED'}"


class Outcome(typing.NamedTuple):
    result: kestova.SwitchResult
    active: int  # the partition that is active afterwards


def calls_of(trace):
    """The platform calls in a trace, each with its number among those of its name."""
    count = collections.Counter()
    for line in trace:
        if not line.startswith("log "):
            name = line[: line.index("(")]
            count[name] += 1
            yield Call(name, count[name])


def switch(name_or_file, fault=None):
    """Switches a new PC of that name. Returns the outcome and the calls that were made."""
    with kestova.EmulatedPc(name_or_file) as pc, kestova.Kestova() as recovery:
        recovery.initialize()
        list(pc.trace())  # is taken off: what follows is the switch
        pc.fail(fault)
        result = recovery.set_rcvprt_active()
        calls = list(calls_of(pc.trace()))
        pc.fail(None)
        return Outcome(result, recovery.get_active_partition_number()), calls


def fault_matrix(name_or_file):
    """The outcome for each call."""
    _, calls = switch(name_or_file)
    return {call: switch(name_or_file, call.fault())[0] for call in calls}


def words_of(result):
    return kestova.describe("SetRcvprtActive", result)


def add_text(parent, x, y, text, **attributes):
    xml.SubElement(parent, "text", {"x": str(x), "y": str(y), **attributes}).text = text


def add_square(parent, x, y, result, title=None):
    """A square in the colour of the result, with its number."""
    square = xml.SubElement(parent, "g", {"class": "cell"} if title else {})
    size = {"width": str(WIDTH - 2), "height": str(HEIGHT - 2)}
    xml.SubElement(square, "rect", {"x": str(x), "y": str(y), "fill": COLOURS[result], **size})
    add_text(square, x + WIDTH / 2 - 1, y + HEIGHT - 6, str(int(result)), **{"text-anchor": "middle"})
    if title:
        xml.SubElement(square, "title").text = title


def picture_of(matrix, heading):
    names = list(dict.fromkeys(call.name for call in matrix))
    counts = collections.Counter(outcome.result for outcome in matrix.values())
    size = {
        "width": str(2 * MARGIN + LABELS + WIDTH * max(call.nth for call in matrix)),
        "height": str(2 * MARGIN + HEIGHT * (len(names) + len(counts) + 3)),
    }
    style = {"font-family": "sans-serif", "font-size": "11"}
    svg = xml.Element("svg", {"xmlns": "http://www.w3.org/2000/svg", **size, **style})
    xml.SubElement(svg, "rect", {"width": "100%", "height": "100%", "fill": "white"})
    add_text(svg, MARGIN, MARGIN + HEIGHT / 2, heading, **{"font-weight": "bold"})
    top = MARGIN + HEIGHT
    for row, name in enumerate(names):
        add_text(svg, MARGIN, top + HEIGHT * row + HEIGHT - 6, name)
    for call, outcome in matrix.items():
        title = f"{call.fault()}: {words_of(outcome.result)}; partition {outcome.active} is active"
        x = MARGIN + LABELS + WIDTH * (call.nth - 1)
        add_square(svg, x, top + HEIGHT * names.index(call.name), outcome.result, title)
    for row, result in enumerate(sorted(counts), start=len(names) + 1):
        add_square(svg, MARGIN, top + HEIGHT * row, result)
        add_text(svg, MARGIN + WIDTH + 4, top + HEIGHT * row + HEIGHT - 6, f"{counts[result]} × {words_of(result)}")
    return svg


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    _, name_or_file, file = sys.argv
    try:
        matrix = fault_matrix(name_or_file)
    except kestova.KestovaError as why:
        sys.exit(f"fault_matrix: {why}")
    picture = picture_of(matrix, f"A switch to recovery, {name_or_file}: its result if one call fails")
    xml.ElementTree(picture).write(file, encoding="utf-8", xml_declaration=True)
    print(f"{len(matrix)} calls, one failed at a time:")
    for result, count in sorted(collections.Counter(outcome.result for outcome in matrix.values()).items()):
        print(f"{count:4} × {int(result)} {words_of(result)}")


if __name__ == "__main__":
    main()
