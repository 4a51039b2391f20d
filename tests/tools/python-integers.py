#!/usr/bin/env python3
"""Compares the program's calculations at random with Python's own integers.

  python-integers.py COUNT [RUNNER] PROGRAM

Prints what differs, and nothing where all agrees. What the program keeps, and Python has otherwise:
  div      the quotient is cut toward zero, and the remainder is that of the magnitudes
  mod      a negative multiple of the modulus gives the modulus, not 0
  pow      to the power of 0 a number stays as it is
  modpow   so it is there too; with a negative exponent the power of the inverse is not reduced
  gcd      where the second number divides the first, it is the second with its sign
"""

import random
import subprocess
import sys

DIGITS = "0123456789abcdefghijklmnopqrstuvwxyz"
OPERATIONS = ["add", "sub", "mul", "div", "mod", "pow", "modpow", "modinv", "gcd", "cmp", "tostring"]


def text(number, radix):
    if number == 0:
        return "0"
    digits = ""
    rest = abs(number)
    while rest:
        rest, digit = divmod(rest, radix)
        digits = DIGITS[digit] + digits
    return "-" + digits if number < 0 else digits


def mod(a, m):
    return m if a < 0 and a % m == 0 else a % m


def gcd(a, b):
    if a % b == 0:
        return b
    while b:
        a, b = abs(b), abs(a) % abs(b)
    return a


def power(a, e):
    return a if e == 0 else a**e


def quotient(a, b):
    magnitude = abs(a) // abs(b)
    return magnitude if (a < 0) == (b < 0) else -magnitude


def some(bits, signed=True):
    number = random.getrandbits(random.randint(1, bits))
    return -number if signed and random.random() < 0.5 else number


def case():
    """Operation, operands by their names, radix, and what is expected."""
    operation = random.choice(OPERATIONS)
    radix = random.choice([10, 10, 2, 16, 36, random.randint(2, 36)])
    a, b, m = some(3000), some(1500) or 1, some(500, False) or 1
    operands = {"a": a, "b": b}
    if operation == "add":
        result = a + b
    elif operation == "sub":
        result = a - b
    elif operation == "mul":
        result = a * b
    elif operation == "div":
        return operation, operands, radix, text(quotient(a, b), radix) + " " + text(abs(a) % abs(b), radix)
    elif operation == "mod":
        operands, result = {"a": a, "m": m}, mod(a, m)
    elif operation == "pow":
        e = random.randint(0, 30)
        operands, result = {"a": a, "b": e}, power(a, e)
    elif operation == "modpow":
        e = random.randint(-3, 40)
        try:
            inverse = pow(abs(a), -1, m)
        except ValueError:
            e = abs(e)
        if e < 0:
            a = abs(a)
            result = inverse ** -e
        else:
            result = mod(power(a, e), m)
        operands = {"a": a, "b": e, "m": m}
    elif operation == "modinv":
        a = abs(a)
        try:
            result = pow(a, -1, m)
        except ValueError:
            return case()
        if a == 0:
            return case()
        operands = {"a": a, "m": m}
    elif operation == "gcd":
        result = gcd(a, b)
    elif operation == "cmp":
        return operation, operands, radix, str((a > b) - (a < b))
    else:
        operands, result = {"a": a}, a
    return operation, operands, radix, text(result, radix)


def main():
    count, program = int(sys.argv[1]), sys.argv[2:]
    random.seed(count)
    if hasattr(sys, "set_int_max_str_digits"):
        sys.set_int_max_str_digits(0)
    for _ in range(count):
        operation, operands, radix, expected = case()
        arguments = ["bigint", f"-op={operation}", f"-radix={radix}"]
        arguments += [f"-{name}={value}" for name, value in operands.items()]
        found = subprocess.run(program + arguments, capture_output=True, text=True).stdout.strip()
        if found != expected:
            print(" ".join(arguments), "gives", found, "and not", expected)


main()
