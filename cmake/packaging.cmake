# The tool's man page and the Debian package (cpack -G DEB).

# The man page is made from the tool's own --help and --version by help2man,
# with the sections that the help does not hold from docs/aimhue.h2m. It is
# left out of sanitizer builds, where running the tool at build time could
# fail on a report that has nothing to do with the page.
find_program(AIMHUE_HELP2MAN help2man)
if(TARGET aimhue_tool AND AIMHUE_HELP2MAN AND NOT AIMHUE_SANITIZE)
  set(AIMHUE_MAN_PAGE ${PROJECT_BINARY_DIR}/man/aimhue.1)
  add_custom_command(OUTPUT ${AIMHUE_MAN_PAGE}.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
    COMMAND ${AIMHUE_HELP2MAN} --no-info --section=1
            "--name=colour calibration targets for LED display screens"
            --include=${PROJECT_SOURCE_DIR}/docs/aimhue.h2m --output=${AIMHUE_MAN_PAGE}
            $<TARGET_FILE:aimhue_tool>
    COMMAND gzip -9nf ${AIMHUE_MAN_PAGE}
    DEPENDS aimhue_tool ${PROJECT_SOURCE_DIR}/docs/aimhue.h2m
    COMMENT "Writing the aimhue man page")
  add_custom_target(aimhue_man_page ALL DEPENDS ${AIMHUE_MAN_PAGE}.gz)
  install(FILES ${AIMHUE_MAN_PAGE}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# One package with everything the install step puts in place: the library
# with its SONAME, the headers, the CMake package, aimhue.pc, the tool, its
# man page and the Python module. dpkg-shlibdeps derives the library
# dependencies (OpenCV, OpenMP, the C++ runtime) from the binaries; Python
# and NumPy are named because the module does not link them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME aimhue)
set(CPACK_PACKAGE_VENDOR aimhue)
set(CPACK_PACKAGE_CONTACT "aimhue developers <aimhue@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "Library, command-line tool and Python module that find the calibration targets of LED
 display screens from per-LED CIE X, Y, Z measurements: target chromaticities,
 white-point gains, coverage, pass/NG judgement and per-LED correction.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# libaimhue.so.0 itself is in the package: let dpkg-shlibdeps find it there.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The picture codecs are loaded at run time, so dpkg-shlibdeps cannot see them.
string(REGEX REPLACE "^lib(.*)\\.so\\.([0-9]+)$" "lib\\1\\2" AIMHUE_IMGCODECS_PACKAGE
       "${AIMHUE_IMGCODECS_LIBRARY}")
string(REPLACE "_" "-" AIMHUE_IMGCODECS_PACKAGE "${AIMHUE_IMGCODECS_PACKAGE}")
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${AIMHUE_IMGCODECS_PACKAGE}")
if(AIMHUE_BUILD_PYTHON)
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS
      ", python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}), python3 (<< ${Python_VERSION_MAJOR}.${AIMHUE_PYTHON_NEXT_MINOR}), python3-numpy")
endif()
# The headers include OpenCV's; hosts building against the package need it.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libopencv-dev, pkg-config")
include(CPack)
