"""The small changes that mutation testing makes to a C++ source: typing slips that often still compile.

The source is read as tokens, without a parser: macros stay as they are written. Spaces tell an operator from a template
bracket or a pointer, because every source is formatted. Comments, preprocessor lines and assertions of the compiler are
left alone. Some of the changes do not compile; whoever tries them finds out.
"""
import bisect
import dataclasses
import re

TOKEN = re.compile(r"""
    (?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*)
  | (?P<text>"(?:[^"\\\n]|\\.)*")
  | (?P<char>'(?:[^'\\\n]|\\.)+')
  | (?P<number>\d[\w.']*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|<=>|->\*|\.\.\.|::|->|\+\+|--|&&|\|\||[<>=!+\-*/%&|^]=|<<|>>|.)
""", re.X | re.S | re.M)

OTHER_OPERATOR = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&", "+": "-", "-": "+",
    "*": "/", "/": "*", "%": "*", "&": "|", "|": "&", "<<": ">>", ">>": "<<", "+=": "-=", "-=": "+=", "++": "--",
    "--": "++", "|=": "&=", "&=": "|="}
OTHER_WORD = {
    "true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE", "LOG_LEVEL_TRACE": "LOG_LEVEL_ERROR",
    "LOG_LEVEL_ERROR": "LOG_LEVEL_TRACE", "LOG_LEVEL_WARNING": "LOG_LEVEL_ERROR", "LOG_LEVEL_INFO": "LOG_LEVEL_ERROR"}
# A name in capitals is a constant unless something is declared with it.
CONSTANT = re.compile(r"[A-Z][A-Z0-9]*_[A-Z0-9_]+$|FILE_DEVICE_\w+$")
NOT_CALLS = {"if", "for", "while", "switch", "return", "catch", "sizeof", "decltype", "alignof", "TEXT", "defined"}
CONTROL = {"if", "for", "while", "switch", "do", "else", "case", "default", "try", "catch", "using", "static_assert",
           "throw", "public", "private", "protected", "template", "struct", "class", "enum", "typedef", "goto"}
DECLARATION = re.compile(r"(?:(?:const|static|constexpr|inline|auto|mutable)\b\s*)*"
                         r"[\w:]+(?:<[^;=]*>)?(?:::\w+)?(?:\s*const)?[*&]*\s+[*&]*(?:const\s+)?(\w+|\[[\w, ]+\])\s*[=({;\[]")
# Functions of two arguments that may be given in either order.
SYMMETRIC = {"EqualIgnoringCase", "IsEqualGUID"}
OPENING, CLOSING = "([{", ")]}"


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int
    end: int


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str
    kind: str
    function: str
    line: int
    before: str  # the whole lines that change, in one line and without their comments
    after: str
    begin: int
    end: int
    text: str  # replaces what is between begin and end

    def key(self):
        """What finds it again after lines have moved."""
        return self.path, self.function, f"{self.before} -> {self.after}"

    def key_of_any_change(self):
        return self.path, self.function, f"{self.before} -> *"

    def applied_to(self, source):
        return source[:self.begin] + self.text + source[self.end:]


def in_one_line(text):
    """The code of some lines, without their comments."""
    return " ".join("".join(match.group() for match in TOKEN.finditer(text) if not is_comment(match)).split())


def is_comment(match):
    return match.lastgroup == "skip" and match.group().startswith(("//", "/*"))


def tokens_of(source):
    return [Token(match.lastgroup, match.group(), match.start(), match.end())
            for match in TOKEN.finditer(source) if match.lastgroup != "skip"]


class Source:
    """A source, its tokens, and which bracket closes which."""

    def __init__(self, path, text):
        self.path, self.text, self.tokens = path, text, tokens_of(text)
        self.line_starts = [0] + [match.end() for match in re.finditer("\n", text)]
        self.partner = {}
        self.in_body = []  # for each token whether it is inside a function
        open_brackets = []
        for at, token in enumerate(self.tokens):
            if token.kind == "operator" and token.text in CLOSING and open_brackets:
                begin, _ = open_brackets.pop()
                self.partner[begin], self.partner[at] = at, begin
            inside = bool(open_brackets) and open_brackets[-1][1]
            self.in_body.append(inside)
            if token.kind == "operator" and token.text in OPENING:
                opens_body = token.text == "{" and self.follows_parameters(at)
                open_brackets.append((at, inside or opens_body))

    def follows_parameters(self, at):
        while at > 0 and self.tokens[at - 1].text in ("const", "noexcept", "override", "final"):
            at -= 1
        return at > 0 and self.tokens[at - 1].text in (")", "else", "do", "try")

    def is_text(self, at, *texts):
        return 0 <= at < len(self.tokens) and self.tokens[at].text in texts

    def spaced(self, token):
        """Whether blanks surround it, as they do a binary operator."""
        return self.text[token.begin - 1].isspace() and self.text[token.end].isspace()

    def line_of(self, begin):
        return bisect.bisect_right(self.line_starts, begin)

    def function_at(self, begin):
        """The function, class or constant that the last unindented line above began."""
        for line in range(self.line_of(begin) - 1, -1, -1):
            text = self.text[self.line_starts[line]:].partition("\n")[0]
            if not re.match(r"[A-Za-z]", text) or text.startswith(("namespace", "public:", "private:")):
                continue
            declared = re.match(r"(?:class|struct|enum(?: class)?)\s+(\w+)", text)
            named = declared or re.search(r"([\w:~]+|operator\W+)\s*(?:\[\w*\])?\s*(?:[({;=]|$)", text)
            return named.group(1) if named else ""
        return ""

    def mutant(self, kind, begin, end, text):
        """The change as the whole lines that it touches."""
        first = self.line_starts[self.line_of(begin) - 1]
        last = self.text.find("\n", end)
        last = len(self.text) if last < 0 else last
        return Mutant(self.path, kind, self.function_at(begin), self.line_of(begin),
                      in_one_line(self.text[first:last]),
                      in_one_line(self.text[first:begin] + text + self.text[end:last]), begin, end, text)

    def arguments(self, opening):
        """The spans of what the commas between a bracket and its partner separate."""
        closing = self.partner[opening]
        spans, first, at = [], opening + 1, opening + 1
        while at <= closing:
            if at == closing or self.is_text(at, ","):
                if at > first:
                    spans.append((self.tokens[first].begin, self.tokens[at - 1].end))
                first = at + 1
            elif self.tokens[at].text in OPENING:
                at = self.partner.get(at, at)
            at += 1
        return spans


def operators(source):
    for at, token in enumerate(source.tokens):
        if token.kind != "operator" or at == 0:
            continue
        if token.text == "!":
            yield source.mutant("operator", token.begin, token.end, "")
        elif token.text == "-" and not source.spaced(token) and not source.is_text(at - 1, ")"):
            yield source.mutant("operator", token.begin, token.end, "")
        elif token.text in OTHER_OPERATOR and (source.spaced(token) or token.text in ("++", "--")):
            yield source.mutant("operator", token.begin, token.end, OTHER_OPERATOR[token.text])


def constants(source):
    for at, token in enumerate(source.tokens):
        change = lambda text, kind="constant": source.mutant(kind, token.begin, token.end, text)
        if token.kind == "number":
            match = re.fullmatch(r"(0[xX])?([0-9a-fA-F']+?)([uUlL]*)", token.text)
            if not match:
                continue
            prefix, digits, suffix = match.group(1) or "", match.group(2).replace("'", ""), match.group(3)
            value = int(digits, 16 if prefix else 10)
            spell = lambda number: f"{prefix}{number:x}{suffix}" if prefix else f"{number}{suffix}"
            yield change(spell(value + 1))
            if value > 0:
                yield change(spell(value - 1))
        elif token.kind == "char" and re.fullmatch(r"'[ -&(-\[\]-}]'", token.text):
            yield change(f"'{chr(ord(token.text[1]) + 1)}'" if token.text[1] not in "&[" else "'a'")
        elif token.kind == "word" and token.text in OTHER_WORD:
            yield change(OTHER_WORD[token.text], "level" if token.text.startswith("LOG_") else "constant")
        elif token.kind == "word" and CONSTANT.match(token.text) and at + 1 < len(source.tokens):
            following = source.tokens[at + 1]
            declares = following.kind == "word" or following.text in ("(", "*", "&", "::", "{", "=")
            if not declares and not source.is_text(at - 1, "struct", "class", "<", "."):
                yield change(f"static_cast<decltype({token.text})>({token.text} + 1)")


def texts(source):
    for at, token in enumerate(source.tokens):
        if token.kind == "text" and not (source.is_text(at - 1, "extern", "include")):
            yield source.mutant("text", token.end - 1, token.end - 1, "~")


def calls(source):
    """The index of the opening bracket of each call in a function."""
    for at, token in enumerate(source.tokens):
        if token.text == "(" and at in source.partner and source.in_body[at] and source.tokens[at - 1].kind == "word" \
                and source.tokens[at - 1].text not in NOT_CALLS:
            yield at


def arguments(source):
    for opening in calls(source):
        spans = source.arguments(opening)
        written = [source.text[begin:end] for begin, end in spans]
        for (begin, end), text in zip(spans, written):
            simple = re.fullmatch(r'[\d.xa-fA-F]+|-1|nullptr|\{\}|true|false|TRUE|FALSE|LOG_\w+', text)
            if not simple and not text.startswith(('TEXT(', '"', "[")):
                yield source.mutant("argument", begin, end, "{}")
        symmetric = source.tokens[opening - 1].text in SYMMETRIC
        for n in range(0 if symmetric else len(spans) - 1):
            if written[n] != written[n + 1]:
                between = source.text[spans[n][1]:spans[n + 1][0]]
                yield source.mutant("argument order", spans[n][0], spans[n + 1][1], written[n + 1] + between + written[n])


def links_of_chains(source):
    """`.Text(...)` in a chain of calls."""
    for opening in calls(source):
        if source.is_text(opening - 2, ".") and source.is_text(opening - 3, ")"):
            closing = source.partner[opening]
            yield source.mutant("dropped call", source.tokens[opening - 2].begin, source.tokens[closing].end, "")


def statements(source):
    """The indices of the first and the last token of each statement in a function that is not a block."""
    at, tokens = 0, source.tokens
    while at < len(tokens):
        starts = source.in_body[at] and (
            source.is_text(at - 1, ";", "{", "}", "else") or source.is_text(at - 1, ":") and not source.is_text(at - 2, ")")
            or source.is_text(at - 1, ")") and source.is_text(source.partner.get(at - 1, 0) - 1, "if", "for", "while"))
        if not starts or tokens[at].text in CONTROL or tokens[at].text in "{};":
            at += 1
            continue
        last = at
        while last < len(tokens) and tokens[last].text not in (";", "}"):
            last = (source.partner.get(last, last) if tokens[last].text in OPENING else last) + 1
        if last < len(tokens) and tokens[last].text == ";":
            yield at, last
        at += 1


def declares(text):
    return bool(DECLARATION.match(text)) and not text.startswith(("delete ", "return "))


def dropped_statements(source):
    previous = None
    for first, last in statements(source):
        begin, end = source.tokens[first].begin, source.tokens[last].end
        text = source.text[begin:end]
        word = source.tokens[first].text
        if word == "return":
            if last > first + 1 and not re.match(r"return (?:\{\}|true|false|TRUE|FALSE|-?\d+|nullptr);", text):
                yield source.mutant("result", begin, end, "return {};")
            previous = None
            continue
        if declares(text):
            if "=" not in text:
                yield source.mutant("dropped call", begin, end, "")
            previous = None
            continue
        yield source.mutant("dropped call", begin, end, ";")
        # Two calls in a row, in one block.
        if previous and previous[0] == first - 1 and "(" in text:
            between = source.text[previous[2]:begin]
            before = source.text[previous[1]:previous[2]]
            if before != text:
                yield source.mutant("order", previous[1], end, text + between + before)
        previous = (last, begin, end) if "(" in text else None


def conditions(source):
    for at, token in enumerate(source.tokens):
        if token.text == "(" and source.is_text(at - 1, "if", "constexpr") and source.in_body[at] and at in source.partner:
            begin, end = token.end, source.tokens[source.partner[at]].begin
            for constant in ("true", "false"):
                yield source.mutant("condition", begin, end, constant)


def mutants_of(path, text):
    """Every mutant of one source, in the order of the lines."""
    source = Source(path, text)
    found = {}
    for kind in (operators, constants, texts, arguments, links_of_chains, dropped_statements, conditions):
        for mutant in kind(source):
            if mutant.before == mutant.after:
                continue
            found.setdefault((mutant.begin, mutant.end, mutant.text), mutant)
    left_alone = [(match.start(), match.end())
                  for match in re.finditer(r"static_assert\(.*?\);|\) (?:const )?= 0;", text, re.S)]
    return sorted((mutant for mutant in found.values()
                   if not any(begin <= mutant.begin < end for begin, end in left_alone)),
                  key=lambda mutant: (mutant.begin, mutant.end, mutant.text))
