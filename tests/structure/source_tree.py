"""What the checks of the tree share: its C++ files, and the trial that keeps a check honest."""
import os
import sys
import tempfile


def sources_in(root):
    """(path from the root, lines) of every C++ file."""
    for base, folders, files in os.walk(root):
        if base == root:
            folders[:] = [name for name in folders if not name.startswith(".") and name != "build"]
        for name in sorted(files):
            if name.endswith((".h", ".cpp")):
                with open(os.path.join(base, name), encoding="utf-8") as file:
                    yield os.path.relpath(os.path.join(base, name), root), file.read().splitlines()


def try_on_planted(check, planted, fine):
    """Every planted file must be found, and no other: a check could rot into one that never fails."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in {**planted, **fine}.items():
            os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        found = sorted(problem.split(":")[0] for problem in check(root))
    if found != sorted(planted):
        sys.exit(f"the check itself is wrong: planted {sorted(planted)}, found {found}")


def report(problems, praise):
    """Ends the program: a line for each problem."""
    print("\n".join(problems) or praise)
    sys.exit(1 if problems else 0)
