"""The small changes that can be made to a C++ source: where, of which kind, and what the text becomes."""

import random
import re
from dataclasses import dataclass

KINDS = ("comparison", "constant", "operator", "text", "deleted call")

TOKEN = re.compile(r"""
      (?P<space>\s+)
    | (?P<comment>//[^\n]*|/\*.*?\*/)
    | (?P<directive>^\#(?:\\\n|[^\n])*)
    | (?P<raw>(?:u8|u|U|L)?R"(?P<delimiter>[^()\\\s]*)\(.*?\)(?P=delimiter)")
    | (?P<string>(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*")
    | (?P<character>'(?:\\.|[^'\\\n])+')
    | (?P<number>(?:0[xX][0-9a-fA-F']+|\d[\d']*(?:\.\d+)?)\w*)
    | (?P<name>[A-Za-z_]\w*)
    | (?P<operator><<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|%=|&=|\|=|\^=|.)
    """, re.X | re.M | re.S)

COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
# The layout tells them from references, pointers and template brackets: these stand between two blanks.
BINARY_OPERATORS = {"&&": "||", "||": "&&", "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "|": "&",
                    ">>": "<<", "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|="}
STEPS = {"++": "--", "--": "++"}
NO_CALL = {"if", "for", "while", "switch", "return", "case", "default", "else", "do", "using", "namespace", "class",
           "struct", "enum", "const", "constexpr", "static", "template", "delete", "new", "throw", "break",
           "continue", "static_assert", "sizeof", "catch", "try", "friend", "explicit", "virtual", "operator"}


@dataclass(frozen=True)
class Change:
    path: str  # from the project's folder
    offset: int
    length: int
    replacement: str
    kind: str
    line: int

    def applied_to(self, text):
        return text[:self.offset] + self.replacement + text[self.offset + self.length:]

    def shown_in(self, text):
        """The changed piece of the source, without its lines' ends and indentation, before and after."""
        begin = text.rfind("\n", 0, self.offset) + 1
        end = text.find("\n", self.offset + self.length)
        before = text[begin:end]
        after = text[begin:self.offset] + self.replacement + text[self.offset + self.length:end]
        return " ".join(before.split()), " ".join(after.split())


@dataclass(frozen=True)
class Token:
    kind: str
    begin: int
    end: int
    text: str


def code_tokens(source):
    """Without blanks, comments and directives, and without what only the compiler reads."""
    tokens = [Token(match.lastgroup if match.lastgroup != "delimiter" else "raw", match.start(), match.end(), match[0])
              for match in TOKEN.finditer(source)]
    tokens = [token for token in tokens if token.kind not in ("space", "comment", "directive")]
    kept = []
    position = 0
    while position < len(tokens):
        texts = [token.text for token in tokens[position:position + 2]]
        if texts == ["static_assert", "("]:
            position = matching(tokens, position + 1) + 1
        elif texts == ["[", "["]:
            position = matching(tokens, position) + 1
        else:
            kept.append(tokens[position])
            position += 1
    return kept


def matching(tokens, position):
    """The position of the bracket that closes the one at the given position."""
    closing = {"(": ")", "[": "]", "{": "}"}[tokens[position].text]
    opening = tokens[position].text
    depth = 0
    for current in range(position, len(tokens)):
        if tokens[current].text == opening:
            depth += 1
        elif tokens[current].text == closing:
            depth -= 1
            if depth == 0:
                return current
    return len(tokens) - 1


def other_number(text, dice):
    match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([A-Za-z_]*)", text)
    if not match:
        return None  # with a point or digit separators
    digits, suffix = match.groups()
    value = int(digits, 0) if digits.lower().startswith("0x") else int(digits)
    value += dice.choice((1, -1)) if value > 0 else 1
    return (f"0x{value:0{len(digits) - 2}X}" if digits.lower().startswith("0x") else str(value)) + suffix


def other_text(text, dice):
    """One letter or digit becomes the next one; a text without any becomes longer."""
    first = text.index('"') + 1
    places = [match.start() for match in re.finditer(r"\\.|[A-Za-z0-9]", text[first:-1])
              if not match[0].startswith("\\")]
    if not places:
        return text[:-1] + 'x"'
    place = first + dice.choice(places)
    following = {"z": "a", "Z": "A", "9": "0"}
    return text[:place] + following.get(text[place], chr(ord(text[place]) + 1)) + text[place + 1:]


def scopes(tokens):
    """For each token whether it stands in a function's body."""
    inside = []
    stack = []
    since = 0  # the first token that may say what the next brace opens
    for position, token in enumerate(tokens):
        inside.append(bool(stack) and stack[-1])
        if token.text == "{":
            words = {tokens[earlier].text for earlier in range(since, position)}
            is_type = words & {"class", "struct", "enum", "namespace", "union"} and "(" not in words
            is_function = not is_type and (")" in words or bool(words & {"else", "do", "try"}) or not words)
            stack.append(bool(stack and stack[-1] and not is_type) or bool(is_function))
        elif token.text == "}" and stack:
            stack.pop()
        if token.text in (";", "{", "}"):
            since = position + 1
    return inside


def call_end(tokens, position):
    """The position of the semicolon of a statement that is nothing but a call, else None."""
    if tokens[position].kind != "name" or tokens[position].text in NO_CALL:
        return None
    is_log = tokens[position].text in ("qDebug", "qWarning", "qInfo", "qCritical")
    if tokens[position].text in ("Q_EMIT", "emit"):
        position += 1
    calls = 0
    current = position + 1
    while current < len(tokens):
        text = tokens[current].text
        if text in ("(", "["):
            calls += text == "("
            current = matching(tokens, current) + 1
        elif text in (".", "->", "::") and tokens[current + 1].kind == "name":
            current += 2
        elif text == ";":
            return current if calls else None
        elif text == "<<" and is_log:
            while tokens[current].text != ";":
                current = matching(tokens, current) + 1 if tokens[current].text in ("(", "[", "{") else current + 1
        else:
            return None
    return None


def is_step_of_loop(tokens, position):
    """Whether the token stands in the head of a for loop. Such a loop would never end, which no assertion sees."""
    depth = 0
    for current in range(position, -1, -1):
        text = tokens[current].text
        depth += {")": 1, "(": -1}.get(text, 0)
        if depth < 0:
            return current > 0 and tokens[current - 1].text == "for"
        if text in "{}":
            return False
    return False


def closes_condition(tokens, position):
    """Whether the bracket at the position is the end of an if, for, while or switch."""
    depth = 0
    for current in range(position, -1, -1):
        if tokens[current].text == ")":
            depth += 1
        elif tokens[current].text == "(":
            depth -= 1
            if depth == 0:
                return current > 0 and tokens[current - 1].text in ("if", "for", "while", "switch")
    return False


def begins_statement(tokens, position):
    before = tokens[position - 1].text if position else ""
    return before in (";", "{", "}", "else", "do", ":") or (before == ")" and closes_condition(tokens, position - 1))


def changes_of(path, source, seed):
    """All changes that can be made to one source; the same seed makes the same ones."""
    tokens = code_tokens(source)
    in_function = scopes(tokens)
    for position, token in enumerate(tokens):
        dice = random.Random(f"{seed}:{path}:{token.begin}")
        line = source.count("\n", 0, token.begin) + 1

        def change(kind, replacement, end=token.end):
            return Change(path, token.begin, end - token.begin, replacement, kind, line)

        spaced = source[token.begin - 1:token.begin].isspace() and source[token.end:token.end + 1].isspace()
        if token.kind == "operator":
            if token.text in COMPARISONS and spaced:
                yield change("comparison", COMPARISONS[token.text])
            elif token.text in BINARY_OPERATORS and spaced:
                neighbours = {tokens[position - 1].kind, tokens[position + 1].kind}
                if not neighbours & {"string", "character"}:  # texts are joined, which has no opposite
                    yield change("operator", BINARY_OPERATORS[token.text])
            elif token.text in STEPS and not is_step_of_loop(tokens, position):
                yield change("operator", STEPS[token.text])
            elif token.text == "!":
                yield change("operator", "")
        elif token.kind == "number":
            words = [other.text for other in tokens[max(position - 2, 0):position]]
            is_pure = words in ([")", "="], ["const", "="])  # a function without a body
            number = None if is_pure else other_number(token.text, dice)
            if number:
                yield change("constant", number)
        elif token.kind == "character" and re.fullmatch(r"'[A-Za-z0-9]'", token.text):
            yield change("constant", other_text(token.text.replace("'", '"'), dice).replace('"', "'"))
        elif token.text in ("true", "false"):
            yield change("constant", {"true": "false", "false": "true"}[token.text])
        elif token.kind == "string" and len(token.text) > 2 and tokens[position - 1].text != "extern":
            yield change("text", other_text(token.text, dice))
        elif token.kind == "name" and in_function[position] and begins_statement(tokens, position):
            end = call_end(tokens, position)
            if end is not None:
                yield change("deleted call", ";", tokens[end].end)


def choose(sources, count, seed):
    """As many of each kind as there are; sources maps paths to texts. The order of the result is that of the draw."""
    by_kind = {kind: [] for kind in KINDS}
    for path in sorted(sources):
        for change in changes_of(path, sources[path], seed):
            by_kind[change.kind].append(change)
    for kind in KINDS:
        random.Random(f"{seed}:{kind}").shuffle(by_kind[kind])
    chosen = []
    while len(chosen) < count and any(by_kind.values()):
        for kind in KINDS:
            if by_kind[kind] and len(chosen) < count:
                chosen.append(by_kind[kind].pop())
    return chosen
