#!/usr/bin/env python3
"""Writes qv/crypto/BlowFishTables.inc: the initial P array and S boxes of Blowfish.

usage: scripts/generate-blowfish-tables.py > qv/crypto/BlowFishTables.inc

They are the fractional digits of pi, cut into words of 32 bits: 18 for the P array, then 4 times 256
for the S boxes. The digits come from pi / 4 = 4 arctan(1/5) - arctan(1/239), in whole numbers.
"""

WORD_BITS = 32
P_WORDS = 18
S_BOXES = 4
S_WORDS = 256
GUARD_BITS = 64  # what the cut terms of the series may spoil
WORDS_A_LINE = 8


def arctan_of_reciprocal(denominator, one):
    """arctan(1 / denominator), as a multiple of 1 / one."""
    power = one // denominator
    total = power
    divisor = 1
    while power:
        power //= -denominator * denominator
        divisor += 2
        total += power // divisor
    return total


def fraction_of_pi(words):
    """The first words behind the point of pi."""
    bits = words * WORD_BITS
    one = 1 << (bits + GUARD_BITS)
    pi = 4 * (4 * arctan_of_reciprocal(5, one) - arctan_of_reciprocal(239, one))
    digits = (pi >> GUARD_BITS) & ((1 << bits) - 1)
    mask = (1 << WORD_BITS) - 1
    return [(digits >> (bits - WORD_BITS * (i + 1))) & mask for i in range(words)]


def write_words(words, indent):
    for start in range(0, len(words), WORDS_A_LINE):
        line = " ".join(f"0x{word:08X}," for word in words[start : start + WORDS_A_LINE])
        print(" " * indent + line)


def main():
    words = fraction_of_pi(P_WORDS + S_BOXES * S_WORDS)
    print("// Made by scripts/generate-blowfish-tables.py: the fractional digits of pi.")
    print("// clang-format off\n")
    print(f"const std::uint32_t BlowFish::s_pbox[{P_WORDS}] = {{")
    write_words(words[:P_WORDS], 4)
    print("};\n")
    print(f"const std::uint32_t BlowFish::s_sbox[{S_BOXES}][{S_WORDS}] = {{")
    for box in range(S_BOXES):
        start = P_WORDS + box * S_WORDS
        print("    {")
        write_words(words[start : start + S_WORDS], 8)
        print("    },")
    print("};")


main()
