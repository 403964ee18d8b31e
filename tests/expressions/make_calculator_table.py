#!/usr/bin/env python3
"""Writes calculator_table.tsv: expressions with the values and errors that the calculator must give.

    python3 make_calculator_table.py > calculator_table.tsv

Nothing of the library takes part. The expressions are read by the parser below. Sums, differences, products, quotients and
numbers are computed as fractions and rounded once to a double; square roots, exponentials, logarithms and powers with 60
decimal digits; angles by their series with as many. A row is compared bit by bit if only the former (and square roots, which
are rounded right everywhere) took part, else nearly: systems differ in the last digits of functions.
"""
import decimal
import math
import struct
import sys
from decimal import Decimal
from fractions import Fraction

decimal.getcontext().prec = 60
CALLERS_VALUE = 77.0
PI = 3.141592653589793
WORDS = ("SIN COS TAN COT ASN ACS ATN ACT ABS SQRT EXP LGT LOG AND OR NOT PI MIN MAX").split()
SYNTAX, LEFT, RIGHT, ELSE, NEGATIVE_POWER, LARGE, DIVISION, NEGATIVE_ROOT = 1, 2, 3, 7, 14, 15, 16, 17


def to_double(fraction):
    try:
        return float(fraction)
    except OverflowError:
        return math.inf if fraction > 0 else -math.inf


def rational(a, b, exact, plain):
    """A basic operation: exact, then rounded; by the rules of doubles where a zero's sign, inf or nan is concerned."""
    if math.isfinite(a) and math.isfinite(b):
        value = exact(Fraction(a), Fraction(b))
        if value != 0:
            return to_double(value)
    return plain(a, b)


def add(a, b):
    return rational(a, b, lambda x, y: x + y, lambda x, y: x + y)


def subtract(a, b):
    return rational(a, b, lambda x, y: x - y, lambda x, y: x - y)


def multiply(a, b):
    return rational(a, b, lambda x, y: x * y, lambda x, y: x * y)


def divide(a, b):
    return rational(a, b, lambda x, y: x / y, lambda x, y: x / y)


def arc_tangent_digits(x):
    if x < 0:
        return -arc_tangent_digits(-x)
    doublings = 0
    while x > Decimal("0.05"):
        x = x / (1 + (1 + x * x).sqrt())
        doublings += 1
    total, power, n = Decimal(0), x, 1
    while abs(power) > Decimal(10) ** -70:
        total += power / n if n % 4 == 1 else -power / n
        power *= x * x
        n += 2
    return total * 2 ** doublings


PI_DIGITS = 4 * arc_tangent_digits(Decimal(1))


def sine_digits(x):
    if not x.is_finite():
        return Decimal("nan")
    x = x % (2 * PI_DIGITS)
    total, term, n = Decimal(0), x, 1
    while abs(term) > Decimal(10) ** -70:
        total += term
        term = -term * x * x / ((n + 1) * (n + 2))
        n += 2
    return total


def cosine_digits(x):
    return sine_digits(x + PI_DIGITS / 2)


def tangent(x):
    return float(sine_digits(Decimal(x)) / cosine_digits(Decimal(x)))


def arc_tangent(x):
    if math.isnan(x):
        return x
    if math.isinf(x):
        return math.copysign(float(PI_DIGITS / 2), x)
    return float(arc_tangent_digits(Decimal(x)))


def arc_sine(x):
    if not -1 <= x <= 1:
        return math.nan
    if abs(x) == 1:
        return math.copysign(float(PI_DIGITS / 2), x)
    return float(arc_tangent_digits(Decimal(x) / (1 - Decimal(x) ** 2).sqrt()))


def arc_cosine(x):
    if not -1 <= x <= 1:
        return math.nan
    if abs(x) == 1:
        return 0.0 if x == 1 else float(PI_DIGITS)
    rest = arc_tangent_digits(Decimal(x) / (1 - Decimal(x) ** 2).sqrt())
    return float(PI_DIGITS / 2 - rest)


def radians(x):
    return divide(multiply(x, PI), 180.0)


def degrees(x):
    return multiply(divide(x, PI), 180.0)


def logarithm(x, digits):
    if math.isnan(x) or x < 0:
        return math.nan
    if x == 0:
        return -math.inf
    return x if math.isinf(x) else float(digits(Decimal(x)))


def exponential(x):
    if x > 710:
        return math.inf
    return float(Decimal(x).exp())


class Fault(Exception):
    pass


class Token:
    def __init__(self):
        self.kind, self.number, self.word, self.row, self.column = None, 0.0, None, 0, 0


class Scanner:
    """Kinds are the symbols themselves, or number, word, name, text, end."""

    def __init__(self, text):
        self.text, self.at, self.row, self.column = text, 0, 0, 0

    def peek(self, ahead=0):
        c = self.text[self.at + ahead] if self.at + ahead < len(self.text) else "\0"
        return "\0" if "\0" in self.text[: self.at + ahead + 1] or "\xff" in self.text[: self.at + ahead + 1] else c

    def step(self):
        c = self.peek()
        self.at += 1
        self.row, self.column = (self.row + 1, 0) if c == "\n" else (self.row, self.column + 1)
        return c

    def read(self, token):
        """False on a fault. The kind of a number or backslash at fault stays that of the token before."""
        while self.peek() != "\0" and self.peek() <= " ":
            self.step()
        token.row, token.column, token.number, token.word = self.row, self.column, 0.0, None
        c = self.peek()
        if c == "\0":
            token.kind = "end"
        elif c.isascii() and (c.isalpha() or c == "_"):
            name = ""
            while self.peek().isascii() and (self.peek().isalnum() or self.peek() == "_"):
                name += self.step().upper()
            token.kind, token.word = ("word", name) if name in WORDS else ("name", None)
        elif c in "0123456789" or (c == "." and self.peek(1) in "0123456789"):
            return self.number(token)
        elif c in "\"'":
            token.kind = "text"
            self.step()
            while self.peek() not in (c, "\0", "\n"):
                self.step()
            if self.step() != c:
                return False
        elif c == "\\":
            self.step()
            if token.kind == "word":
                token.word = WORDS[0]
        else:
            self.symbol(token)
        return True

    def number(self, token):
        digits = ""
        while self.peek() in "0123456789":
            digits += self.step()
        if self.peek() == ".":
            digits += self.step()
            while self.peek() in "0123456789":
                digits += self.step()
        exponent = ""
        if self.peek() in "eE":
            self.step()
            if self.peek() in "+-":
                exponent = self.step()
            if self.peek() not in "0123456789":
                return False
            while self.peek() in "0123456789":
                exponent += self.step()
        exact = Fraction((digits if digits[0] != "." else "0" + digits).rstrip("."))
        exact = exact * Fraction(10) ** int(exponent or "0")
        value = to_double(exact)
        if math.isinf(value) or (value == 0 and exact != 0):
            if token.kind == "word":
                token.word = WORDS[0]
            return False
        token.kind, token.number = "number", value
        return True

    def symbol(self, token):
        first = self.step()
        token.kind = first
        if first in "<=>" and self.peek() in "<=>":
            pair = first + self.step()
            token.kind = {"<>": "#", "><": "#", "<=": "<=", "=<": "<=", ">=": ">=", "=>": ">="}.get(pair, first)


class Calculator:
    """Each rule takes what its output holds and gives what it holds afterwards, also in a Fault's place, by self.out."""

    def __init__(self, text):
        self.scanner, self.token, self.error, self.evaluate, self.near = Scanner(text), Token(), 0, True, False

    def calculate(self):
        self.fetch()
        cell = [CALLERS_VALUE]
        try:
            self.conditional(cell)
        except Fault:
            pass
        if not self.error and self.token.kind != "end":
            self.error = SYNTAX
        return cell[0]

    def fetch(self):
        if not self.scanner.read(self.token):
            self.error = SYNTAX

    def check(self):
        if self.error:
            raise Fault

    def fail(self, error):
        self.error = error
        raise Fault

    def take(self, kind):
        return self.token.kind == kind

    def conditional(self, out):
        self.logic(out)
        self.check()
        if not self.take("?"):
            return
        outer = self.evaluate
        self.fetch()
        first, second = [0.0], [0.0]
        self.evaluate = outer and out[0] != 0
        self.conditional(first)
        self.check()
        if not self.take(":"):
            self.fail(ELSE)
        self.fetch()
        self.evaluate = outer and out[0] == 0
        self.conditional(second)
        self.check()
        if outer:
            out[0] = second[0] if out[0] == 0 else first[0]
        self.evaluate = outer

    def loop(self, out, part, operator, compute):
        part(out)
        self.check()
        while operator() is not None:
            sign = operator()
            self.fetch()
            right = [0.0]
            part(right)
            self.check()
            if self.evaluate:
                out[0] = compute(sign, out[0], right[0])

    def symbol_of(self, symbols):
        return lambda: self.token.kind if self.token.kind in symbols else None

    def logic(self, out):
        def operator():
            return self.token.word if self.take("word") and self.token.word in ("AND", "OR") else None

        def compute(sign, a, b):
            return float(a != 0 and b != 0) if sign == "AND" else float(a != 0 or b != 0)

        self.loop(out, self.relation, operator, compute)

    def relation(self, out):
        def compute(sign, a, b):
            return float({"<": a < b, ">": a > b, "=": a == b, "#": a != b, "<=": a <= b, ">=": a >= b}[sign])

        self.loop(out, self.sum, self.symbol_of(("<", ">", "=", "#", "<=", ">=")), compute)

    def sum(self, out):
        self.loop(out, self.term, self.symbol_of("+-"), lambda sign, a, b: add(a, b) if sign == "+" else subtract(a, b))

    def term(self, out):
        self.power(out)
        self.check()
        while self.token.kind in ("*", "/"):
            sign = self.token.kind
            self.fetch()
            right = [0.0]
            self.power(right)
            self.check()
            if not self.evaluate:
                continue
            if sign == "*":
                out[0] = multiply(out[0], right[0])
            elif right[0] != 0:
                out[0] = divide(out[0], right[0])
            else:
                self.error, out[0] = DIVISION, 0.0
        self.check()

    def power(self, out):
        self.factor(out)
        self.check()
        if not self.take("^"):
            return
        self.fetch()
        exponent = [0.0]
        self.power(exponent)
        self.check()
        if self.evaluate:
            out[0] = self.raised(out[0], exponent[0])
            self.check()

    def raised(self, base, exponent):
        whole = math.isfinite(exponent) and -2 ** 31 <= exponent < 2 ** 31 and exponent == math.trunc(exponent)
        if base < 0 and not whole:
            self.error = NEGATIVE_POWER
            return 0.0
        if exponent == 0 or base == 1:
            return 1.0
        if base == 0 and not math.isnan(exponent):
            value = math.inf if exponent < 0 else 0.0
            value = -value if math.copysign(1, base) < 0 and whole and int(exponent) % 2 else value
        elif not math.isfinite(base) or not math.isfinite(exponent):
            value = base ** exponent
        elif whole and abs(exponent) <= 2000:
            exact = Fraction(base) ** int(exponent)
            value = to_double(exact)
            self.near = self.near or (math.isfinite(value) and Fraction(value) != exact)
        else:
            self.near = True
            digits = Decimal(exponent) * Decimal(abs(base)).ln()
            value = math.inf if digits > 800 else 0.0 if digits < -800 else float(digits.exp())
            value = -value if base < 0 and int(exponent) % 2 else value
        if math.isfinite(value):
            return value
        self.error = LARGE
        return 0.0

    def factor(self, out):
        kind, word = self.token.kind, self.token.word
        if kind == "(":
            self.fetch()
            self.conditional(out)
            self.check()
            if not self.take(")"):
                self.fail(RIGHT)
            self.fetch()
        elif kind == "number":
            self.constant(out, self.token.number)
        elif kind == "-":
            self.fetch()
            self.factor(out)
            self.check()
            if self.evaluate:
                out[0] = -out[0]
        elif kind == "word" and word == "NOT":
            self.fetch()
            self.factor(out)
            self.check()
            if self.evaluate:
                out[0] = float(out[0] == 0)
        elif kind == "word" and word == "PI":
            self.constant(out, PI)
        elif kind == "word":
            self.function(out, word)
        else:
            self.fail(SYNTAX)

    def constant(self, out, value):
        if self.evaluate:
            out[0] = value
        self.fetch()

    def function(self, out, word):
        self.fetch()
        if not self.take("("):
            self.fail(LEFT)
        self.fetch()
        running = [0.0]
        self.conditional(running)
        self.check()
        while word in ("MIN", "MAX") and self.take(","):
            self.fetch()
            second = [0.0]
            self.conditional(second)
            self.check()
            if second[0] >= running[0] if word == "MAX" else second[0] <= running[0]:
                running = second
        if not self.take(")"):
            self.fail(RIGHT)
        self.fetch()
        if not self.error and self.evaluate:
            out[0] = self.value(word, running[0], out[0])
        self.check()

    def value(self, word, x, otherwise):
        if word in ("MIN", "MAX"):
            return x
        if word in ("AND", "OR"):
            return otherwise
        if word == "ABS":
            return abs(x)
        if word == "SQRT":
            if not x >= 0:
                self.error = NEGATIVE_ROOT
                return 0.0
            return x if math.isinf(x) else float(Decimal(x).sqrt())
        self.near = True
        return {
            "SIN": lambda: float(sine_digits(Decimal(radians(x)))),
            "COS": lambda: float(cosine_digits(Decimal(radians(x)))),
            "TAN": lambda: tangent(radians(x)),
            "COT": lambda: divide(1.0, tangent(radians(x))) if x != 0 else math.copysign(math.inf, x),
            "ASN": lambda: degrees(arc_sine(x)),
            "ACS": lambda: degrees(arc_cosine(x)),
            "ATN": lambda: degrees(arc_tangent(x)),
            "ACT": lambda: degrees(arc_tangent(divide(1.0, x) if x != 0 else math.copysign(math.inf, x))),
            "EXP": lambda: exponential(x),
            "LGT": lambda: logarithm(x, Decimal.ln),
            "LOG": lambda: logarithm(x, Decimal.log10),
        }[word]()


def listed(items):
    return items.replace("\n      |", "|").split("|")


def samples():
    valid = """1 \xff 2 3|1+2*3|(1+2)*3|10/4|7-2-1|1/3|2/3|0.1+0.2|0.1*3|1.5e3|1.5E3|1e-3|1e+2|.5|5.|5.e1|0.1|4294967296|2147483647|2147483648
      |123456789012345|1234567890123456|12345678901234567890|0.000001|00012|0.30000000000000004|9007199254740993|1e22|1e23
      |8.5|3.14159*2.5*2.5|100/7/3|(1.5+2.25)*4-7/2|-5+(8-3)*(12.75/(2+1))|((((1))))|( 1 )| 1\t+\r2 |1\n+\n2|1+2\x01+3|1.7976931348623157e308
      |2.2250738585072014e-308|4.9e-324|123.456e-7|0.1e1|1e0|1e00|1-1|0*-5|0/-5|3*-2|5--5|1/4+1/8|99999*99999|0.1+0.7|1.1*1.1
      |1e308*10|-1e308*10|1e308*10-1e308*10|1e-320/10|6.02214076e23*1.380649e-23|1 ? 2 : 3|0 ? 2 : 3|1 ? 2 : 0 ? 3 : 4
      |0 ? 2 : 0 ? 3 : 4|1 ? 0 ? 5 : 6 : 7|0.5 ? 1 : 2|-1 ? 1 : 2|(1 ? 2 : 3)*4|1 ? 2 : 3*4|1+0 ? 2 : 3|1 < 2 ? 10 : 20|0 ? 1/0 : 3
      |1 ? 3 : 1/0|0 ? SQRT(-1) : 3|1 ? 3 : (-8)^(1/3)|0 ? 10^1000 : 1|0 ? (1 ? 1/0 : 2) : 4|1 ? 2 : (0 ? 1/0 : 1/0)|0 ? AND(1) : 3
      |1<2|2<1|1<2<3|3>2>1|1=1|1==1|1<>1|1><2|1#2|1#1|1=<1|1<=1|2=<1|1>=2|1=>1|2>=2|1<<2|1>>2|0.1+0.2=0.3|0.1+0.2>0.3|1=1=1
      |1 AND 0|1 OR 0|0 OR 0|1 AND 1|2 AND -3|1 OR 0 AND 0|0 AND 0 OR 1|1 and 1|1 Or 0|1 AND NOT 0|NOT 0|NOT 2|NOT 1+1|not not 5
      |NOT 0.0|NOT -0|NOT (1>2)|NOT 0 ? 4 : 5|1 AND 2 < 3|1<2 AND 2<3|MIN(3,1,2)|MAX(3)|MIN(3)|MAX(1,3,2)|MAX(-1,-3)|MIN(1,1)
      |min(3,7)+max(2,5)|MIN(MAX(1,2),MIN(3.5,4))|MAX(1 ? 2 : 3, 1)|MIN((1),(2))|ABS(-7.5)|ABS(7.5)|ABS(-0)|abs(1-3)|SQRT(4)|SQRT(0)
      |SQRT(2)|SQRT(-0)|sqrt(3*3+4*4)*2-abs(-7.5)|Sqrt(0.01)|PI|pi*2|-Pi|PI/2|2*PI*0.5|SIN (30)|AND(5)|OR(5)+1|1+AND(9)|(AND(5))|ABS(OR(5))|MIN(3,AND(5))
      |MAX(-3,OR(5))|MIN(AND(5),2)|1 ? AND(5) : 3|0 ? 3 : AND(5)|2*AND(5)|2^OR(5)|1 OR AND(5)|NOT AND(5)|-\\5|NOT\\(30)
      |SIN(0)|SIN(30)|SIN(90)|SIN(-30)|SIN(360)|SIN(1e6)|COS(0)|COS(60)|COS(180)|COS(33.3)|TAN(45)|TAN(10)|TAN(-80)|COT(45)|COT(10)|COT(-45)
      |ASN(1)|ASN(0.5)|ASN(-1)|ASN(0.1)|ACS(1)|ACS(0.5)|ACS(-1)|ACS(0.1)|ACS(0)|ATN(1)|ATN(0)|ATN(1000)|ATN(-0.3)|ACT(1)|ACT(2)|ACT(-0.5)
      |ACT(0)|EXP(0)|EXP(1)|EXP(-1)|EXP(10.5)|EXP(700)|EXP(-700)|EXP(1000)|LGT(1)|LGT(2)|LGT(EXP(1))|LGT(10)|LGT(0.001)|LGT(0)|LGT(-1)
      |LOG(100)|LOG(1)|LOG(2)|LOG(0.001)|LOG(5e100)|LOG(0)|LOG(-1)|ASN(2)|ACS(-1.5)|SIN(30)^2+COS(30)^2|TAN(ATN(3))|ASN(SIN(20))
      |ASN(2)=ASN(2)|ASN(2)<>ASN(2)|ASN(2)<1|ASN(2)>=1|ASN(2) ? 1 : 2|NOT ASN(2)|ASN(2) AND 1|MAX(1,ASN(2))|MIN(ASN(2),1)|-ASN(2)|ASN(2)*0
      |2^3^2|2*3^2|-2^2|2^-1|2^-2^2|(2^3)^2|4^0.5|2^0.5|0^0|0^5|(-2)^3|(-2)^-3|(-8)^2|2^10|10^15|10^22|1.5^2|9^-0.5|2^-1074|10^-400
      |(-1)^2147483647|2^(1/3)|1.1^7.5|0^0.5|-0^2|(1=1)^(2>1)|2^3*2|2*2^3^0|EXP(1000)-EXP(1000)|1/EXP(1000)"""
    invalid = """|   |\n\n  |+1|1+|x|1 2|1  2|x+1|sine(1)|1.2.3|1e|1e+|1E-|1e400|1e-400|2+1e400|2*1e400|-1e400|(1e400|MIN(1,1e400)|1 1e400|(2 1e400)
      |NOT 1e400|1 ? 1e400 : 2|1 ? 2 : 1e400|SIN(1e400)|SIN 1e400|1<1e400|1 AND 1e400|2^1e400|(7 "a|(7 "a"|(7 "a\xff"|(7 "a\xff" 8)|"a"|'a'|'a|1 'a|$|1$|1;2|1,2|[1]|{1}|1!|!1|1&2
      |1**2|1//2|1^^2|1+*2|*1|/1|^2|=1|<1|1<|1<>|1===1|1 AND|AND|OR|1 OR OR 1|NOT|NOT NOT|1 NOT 2|-|--|1-|()|(|)|1)|(1))|((1)|(1+2|(1+2(3)|3(4)|(1 2)
      |(1,2)|(1:2)|1:2|?|1?|1?2|1 ? 2|1 ? 2 3|1 ? 2 : |1 ? : 3|1 ? 2 , 3|0 ? 2|(1 ? 2)|1 ? 2 : 3 : 4|1 ? 2 : 3 4|0 ? x : 3|1 ? 3 : x|0 ? (2 : 3
      |0 ? SIN 2 : 3|0 ? 1/0 : x|SIN|SIN 1|SIN+1|SIN)|SIN(|SIN()|SIN(1|SIN(1,2)|SIN(1 2)|SQRT 4|SQRT(4,2)|MIN|MIN 1|MIN()|MIN(1|MIN(1,|MIN(1,)|MIN(1,2
      |MIN(,1)|MAX(1;2)|MAX(1 2)|MAX(x)|MAX(1,x)|MIN(1,2))|PI()|PI 3|PI(1)|AND()|OR 1|AND 1|AND(1|1 AND(|5 SIN(1)|2PI|2(3)|1 PI|_|a_b|\xe4|1\xe4|(1 \xff )|\xff
      |0x10|1.x|.|..|1..|1. .|1\n2|1\n+\n*|  \n (1|1\n\n  x|(1\n+2\n|\\1|1\\2|1+\\2|(\\1)|1#|1><|#1|@|~1|1%2|`a'|sin(30|SINN(1)|SIN1(1)|S IN(1)
      |1/0|1/0.0|1/-0|0/0|5*1/0|1/0+2|1/0*2|1/0/0|1/0*2*3|1/0*x|1/0*|1/0*2^x|1/0*(2+3)|1/0*SIN(1)|1/0*SIN 1|1/0*1e400|1/0/2 3|1/0 2|1/0)|(1/0)|(1/0|-(1/0)|2-1/0|2*(1/0)*3|1/0<2
      |0 AND 1/0|1 OR 1/0|1/0 ? 1 : 2|1 ? 1/0 : 2|0 ? 1 : 1/0|(1 ? 0 : 1) ? 2 : 1/0|SIN(1/0)|MIN(1,1/0)|MAX(1/0,x)|1/(1-1)|3+4/0*5+6|NOT 1/0|2^(1/0)|4/(2/0)
      |SQRT(-1)|SQRT(-1e-300)|1+SQRT(-1)|SQRT(-1)+x|SQRT(-4)*2|SQRT(ASN(2))|SQRT(SQRT(-1))|0-SQRT(-9)|SQRT(-1) 2|5 AND SQRT(-1)|SQRT(-1)^2
      |(-8)^(1/3)|(-8)^0.5|(-2)^2147483648|(-2)^-1e10|-8^0.5|2*(-8)^(1/3)|2^(-8)^0.5|(-8)^0.5 x|(-2)^EXP(1000)|1+(-8)^0.5+x|(-1)^ASN(2)
      |10^1000|10^1000+x|1+10^1000|0^-1|(-10)^1001|2*10^400*3|EXP(1000)^2|ASN(2)^2|2^ASN(2)|10^10^10|1e200^2|-10^1000|2^1024|1-0^-2 3
      |sin(1)+(2|SIN(COS(1)|MIN(1,MAX(2,3)|((1+2)*(3+4)|1+(2*(3-4)|(1<2|(1 AND 2|(NOT 1|(2^3|(-1"""
    chains = ["-" * n + "5" for n in range(1, 9)] + ["- " * n + "2^2" for n in range(1, 5)]
    chains += ["1" + "-" * n + "2" for n in range(1, 7)] + ["3*" + "-" * n + "2" for n in range(1, 5)]
    chains += ["2^" + "-" * n + "1" for n in range(1, 5)] + ["NOT " * n + "3" for n in range(1, 6)]
    chains += ["-NOT 0", "NOT -1", "-NOT -NOT 0", "-(-(-1))", "-SQRT(4)", "--PI", "+-1", "-+1", "1+-1", "1-+1", "-0", "--0"]
    operators = ["+", "-", "*", "/", "^", "<", ">", "=", "<>", "<=", ">=", " AND ", " OR "]
    pairs = [f"2{a}3{b}0.5" for a in operators for b in operators]
    pairs += [f"-2{a}-3" for a in operators] + [f"NOT 2{a}NOT 0" for a in operators]
    pairs += [f"1{a}0 ? 2{a}3 : 4{a}5" for a in operators]
    special = """0|-0|0*-1|-0+0|-0-0|0-0|-0=0|-0<0|NOT -0|-0 ? 1 : 2|ABS(-0)|SQRT(-0)|MIN(0,-0)|MAX(-0,0)|MAX(0,-0)|0/-3|-0*-3|(-0)^3|(-0)^2|(-0)^0.5
      |5e-324|5e-324/2|5e-324*0.75|3e-324|2e-324|2.2250738585072014e-308/2|2.225073858507201e-308|4.9e-324=5e-324|1e-200*1e-200|-1e-200*1e-200
      |2^-1074|2^-1075|2^-1022|2^1023|2^1023*2|-2^1023*2|1.7976931348623157e308+1e291|1.7976931348623157e308+1e292|1.7976931348623158e308
      |1.7976931348623159e308|2147483647|2147483648|-2147483648|2147483647+1|4294967295|4294967296|9223372036854775807|9223372036854775808
      |18446744073709551615|18446744073709551616|9007199254740992|9007199254740993|9007199254740992+1|0.1+0.2-0.3|1e16+1-1e16
      |1e400|0.0|99999999999*0+0.0|1e-400|0.00|EXP(1000)|-EXP(1000)|EXP(-1000)|EXP(EXP(1000))|EXP(-EXP(1000))|EXP(1000)>1e308|EXP(1000)=EXP(2000)
      |EXP(1000)+1|EXP(1000)-EXP(1000)|EXP(1000)*0|EXP(1000)/EXP(1000)|1/EXP(1000)|-1/EXP(1000)|ABS(-EXP(1000))|SQRT(EXP(1000))|SQRT(-EXP(1000))
      |LGT(EXP(1000))|LOG(EXP(1000))|LGT(-0)|LOG(-0)|ATN(EXP(1000))|ATN(-EXP(1000))|ACT(EXP(1000))|ACT(-0)|COT(0)|COT(-0)|SIN(EXP(1000))
      |COS(-EXP(1000))|TAN(EXP(1000))|COT(EXP(1000))|ASN(EXP(1000))|ACS(-EXP(1000))|SIN(-0)|ASN(1.0000000000000002)|ACS(1.0000000000000002)
      |EXP(1000)^0|EXP(1000)^-1|EXP(1000)^1|(-EXP(1000))^3|(-EXP(1000))^-3|(-EXP(1000))^-2|(-EXP(1000))^0.5|0^EXP(1000)|0.5^EXP(1000)|2^EXP(1000)
      |2^-EXP(1000)|0.5^-EXP(1000)|1^EXP(1000)|(-1)^EXP(1000)|0^-EXP(1000)|ASN(2)|ASN(2)^0|1^ASN(2)|0^ASN(2)|(-1)^2147483646|(-1)^2147483647
      |(-1)^2147483648|(-1)^-2147483648|(-1)^-2147483649|ASN(2)+1|ASN(2)=1|ASN(2)#1|ASN(2)<=1|ASN(2)>1|1>ASN(2)|1<=ASN(2)|ASN(2) OR 0|0 OR ASN(2)
      |0 AND ASN(2)|ABS(ASN(2))|SIN(ASN(2))|COT(ASN(2))|ATN(ASN(2))|ACT(ASN(2))|EXP(ASN(2))|LGT(ASN(2))|LOG(ASN(2))|ACS(ASN(2))|SQRT(ASN(2))
      |1/ASN(2)|MIN(ASN(2))|MIN(1,ASN(2),2)|MAX(ASN(2),1,2)|MIN(EXP(1000),1)|MAX(-EXP(1000),1)|PI=3.141592653589793|PI-3.141592653589793|SIN(180)|COS(90)
      |TAN(90)|SIN(PI)"""
    failing = ["$", "", "SIN", "COS 1", "TAN+1", "MIN)", "(1", "ABS(1;", "SQRT(1,2)", "MAX(1,2", "1?2", "(1?2)", "(-8)^.5", "10^400", "0^-1",
               "1/0", "1/0*2", "SQRT(-4)", "1e999", "SIN 1e999", "\"a"]
    around = ["%s", " %s ", "%s+3", "%s*3", "2*%s", "2^%s", "-%s", "NOT %s", "1<%s", "1 OR %s", "(%s)", "(%s)*x", "ABS(%s)", "MIN(1,%s,2)",
              "1 ? %s : 2", "0 ? %s : 2", "0 ? 2 : %s", "1 ? 2 : %s", "%s ? 1 : 2", "\n\n %s", "(1+\n%s\n)"]
    words = [f"{word}{rest}" for word in WORDS if word not in ("NOT", "PI") for rest in ("", " 1", "(", "(1", "(1,2)", "(1)")]
    deep = ["(" * 40 + "1" + ")" * 40, "-" * 60 + "1", "1+(" * 35 + "2" + ")" * 35, "ABS(" * 40 + "-1" + ")" * 40]
    deep += ["1?" * 40 + "2" + ":3" * 40, "0?1:" * 40 + "5", "1^" * 50 + "3", "(" * 40 + "1" + ")" * 39]
    for group, items in (("valid", listed(valid)), ("invalid", listed(invalid)), ("signs", chains),
                         ("precedence", pairs), ("special", listed(special)), ("words", words),
                         ("errors", [a % f for f in failing for a in around]), ("nested", deep)):
        for item in items:
            yield group, item


def escaped(text):
    return "".join(c if " " <= c <= "~" and c != "\\" else "\\\\" if c == "\\" else f"\\x{ord(c):02x}" for c in text)


def main():
    print("# How the calculator answers. Made by make_calculator_table.py with fractions and 60 decimal digits; don't edit.")
    print("# Error and place (row, column) where reading stopped; the result's bits, where the caller had put 77 before.")
    print("group\texpression\terror\trow\tcolumn\tresult\tcompared")
    for group, text in samples():
        calculator = Calculator(text)
        value = calculator.calculate()
        bits = "nan" if math.isnan(value) else struct.pack(">d", value).hex()
        place = f"{calculator.token.row}\t{calculator.token.column}"
        compared = "nearly" if calculator.near else "bits"
        print(f"{group}\t{escaped(text)}\t{calculator.error}\t{place}\t{bits}\t{compared}")


if __name__ == "__main__":
    sys.stdout.reconfigure(newline="\n")
    main()
