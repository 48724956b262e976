"""Generated texts, the same in every run."""

import numpy as np

LATIN = "eeeeetttaaaooiinnsshhrrddlluucmwfygpbvk"
MIXED = ["eeeetttaaaooiinnsrdlucmfgpbäöüßéèàçñåøí", "αβγδεζηθικλμνξοπρσςτυφχψωάέή",
         "абвгдежзиклмнопрстуфхцчшщыэюяё"]


COMMON = ["the", "of", "and", "to", "in", "a", "is", "that", "for", "it", "was", "as", "with"]


def vocabulary(generator, letters, count):
    sizes = generator.choice(np.arange(1, 12), count,
                             p=[.04, .16, .2, .17, .13, .1, .08, .05, .04, .02, .01])
    words = ["".join(generator.choice(list(letters), size)) for size in sizes]
    return words + [word.capitalize() for word in words[:count // 10]]


def prose(words, size, generator):
    """Lines of words, common ones first in the list, each with its end; size bytes or a few more."""
    parts, total = [], 0
    while total < size:
        picks = words[np.minimum(generator.zipf(1.15, 20000) - 1,
                                 generator.integers(0, len(words), 20000))]
        lengths = generator.integers(1, 25, 4000)
        ends = np.cumsum(lengths)
        starts = ends - lengths
        lines = [" ".join(picks[a:b]) for a, b in zip(starts, ends) if b <= len(picks)]
        part = (".\n".join(lines) + "\n").encode()
        parts.append(part)
        total += len(part)
    return b"".join(parts)


def ascii_prose(size):
    generator = np.random.default_rng(20260102)
    return prose(np.array(COMMON + vocabulary(generator, LATIN, 3000)), size, generator)


def mixed_prose(size):
    generator = np.random.default_rng(20260103)
    words = sum((vocabulary(generator, letters, count)
                 for letters, count in zip(MIXED, (1500, 300, 300))), [])
    generator.shuffle(words)
    return prose(np.array(COMMON + words), size, generator)


def numbers(size):
    """Numbers as tables have them: mostly four decimals, some whole, a few with an exponent."""
    generator = np.random.default_rng(20260104)
    count = size // 8
    values = generator.normal(0, 300, count)
    kinds = generator.random(count)
    text = [f"{v:.4f}" if k < 0.85 else f"{v:.0f}" if k < 0.98 else f"{v:.10e}"
            for v, k in zip(values.tolist(), kinds.tolist())]
    return "\n".join(" ".join(text[i:i + 10]) for i in range(0, count, 10)).encode()


def short_texts(count):
    """Lines such as the cells of a text column have: about a quarter of a million are distinct."""
    generator = np.random.default_rng(20260105)
    words = np.array(vocabulary(generator, LATIN, 3000))
    first = words[generator.integers(0, len(words), count)].tolist()
    number = generator.integers(0, 100, count).tolist()
    return "".join(f"{word}-{n:02}\n" for word, n in zip(first, number)).encode()


def big_endian(size):
    generator = np.random.default_rng(20260106)
    return generator.integers(-(2**31), 2**31 - 1, size // 4, dtype=np.int32)
