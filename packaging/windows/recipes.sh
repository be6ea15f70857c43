# shellcheck shell=bash
# Sourced by dependencies.sh: how each library is built. build_NAME runs in the unpacked source package NAME.
deps=$QUENDLE_WINDOWS_DEPS
target=x86_64-w64-mingw32
flags="-O2 -ffunction-sections -fdata-sections"
jobs=$(nproc)

use_autotools() {
  PKG_CONFIG_LIBDIR=$deps/lib/pkgconfig PKG_CONFIG_PATH='' ./configure --host=$target --prefix="$deps" \
    --disable-shared --enable-static CC=$target-gcc-posix CFLAGS="$flags" CPPFLAGS="-I$deps/include" \
    LDFLAGS="-L$deps/lib -static" "$@"
}

use_cmake() {
  cmake -G Ninja -B build-windows --toolchain "$root/cmake/mingw.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_INSTALL_PREFIX="$deps" -DCMAKE_INSTALL_LIBDIR=lib \
    -DBUILD_SHARED_LIBS=OFF "$@"
}

# For libraries whose own build writes none, or not for a static library.
write_pkg_config() {
  local name=$1 version=$2 libraries=$3 definitions=${4:-}
  cat >"$deps/lib/pkgconfig/$name.pc" <<END
prefix=$deps
Name: $name
Description: $name
Version: $version
Libs: -L\${prefix}/lib $libraries
Cflags: -I\${prefix}/include $definitions
END
}

build_zlib() {
  use_cmake
  cmake --build build-windows --target zlibstatic
  cp build-windows/libzlibstatic.a "$deps/lib/libz.a"
  cp build-windows/zconf.h zlib.h "$deps/include"
  write_pkg_config zlib "$(sed -n 's/^#define ZLIB_VERSION "\([0-9.]*\).*/\1/p' zlib.h)" -lz
}

build_bzip2() {
  make -f Makefile CC=$target-gcc-posix AR=$target-ar RANLIB=$target-ranlib CFLAGS="$flags" -j"$jobs" libbz2.a
  cp libbz2.a "$deps/lib"
  cp bzlib.h "$deps/include"
  write_pkg_config bzip2 1.0.8 -lbz2
}

build_xz-utils() {
  use_autotools --disable-xz --disable-xzdec --disable-lzmadec --disable-lzmainfo --disable-lzma-links --disable-scripts \
    --disable-doc --disable-nls
  make -j"$jobs" install
}

build_libzstd() {
  cd build/cmake
  use_cmake -DZSTD_BUILD_PROGRAMS=OFF -DZSTD_BUILD_SHARED=OFF -DZSTD_MULTITHREAD_SUPPORT=OFF
  cmake --build build-windows --target install
}

# Its older versions have a Makefile only.
build_libdeflate() {
  if [ -f CMakeLists.txt ]; then
    use_cmake -DLIBDEFLATE_BUILD_GZIP=OFF -DLIBDEFLATE_BUILD_SHARED_LIB=OFF
    cmake --build build-windows --target install
  else
    make CC=$target-gcc-posix AR=$target-ar CFLAGS="$flags" -j"$jobs" libdeflatestatic.lib
    cp libdeflatestatic.lib "$deps/lib/libdeflate.a"
    cp libdeflate.h "$deps/include"
    write_pkg_config libdeflate "$(sed -n 's/^#define LIBDEFLATE_VERSION_STRING.*"\(.*\)"/\1/p' libdeflate.h)" -ldeflate
  fi
}

# Without ciphers that need GMP, which are those with public keys.
build_nettle() {
  use_autotools --disable-public-key --disable-documentation --disable-openssl
  make -j"$jobs" libnettle.a
  make install-headers install-static install-pkgconfig
}

# Debian's patch for its flags changes configure.ac. It chooses the code for the processor that it runs on.
build_libb2() {
  autoreconf -fi
  use_autotools --disable-native --enable-fat --disable-openmp
  make -j"$jobs" install
}

# Encryption through the system's bcrypt; names are converted by the system's code pages, not by iconv. With libb2, since
# otherwise its own functions would have the same names as those, and be called in their place.
build_libarchive() {
  autoreconf -fi
  use_autotools --disable-bsdtar --disable-bsdcat --disable-bsdcpio --disable-acl --disable-xattr --without-openssl \
    --without-xml2 --without-expat --without-iconv --without-lz4 --with-cng \
    CPPFLAGS="-I$deps/include -DLZMA_API_STATIC -DLIBARCHIVE_STATIC"
  make -j"$jobs" install
  sed -i 's/^Cflags:.*/& -DLIBARCHIVE_STATIC/' "$deps/lib/pkgconfig/libarchive.pc"
}

build_lhasa() {
  autoreconf -fi
  use_autotools
  make -j"$jobs" -C lib install
  cp liblhasa.pc "$deps/lib/pkgconfig"
}

# Its interface speaks of off_t, which is as wide as it was built.
build_libmspack() {
  use_autotools
  make -j"$jobs" install
  sed -i 's/^Cflags:.*/& -D_FILE_OFFSET_BITS=64/' "$deps/lib/pkgconfig/libmspack.pc"
}

# A DLL of its own, as the licence wants: whoever likes can put another one in its place. Its codecs for RAR are not free and
# not in Debian's source.
build_7zip() {
  make -C CPP/7zip/Bundles/Format7zF -f ../../cmpl_gcc.mak -j"$jobs" IS_MINGW=1 MSYSTEM=1 DISABLE_RAR=1 \
    CC=$target-gcc-posix CXX=$target-g++-posix RC=$target-windres
  $target-strip -o "$deps/lib/7z.dll" CPP/7zip/Bundles/Format7zF/b/g/7z.dll
  cp debian/copyright "$deps/share/7zip-copyright.txt"
}

build_pcre2() {
  use_cmake -DPCRE2_SUPPORT_JIT=ON -DPCRE2_SUPPORT_UNICODE=ON -DPCRE2_BUILD_PCRE2GREP=OFF -DPCRE2_BUILD_TESTS=OFF
  cmake --build build-windows --target install
  sed -i 's/^Cflags:.*/& -DPCRE2_STATIC/' "$deps/lib/pkgconfig/libpcre2-8.pc"
}

build_utf8proc() {
  use_cmake
  cmake --build build-windows --target install
  sed -i 's/^Cflags:.*/& -DUTF8PROC_STATIC/' "$deps/lib/pkgconfig/libutf8proc.pc"
}

build_googletest() {
  use_cmake -DBUILD_GMOCK=OFF
  cmake --build build-windows --target install
}

build_nlohmann-json3() {
  use_cmake -DJSON_BuildTests=OFF
  cmake --build build-windows --target install
}

# What the windows do not need is left out; tabletevent also because Debian's source lacks the header that it needs. The
# tools that run while building are those of Debian's Qt, which must be of the same version.
build_qt6-base() {
  local host feature features=()
  host=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake
  for feature in sql network dbus printsupport xml icu vulkan concurrent tabletevent zstd; do
    features+=("-DFEATURE_$feature=OFF")
  done
  use_cmake "${features[@]}" -DINPUT_opengl=no \
    -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_HOST_PATH=/usr \
    -DQT_HOST_PATH_CMAKE_DIR="$host" -DQt6HostInfo_DIR="$host/Qt6HostInfo"
  cmake --build build-windows --target install
}
