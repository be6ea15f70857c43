#!/usr/bin/env bash
# Builds Quendle for Windows (10 or later, 64 bits) with everything that it needs, and packs it:
# build/Quendle-X.Y.Z-win64.zip. The first run also builds Qt, about half an hour on two cores.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_missing
"$windows/dependencies.sh" --windows
# Anew, since the folder may have been configured before there was Qt.
(cd "$root" && cmake --preset windows >/dev/null)
build windows quendle

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$root/build/windows/CMakeCache.txt")
name=Quendle-$version-win64
staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
mkdir -p "$staging/$name"/{modules,licences}
cp "$root/build/windows/src/Quendle.exe" "$staging/$name"
cp "$root"/build/windows/src/modules/*.dll "$staging/$name/modules"
cp "$root"/docs/manual*.md "$staging/$name"
mkdir "$staging/$name/images"
grep -oh 'images/[a-z-]*\.png' "$root"/docs/manual*.md | sort -u | while read -r picture; do
  cp "$root/docs/$picture" "$staging/$name/images"
done

# What is linked in has licences that go with it. Debian keeps them with the packages for its own systems, which the build on
# Linux needs and which are made from the same sources.
linked=(zlib1g libbz2-1.0 liblzma5 libzstd1 libdeflate0 libnettle8 libb2-1 libarchive13 liblhasa0 libmspack0 libpcre2-8-0 libutf8proc2
        libqt6core6 libstdc++6 mingw-w64-common)
for package in "${linked[@]}"; do
  if [ -f "/usr/share/doc/$package/copyright" ]; then
    cp "/usr/share/doc/$package/copyright" "$staging/$name/licences/$package.txt"
  fi
done

# 7-Zip's library is not linked in. Its licence wants its text and an offer of the source to go with it.
sevenzip_version=$(sed -n '1s/^7zip //p' "$QUENDLE_WINDOWS_DEPS/built/7zip")
cp "$QUENDLE_WINDOWS_DEPS/share/7zip-copyright.txt" "$staging/$name/licences/7zip.txt"
# These name licences by where Debian keeps them.
for licence in LGPL-2.1 LGPL-3 GPL-3; do
  cp "/usr/share/common-licenses/$licence" "$staging/$name/licences/$licence.txt"
done
cat >"$staging/$name/licences/7zip-source.txt" <<END
modules/7z.dll is the library of 7-Zip. It is free software under the GNU Lesser General Public License, version 2.1 or
(at your option) any later version, with parts under other licences: see LGPL-2.1.txt and 7zip.txt. You may change it, and
put a changed one in its place.

It was built, as build_7zip in packaging/windows/recipes.sh of Quendle's source says, from Debian's source package 7zip,
version $sevenzip_version, which you find at

  https://deb.debian.org/debian/pool/main/7/7zip/
  https://snapshot.debian.org/package/7zip/

For three years from the day you were given this program, who gave it to you also gives you that source on request, for
no more than what the copying costs.
END

archive=$root/build/$name.zip
rm -f "$archive"
(cd "$staging" && find "$name" -type f | sort | zip -q -9 -X "$archive" -@)
echo "$archive"
