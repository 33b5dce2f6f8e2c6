# Debian packages, made by "./kvr.sh paquetes" with CPack's DEB generator from the install
# components: libkvr1 (bibliotecas), libkvr-dev (desarrollo) and kvr (programas). Everything the
# packages hold is what "cmake --install" installs; with KVR_DEBIAN each package also gets the
# copyright and changelog files Debian asks of it.
option(KVR_DEBIAN "Install each Debian package's copyright and changelog" OFF)
set(KVR_MANTENEDOR "Desarrolladores del Runtime KVR <kvr@example.org>" CACHE STRING
  "Maintainer of the Debian packages, as \"Name <address>\"")

set(KVR_PAQUETE_bibliotecas libkvr1)
set(KVR_PAQUETE_desarrollo libkvr-dev)
set(KVR_PAQUETE_programas kvr)

if(KVR_DEBIAN)
  find_program(KVR_GZIP gzip REQUIRED)
  # libkvr1 registers its libraries through dpkg's ldconfig trigger.
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_BIBLIOTECAS_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/debian/triggers)
  set(KVR_CAMBIOS ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog.gz)
  add_custom_command(OUTPUT ${KVR_CAMBIOS}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/debian
    COMMAND ${KVR_GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/changelog > ${KVR_CAMBIOS}
    DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/changelog VERBATIM)
  add_custom_target(kvr-cambios ALL DEPENDS ${KVR_CAMBIOS})
  foreach(componente bibliotecas desarrollo programas)
    install(FILES cmake/debian/copyright ${KVR_CAMBIOS}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${KVR_PAQUETE_${componente}} COMPONENT ${componente})
  endforeach()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kvr)
set(CPACK_PACKAGE_VENDOR "Desarrolladores del Runtime KVR")
set(CPACK_PACKAGE_CONTACT "${KVR_MANTENEDOR}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL bibliotecas desarrollo programas)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# Run-time dependencies are read from the binaries by dpkg-shlibdeps. The programs' own libraries
# are found in the build tree; the dependency on libkvr1 comes from the components' relations.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

foreach(componente bibliotecas desarrollo programas)
  string(TOUPPER ${componente} C)
  set(CPACK_DEBIAN_${C}_PACKAGE_NAME ${KVR_PAQUETE_${componente}})
endforeach()

set(CPACK_DEBIAN_BIBLIOTECAS_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_BIBLIOTECAS_DESCRIPTION "ventanas y rutinas de campo del Runtime KVR
Bibliotecas compartidas del Runtime KVR: libkvr_core (la lógica sin ventanas:
etiquetas de campo, formatos, motores de cálculo y ficheros) y libkvr (las
ventanas y cajas: calculadora, agenda de teléfonos, impresora, cajas de
mensaje y de entrada, editor de tablas, progreso y ayuda).")

set(CPACK_DEBIAN_DESARROLLO_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DESARROLLO_DEPENDS bibliotecas)
# What the installed headers and the CMake package need: Qt's development files.
set(CPACK_DEBIAN_DESARROLLO_PACKAGE_DEPENDS "qt6-base-dev")
set(CPACK_DEBIAN_DESARROLLO_PACKAGE_SHLIBDEPS OFF)
set(CPACK_COMPONENT_DESARROLLO_DESCRIPTION "ficheros de desarrollo del Runtime KVR
Cabeceras, paquete de CMake (find_package(KVR)), ficheros de pkg-config
(kvr.pc, kvr_core.pc) y referencia de la API del Runtime KVR, para construir
aplicaciones que usen sus ventanas y sus rutinas de campo.")

set(CPACK_DEBIAN_PROGRAMAS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_PROGRAMAS_DEPENDS bibliotecas)
set(CPACK_DEBIAN_PROGRAMAS_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_COMPONENT_PROGRAMAS_DESCRIPTION "órdenes y programas del Runtime KVR
La orden kvr abre las cajas y ventanas del runtime desde guiones de shell;
calculadora y telefonos son la calculadora con cinta y la agenda compartida,
con sus entradas de menú; RTimeKVR y kvr-demo muestran el runtime.")

include(CPack)
