# The Debian package that `cpack` (./scripts/package) makes of what
# `cmake --install` puts under /usr: the two programs, the demonstration ROM
# and the shipped ini files in share/quillon, the desktop entry, the icon, the
# metainfo and the man page.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillon)
set(CPACK_PACKAGE_VENDOR "Tarnwick-Soft")
set(CPACK_PACKAGE_CONTACT "Quillon developers <quillon@tarnwick-soft.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the texts inside Game Boy Advance ROM images")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "\
Quillon edits the texts of Game Boy Advance ROM images in place: a text that
grows past its room is moved to free space and every pointer to it is
rewritten. Every save is checked, journaled and kept in a history that can be
undone. quillon-cli exports every text to a PO file for translation tools and
imports it back.")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://tarnwick-soft.example.org/")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
# The dependencies are the Debian packages of the libraries the programs link
# (Qt 6 Widgets and Network, libgettextpo, zlib, ...), found by dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The Japanese character list draws its kana with a CJK font.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
include(CPack)
