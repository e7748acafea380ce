#!/usr/bin/env python3
"""Prints phases, step and the coefficient table of the rate converter's filter: IN_RATE OUT_RATE."""
import math
import sys


def bessel(x):
    y = x * x
    total, term = 1.0, 1.0
    for divisor in (4, 16, 36, 64, 100, 144):
        term *= y / divisor
        total += term
    return total


def half_away(x):
    return int(math.floor(abs(x) + 0.5)) * (1 if x >= 0 else -1)


def phases_and_step(ratio):
    best, best_error = 1, None
    for phases in range(1, 256):
        error = abs(ratio - (half_away(ratio * phases) & 0xFFFF) / phases)
        if best_error is None or error < best_error:
            best, best_error = phases, error
            if error < 0.001:
                break
    return best, max(1, half_away(ratio * best))


def table(rate_in, rate_out):
    phases, step = phases_and_step(rate_in / rate_out)
    if rate_in < rate_out:
        cut, centre, beta, base = 0.975, 65536 * 0.975, 2.12, 63897.6 / 25749.40128619654
    else:
        cut = rate_out / rate_in - 0.046875
        centre, beta, base = 65536 * cut, 4.538, 18.072136678571777
    rows = []
    for phase in range(phases):
        for tap in range(63):
            t = (tap - 31) - phase / phases
            if t == 0 or cut == 0:
                rows.append(half_away(centre))
                continue
            x = math.pi * cut * t
            window = bessel(beta * math.sqrt(1 - t * t / 1024)) / base
            rows.append(half_away(centre * math.sin(x) / x * window))
    return phases, step, rows


if __name__ == "__main__":
    phases, step, rows = table(int(sys.argv[1]), int(sys.argv[2]))
    print(phases, step)
    print(*rows)
