# cmake --install ... --component dropin: a directory that build scripts of OCI programs and
# drivers take for an installed client, in both shapes that they know. docs/dropin.md.

# The versions that scripts and programs that were linked elsewhere ask for by name.
set(client_versions 10.1 11.1 12.1 18.1 19.1 20.1 21.1 23.1)
set(client_links libclntsh.so)
foreach(version IN LISTS client_versions)
  list(APPEND client_links libclntsh.so.${version})
endforeach()

function(install_dropin)
  install(${ARGN} COMPONENT dropin EXCLUDE_FROM_ALL)
endfunction()

# The library stands in lib/; the top folder holds links, for clients without a lib folder.
set(dropin_links "")
foreach(name IN LISTS client_links)
  string(APPEND dropin_links "
  link(lib/${name} $<TARGET_FILE_NAME:zevoci>)
  link(${name} lib/$<TARGET_FILE_NAME:zevoci>)")
endforeach()
foreach(name $<TARGET_SONAME_FILE_NAME:zevoci> $<TARGET_LINKER_FILE_NAME:zevoci>)
  string(APPEND dropin_links "
  link(lib/${name} $<TARGET_FILE_NAME:zevoci>)
  link(${name} lib/$<TARGET_FILE_NAME:zevoci>)")
endforeach()
install_dropin(FILES $<TARGET_FILE:zevoci> DESTINATION lib
  PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)
install_dropin(CODE "
  function(link name target)
    set(path \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${name}\")
    file(REMOVE \"\${path}\")
    file(CREATE_LINK \${target} \"\${path}\" SYMBOLIC)
  endfunction()${dropin_links}")

# Header folders: that of a home, that of a home's demonstrations, that of a client without a
# home, and that of a system-wide client.
foreach(folder rdbms/public rdbms/demo sdk/include include)
  install_dropin(FILES ${public_headers} DESTINATION ${folder})
endforeach()
install_dropin(FILES ${PROJECT_SOURCE_DIR}/docs/dropin.md DESTINATION .)
