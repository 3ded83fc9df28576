"""What is changed in a C++ source text: one operator, constant, jump or statement at a time.

The texts are formatted by clang-format, so a binary operator has a space on both sides, and neither a template's angle
brackets nor a unary operator has.
"""

import bisect
import re
from typing import NamedTuple

TOKEN = re.compile(
    r"""(?P<skipped>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*|\s+)
      |(?P<string>"(?:\\.|[^"\\])*"|'(?:\\.|[^'\\])*')
      |(?P<number>(?:\d[\d']*\.?\d*|\.\d+)(?:[eE][+-]?\d+)?[fFuUlL]*)
      |(?P<name>[A-Za-z_]\w*)
      |(?P<sign><=>|->|\+\+|--|::|&&|\|\||<<=|>>=|<=|>=|==|!=|\+=|-=|\*=|/=|%=|\|=|&=|\^=|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)

# Operators that stand between two operands: the neighbouring one, and the opposite.
BINARY = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "^": ["|"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="],
    "&&": ["||"], "||": ["&&"],
}
STEPS = {"++": "--", "--": "++"}
NAMES = {
    "true": "false", "false": "true", "min": "max", "max": "min", "min_element": "max_element",
    "max_element": "min_element", "lower_bound": "upper_bound", "float": "double",
}
ONLY_IN_STD = {"min", "max", "min_element", "max_element", "lower_bound"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "|=", "&=", "^="}
KEYWORDS = {
    "if", "for", "while", "do", "else", "switch", "case", "default", "return", "break", "continue", "delete", "throw",
    "using", "namespace", "class", "struct", "template", "static_assert", "assert", "const", "constexpr", "static",
    "public", "private", "explicit", "friend", "inline", "typedef", "operator",
}
CLOSING = {"(": ")", "[": "]", "{": "}"}


class Token(NamedTuple):
    kind: str
    text: str
    start: int
    end: int


class Mutation(NamedTuple):
    """The text from `start` to `end` becomes `replacement`."""

    start: int
    end: int
    replacement: str
    line: int  # counted from 1
    before: str  # the lines that are touched, blanks made single
    after: str


def tokens_of(text):
    tokens = []
    for match in TOKEN.finditer(text):
        if match.lastgroup != "skipped":
            tokens.append(Token(match.lastgroup, match.group(), match.start(), match.end()))
    return tokens


def partners_of(tokens):
    """Index of the bracket that closes or opens each bracket, and the innermost open bracket before each token."""
    partners = {}
    innermost = []
    stack = []
    for i, token in enumerate(tokens):
        if token.kind == "sign" and token.text in CLOSING.values():
            partners[i] = stack[-1]
            partners[stack.pop()] = i
        innermost.append(stack[-1] if stack else None)
        if token.kind == "sign" and token.text in CLOSING:
            stack.append(i)
    return partners, innermost


def unchanged_ranges(tokens, partners):
    """Assertions are no part of what is built, and a static assertion no part of what runs."""
    return [(i, partners[i + 1]) for i, token in enumerate(tokens[:-1])
            if token.text in ("static_assert", "assert") and tokens[i + 1].text == "("]


def constants_near(text):
    """The constants that stand in for a number."""
    digits, suffix = re.fullmatch(r"(.*?)([fFuUlL]*)", text).groups()
    if "." not in digits and "e" not in digits.lower():
        value = int(digits.replace("'", ""))
        near = [value + 1, value - 1]
        return [f"{n}{suffix}" for n in near if n >= 0 or "u" not in suffix.lower()]
    value = float(digits)
    near = [value + 1.0, value - 1.0] if value == 0.0 or value >= 1.0 else [value * 2.0, value * 0.5]
    return [f"{n!r}{suffix}" for n in dict.fromkeys([*near, -value]) if n != value]


def is_binary(text, token):
    return text[token.start - 1].isspace() and text[token.end].isspace()


def statement_starts(tokens, partners, innermost):
    """Tokens that begin a statement: after another one, after the head of a branch or loop, after a label."""
    for i in range(1, len(tokens)):
        outer = innermost[i]
        if outer is not None and tokens[outer].text != "{":
            continue
        before = tokens[i - 1]
        after_head = before.text == ")" and tokens[partners[i - 1] - 1].text in ("if", "for", "while")
        if before.text in (";", "{", "}", "else", ":") or after_head:
            yield i, after_head


def statement_end(tokens, innermost, first):
    """The semicolon that ends a statement, or None."""
    for i in range(first, len(tokens)):
        if tokens[i].text == ";" and innermost[i] == innermost[first]:
            return i
        if tokens[i].text == "}" and i + 1 < len(tokens) and innermost[i + 1] != innermost[first]:
            return None
    return None


def is_call_or_assignment(tokens, partners, first):
    """Calls, assignments and steps, not declarations: a name, perhaps with members and indices, then ( or = or ++."""
    i = first
    while tokens[i].text in ("*", "++", "--"):
        if tokens[i].text != "*":
            return True
        i += 1
    if tokens[i].kind != "name" or tokens[i].text in KEYWORDS:
        return False
    while True:
        i += 1
        if tokens[i].text == "[":
            i = partners[i]
        elif tokens[i].text in (".", "->", "::"):
            i += 1
        elif tokens[i].text == "(" and tokens[partners[i] + 1].text in (".", "->", "=", "["):
            i = partners[i]  # a call whose result is used
        elif tokens[i].text == "(" and tokens[i - 1].text == "reserve":
            return False  # changes nothing but the speed
        else:
            return tokens[i].text == "(" or tokens[i].text in ASSIGNMENTS or tokens[i].text in STEPS


def replacements_for(text, tokens, i):
    """The replacements of a single token."""
    token = tokens[i]
    before = tokens[i - 1] if i > 0 else None
    if token.kind == "number":
        near = constants_near(token.text)
        in_index = before is not None and before.text == "["
        return [n for n in near if not (in_index and n.startswith("-"))]
    if token.kind == "name":
        if token.text in ONLY_IN_STD and (before is None or before.text != "::" or tokens[i - 2].text != "std"):
            return []
        return [NAMES[token.text]] if token.text in NAMES else []
    if token.text in STEPS:
        return [STEPS[token.text]]
    if token.text in BINARY and is_binary(text, token):
        return BINARY[token.text]
    if token.text in ("!", "-") and not text[token.end].isspace():
        return [""]
    return []


def mutations_of(text):
    """All changes of a text, in its order."""
    tokens = tokens_of(text)
    partners, innermost = partners_of(tokens)
    line_starts = [0] + [match.end() for match in re.finditer("\n", text)]
    left_alone = unchanged_ranges(tokens, partners)
    changes = []

    for i, token in enumerate(tokens):
        if any(first <= i <= last for first, last in left_alone):
            continue
        changes += [(token.start, token.end, new) for new in replacements_for(text, tokens, i)]

    for first, guarded in statement_starts(tokens, partners, innermost):
        last = statement_end(tokens, innermost, first)
        if last is None:
            continue
        jump = tokens[first].text in ("break", "continue") or \
            (tokens[first].text == "return" and (guarded or last == first + 1))
        if jump or is_call_or_assignment(tokens, partners, first):
            changes.append((tokens[first].start, tokens[last].end, ";"))

    mutations = []
    for start, end, new in sorted(changes):
        first_line = bisect.bisect_right(line_starts, start) - 1
        last_line_end = text.find("\n", end)
        lines = (line_starts[first_line], last_line_end if last_line_end >= 0 else len(text))
        before = " ".join(text[lines[0]:lines[1]].split())
        after = " ".join((text[lines[0]:start] + new + text[end:lines[1]]).split())
        mutations.append(Mutation(start, end, new, first_line + 1, before, after))
    return mutations
