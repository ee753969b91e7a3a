# All third-party libraries, found once. What installs them is tools/setup.sh.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-unix-2.0)
pkg_check_modules(YAJL REQUIRED IMPORTED_TARGET yajl)
find_package(LibXml2 REQUIRED)
find_package(Boost REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)

# libunistring comes without a package file of either kind.
find_path(UNISTRING_INCLUDE_DIR unicase.h REQUIRED)
find_library(UNISTRING_LIBRARY unistring REQUIRED)
add_library(unistring UNKNOWN IMPORTED)
set_target_properties(unistring PROPERTIES IMPORTED_LOCATION ${UNISTRING_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${UNISTRING_INCLUDE_DIR})
