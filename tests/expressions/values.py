"""Values of scripts and what is computed of them, for expectations.

A value is a tuple, and the order of values is that of these tuples:
(rank of its kind, what it is). Names stand as (NAME, number, fields), as do channels and events.
"""

TRUTH, INTEGER, NAME, EVENT, CHANNEL, TUPLE, SEQUENCE, SET = range(1, 9)
KINDS = {TRUTH: "truth value", INTEGER: "integer", TUPLE: "tuple", SEQUENCE: "sequence", SET: "set",
         EVENT: "event", CHANNEL: "channel", NAME: "name"}
LARGEST_COLLECTION = 1_000_000


class Refusal(Exception):
    """What only values show. The text is a part of what is told."""


def truth(value):
    return (TRUTH, bool(value))


def integer(value):
    if not -2**63 <= value < 2**63:
        raise Refusal("does not fit into 64 bits")
    return (INTEGER, value)


def sequence(elements):
    return (SEQUENCE, tuple(elements))


def set_of(elements):
    return (SET, tuple(sorted(set(elements))))


FALSE, TRUE = truth(False), truth(True)


class Model:
    """The names and channels of a script: for each a list of fields, each a list of values."""

    def __init__(self, names, channels):
        self.names, self.channels = names, channels
        self.events = [(EVENT, number, fields) for number, (_, lists) in enumerate(channels)
                       for fields in self.fillings(lists)]

    @staticmethod
    def fillings(lists):
        ways = [()]
        for values in lists:
            ways = [way + (value,) for way in ways for value in values]
        return ways

    def with_field(self, base, field):
        """A name or a channel with one more field, which is complete with its last one."""
        kind, number, fields = base
        lists = (self.names if kind == NAME else self.channels)[number][1]
        if field not in lists[len(fields)]:
            raise Refusal("is no value: " if kind == NAME else "is not declared: ")
        fields += (field,)
        return (NAME if kind == NAME else EVENT if len(fields) == len(lists) else CHANNEL, number, fields)

    def beginning(self, base):
        """All events that begin as this one."""
        return [event for event in self.events if event[1:] == base[1:]
                or event[1] == base[1] and event[2][:len(base[2])] == base[2]]

    def text(self, value):
        kind, what = value[0], value[1]
        if kind == TRUTH:
            return "true" if what else "false"
        if kind == INTEGER:
            return str(what)
        if kind in (NAME, EVENT, CHANNEL):
            name = (self.names if kind == NAME else self.channels)[what][0]
            return ".".join([name] + [self.text(field) for field in value[2]])
        opening, closing = {TUPLE: "()", SEQUENCE: "<>", SET: "{}"}[kind]
        blank = " " if kind != TUPLE and what and what[0][0] == INTEGER and what[0][1] < 0 else ""
        return opening + blank + ", ".join(map(self.text, what)) + closing


def wanted(value, kind):
    if value[0] != kind:
        raise Refusal(f" is a{'n' if value[0] in (INTEGER, EVENT) else ''} {KINDS[value[0]]}")
    return value[1]


def condition(value):
    if value[0] != TRUTH:
        raise Refusal("is no truth value")
    return value[1]


def elements(value):
    if value[0] not in (SEQUENCE, SET):
        raise Refusal("is neither a set nor a sequence")
    return value[1]


def divided(a, b):
    """Rounds down; the remainder has the sign of the divisor."""
    if b == 0:
        raise Refusal("division by zero")
    quotient = abs(a) // abs(b)
    if (a < 0) != (b < 0):
        quotient = -quotient - (1 if abs(a) % abs(b) else 0)
    return quotient, a - quotient * b


def spread(first, last):
    if last - first >= LARGEST_COLLECTION:
        raise Refusal("has more than 1000000 elements")
    return [(INTEGER, number) for number in range(first, last + 1)]


def first_of(name, items):
    if not items:
        raise Refusal(f"'{name}' of an empty sequence")
    return items


def subsets(items):
    if len(items) >= 20:
        raise Refusal("are more than 1000000")
    ways = [()]
    for item in items:
        ways += [way + (item,) for way in ways]
    return set_of((SET, way) for way in ways)


def common(sets):
    if not sets:
        raise Refusal("'Inter' of the empty set")
    sets = [wanted(each, SET) for each in sets]
    return set_of(item for item in sets[0] if all(item in each for each in sets))


ARITHMETIC = {
    "..": spread,
    "+": lambda a, b: integer(a + b),
    "-": lambda a, b: integer(a - b),
    "*": lambda a, b: integer(a * b),
    "/": lambda a, b: integer(divided(a, b)[0]),
    "%": lambda a, b: integer(divided(a, b)[1]),
    "<": lambda a, b: truth(a < b),
    "<=": lambda a, b: truth(a <= b),
    ">": lambda a, b: truth(a > b),
    ">=": lambda a, b: truth(a >= b),
}
EQUALITY = {"==": lambda a, b: truth(a == b), "!=": lambda a, b: truth(a != b)}

"""Functions of the notation: the kinds of the parameters (none for any value), and what they are."""
FUNCTIONS = {
    "head": ([SEQUENCE], lambda s: first_of("head", s)[0]),
    "tail": ([SEQUENCE], lambda s: sequence(first_of("tail", s)[1:])),
    "null": ([SEQUENCE], lambda s: truth(not s)),
    "elem": ([None, SEQUENCE], lambda x, s: truth(x in s)),
    "concat": ([SEQUENCE], lambda s: sequence(x for part in s for x in wanted(part, SEQUENCE))),
    "union": ([SET, SET], lambda s, t: set_of(s + t)),
    "inter": ([SET, SET], lambda s, t: set_of(x for x in s if x in t)),
    "diff": ([SET, SET], lambda s, t: set_of(x for x in s if x not in t)),
    "member": ([None, SET], lambda x, s: truth(x in s)),
    "card": ([SET], lambda s: integer(len(s))),
    "empty": ([SET], lambda s: truth(not s)),
    "Union": ([SET], lambda s: set_of(x for part in s for x in wanted(part, SET))),
    "Inter": ([SET], common),
    "Set": ([SET], subsets),
    "seq": ([SET], sequence),
    "set": ([SEQUENCE], set_of),
}
