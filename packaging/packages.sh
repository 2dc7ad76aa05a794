# Sourced by ./run, ./check and ./package from the top of the tree.

# install_packages STAGE...: installs the packages that packages.txt marks with one of the stages
# and that are missing. It records the installed list, so that the next call can skip the check.
install_packages() {
    local stages wanted missing stamp as_root=()
    stages=$(IFS='|'; echo "$*")
    wanted=$(grep -E "^($stages) " packages.txt | awk '{ print $2 }')
    stamp="build/packages-$(IFS=-; echo "$*")"
    if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$wanted" ]; then
        return
    fi
    missing=$(for package in $wanted; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed ||
            echo "$package"
    done)
    if [ -n "$missing" ]; then
        if [ "$(id -u)" -ne 0 ]; then
            if ! command -v sudo >/dev/null; then
                echo "These packages are missing, and only root can install them:" $missing >&2
                return 1
            fi
            as_root=(sudo)
        fi
        echo "Installing" $missing
        "${as_root[@]}" apt-get update -q
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -q -y --no-install-recommends $missing
    fi
    mkdir -p build
    echo "$wanted" >"$stamp"
}

# build PRESET: configures once and builds what has changed.
build() {
    [ -f "build/$1/build.ninja" ] || cmake --preset "$1"
    cmake --build --preset "$1"
}
