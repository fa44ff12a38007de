# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package, made by CPack from the install rules (scripts/build-deb.sh):
#   cpack -G DEB --config build/CPackConfig.cmake
# Its dependencies are read from the shared libraries the binaries link (dpkg-shlibdeps),
# so installing it with apt-get pulls in Qt, QCoro, QtKeychain, SQLite and zlib.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessaloom)
set(CPACK_PACKAGE_VENDOR "The Tessaloom developers")
set(CPACK_PACKAGE_CONTACT "The Tessaloom developers <developers@tessaloom.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://tessaloom.org/")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Debug information stays in the build tree; the package carries stripped binaries.
set(CPACK_STRIP_FILES ON)
# Only the install rules: never the sources or the build tree.
set(CPACK_SOURCE_IGNORE_FILES "/build/;/build-.*/;/\\\\.git/")

set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so the binaries' links do not name it: Qt's SVG icon engine draws the
# bundled icon theme and the application's own icon.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The package's long description; its first line is the project's description above.
set(CPACK_PACKAGE_DESCRIPTION "Tessaloom keeps a collection of owned LEGO sets, a wishlist and parts
checklists, beside a local catalog of every set, part, colour and theme built
from the public Rebrickable data, and market prices from price services. A
small sample catalog comes with the program.")
# The price services' keys live in the desktop's secret service, which every desktop brings;
# a bare window manager does without it, and the program then cannot keep them.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-keyring | kwalletmanager")

include(CPack)
