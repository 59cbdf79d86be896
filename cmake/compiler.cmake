# Warnings and sanitizers as targets, so that each part of the tree asks for them by name.

add_library(zevoci_warnings INTERFACE)
target_compile_options(zevoci_warnings INTERFACE
  -Wall -Wextra $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Wformat=2
  -Wno-missing-field-initializers -Werror)

# For C sources: the same without what only C++ knows.
add_library(zevoci_c_warnings INTERFACE)
target_compile_options(zevoci_c_warnings INTERFACE -Wall -Wextra -Wshadow -pedantic -Werror)

add_library(zevoci_sanitizers INTERFACE)
if(ZEVOCI_SANITIZE STREQUAL "address")
  set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(ZEVOCI_SANITIZE STREQUAL "thread")
  set(flags -fsanitize=thread -fno-omit-frame-pointer)
elseif(ZEVOCI_SANITIZE STREQUAL "fuzzer")
  set(flags -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all
            -fno-omit-frame-pointer)
elseif(NOT ZEVOCI_SANITIZE STREQUAL "")
  message(FATAL_ERROR "ZEVOCI_SANITIZE must be address, thread, fuzzer or empty")
endif()
if(flags)
  target_compile_options(zevoci_sanitizers INTERFACE ${flags})
  target_link_options(zevoci_sanitizers INTERFACE ${flags})
endif()
