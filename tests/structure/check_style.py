"""Holds rules of CONTRIBUTING.md that no other tool knows.

    check_style.py ROOT

Prints a line for each place that breaks one and fails when there is one. Before that it checks
itself on planted violations, so that it cannot rot into a check that never fails.
"""
import collections
import os
import re
import sys
import tempfile

# At the beginning of a line: a type with a body, or a function, array or constant with its name.
DEFINITION = re.compile(
    r"(?:struct|class|union|enum(?: class| struct)?) (?P<type>\w+)(?!;)\b"
    r"|[\w:<>,*&\[\] ]+?[ *&>](?P<name>\w+)(?:\(|\[| =|;|\{)"
)
PUBLIC = re.compile(
    r"(?:struct|class|enum|enum class) (?P<type>\w+)(?! \w|\w|;)|(?:inline )?constexpr .*?(?P<constant>\bk[A-Z]\w*)\b"
)
ENUMERATOR = re.compile(r"\bk[A-Z]\w*(?=\s*(?:=|,|}|//|$))")
NO_DEFINITION = ("using ", "template <", "namespace", "TEST", "extern ", "friend ", "static_assert")


def sources_in(root):
    """(path, lines) of every C++ file."""
    for base, folders, files in os.walk(root):
        if base == root:
            folders[:] = [name for name in folders if not name.startswith(".") and name != "build"]
        for name in sorted(files):
            if name.endswith((".h", ".cpp")):
                with open(os.path.join(base, name), encoding="utf-8") as file:
                    yield os.path.relpath(os.path.join(base, name), root), file.read().splitlines()


def private_names(lines):
    """(number of the line, name) of what stands in a file's unnamed namespaces."""
    inside = in_enum = False
    for number, line in enumerate(lines, 1):
        in_enum = inside and (in_enum or line.startswith("enum ") and line[5:10] != "class")
        if in_enum:
            yield from ((number, name) for name in ENUMERATOR.findall(line))
            in_enum = ";" not in line
        if line.startswith("namespace {"):
            inside = True
        elif line.startswith("}  // namespace") or line == "}":
            # A function's end is no namespace's.
            inside = inside and line == "}"
        elif inside and line[:1].strip() and not line.startswith(NO_DEFINITION):
            match = DEFINITION.match(line)
            if match:
                yield number, match["type"] or match["name"]


def target_of(root, folder):
    """The nearest folder that is built for itself."""
    while folder and not os.path.exists(os.path.join(root, folder, "CMakeLists.txt")):
        folder = os.path.dirname(folder)
    return folder


def public_types(files):
    """Name -> header. A function's name may be overloaded; a type's and a constant's may not."""
    for path, lines in files:
        for line in lines if path.endswith(".h") else ():
            match = PUBLIC.match(line)
            if match:
                yield match["type"] or match["constant"], path


def check_private_names(root, files):
    """Grouped builds compile several sources of a target as one, with all their headers."""
    public = dict(public_types(files))
    seen = collections.defaultdict(dict)
    for path, lines in files:
        folder, name = os.path.split(path)
        # Those for one kind of processor are compiled with options of their own.
        if not name.endswith(".cpp") or "kernels" in name:
            continue
        for number, private in private_names(lines):
            if private in public:
                yield f"{path}:{number}: {private} is {public[private]}'s, choose another name"
            first = seen[target_of(root, folder)].setdefault(private, path)
            if first != path:
                yield f"{path}:{number}: {private} stands in {first} as well, choose another name"


CHECKS = [check_private_names]


def check(root):
    files = list(sources_in(root))
    return [problem for each in CHECKS for problem in each(root, files)]


def check_itself():
    """Every planted file must be found, and no other."""
    fine = "namespace {\nconstexpr int kSize = 1;\nstruct Words {\n    int kOther;\n};\n}  // namespace\n"
    planted = {
        "gui/public_name.cpp": "namespace {\nstruct Shown {\n}  // namespace\n",
        "gui/same_constant.cpp": "namespace {\nconst char* const kSize[] = {};\n}  // namespace\n",
        "gui/same_type.cpp": "namespace {\nint One() {\n}\nclass Words : public X {\n}  // namespace\n",
        "gui/same_enumerator.cpp": "namespace {\nenum Id : int { kFirst = 4, kSize };\n}  // namespace\n",
        "gui/widgets/same_function.cpp": "namespace {\nstd::vector<int> Count(int a,\n}  // namespace\n",
    }
    others = {
        "gui/a.cpp": fine,
        "gui/b.cpp": "namespace {\nint Count() {\n}\n}  // namespace\nint kSize = 2;\n",
        "gui/c_kernels.cpp": fine,
        "gui/shown.h": "class Shown;\nclass Words;\nstruct Shown : Base {\n    constexpr int kSize = 1;\n",
        "sound/a.cpp": fine,
        "gui/CMakeLists.txt": "",
        "sound/CMakeLists.txt": "",
    }
    with tempfile.TemporaryDirectory() as root:
        for path, text in {**planted, **others}.items():
            os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        found = sorted(problem.split(":")[0] for problem in check(root))
    if found != sorted(planted):
        sys.exit(f"the check itself is wrong: planted {sorted(planted)}, found {found}")


def main():
    check_itself()
    problems = check(sys.argv[1])
    print("\n".join(problems) or "every rule is kept")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
