# The Debian packages, which scripts/package.sh makes.
set(MIFREADER_MAINTAINER "The mifreader developers <mifreader@example.org>" CACHE STRING
  "Who answers for the packages: NAME <ADDRESS>")
string(TIMESTAMP year %Y UTC)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(debian ${PROJECT_BINARY_DIR}/debian)
foreach(file copyright stage.cmake)
  configure_file(cmake/debian/${file}.in ${debian}/${file} @ONLY)
endforeach()

# All symbols count as new with each version, as in the shlibs file. The version script says which node each is of.
file(STRINGS src/mifreader.map map REGEX "{$|^ +mif")
set(symbols
  "libmifreader.so.${PROJECT_VERSION_MAJOR} libmifreader${PROJECT_VERSION_MAJOR} #MINVER#"
  "* Build-Depends-Package: libmifreader-dev")
foreach(line ${map})
  if(line MATCHES "^([^ ]+) {$")
    set(node ${CMAKE_MATCH_1})
    list(APPEND symbols " ${node}@${node} ${PROJECT_VERSION}")
  elseif(line MATCHES "^ +(mif[A-Za-z]+)")
    list(APPEND symbols " ${CMAKE_MATCH_1}@${node} ${PROJECT_VERSION}")
  endif()
endforeach()
list(JOIN symbols "\n" symbols)
file(WRITE ${debian}/symbols "${symbols}\n")

set(CPACK_GENERATOR DEB)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR})
set(CPACK_PACKAGE_VENDOR "The mifreader developers")
set(CPACK_PACKAGE_CONTACT ${MIFREADER_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${debian}/stage.cmake)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development program)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE mifreader)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libmifreader${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The trigger has ldconfig run. CPack would write scripts for that as well, unless there are some; these two names belong
# to no files, and so to no scripts.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/cmake/debian/triggers ${debian}/symbols postinst postrm)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "reader library for MIF documents
The library converts MIF, a document format of tagged plain text, to a
stream of binary tokens: text, formats, tables and embedded objects. It
is loaded by a host, which provides memory and the document's bytes.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmifreader-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "reader library for MIF documents (development files)
What is needed to build programs that read MIF documents: the headers of
the reader library, libmifhost, which embeds the reader in a C++ program,
and the files through which CMake and pkg-config find both.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME mifread)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION text)
set(CPACK_COMPONENT_PROGRAM_DEPENDS library)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "reads MIF documents
The program writes the text of MIF documents, pages for browsers, their
token streams as JSON Lines and their embedded objects, for one document
or for whole folders.")

include(CPack)
