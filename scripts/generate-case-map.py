#!/usr/bin/env python3
"""Writes qvcore/common/CaseMap.inc: the simple case mapping of the Unicode basic multilingual plane.

usage: scripts/generate-case-map.py /usr/share/unicode/UnicodeData.txt > qvcore/common/CaseMap.inc

The committed table was made from the Unicode Character Database 15.0.0 (Debian's package
unicode-data). The mapping has two levels: the upper bits of a unit choose a block, the lower bits a
distance in the block, which is added to the unit in 16-bit arithmetic. Equal blocks are stored once.
"""

import sys

UNITS = 0x10000
BLOCK_BITS = 6
BLOCK = 1 << BLOCK_BITS


def read_mappings(path):
    """The simple upper and lower forms of every unit; a unit without one maps to itself."""
    upper = list(range(UNITS))
    lower = list(range(UNITS))
    with open(path, encoding="ascii") as lines:
        for line in lines:
            fields = line.rstrip("\n").split(";")
            unit = int(fields[0], 16)
            if unit >= UNITS:
                continue
            for forms, field in ((upper, fields[12]), (lower, fields[13])):
                form = int(field, 16) if field else unit
                forms[unit] = form if form < UNITS else unit
    return upper, lower


def split(forms):
    """The block number of every run of units, and the distinct blocks of distances."""
    numbers, blocks = [], []
    for start in range(0, UNITS, BLOCK):
        block = tuple((forms[unit] - unit) % UNITS for unit in range(start, start + BLOCK))
        if block not in blocks:
            blocks.append(block)
        numbers.append(blocks.index(block))
    assert len(blocks) <= 256, "a block number no longer fits a byte"
    return numbers, blocks


def write_array(name, kind, values):
    print(f"constexpr std::array<{kind}, {len(values)}> {name} = {{")
    for start in range(0, len(values), 16):
        print("    " + " ".join(f"{value}," for value in values[start : start + 16]))
    print("};\n")


def write_direction(name, forms):
    numbers, blocks = split(forms)
    write_array(f"{name}Blocks", "std::uint8_t", numbers)
    write_array(f"{name}Distances", "std::uint16_t", [d for block in blocks for d in block])


def write_extra_sources(upper, lower):
    """The units that share a lower form beside the form itself and its upper form."""
    extra = sorted(
        (lower[unit], unit)
        for unit in range(UNITS)
        if lower[unit] != unit and unit != upper[lower[unit]]
    )
    counts = [sum(1 for form, _ in extra if form == each) for each, _ in extra]
    assert max(counts) == 1, "a lower form has more than one extra source"
    print(f"constexpr std::array<ExtraSource, {len(extra)}> extraSources = {{{{")
    for form, unit in extra:
        print(f"    {{0x{form:04X}, 0x{unit:04X}}},")
    print("}};")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    upper, lower = read_mappings(sys.argv[1])
    print("// Made by scripts/generate-case-map.py from the Unicode Character Database 15.0.0.")
    print("// clang-format off\n")
    print(f"constexpr unsigned blockBits = {BLOCK_BITS};\n")
    write_direction("lower", lower)
    write_direction("upper", upper)
    write_extra_sources(upper, lower)


main()
