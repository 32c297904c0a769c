# The address and the digest are those of the archive that scripts/release has made.
vcpkg_download_distfile(ARCHIVE
  URLS "${OPCMODEL_ARCHIVE_URL}"
  FILENAME "opcmodel-${VERSION}.tar.gz"
  SHA512 "${OPCMODEL_ARCHIVE_SHA512}")
vcpkg_extract_source_archive(SOURCE_PATH ARCHIVE "${ARCHIVE}")

vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS FEATURES tool OPCMODEL_TOOLS)
vcpkg_find_acquire_program(PKGCONFIG)
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS ${FEATURE_OPTIONS} -DOPCMODEL_EXAMPLES=OFF "-DPKG_CONFIG_EXECUTABLE=${PKGCONFIG}")
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/opcmodel)
vcpkg_fixup_pkgconfig()
vcpkg_copy_pdbs()
if("tool" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES opctool AUTO_CLEAN)
endif()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE" "${SOURCE_PATH}/NOTICE")
