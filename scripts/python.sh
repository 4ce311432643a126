# The wheels of the Python package, and its tests in one of them. Sourced by ./dev, whose folder for temporary files it
# uses.
# shellcheck shell=bash disable=SC2154

# Debian's, for which its packages are; another one may come first in the search path.
debian_python=/usr/bin/python3

# make_wheel BUILD PLATFORM FOLDER: the wheel for the libraries in BUILD. The same sources and libraries make the same
# bytes. In a copy, as the tools leave files beside the sources.
make_wheel() {
    local sources=$temporary/wheel
    rm -rf "$sources" && mkdir "$sources"
    git ls-files -z --cached --others --exclude-standard -- CMakeLists.txt python | xargs -0 cp --parents -t "$sources"
    (
        umask 022
        export SOURCE_DATE_EPOCH KESTOVA_BUILD=$PWD/$1 KESTOVA_PLATFORM=$2
        SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
        quietly "making the wheel for $2" "$debian_python" -m pip wheel --no-index --no-deps --no-build-isolation \
            --wheel-dir "$3" "$sources/python"
    )
}

# make_wheels FOLDER: for each platform for which there is a library.
make_wheels() {
    need "to make Python wheels" bindings
    build linux
    build windows
    build windows-x86
    make_wheel build/linux/c linux_x86_64 "$1"
    make_wheel build/windows/bin win_amd64 "$1"
    make_wheel build/windows-x86/bin win32 "$1"
}

# test_python: the package as it is installed from its wheel, without network, in an environment of its own.
test_python() {
    need "to make a Python wheel and test it" bindings
    build linux
    local folder wheel python=$temporary/environment/bin/python3
    for folder in "$temporary/wheels" "$temporary/again"; do make_wheel build/linux/c linux_x86_64 "$folder"; done
    wheel=$(echo "$temporary"/wheels/*.whl)
    cmp "$wheel" "$temporary"/again/*.whl || fail "two wheels of the same sources differ"
    quietly "making an environment" "$debian_python" -m venv --system-site-packages --without-pip \
        "$temporary/environment"
    quietly "installing the wheel" "$python" -m pip install --no-index --no-deps "$wheel"
    mkdir "$temporary/elsewhere"
    (
        cd "$temporary/elsewhere"
        export KESTOVA_TOOL=$OLDPWD/build/linux/tools/kestova/kestova PYTHONDONTWRITEBYTECODE=1
        "$python" -m pytest -q -p no:cacheprovider "$OLDPWD/python/tests"
    ) >"$temporary/pytest" 2>&1 || { cat "$temporary/pytest" >&2; fail "tests of the Python package failed"; }
    say "python: ${wheel##*/}; $(tail -n 1 "$temporary/pytest")"
}
