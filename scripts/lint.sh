#!/bin/sh
# Static analysis: clang-tidy (checks chosen in .clang-tidy, tests/.clang-tidy)
# and cppcheck, over the compile commands of a clang configuration kept in
# build-lint/. Any finding fails the script.
#
#   scripts/lint.sh          every source file of the project
#   scripts/lint.sh --core   only the program, the raster library, the numerics
#                            the program uses (util/timer, util/regress), the
#                            fuzz targets and their tests (quicker)
set -e
cd "$(dirname "$0")/.."
scope=${1:-}

CC=clang CXX=clang++ cmake -S . -B build-lint -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DQUORL_FUZZ=ON >/dev/null

# The compile commands of the files in scope, in a directory of their own so
# that both tools see exactly those files with the flags of the build.
mkdir -p build-lint/scope
python3 - "$scope" <<'PY'
import json, os, re, sys
everything = sys.argv[1] != "--core"
core = re.compile(r"^(app/.*|bitmap/.*|util/(timer|regress)\.cpp|fuzz/.*|tests/tools/.*"
                  r"|tests/test_(pixels|tga|writer|maths|engine|estimate"
                  r"|images|gui_commands)\.cpp)$")
root = os.getcwd() + os.sep
entries = json.load(open("build-lint/compile_commands.json"))
keep = [e for e in entries if e["file"].startswith(root)
        and (everything or core.match(e["file"][len(root):]))]
json.dump(keep, open("build-lint/scope/compile_commands.json", "w"), indent=1)
with open("build-lint/scope/files", "w") as f:
    f.write("\n".join(e["file"] for e in keep) + "\n")
PY

status=0
echo "include graph"
python3 scripts/include_graph.py || status=1

echo "clang-tidy: $(wc -l <build-lint/scope/files) files"
if ! xargs -P2 -n4 nice clang-tidy -p build-lint/scope --quiet <build-lint/scope/files \
    >build-lint/clang-tidy.log 2>&1; then
    grep -E "(warning|error):" build-lint/clang-tidy.log | sort -u
    status=1
fi

# cppcheck: warnings, style, performance and portability, knowing the C
# library, POSIX and the test framework's macros. Left out: C-style casts
# (malloc'd bitmaps and the C interfaces need them), suggestions to use STL
# algorithms, passing small records by value (the interfaces pass Vec3,
# colours and pixels by value by design), system headers it does not read,
# and in tests const-ness of locals and parameters and the realloc idiom of
# fixtures that build tables by hand, and descriptors that a failed
# assertion leaves open on its early return.
echo "cppcheck"
if ! nice cppcheck --project=build-lint/scope/compile_commands.json --quiet -j2 \
    --library=posix --library=googletest \
    --enable=warning,style,performance,portability --inline-suppr --error-exitcode=1 \
    --suppress=cstyleCast --suppress=useStlAlgorithm --suppress=missingIncludeSystem \
    --suppress=passedByValue --suppress='constVariable:tests/*' \
    --suppress='constParameter:tests/*' --suppress='memleakOnRealloc:tests/*' \
    --suppress='resourceLeak:tests/*' \
    --template='{file}:{line}: {severity} [{id}] {message}'; then
    status=1
fi

[ "$status" -eq 0 ] && echo "lint: no findings"
exit "$status"
