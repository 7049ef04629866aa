# Installs the Debian packages the build needs, skipping those already present.
# Sourced by the other scripts: `quillon_deps PACKAGE...`.
quillon_deps() {
    local missing=()
    for pkg in "$@"; do
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# What every build needs: compiler, CMake, the test and benchmark libraries.
QUILLON_BUILD_PACKAGES=(cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev
    libcli11-dev libgettextpo-dev zlib1g-dev)
# The fuzz build: clang with libFuzzer and the sanitizer runtimes.
QUILLON_FUZZ_PACKAGES=(clang libclang-rt-dev)
# The windows: Qt 6 Widgets, Network and Test, and an X server with a window
# manager and a pointer driver for the screenshots and the drag check.
QUILLON_UI_PACKAGES=(qt6-base-dev xvfb xauth openbox xdotool)
# A CJK font, so that the kana of the Japanese character list and the search
# window's button draw on a fresh machine (the program and its pictures).
QUILLON_FONT_PACKAGES=(fonts-noto-cjk)
# The Debian package: dpkg-shlibdeps and file for its dependencies, help2man
# for the man page, rsvg-convert for the icon's pictures, and the validators
# of the desktop entry and the metainfo that its check runs.
QUILLON_PACKAGE_PACKAGES=(dpkg-dev file help2man librsvg2-bin desktop-file-utils appstream)
