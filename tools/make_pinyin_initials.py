#!/usr/bin/env python3
"""Writes workbench/platform/pinyin_initials.inc: the first letters of the readings of Chinese characters.

    tools/make_pinyin_initials.py [Unihan_Readings.txt or .txt.bz2]

The readings are those of the Unicode Han Database, which Debian's package unicode-data installs. A character has the
initials of all readings that sources of today's language list (kMandarin, kHanyuPinlu, kXHC1983, kTGHZ2013), so that a
person finds it by any of them. Where those list none, the readings of the large dictionary (kHanyuPinyin) count. Of the
characters behind U+9FFF, those are taken that a dictionary of today's language has. The file changes only when Unicode does:
run this by hand and check the result in.
"""
import bz2
import re
import sys
import unicodedata

SOURCE = '/usr/share/unicode/Unihan_Readings.txt.bz2'
TARGET = 'workbench/platform/pinyin_initials.inc'
DICTIONARIES = ('kXHC1983', 'kTGHZ2013')
OF_TODAY = ('kMandarin', 'kHanyuPinlu', *DICTIONARIES)
FIRST, LAST = 0x3400, 0x9FFF
IN_A_LINE = 96


def initials(value):
    """The first letters of the syllables in a field's value, such as "0149.100:chóng 1502.040:zhòng"."""
    letters = set()
    for word in value.split():
        for syllable in re.sub(r'\(.*|.*:', '', word).split(','):
            letter = unicodedata.normalize('NFD', syllable)[:1]
            if 'a' <= letter <= 'z':
                letters.add(letter)
    return letters


def readings(path):
    """Of each character: the initials of today's readings, and those of the large dictionary."""
    today, large = {}, {}
    with (bz2.open if path.endswith('.bz2') else open)(path, 'rt', encoding='utf-8') as lines:
        for line in lines:
            if not line.startswith('U+'):
                continue
            code, field, value = line.rstrip('\n').split('\t')
            character = int(code[2:], 16)
            if field in DICTIONARIES or (field in (*OF_TODAY, 'kHanyuPinyin') and character <= LAST):
                into = large if field == 'kHanyuPinyin' else today
                into.setdefault(character, set()).update(initials(value))
    return {code: ''.join(sorted(today.get(code) or large[code])) for code in today.keys() | large.keys()}


def main():
    of = readings(sys.argv[1] if len(sys.argv) > 1 else SOURCE)
    groups = sorted({of.get(code, '') for code in range(FIRST, LAST + 1)})
    # Two characters name a group; none is a quote, a backslash or a question mark.
    digits = [chr(c) for c in range(ord('0'), ord('z') + 1) if chr(c) not in '\\?']
    assert len(groups) <= len(digits) ** 2
    name = {group: digits[i // len(digits)] + digits[i % len(digits)] for i, group in enumerate(groups)}
    beyond = sorted((code, of[code]) for code in of if code > LAST and of[code])
    with open(TARGET, 'w', encoding='ascii') as out:
        out.write('// First letters of the readings of Chinese characters, from the Unicode Han Database, which is\n'
                  '// copyright Unicode, Inc., under https://www.unicode.org/license.txt. Made by tools/make_pinyin_initials.py.\n')
        out.write(f'constexpr char32_t firstCharacter = 0x{FIRST:x};\n')
        out.write(f'constexpr std::string_view groupDigits = "{"".join(digits)}";\n')
        out.write('constexpr std::string_view groups[] = {' + ', '.join(f'"{group}"' for group in groups) + '};\n')
        out.write('// Two digits for each character: its group.\nconstexpr std::string_view groupNumbers =\n')
        text = ''.join(name[of.get(code, '')] for code in range(FIRST, LAST + 1))
        lines = [text[i:i + IN_A_LINE] for i in range(0, len(text), IN_A_LINE)]
        out.write('\n'.join(f'    "{line}"' for line in lines) + ';\n')
        out.write('// Rarer characters, behind those.\nconstexpr std::pair<char32_t, std::string_view> rareCharacters[] = {\n')
        out.write('\n'.join(f'    {{0x{code:x}, "{letters}"}},' for code, letters in beyond) + '\n};\n')


main()
