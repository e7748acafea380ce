"""How the benchmarks of the window print a figure."""
import statistics


def report(what, values, unit="ms", aim=""):
    print(
        f"{what:52} median {statistics.median(values):7.1f} {unit}   "
        f"range {min(values):.1f} to {max(values):.1f}{'   aim: ' + aim if aim else ''}",
        flush=True,
    )
