"""Holds rules of CONTRIBUTING.md that no other tool knows.

    check_style.py ROOT

Prints a line for each place that breaks one and fails when there is one. Before that it checks
itself on planted violations.
"""
import collections
import os
import re
import sys

from source_tree import report, sources_in, try_on_planted

# At the beginning of a line: a type with a body, or a function, array or constant with its name.
DEFINITION = re.compile(
    r"(?:struct|class|union|enum(?: class| struct)?) (?P<type>\w+)(?!;)\b"
    r"|[\w:<>,*&\[\] ]+?[ *&>](?P<name>\w+)(?:\(|\[| =|;|\{)"
)
PUBLIC = re.compile(
    r"(?:struct|class|enum|enum class) (?P<type>\w+)(?! \w|\w|;)|(?:inline )?constexpr .*?(?P<constant>\bk[A-Z]\w*)\b"
)
ENUMERATOR = re.compile(r"\bk[A-Z]\w*(?=\s*(?:=|,|}|//|$))")
# The beginning of a callback of GTK's, GLib's or the X server's; of a variable of the whole program.
CALLBACK = re.compile(r" *(?:static )?\w[\w:*]* (?:\w+::)?(?P<name>G[CS][A-Z]\w*)\(.*[({,]$")
MOST_CALLBACK_LINES = 15
VARIABLE = re.compile(r"(?:static |inline |volatile |thread_local )*\w[\w:<>,*& ]*[ *&](?P<name>\w+)(?:\[\w*\])?(?: = .*|\{.*\})?;$")
UNCHANGING = re.compile(r"\b(?:const|constexpr|using|typedef|return|extern|friend|class|struct|enum|union|namespace|delete|goto|template)\b")
# What other code knows by its name, and flags that a signal's handler sets.
KNOWN_VARIABLES = {"gargc", "gargv", "gLLog", "gLLocalSettings", "gLUserSettings", "gLHangDetector",
                   "gDatFileNativeSystem", "bLLibExceptionAlreadyTrapped", "gInterrupted"}
# A crash must be handled without asking for memory; a fuzzer calls a function without an object.
STATE_IN_FILES = ("tests/", "fuzz/", "foundation/crash/")
NO_DEFINITION = ("using ", "template <", "namespace", "TEST", "extern ", "friend ", "static_assert")


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


def check_callbacks(_root, files):
    """What a callback decides stands in a function with a name of its own."""
    for path, lines in files:
        for number, line in enumerate(lines, 1):
            match = CALLBACK.match(line)
            if not match or path.startswith("tests/"):
                continue
            indent = re.match(" *", line)[0]
            begin = next(at for at in range(number - 1, len(lines)) if lines[at].endswith(("{", ";", "}")))
            if lines[begin].endswith("{"):
                end = next(at for at in range(begin, len(lines)) if lines[at].startswith(indent + "}"))
                if end - begin - 1 > MOST_CALLBACK_LINES:
                    yield f"{path}:{number}: {match['name']} has {end - begin - 1} lines, more than {MOST_CALLBACK_LINES}"


def check_variables(_root, files):
    """No state that changes stands beside the functions of a file."""
    for path, lines in files:
        depth = 0
        for number, line in enumerate(lines, 1):
            match = VARIABLE.match(line)
            if match and depth == 0 and not UNCHANGING.search(line) and not path.startswith(STATE_IN_FILES):
                if match["name"] not in KNOWN_VARIABLES:
                    yield f"{path}:{number}: {match['name']} belongs into an object"
            if not line.startswith(("namespace", "}  // namespace", "#", 'extern "C"')):
                code = re.sub(r"'.'|\"[^\"]*\"|//.*", "", line)
                depth = max(0, depth + sum(map(code.count, "{(")) - sum(map(code.count, "})")))


CHECKS = [check_private_names, check_callbacks, check_variables]


def check(root):
    files = list(sources_in(root))
    return [problem for each in CHECKS for problem in each(root, files)]


def check_itself():
    fine = "namespace {\nconstexpr int kSize = 1;\nstruct Words {\n    int kOther;\n};\n}  // namespace\n"
    planted = {
        "gui/public_name.cpp": "namespace {\nstruct Shown {\n}  // namespace\n",
        "gui/same_constant.cpp": "namespace {\nconst char* const kSize[] = {};\n}  // namespace\n",
        "gui/same_type.cpp": "namespace {\nint One() {\n}\nclass Words : public X {\n}  // namespace\n",
        "gui/long_callback.cpp": "gboolean GCKey(GtkWidget*,\n    gpointer x) {\n" + "    x;\n" * 16 + "}\n",
        "gui/variable.cpp": "namespace {\n\nstd::vector<int> gAll;\n}  // namespace\n",
        "gui/same_enumerator.cpp": "namespace {\nenum Id : int { kFirst = 4, kSize };\n}  // namespace\n",
        "gui/widgets/same_function.cpp": "namespace {\nstd::vector<int> Count(int a,\n}  // namespace\n",
    }
    others = {
        "gui/a.cpp": fine,
        "gui/callback.cpp": "void GCShort(int) {\n" + "    x;\n" * 15 + "}\nconst int kOne = 1;\nint gargc = 0;\n",
        "gui/b.cpp": "namespace {\nint Count() {\n}\n}  // namespace\nconst int kSize = 2;\n",
        "gui/c_kernels.cpp": fine,
        "gui/shown.h": "class Shown;\nclass Words;\nstruct Shown : Base {\n    constexpr int kSize = 1;\n",
        "sound/a.cpp": fine,
        "gui/CMakeLists.txt": "",
        "sound/CMakeLists.txt": "",
    }
    try_on_planted(check, planted, others)


if __name__ == "__main__":
    check_itself()
    report(check(sys.argv[1]), "every rule is kept")
