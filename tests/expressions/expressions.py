"""Random expressions of the notation that know their value.

A type is a tuple: ("int",), ("bool",), ("event",), ("name", which datatype), ("seq", T), ("set", T) or
("tuple", T, U). An environment maps variables to functions without parameters that give the value,
and functions to the environment of their definition.
"""

from values import *

# Levels of binding, the tightest first.
PRIMARY, DOTTED, SIZE, SIGNED, PRODUCT, SUM, CONCATENATION, COMPARISON, NOT, AND, OR, OPEN = range(12)
OPERATORS = {"*": PRODUCT, "/": PRODUCT, "%": PRODUCT, "+": SUM, "-": SUM}
INT, BOOL, ANY_EVENT = ("int",), ("bool",), ("event",)
PATIENCE = 4_000


class TooLong(Exception):
    """The value takes more steps than a test should."""


class Failure(Exception):
    """A refusal, the expression that is told, and the calls under way, the innermost first."""

    def __init__(self, refusal, place):
        super().__init__(str(refusal))
        self.place, self.calls = place, []


class Expression:
    """Parts are texts and expressions; `run` computes the value in an environment."""

    steps = 0

    def __init__(self, level, parts, run):
        self.level, self.parts, self.run, self.is_literal, self.result = level, parts, run, False, None

    def __call__(self, environment):
        Expression.steps += 1
        if Expression.steps > PATIENCE:
            raise TooLong
        return self.told(self.run, environment)

    def told(self, function, *arguments):
        """What the function refuses is told of this expression."""
        try:
            return function(*arguments)
        except Refusal as refusal:
            raise Failure(refusal, self.result or self) from None

    def begins_with_minus(self):
        first = self.parts[0]
        return first[0] == "-" if isinstance(first, str) else first.begins_with_minus()


def literal(text, value):
    made = Expression(PRIMARY, [text], lambda _: value)
    made.is_literal = True
    return made


def write(parts, out, places):
    """Appends to the texts, and notes between which of them each expression stands."""
    for part in parts:
        if isinstance(part, str):
            out.append(part)
        else:
            start = len(out)
            write(part.parts, out, places)
            places[part] = (start, len(out))


def listed(opening, items, closing):
    """Each in front of a comma; a bracket and a minus would be another token."""
    parts = [opening]
    for item in items:
        parts += [", " if len(parts) > 1 else " " if item[0].begins_with_minus() else "", *item] if not isinstance(
            item[0], str) else [", " if len(parts) > 1 else "", *item]
    return parts + [closing]


class Function:
    """Clauses are lists of patterns (text, fits) and a body."""

    def __init__(self, name, parameters, result):
        self.name, self.parameters, self.result, self.clauses = name, parameters, result, []

    def call(self, arguments, environment, place):
        for patterns, body in self.clauses:
            bound = {}
            if all(fits(value, bound) for (_, fits), value in zip(patterns, arguments)):
                try:
                    return body({**environment, **bound})
                except Failure as failure:
                    failure.calls.append((self.name, arguments, place))
                    raise
        raise Refusal(f"{self.name}' fits ")

    def parts(self):
        return [part for patterns, body in self.clauses
                for part in (f"{self.name}({', '.join(text for text, _ in patterns)}) = ", body, "\n")]


def fits_each(kind, parts):
    return lambda value, bound: (value[0] == kind and len(value[1]) == len(parts)
                                 and all(fits(part, bound) for (_, fits), part in zip(parts, value[1])))


class Generator:
    def __init__(self, random, model):
        self.random, self.model, self.functions, self.count = random, model, [], 0
        self.types = [INT] * 5 + [BOOL] * 2 + [ANY_EVENT, ("seq", INT), ("set", INT), ("seq", INT), ("set", INT),
                      ("seq", ("seq", INT)), ("set", ANY_EVENT), ("set", ("set", INT)), ("tuple", INT, BOOL),
                      ("name", 0), ("name", 1), ("seq", ("name", 0)), ("tuple", ("name", 1), ("seq", INT)),
                      ("set", ("tuple", INT, ("name", 0)))]

    def type(self):
        return self.random.choice(self.types)

    def chance(self, part):
        return self.random.random() < part

    def operand(self, level, type, depth, scope):
        """With parentheses where they are needed, and sometimes where not."""
        made = self.expression(type, depth, scope)
        return [made] if made.level <= level and not self.chance(0.05) else ["(", made, ")"]

    def expression(self, type, depth, scope):
        """`scope` has the types of the variables."""
        if self.chance(0.005):
            type = self.type()  # what is wanted is something else
        variables = [name for name, kind in scope.items() if kind == type]
        if variables and self.chance(0.4 if depth else 0.8):
            name = self.random.choice(variables)
            return Expression(PRIMARY, [name], lambda environment: environment[name]())
        if depth and self.chance(0.3):
            made = self.random.choice([self.choice, self.let, self.call, self.head])(type, depth - 1, scope)
            if made:
                return made
        return getattr(self, "of_" + type[0])(type, max(depth - 1, 0), scope, depth == 0)

    def computed(self, level, parts, operands, function):
        """All operands, from left to right, and then the function of them."""
        return Expression(level, parts, lambda environment: function(*[each(environment) for each in operands]))

    def infix(self, symbol, level, type, depth, scope, function, left_level=None, right_type=None):
        left = self.operand(level if left_level is None else left_level, type, depth, scope)
        right = self.operand(level - 1, right_type or type, depth, scope)
        return self.computed(level, [*left, f" {symbol} ", *right], [inner(left), inner(right)], function)

    # Forms of every type.

    def choice(self, type, depth, scope):
        b = self.expression(BOOL, depth, scope)
        x, y = self.expression(type, depth, scope), self.expression(type, depth, scope)
        return Expression(OPEN, ["if ", b, " then ", x, " else ", y],
                          lambda environment: (x if b.told(condition, b(environment)) else y)(environment))

    def let(self, type, depth, scope):
        """Each definition uses those in front of it only; all of them hide what is outside."""
        names = self.random.sample(["u", "v", "x", "y"], self.random.choice([1, 1, 2]))
        inside = {name: kind for name, kind in scope.items() if name not in names}
        definitions, functions = {}, len(self.functions)
        for name in names:
            kind = self.type()
            definitions[name] = self.expression(kind, depth, inside)
            inside = {**inside, name: kind}
        if self.chance(0.4):
            self.function(depth, inside)
        own = self.functions[functions:]
        body = self.expression(type, depth, inside)
        del self.functions[functions:]

        def run(environment):
            inside = dict(environment)
            inside.update({name: lambda each=each: each(inside) for name, each in definitions.items()})
            inside.update({function.name: inside for function in own})
            return body(inside)
        parts = [part for name, each in definitions.items() for part in (f"{name} = ", each, " ")]
        made = Expression(OPEN, ["let ", *parts, *[part for each in own for part in each.parts()], "within ", body], run)
        made.result = body.result or body   # of which is told what is said of the whole
        return made

    def call(self, type, depth, scope):
        fitting = [function for function in self.functions if function.result == type]
        if not fitting:
            return None
        function = self.random.choice(fitting)
        return self.call_of(function, [self.expression(kind, depth, scope) for kind in function.parameters])

    def call_of(self, function, arguments):
        made = Expression(PRIMARY, listed(f"{function.name}(", [[each] for each in arguments], ")"), None)
        made.run = lambda environment: function.call([each(environment) for each in arguments],
                                                     environment[function.name], made)
        return made

    def builtin(self, name, arguments):
        kinds, function = FUNCTIONS[name]

        def run(*values):
            return function(*[value if kind is None else wanted(value, kind) for kind, value in zip(kinds, values)])
        return self.computed(PRIMARY, listed(f"{name}(", [[each] for each in arguments], ")"), arguments, run)

    def some_builtin(self, rows, depth, scope):
        """Rows: a name and the types of its parameters."""
        name, *types = self.random.choice(rows)
        return self.builtin(name, [self.expression(type, depth, scope) for type in types])

    def head(self, type, depth, scope):
        return self.builtin("head", [self.expression(("seq", type), depth, scope)])

    # Functions and patterns.

    def function(self, depth, scope):
        self.count += 1
        function = Function(f"f{self.count}", [self.type() for _ in range(self.random.choice([1, 1, 2]))], self.type())
        for more in range(self.random.choice([0, 1, 2]), -1, -1):
            bound = {}
            patterns = [self.pattern(kind, bound, 0 if more == 0 and self.chance(0.9) else 2)
                        for kind in function.parameters]
            function.clauses.append((patterns, self.expression(function.result, depth, {**scope, **bound})))
        self.functions.append(function)

    def recursive_function(self, depth, scope):
        """Over a sequence, whose rest it is called of."""
        self.count += 1
        function = Function(f"f{self.count}", [("seq", INT)], self.random.choice([INT, ("seq", INT), ("set", INT)]))
        bound = {"s": ("seq", INT)}
        rest = "s", lambda value, bound: bound.update(s=lambda: value) is None
        first = self.pattern(INT, bound, 0)
        again = self.call_of(function, [Expression(PRIMARY, ["s"], lambda environment: environment["s"]())])
        one = self.expression(function.result, depth, {**scope, **bound})
        if function.result == INT:
            body = self.computed(SUM, ["(", one, ") - ", again], [one, again], integers("-"))
        elif function.result[0] == "seq":
            body = self.computed(CONCATENATION, ["(", one, ") ^ ", again], [one, again], concatenated)
        else:
            body = self.builtin("union", [one, again])
        function.clauses = [([self.ends([], None)], self.expression(function.result, depth, scope)),
                            ([self.ends([first], rest)], body)]
        self.functions.append(function)

    def ends(self, parts, rest, at_back=False):
        """The pattern of a sequence of these elements, with a pattern of all others or without."""
        text, each, count = f"<{', '.join(text for text, _ in parts)}>".replace("<-", "< -"), fits_each(SEQUENCE, parts), len(parts)
        if rest is None:
            return text, each

        def fits(value, bound):
            if value[0] != SEQUENCE or len(value[1]) < count:
                return False
            cut = len(value[1]) - count if at_back else count
            front, back = sequence(value[1][:cut]), sequence(value[1][cut:])
            return each(back if at_back else front, bound) and rest[1](front if at_back else back, bound)
        return (f"{rest[0]} ^ {text}" if at_back else f"{text}^{rest[0]}"), fits

    def pattern(self, type, bound, depth):
        """Puts its variables into `bound`."""
        kind = type[0]
        if depth == 0 or kind in ("event", "set") or self.chance(0.3):
            name = self.random.choice(["_", "x", "y", "z", "s"])
            if name == "_" or name in bound:
                return "_", lambda value, bound: True
            bound[name] = type
            return name, lambda value, bound: bound.update({name: lambda: value}) is None
        if kind == "tuple":
            parts = [self.pattern(each, bound, depth - 1) for each in type[1:]]
            return f"({', '.join(text for text, _ in parts)})", fits_each(TUPLE, parts)
        if kind == "seq":
            parts = [self.pattern(type[1], bound, depth - 1) for _ in range(self.random.randrange(3))]
            rest = self.pattern(type, bound, 0) if parts and self.chance(0.6) else None
            return self.ends(parts, rest, self.chance(0.3))
        value = ((INTEGER, self.random.randrange(-1, 4)) if kind == "int" else self.random.choice(
            (FALSE, TRUE) if kind == "bool" else self.model.datatypes[type[1]]))
        return self.model.text(value), lambda given, bound: given == value

    # Types, one by one. `is_last`: no operands any more.

    def of_int(self, type, depth, scope, is_last):
        if is_last or self.chance(0.1):
            number = self.random.choice([*range(-3, 10)] * 4 + [2**63 - 1, -2**63, 10**9])
            made = literal(str(number), (INTEGER, number))
            made.level = PRIMARY if number >= 0 else SIGNED
            return made
        form = self.random.randrange(8)
        if form < 5:
            symbol = self.random.choice("+-*/%")
            return self.infix(symbol, OPERATORS[symbol], INT, depth, scope, integers(symbol))
        if form == 5:
            negated = self.operand(SIGNED, INT, depth, scope)
            minus = "- " if inner(negated).begins_with_minus() else "-"
            made = self.computed(SIGNED, [minus, *negated], [inner(negated)], lambda x: integer(-wanted(x, INTEGER)))
            made.is_literal = negated[0] != "(" and negated[0].is_literal
            return made
        if form == 6:
            counted = self.operand(SIZE, ("seq", self.type()), depth, scope)
            return self.computed(SIZE, ["#", *counted], [inner(counted)], lambda s: integer(len(wanted(s, SEQUENCE))))
        return self.some_builtin([("card", ("set", self.type()))], depth, scope)

    def of_bool(self, type, depth, scope, is_last):
        if is_last:
            value = self.chance(0.5)
            return literal("true" if value else "false", truth(value))
        form, element = self.random.randrange(5), self.type()
        if form == 0:
            symbol = self.random.choice(["<", "<=", ">", ">="])
            return self.infix(symbol, COMPARISON, INT, depth, scope, integers(symbol), CONCATENATION)
        if form == 1:
            symbol = self.random.choice(["==", "!="])
            return self.infix(symbol, COMPARISON, element, depth, scope,
                              lambda x, y: truth((x == y) == (symbol == "==")), CONCATENATION)
        if form == 2:
            negated = self.operand(NOT, BOOL, depth, scope)
            return self.computed(NOT, ["not ", *negated], [inner(negated)], lambda b: truth(not wanted(b, TRUTH)))
        if form == 3:
            symbol, level = self.random.choice([("and", AND), ("or", OR)])
            made = self.infix(symbol, level, BOOL, depth, scope, None)
            left, right = [part for part in made.parts if isinstance(part, Expression)]

            def run(environment):
                first = left.told(condition, left(environment))
                if first == (symbol == "or"):
                    return truth(first)
                return truth(right.told(condition, right(environment)))
            made.run = run
            return made
        return self.some_builtin([("null", ("seq", element)), ("empty", ("set", element)), ("elem", element, ("seq", element)),
                                  ("member", element, ("set", element))], depth, scope)

    def of_tuple(self, type, depth, scope, is_last):
        parts = [self.expression(each, depth, scope) for each in type[1:]]
        return self.computed(PRIMARY, listed("(", [[each] for each in parts], ")"), parts, lambda *v: (TUPLE, v))

    def of_seq(self, type, depth, scope, is_last):
        if not is_last and self.chance(0.5):
            form = self.random.randrange(2)
            if form == 0:
                return self.infix("^", CONCATENATION, type, depth, scope, concatenated)
            return self.some_builtin([("tail", type), ("concat", ("seq", type)), ("seq", ("set", type[1]))], depth, scope)
        return self.collection(type, depth, scope, is_last, "<", ">", sequence, CONCATENATION)

    def of_set(self, type, depth, scope, is_last):
        if type[1] == ANY_EVENT and self.chance(0.5):
            return self.closure(depth, scope)
        if not is_last and self.chance(0.5):
            rows = [("union", type, type), ("inter", type, type), ("diff", type, type), ("Union", ("set", type)),
                    ("Inter", ("set", type)), ("set", ("seq", type[1]))]
            return self.some_builtin(rows + [("Set", type[1])] * (type[1][0] == "set"), depth, scope)
        return self.collection(type, depth, scope, is_last, "{", "}", set_of, OPEN)

    def collection(self, type, depth, scope, is_last, opening, closing, make, level):
        if type[1] == INT and self.chance(0.3):
            bounds = [self.operand(CONCATENATION, INT, depth, scope) for _ in range(2)]
            blank = " " if bounds[0][0] != "(" and bounds[0][0].begins_with_minus() else ""
            first, last = map(inner, bounds)
            bounds = self.computed(CONCATENATION, [*bounds[0], "..", *bounds[1]], [first, last], integers(".."))
            return self.computed(PRIMARY, [opening + blank, bounds, closing], [bounds], make)
        if is_last or self.chance(0.4):
            items = [self.operand(level, type[1], depth, scope) for _ in range(self.random.randrange(3))]
            return self.computed(PRIMARY, listed(opening, items, closing), [inner(item) for item in items],
                                 lambda *values: make(values))
        return self.comprehension(opening, closing, make, level, depth, scope,
                                  lambda scope: self.operand(level, type[1], depth, scope))

    def comprehension(self, opening, closing, make, level, depth, scope, result_of):
        qualifiers = []
        for _ in range(self.random.choice([1, 1, 2])):
            element, bound = self.type(), {}
            source = self.operand(level, (self.random.choice(["seq", "set"]), element), depth, scope)
            pattern = self.pattern(element, bound, 1)
            qualifiers.append((pattern, source))
            scope = {**scope, **bound}
            if self.chance(0.3):
                qualifiers.append((None, self.operand(level, BOOL, depth, scope)))
        result = result_of(scope)

        def results(environment, behind):
            if not behind:
                yield inner(result)(environment)
                return
            (pattern, source), *behind = behind
            value = inner(source)(environment)
            if pattern is None:
                if inner(source).told(condition, value):
                    yield from results(environment, behind)
                return
            for element in inner(source).told(elements, value):
                bound = {}
                if pattern[1](element, bound):
                    yield from results({**environment, **bound}, behind)
        parts = [*listed(opening, [result], ""), " | "]
        for index, (pattern, source) in enumerate(qualifiers):
            parts += [", " if index else "", *([f"{pattern[0]} <- "] if pattern else []), *source]
        return Expression(PRIMARY, [*parts, closing], lambda environment: make(results(environment, qualifiers)))

    # Names, events and their sets.

    def with_fields(self, name, base, kinds, depth, scope, is_last):
        """A name with fields of these types. Of literals, what does not fit would be told before."""
        parts, fields = [name], []
        for kind, values in kinds:
            field = None if is_last or self.chance(0.5) else self.expression(kind, depth, scope)
            if field is None or field.is_literal:
                value = self.random.choice(values)
                field = literal(self.model.text(value), value)
                parts += [".", field] if self.chance(0.9) else [".(", field, ")"]
            else:
                parts += [".(", field, ")"]
            fields.append(field)

        def run(*values):
            made = base
            for value in values:
                made = self.model.with_field(made, value)
            return made
        made = self.computed(DOTTED if fields else PRIMARY, parts, fields, run)
        made.is_literal = all(field.is_literal for field in fields)
        return made

    def of_name(self, type, depth, scope, is_last):
        number = self.random.choice(sorted({value[1] for value in self.model.datatypes[type[1]]}))
        name, fields = self.model.names[number]
        return self.with_fields(name, (NAME, number, ()), self.typed(fields), depth, scope, is_last)

    def of_event(self, type, depth, scope, is_last):
        number = self.random.randrange(len(self.model.channels))
        return self.channel(number, len(self.model.channels[number][1]), depth, scope, is_last)

    def channel(self, number, count, depth, scope, is_last):
        name, fields = self.model.channels[number]
        return self.with_fields(name, (CHANNEL if fields else EVENT, number, ()), self.typed(fields)[:count], depth, scope, is_last)

    def typed(self, fields):
        kinds = {TRUTH: BOOL, INTEGER: INT}
        return [(kinds.get(values[0][0]) or ("name", [values[0] in each for each in self.model.datatypes].index(True)), values)
                for values in fields]

    def closure(self, depth, scope):
        def beginning(scope):
            number = self.random.randrange(len(self.model.channels))
            count = self.random.randrange(len(self.model.channels[number][1]) + 1)
            return [self.channel(number, count, depth, scope, depth == 0)]

        def events(beginnings):
            return set_of(event for each in list(beginnings) for event in self.model.beginning(each))
        if self.chance(0.1):
            return Expression(PRIMARY, ["Events"], lambda _: set_of(self.model.events))
        if depth and self.chance(0.5):
            return self.comprehension("{| ", " |}", events, OPEN, depth, scope, beginning)
        items = [beginning(scope) for _ in range(self.random.randrange(3))]
        return self.computed(PRIMARY, listed("{| ", items, " |}"), [inner(item) for item in items],
                             lambda *values: events(values))


def inner(operand):
    """The expression between the parentheses that it may have."""
    return operand[0] if len(operand) == 1 else operand[1]


def integers(symbol):
    return lambda *values: ARITHMETIC[symbol](*[wanted(value, INTEGER) for value in values])


def concatenated(left, right):
    return sequence(wanted(left, SEQUENCE) + wanted(right, SEQUENCE))
