# shellcheck shell=bash
# The source package's tree, and building packages in it.

# exportSource FOLDER: what is tracked, with packaging/debian as debian/. Every file has the date of
# the changelog, so that no date of a checkout gets into a package.
exportSource() {
    local folder=$1 upstream project
    rm -rf --one-file-system "$(dirname "$folder")"
    mkdir -p "$folder"
    if [[ -e .git ]]; then
        git ls-files -z | tar --create --null --files-from=- | tar --extract --directory="$folder"
    else
        tar --create --exclude=./build . | tar --extract --directory="$folder"
    fi
    mv "$folder/packaging/debian" "$folder/debian"
    upstream=$(dpkg-parsechangelog --file "$folder/debian/changelog" --show-field Version)
    upstream=${upstream%-*}
    project=$(sed -n 's/^project(Tidebrook VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
    if [[ $upstream != "$project" ]]; then
        printf 'packaging/debian/changelog is of version %s, but CMakeLists.txt of %s\n' \
            "$upstream" "$project" >&2
        return 1
    fi
    find "$folder" -print0 | xargs -0 touch --no-dereference --date="@$(
        dpkg-parsechangelog --file "$folder/debian/changelog" --show-field Timestamp)"
}

# buildPackages FOLDER: builds what exportSource has put there, for this machine's architecture.
# The tests of the source have their own command.
buildPackages() {
    local output
    output=$(dirname "$1")/build.log
    echo "Building the packages (the first time, this takes some minutes); the log is $output ..."
    if ! (cd "$1" && DEB_BUILD_OPTIONS="nocheck parallel=$(jobLimit)" \
        dpkg-buildpackage -us -uc -b -Pnocheck) >"$output" 2>&1; then
        tail -n 40 "$output" >&2
        return 1
    fi
}
